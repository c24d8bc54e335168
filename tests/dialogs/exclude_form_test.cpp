#include "dialogs/exclude_form.h"

#include "dialogs/dialog_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Excluded = std::function<void(ExcludeForm&)>;

constexpr const char* title = "Sous-répertoires à exclure";

class ExcludeFormTest : public DialogTest {
  protected:
    ExcludeFormTest() {
        disk().directory(R"(C:\Data\Tmp)");
        disk().directory(R"(C:\Data\Old)");
        loadSettings("[Position]\nConfig=Travail\n[Travail]\nSource1=C:\\Data\n");
    }

    std::unique_ptr<ExcludeForm> open(const std::string& source = R"(C:\Data)") {
        return std::make_unique<ExcludeForm>(system, 1, source);
    }
    /// "Ajouter", and this path in the chooser.
    void add(ExcludeForm& form, const std::string& path) {
        user().chooseNextFolder(path);
        form.Cmd[2].click();
    }
    static int modeOf(const ExcludeForm& form) {
        int mode = -1;
        for (int i = 0; i < 3; ++i) {
            if (!form.OptExclu.at(static_cast<std::size_t>(i)).checked()) continue;
            EXPECT_EQ(mode, -1) << "two modes are chosen";
            mode = i;
        }
        return mode;
    }
    ExclusionList stored() {
        system.LoadExclusions(1);
        return system.exclusions;
    }
    void store(const std::string& mode, const Texts& directories) {
        (void)system.WriteSetting("Travail", "RepExclu1_Mode", mode);
        for (std::size_t i = 0; i < directories.size(); ++i) {
            (void)system.WriteSetting("Travail", "RepExclu1_Rep" + std::to_string(i + 1),
                                      directories[i]);
        }
        memory.files().clearCalls();
    }
};

TEST_F(ExcludeFormTest, SaysWhatItAsks) {
    const auto form = open();
    EXPECT_EQ(form->SourceLbl.path(), R"(C:\Data)");
    EXPECT_EQ(form->SourceFrame.caption(), "Disque/Répertoire à sauvegarder");
    EXPECT_EQ(form->ModeFrame.caption(), "Que faire des sous-répertoires ?");
    EXPECT_EQ(form->ListeFrame.caption(), "Liste des répertoires exclus de la sauvegarde");
    EXPECT_EQ(form->OptExclu[0].caption(), "&Sauvegarder tous les sous-répertoires");
    EXPECT_EQ(form->OptExclu[1].caption(), "&Ne pas sauvegarder les sous-répertoires");
    EXPECT_EQ(form->OptExclu[2].caption(),
              "&Exclure de la sauvegarde les sous-répertoires suivants:");
    EXPECT_EQ(form->Cmd[2].toolTip(), "Ajouter un répertoire à exclure");
    EXPECT_EQ(form->Cmd[3].toolTip(), "Supprimer le répertoire sélectionné de la liste");
    EXPECT_EQ(form->Cmd[4].toolTip(), "Supprimer la liste des répertoires exclus");
    EXPECT_THAT(form->buttons(), SizeIs(5));
}

TEST_F(ExcludeFormTest, OpensOnAllSubdirectoriesAndAnEmptyList) {
    const auto form = open();
    EXPECT_EQ(modeOf(*form), 0);
    EXPECT_THAT(form->Liste.entries(), IsEmpty());
    EXPECT_FALSE(form->Cmd[3].enabled());
    EXPECT_FALSE(form->Cmd[4].enabled());
}

TEST_F(ExcludeFormTest, ShowsTheStoredListInItsOrderWhateverTheMode) {
    store("1", {R"(\Tmp)", R"(\Old)", R"(\Autre)"});
    const auto form = open();
    EXPECT_EQ(modeOf(*form), 1);
    EXPECT_THAT(form->Liste.entries(), ElementsAre(R"(\Tmp)", R"(\Old)", R"(\Autre)"));
    EXPECT_FALSE(form->Cmd[3].enabled());
    EXPECT_TRUE(form->Cmd[4].enabled());
}

