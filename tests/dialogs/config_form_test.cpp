#include "dialogs/config_form.h"

#include "dialogs/dialog_fixture.h"
#include "dialogs/text_dialogs.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using Use = std::function<void(ConfigForm&)>;

constexpr const char* title = "Configurations et options";

class ConfigFormTest : public DialogTest {
  protected:
    ConfigFormTest() {
        loadSettings(
            "[Position]\nConfig=Travail\n"
            "[General]\nSource0=C:\\A\n"
            "[Travail]\nDescription=Bureau\nSource0=C:\\B\n"
            "[Photos]\nSource0=C:\\C\n");
    }
    /// "Ajouter", and this name in the dialog that opens.
    void add(ConfigForm& form, const std::string& name) {
        user().stepIn<ConfigNameForm>([name](ConfigNameForm& open) {
            open.Txt.type(name);
            open.Cmd[0].click();
        });
        form.Cmd[2].click();
    }
    void erase(ConfigForm& form, int entry, Answer answer = Answer::ok) {
        form.Liste.pick(entry);
        user().answer(answer);
        form.Cmd[3].click();
    }
    void placeErrorLists(const std::string& name) {
        for (const char* kind : {"S_", "R_", "C_"}) disk().file(errorList(kind, name), "x");
    }
    static std::string errorList(const std::string& kind, const std::string& name) {
        return std::string(home) + "\\" + kind + name + ".err";
    }
    int errorLists(const std::string& name) {
        int count = 0;
        for (const char* kind : {"S_", "R_", "C_"}) {
            if (disk().exists(errorList(kind, name))) ++count;
        }
        return count;
    }
    /// OK with this entry selected; the name handed back.
    std::string choose(int entry) {
        ConfigForm form(system);
        form.Liste.pick(entry);
        form.Cmd[0].click();
        return system.selectedConfiguration;
    }
};

TEST_F(ConfigFormTest, SaysWhatItOffers) {
    ConfigForm form(system);
    EXPECT_EQ(form.ListeFrame.caption(), "Liste des configurations de sauvegarde");
    EXPECT_EQ(form.OptFrame.caption(), "Personnalisation");
    EXPECT_EQ(form.RepMaxLbl.caption(), "Nombre maximum de répertoires:");
    EXPECT_EQ(form.FichSonLbl[0].caption(), "Copie Ok");
    EXPECT_EQ(form.FichSonLbl[1].caption(), "Copie Erreur");
    EXPECT_EQ(form.Cmd[2].toolTip(), "Ajouter une configuration de sauvegarde");
    EXPECT_EQ(form.Cmd[3].toolTip(), "Supprimer une configuration de sauvegarde");
    EXPECT_EQ(form.Cmd[4].toolTip(), "Test du signal sonore (Réussi)");
    EXPECT_EQ(form.Cmd[5].toolTip(), "Test du signal sonore (Erreur)");
    Texts captions;
    for (const Button* button : form.buttons()) captions.push_back(button->caption());
    EXPECT_THAT(captions,
                ElementsAre("OK", "&Annuler", "Ajouter", "Effacer",
                            "Test du signal sonore (Réussi)", "Test du signal sonore (Erreur)"));
}

TEST_F(ConfigFormTest, ListsTheConfigurationsWithTheirDescriptions) {
    ConfigForm form(system);
    EXPECT_THAT(form.Liste.entries(), ElementsAre("General", "Travail (Bureau)", "Photos"));
}

TEST_F(ConfigFormTest, SelectsTheCurrentConfiguration) {
    EXPECT_EQ(ConfigForm(system).Liste.selection(), 1);
}

TEST_F(ConfigFormTest, SelectsNothingForAConfigurationThatHasNoSectionYet) {
    system.configurationName = "Nouvelle";
    EXPECT_EQ(ConfigForm(system).Liste.selection(), -1);
}