TEST_F(ExcludeFormTest, ModeThatDoesNotExistChoosesNone) {
    for (const char* mode : {"3", "-1", "99"}) {
        store(mode, {});
        EXPECT_EQ(modeOf(*open()), -1);
    }
}

TEST_F(ExcludeFormTest, ModesExcludeEachOther) {
    const auto form = open();
    for (const int mode : {2, 1, 0}) {
        form->OptExclu.at(static_cast<std::size_t>(mode)).click();
        EXPECT_EQ(modeOf(*form), mode);
    }
}

TEST_F(ExcludeFormTest, SourceWithoutSubdirectoryIsSaidAndNothingIsChosen) {
    disk().file(R"(C:\Plat\a.txt)");
    user().answer(Answer::ok);
    open(R"(C:\Plat)")->Cmd[2].click();
    EXPECT_THAT(lastMessage(),
                IsMessage("Pas de sous-répertoire dans le disque/répertoire à sauvegarder !", title,
                          MessageIcon::information));
    EXPECT_THAT(user().folderChoosers(), IsEmpty());
}

TEST_F(ExcludeFormTest, SourceThatIsMissingHasNoSubdirectory) {
    user().answer(Answer::ok);
    open(R"(C:\Absent)")->Cmd[2].click();
    EXPECT_THAT(user().folderChoosers(), IsEmpty());
}

TEST_F(ExcludeFormTest, ChooserStartsAtTheSourceAndTakesDirectoriesOnly) {
    const auto form = open();
    add(*form, "");
    ASSERT_THAT(user().folderChoosers(), SizeIs(1));
    EXPECT_EQ(user().folderChoosers()[0],
              (MemoryWindows::FolderChooser{
                  false, "Sélectionnez un répertoire à exclure de la sauvegarde:", R"(C:\Data)"}));
}

TEST_F(ExcludeFormTest, CancelledChooserChangesNothing) {
    const auto form = open();
    add(*form, "");
    EXPECT_THAT(form->Liste.entries(), IsEmpty());
    EXPECT_EQ(modeOf(*form), 0);
    EXPECT_THAT(user().messages(), IsEmpty());
}

TEST_F(ExcludeFormTest, ChosenDirectoryIsListedRelativeToTheSourceAndTurnsExclusionOn) {
    const auto form = open();
    add(*form, R"(C:\Data\Tmp)");
    add(*form, R"(C:\Data\Old)");
    EXPECT_THAT(form->Liste.entries(), ElementsAre(R"(\Tmp)", R"(\Old)"));
    EXPECT_EQ(modeOf(*form), 2);
    EXPECT_TRUE(form->Cmd[4].enabled());
    EXPECT_FALSE(form->Cmd[3].enabled());
}

TEST_F(ExcludeFormTest, DirectoryOfADriveRootHasNoLeadingBackslash) {
    const auto form = open(R"(C:\)");
    add(*form, R"(C:\Temp)");
    EXPECT_THAT(form->Liste.entries(), ElementsAre("Temp"));
}

TEST_F(ExcludeFormTest, SourceMayBeSpelledInAnotherCase) {
    const auto form = open();
    add(*form, R"(c:\data\tmp)");
    EXPECT_THAT(form->Liste.entries(), ElementsAre(R"(\tmp)"));
}

TEST_F(ExcludeFormTest, EntryIsCutByCharactersNotByBytes) {
    disk().directory(R"(C:\Été\Août)");
    const auto form = open(R"(C:\Été)");
    add(*form, R"(C:\été\Août)");
    EXPECT_THAT(form->Liste.entries(), ElementsAre(R"(\Août)"));
}