TEST_F(ConfigFormTest, ConfigurationAddedAndTakenIsListedAndSelectedThoughItHasNoSection) {
    {
        ConfigForm form(system);
        add(form, "Vacances");
        form.Cmd[0].click();
    }
    system.configurationName = system.selectedConfiguration;
    ConfigForm form(system);
    EXPECT_THAT(form.Liste.entries(),
                ElementsAre("General", "Travail (Bureau)", "Photos", "Vacances"));
    EXPECT_EQ(form.Liste.selection(), 3);
    form.Cmd[0].click();
    EXPECT_EQ(system.selectedConfiguration, "Vacances");
}

TEST_F(ConfigFormTest, ConfigurationTakenBeforeThisStartIsListedWithoutASection) {
    loadSettings("[Position]\nConfig=Vacances\n[General]\nSource0=C:\\A\n");
    system.configurationName = "Vacances";
    ConfigForm form(system);
    EXPECT_THAT(form.Liste.entries(), ElementsAre("General", "Vacances"));
    EXPECT_EQ(form.Liste.selection(), 1);
}

TEST_F(ConfigFormTest, ConfigurationTakenAndInUseIsNotDeleted) {
    loadSettings("[Position]\nConfig=Vacances\n[General]\nSource0=C:\\A\n");
    system.configurationName = "Vacances";
    ConfigForm form(system);
    user().answer(Answer::ok);
    erase(form, 1);
    EXPECT_THAT(lastMessage(), IsMessage("Impossible d'effacer la configuration en cours !", title,
                                         MessageIcon::information));
    EXPECT_THAT(form.Liste.entries(), ElementsAre("General", "Vacances"));
}

TEST_F(ConfigFormTest, SelectedNameLeavesTheDescriptionOut) {
    EXPECT_EQ(choose(1), "Travail");
    EXPECT_EQ(choose(2), "Photos");
}

TEST_F(ConfigFormTest, NameIsCutAtItsOwnBracket) {
    loadSettings(
        "[Photos (2023)]\nSource0=C:\\A\n[(x)]\nSource0=C:\\A\n[\xC9(a)]\nSource0=C:\\A\n");
    system.configurationName = "Travail";
    EXPECT_EQ(choose(0), "Photos");
    EXPECT_EQ(choose(1), "Travail") << "nothing is left of the name";
    EXPECT_EQ(choose(2), "Travail");
}

TEST_F(ConfigFormTest, CutTakesOneWholeCharacter) {
    loadSettings("[Caf\xE9(a)]\nSource0=C:\\A\n");
    EXPECT_EQ(ConfigForm(system).Liste.entries()[0], "Café(a)");
    EXPECT_EQ(choose(0), "Caf");
}

TEST_F(ConfigFormTest, OkWithoutASelectionKeepsTheCurrentName) {
    system.configurationName = "Nouvelle";
    ConfigForm form(system);
    form.Cmd[0].click();
    EXPECT_EQ(system.selectedConfiguration, "Nouvelle");
    EXPECT_FALSE(form.open());
}

TEST_F(ConfigFormTest, CancelAndCloseBoxHandTheCurrentChoiceBackAndWriteNothing) {
    for (const Use& leave : {Use([](ConfigForm& form) { form.Cmd[1].click(); }),
                             Use([](ConfigForm& form) { form.closeBox(); })}) {
        system.selectedConfiguration = "Ancienne";
        system.pendingMaximumIndex = 11;
        ConfigForm form(system);
        show<ConfigForm>(form, [&](ConfigForm& open) {
            open.Liste.pick(0);
            open.RepMaxCb.pick(0);
            open.Opt[0].click();
            leave(open);
        });
        EXPECT_FALSE(form.open());
        EXPECT_EQ(system.selectedConfiguration, "Travail");
        EXPECT_EQ(system.pendingMaximumIndex, 5);
        EXPECT_EQ(system.options.RecentSeul, 0);
    }
    EXPECT_EQ(writeCount(), 0U);
}

TEST_F(ConfigFormTest, EnterIsOkAndEscapeIsAnnuler) {
    ConfigForm form(system);
    EXPECT_EQ(form.defaultButton(), &form.Cmd[0]);
    EXPECT_EQ(form.cancelButton(), &form.Cmd[1]);
}

TEST_F(ConfigFormTest, AddedConfigurationIsSelectedAndNotYetWritten) {
    ConfigForm form(system);
    add(form, "vACANCES");
    EXPECT_EQ(form.Liste.entries().back(), "Vacances");
    EXPECT_EQ(form.Liste.selection(), 3);
    EXPECT_EQ(writeCount(), 0U);
    form.Cmd[0].click();
    EXPECT_EQ(system.selectedConfiguration, "Vacances");
    EXPECT_THAT(settings(), Not(HasSubstr("Vacances")));
}

TEST_F(ConfigFormTest, CancelledNewNameAddsNothing) {
    ConfigForm form(system);
    user().stepIn<ConfigNameForm>([](ConfigNameForm& open) {
        open.Txt.type("Vacances");
        open.Cmd[1].click();
    });
    form.Cmd[2].click();
    EXPECT_EQ(form.Liste.entries().size(), 3U);
    EXPECT_EQ(form.Liste.selection(), 1);
}

TEST_F(ConfigFormTest, ReservedNewNameAddsNothing) {
    ConfigForm form(system);
    user().answer(Answer::ok);
    add(form, "position");
    EXPECT_EQ(form.Liste.entries().size(), 3U);
}

TEST_F(ConfigFormTest, ExistingNameIsRefusedAlsoBehindItsDescription) {
    ConfigForm form(system);
    for (const char* name : {"travail", "photos"}) {
        user().answer(Answer::ok);
        add(form, name);
        EXPECT_THAT(lastMessage(), IsMessage("Cette configuration existe déjà !", title,
                                             MessageIcon::information));
    }
    EXPECT_EQ(form.Liste.entries().size(), 3U);
}

TEST_F(ConfigFormTest, NameThatAnotherOneBeginsWithIsRefused) {
    ConfigForm form(system);
    user().answer(Answer::ok);
    add(form, "Tra");
    EXPECT_EQ(form.Liste.entries().size(), 3U);
    add(form, "Travaux");
    EXPECT_EQ(form.Liste.entries().back(), "Travaux");
}

TEST_F(ConfigFormTest, DeletionAsksFirst) {
    ConfigForm form(system);
    erase(form, 2, Answer::cancel);
    EXPECT_THAT(lastMessage(), IsQuestion("Voulez-vous effacer cette configuration ?", title));
    EXPECT_EQ(form.Liste.entries().size(), 3U);
    EXPECT_THAT(settings(), HasSubstr("[Photos]"));
    EXPECT_EQ(writeCount(), 0U);
}

TEST_F(ConfigFormTest, DeletedConfigurationLosesItsSectionAndItsThreeErrorLists) {
    placeErrorLists("Photos");
    placeErrorLists("General");
    ConfigForm form(system);
    erase(form, 2);
    EXPECT_THAT(settings(), Not(HasSubstr("[Photos]")));
    EXPECT_THAT(settings(), HasSubstr("[General]"));
    EXPECT_EQ(errorLists("Photos"), 0);
    EXPECT_EQ(errorLists("General"), 3);
    EXPECT_THAT(form.Liste.entries(), ElementsAre("General", "Travail (Bureau)"));
    EXPECT_EQ(form.Liste.selection(), 0);
    EXPECT_TRUE(form.open());
}

TEST_F(ConfigFormTest, ErrorListsAreFoundByTheCleanedName) {
    loadSettings("[A:b?]\nSource0=C:\\A\n[Travail]\nSource0=C:\\B\n");
    system.configurationName = "Travail";
    placeErrorLists("A_b_");
    ConfigForm form(system);
    erase(form, 0);
    EXPECT_EQ(errorLists("A_b_"), 0);
}