TEST_F(ExcludeFormTest, DirectoryElsewhereIsRefused) {
    user().answer(Answer::ok);
    const auto form = open();
    add(*form, R"(D:\Data\Tmp)");
    EXPECT_THAT(lastMessage(),
                IsMessage("Le répertoire à exclure doit se trouver dans le disque ou répertoire à "
                          "sauvegarder !",
                          title, MessageIcon::information));
    EXPECT_THAT(form->Liste.entries(), IsEmpty());
    EXPECT_EQ(modeOf(*form), 0);
}

TEST_F(ExcludeFormTest, ParentOfTheSourceIsRefused) {
    user().answer(Answer::ok);
    const auto form = open();
    add(*form, R"(C:\)");
    EXPECT_THAT(form->Liste.entries(), IsEmpty());
}

TEST_F(ExcludeFormTest, NeighbourThatBeginsAlikePassesThePlainPrefixTest) {
    const auto form = open();
    add(*form, R"(C:\Data2)");
    EXPECT_THAT(form->Liste.entries(), ElementsAre("2"));
}

TEST_F(ExcludeFormTest, SourceItselfIsNotAddedAndNothingIsSaid) {
    const auto form = open();
    add(*form, R"(C:\Data)");
    EXPECT_THAT(form->Liste.entries(), IsEmpty());
    EXPECT_EQ(modeOf(*form), 0);
    EXPECT_THAT(user().messages(), IsEmpty());
}

TEST_F(ExcludeFormTest, DirectoryIsListedOnce) {
    const auto form = open();
    add(*form, R"(C:\Data\Tmp)");
    form->OptExclu[0].click();
    user().answer(Answer::ok);
    add(*form, R"(C:\Data\Tmp)");
    EXPECT_THAT(lastMessage(), IsMessage("Ce répertoire est déjà dans la liste !", title,
                                         MessageIcon::information));
    EXPECT_THAT(form->Liste.entries(), ElementsAre(R"(\Tmp)"));
    EXPECT_EQ(modeOf(*form), 0);
}

TEST_F(ExcludeFormTest, EntriesThatDifferInCaseAreTwo) {
    const auto form = open();
    add(*form, R"(C:\Data\Tmp)");
    add(*form, R"(C:\Data\tmp)");
    EXPECT_THAT(form->Liste.entries(), ElementsAre(R"(\Tmp)", R"(\tmp)"));
}

TEST_F(ExcludeFormTest, RemoveNeedsASelection) {
    store("2", {"a", "b"});
    const auto form = open();
    form->Liste.pick(0);
    EXPECT_TRUE(form->Cmd[3].enabled());
    form->Liste.pick(-1);
    EXPECT_FALSE(form->Cmd[3].enabled());
    form->Cmd[3].click();
    EXPECT_THAT(form->Liste.entries(), ElementsAre("a", "b"));
}

TEST_F(ExcludeFormTest, RemoveSelectsTheEntryAbove) {
    store("2", {"a", "b", "c"});
    const auto form = open();
    form->Liste.pick(2);
    form->Cmd[3].click();
    EXPECT_THAT(form->Liste.entries(), ElementsAre("a", "b"));
    EXPECT_EQ(form->Liste.selection(), 1);
    EXPECT_TRUE(form->Cmd[3].enabled());
}

TEST_F(ExcludeFormTest, RemoveOfTheFirstSelectsTheNewFirst) {
    store("2", {"a", "b", "c"});
    const auto form = open();
    form->Liste.pick(0);
    form->Cmd[3].click();
    EXPECT_THAT(form->Liste.entries(), ElementsAre("b", "c"));
    EXPECT_EQ(form->Liste.selection(), 0);
}

TEST_F(ExcludeFormTest, RemoveOfTheLastOneLeavesTheModeAndStoresAnEmptyList) {
    store("2", {"a"});
    const auto form = open();
    form->Liste.pick(0);
    form->Cmd[3].click();
    EXPECT_EQ(form->Liste.selection(), -1);
    EXPECT_FALSE(form->Cmd[3].enabled());
    EXPECT_FALSE(form->Cmd[4].enabled());
    EXPECT_EQ(modeOf(*form), 2);
    form->Cmd[0].click();
    EXPECT_EQ(setting("Travail", "RepExclu1_Mode"), "2");
    EXPECT_THAT(stored().directories, IsEmpty());
}