TEST_F(ConfigFormTest, MissingErrorListsAreNoError) {
    ConfigForm form(system);
    erase(form, 0);
    EXPECT_THAT(settings(), Not(HasSubstr("[General]")));
    EXPECT_EQ(user().messages().size(), 1U);
}

TEST_F(ConfigFormTest, ConfigurationInUseIsNotDeleted) {
    placeErrorLists("Travail");
    ConfigForm form(system);
    user().answer(Answer::ok);
    erase(form, 1);
    EXPECT_THAT(lastMessage(), IsMessage("Impossible d'effacer la configuration en cours !", title,
                                         MessageIcon::information));
    EXPECT_THAT(settings(), HasSubstr("[Travail]"));
    EXPECT_EQ(errorLists("Travail"), 3);
    EXPECT_EQ(form.Liste.entries().size(), 3U);
    EXPECT_TRUE(form.open());
}

TEST_F(ConfigFormTest, ConfigurationInUseIsNotDeletedWhateverItsCase) {
    loadSettings("[TRAVAIL]\nSource0=C:\\B\n");
    system.configurationName = "Travail";
    ConfigForm form(system);
    user().answer(Answer::ok);
    erase(form, 0);
    EXPECT_THAT(settings(), HasSubstr("[TRAVAIL]"));
}

TEST_F(ConfigFormTest, DeletionWorksOnTheSelectionOfThatMoment) {
    ConfigForm form(system);
    form.Liste.pick(0);
    form.Liste.pick(2);
    user().answer(Answer::ok);
    form.Cmd[3].click();
    EXPECT_THAT(settings(), HasSubstr("[General]"));
    EXPECT_THAT(settings(), Not(HasSubstr("[Photos]")));
}

TEST_F(ConfigFormTest, DeletionWithoutASelectionDoesNothing) {
    system.configurationName = "Nouvelle";
    ConfigForm form(system);
    form.Cmd[3].click();
    EXPECT_THAT(user().messages(), IsEmpty());
    EXPECT_EQ(writeCount(), 0U);
}

TEST_F(ConfigFormTest, DeletedConfigurationWithADescriptionStaysOnViewUntilReopened) {
    system.configurationName = "General";
    placeErrorLists("Travail");
    ConfigForm form(system);
    erase(form, 1);
    EXPECT_THAT(settings(), Not(HasSubstr("[Travail]")));
    EXPECT_EQ(errorLists("Travail"), 0);
    EXPECT_THAT(form.Liste.entries(), ElementsAre("General", "Travail (Bureau)", "Photos"));
    EXPECT_EQ(form.Liste.selection(), 1);
    EXPECT_THAT(ConfigForm(system).Liste.entries(), ElementsAre("General", "Photos"));
}

TEST_F(ConfigFormTest, AddedConfigurationCanBeDeletedAgain) {
    ConfigForm form(system);
    add(form, "Vacances");
    erase(form, 3);
    EXPECT_THAT(form.Liste.entries(), ElementsAre("General", "Travail (Bureau)", "Photos"));
    erase(form, 0);
    EXPECT_THAT(settings(), Not(HasSubstr("[General]")));
    EXPECT_THAT(settings(), HasSubstr("[Photos]"));
}

TEST_F(ConfigFormTest, WithoutASettingsFileTheListIsEmptyAndTheNameGeneral) {
    disk().remove(settingsFile);
    system.configurationName.clear();
    system.LoadSettings();
    ConfigForm form(system);
    EXPECT_THAT(form.Liste.entries(), IsEmpty());
    EXPECT_EQ(system.selectedConfiguration, "General");
    EXPECT_EQ(form.RepMaxCb.entries().size(), 12U);
    EXPECT_EQ(form.RepMaxCb.selectedText(), "6");
}

}  // namespace
}  // namespace coffrelune