TEST_F(ExcludeFormTest, RemoveAllAsksFirst) {
    store("2", {"a", "b"});
    const auto form = open();
    user().answer(Answer::cancel);
    form->Cmd[4].click();
    EXPECT_THAT(lastMessage(),
                IsQuestion("Voulez-vous supprimer la liste des répertoires exclus ?", title));
    EXPECT_THAT(form->Liste.entries(), ElementsAre("a", "b"));
    user().answer(Answer::ok);
    form->Cmd[4].click();
    EXPECT_THAT(form->Liste.entries(), IsEmpty());
    EXPECT_EQ(modeOf(*form), 2);
    EXPECT_FALSE(form->Cmd[4].enabled());
}

TEST_F(ExcludeFormTest, OkStoresModeAndListAndTakesTheOldOnesAway) {
    store("2", {"a", "b", "c"});
    auto form = open();
    show<ExcludeForm>(*form, [this](ExcludeForm& shown) {
        user().answer(Answer::ok);
        shown.Cmd[4].click();
        add(shown, R"(C:\Data\Tmp)");
        shown.Cmd[0].click();
    });
    EXPECT_FALSE(form->open());
    EXPECT_EQ(setting("Travail", "RepExclu1_Mode"), "2");
    EXPECT_EQ(setting("Travail", "RepExclu1_Rep1"), R"(\Tmp)");
    EXPECT_EQ(setting("Travail", "RepExclu1_Rep2"), "");
    EXPECT_EQ(setting("Travail", "RepExclu1_Rep3"), "");
}

TEST_F(ExcludeFormTest, OkKeepsTheListForModesThatDoNotUseIt) {
    store("2", {"a", "b"});
    const auto form = open();
    form->OptExclu[1].click();
    form->Cmd[0].click();
    EXPECT_EQ(stored().mode, ExclusionMode::all);
    EXPECT_THAT(stored().directories, ElementsAre("a", "b"));
}

TEST_F(ExcludeFormTest, OkWithoutAModeStoresTheFirst) {
    store("7", {"a"});
    open()->Cmd[0].click();
    EXPECT_EQ(setting("Travail", "RepExclu1_Mode"), "0");
    EXPECT_THAT(stored().directories, ElementsAre("a"));
}

TEST_F(ExcludeFormTest, OkKeepsBlanksAndQuotesOfAName) {
    const auto form = open();
    add(*form, R"(C:\Data\ Fin )");
    form->Cmd[0].click();
    EXPECT_THAT(stored().directories, ElementsAre(R"(\ Fin )"));
}

TEST_F(ExcludeFormTest, OtherLinesAreLeftAlone) {
    (void)system.WriteSetting("Travail", "RepExclu0_Mode", "2");
    (void)system.WriteSetting("Travail", "RepExclu0_Rep1", "x");
    open()->Cmd[0].click();
    EXPECT_EQ(setting("Travail", "RepExclu0_Mode"), "2");
    EXPECT_EQ(setting("Travail", "RepExclu0_Rep1"), "x");
}

TEST_F(ExcludeFormTest, CancelAndCloseBoxWriteNothing) {
    store("2", {"a"});
    for (const Excluded& leave : {Excluded([](ExcludeForm& form) { form.Cmd[1].click(); }),
                                  Excluded([](ExcludeForm& form) { form.closeBox(); })}) {
        const auto form = open();
        show<ExcludeForm>(*form, [&](ExcludeForm& shown) {
            shown.OptExclu[0].click();
            shown.Liste.pick(0);
            shown.Cmd[3].click();
            leave(shown);
        });
        EXPECT_FALSE(form->open());
        EXPECT_EQ(writeCount(), 0U);
    }
    EXPECT_THAT(stored().directories, ElementsAre("a"));
}

}  // namespace
}  // namespace coffrelune
