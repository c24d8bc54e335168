#include "dialogs/dialog_fixture.h"
#include "dialogs/text_dialogs.h"

namespace coffrelune {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

class SmallDialogs : public DialogTest {
  protected:
    SmallDialogs() { loadSettings("[Position]\nConfig=Travail\n[Travail]\nDescription=Bureau\n"); }

    std::string nameFor(const std::string& typed) {
        ConfigNameForm form(system);
        show<ConfigNameForm>(form, [&](ConfigNameForm& open) {
            open.Txt.type(typed);
            open.Cmd[0].click();
        });
        EXPECT_FALSE(form.open());
        return system.dialogText;
    }
};

TEST_F(SmallDialogs, HaveThreeButtonsThatEnterAndEscapePress) {
    DescriptionForm form(system);
    ASSERT_THAT(form.buttons(), SizeIs(3));
    EXPECT_EQ(form.Cmd[1].caption(), "&Annuler");
    EXPECT_EQ(form.Cmd[2].toolTip(), "Effacer le texte");
    EXPECT_EQ(form.defaultButton(), &form.Cmd[0]);
    EXPECT_EQ(form.cancelButton(), &form.Cmd[1]);
}

TEST_F(SmallDialogs, ClearButtonEmptiesTheTextAndPutsTheFocusBackIntoIt) {
    DescriptionForm form(system);
    form.Txt.leave();
    EXPECT_FALSE(form.Txt.focused());
    form.Cmd[2].click();
    EXPECT_EQ(form.Txt.text(), "");
    EXPECT_TRUE(form.Txt.focused());
    EXPECT_TRUE(form.open());
}

TEST_F(SmallDialogs, DescriptionShowsWhatTheConfigurationHas) {
    DescriptionForm form(system);
    EXPECT_EQ(form.caption(), "Configuration : Travail");
    EXPECT_EQ(form.Txt.text(), "Bureau");
}

TEST_F(SmallDialogs, DescriptionIsStoredInQuotesSoThatItsBlanksStay) {
    DescriptionForm form(system);
    show<DescriptionForm>(form, [](DescriptionForm& open) {
        open.Txt.type(" Portable d'été ");
        open.Cmd[0].click();
    });
    EXPECT_EQ(system.description, " Portable d'été ");
    EXPECT_EQ(setting("Travail", "Description"), " Portable d'été ");
    EXPECT_THAT(settings(), testing::HasSubstr("Description=\" Portable"));
    EXPECT_FALSE(form.open());
}

TEST_F(SmallDialogs, EmptiedDescriptionDeletesItsKey) {
    DescriptionForm form(system);
    show<DescriptionForm>(form, [](DescriptionForm& open) {
        open.Cmd[2].click();
        open.Cmd[0].click();
    });
    EXPECT_EQ(system.description, "");
    EXPECT_THAT(settings(), testing::Not(testing::HasSubstr("Description")));
}

TEST_F(SmallDialogs, CancelledDescriptionChangesNothing) {
    DescriptionForm form(system);
    show<DescriptionForm>(form, [](DescriptionForm& open) {
        open.Txt.type("Autre");
        open.Cmd[1].click();
    });
    EXPECT_EQ(system.description, "Bureau");
    EXPECT_EQ(writeCount(), 0U);
    EXPECT_FALSE(form.open());
}

TEST_F(SmallDialogs, DescriptionClosedByItsBoxChangesNothing) {
    DescriptionForm form(system);
    show<DescriptionForm>(form, [](DescriptionForm& open) {
        open.Txt.type("Autre");
        open.closeBox();
    });
    EXPECT_EQ(system.description, "Bureau");
    EXPECT_EQ(writeCount(), 0U);
}

TEST_F(SmallDialogs, ConfigurationNameIsPutIntoProperCase) {
    EXPECT_EQ(nameFor("vACANCES d'ÉTÉ"), "Vacances d'été");
}

TEST_F(SmallDialogs, ConfigurationNameKeepsItsBlanks) {
    EXPECT_EQ(nameFor("  travail"), "  travail");
}

TEST_F(SmallDialogs, ConfigurationNameTakesCharactersThatAFileNameCannotHold) {
    EXPECT_EQ(nameFor("a:b?"), "A:b?");
}

TEST_F(SmallDialogs, EmptyConfigurationNameIsHandedBackWithoutAMessage) {
    EXPECT_EQ(nameFor(""), "");
    EXPECT_THAT(user().messages(), IsEmpty());
}

TEST_F(SmallDialogs, ReservedConfigurationNameIsRefusedInAnyCaseAndBetweenBlanks) {
    for (const char* typed : {"Position", "POSITION", "position", " position", "Position  "}) {
        user().answer(Answer::ok);
        EXPECT_EQ(nameFor(typed), "");
        EXPECT_THAT(lastMessage(), IsMessage("Impossible, nom réservé !", "Nouvelle configuration",
                                             MessageIcon::information));
    }
}

TEST_F(SmallDialogs, CancelledConfigurationNameIsEmptyWhateverWasThereBefore) {
    system.dialogText = "Ancien";
    ConfigNameForm form(system);
    EXPECT_EQ(form.Lbl.caption(), "Nom de la configuration :");
    EXPECT_EQ(system.dialogText, "");
    show<ConfigNameForm>(form, [](ConfigNameForm& open) {
        open.Txt.type("Autre");
        open.Cmd[1].click();
    });
    EXPECT_EQ(system.dialogText, "");
}

TEST_F(SmallDialogs, LineShowsTheSourceForKind1) {
    system.dialogText = R"(1C:\Docs)";
    LineForm form(system);
    EXPECT_EQ(form.caption(), "Répertoire source");
    EXPECT_EQ(form.Txt.text(), R"(C:\Docs)");
    EXPECT_EQ(system.dialogText, "@");
}

TEST_F(SmallDialogs, LineShowsTheDestinationForAnyOtherKind) {
    system.dialogText = R"(2D:\Copies)";
    LineForm form(system);
    EXPECT_EQ(form.caption(), "Répertoire destination");
    EXPECT_EQ(form.Txt.text(), R"(D:\Copies)");
}

TEST_F(SmallDialogs, LineOpensOnAnEmptyPathAndOnAnEmptyRequest) {
    system.dialogText = "1";
    EXPECT_EQ(LineForm(system).Txt.text(), "");
    system.dialogText = "";
    EXPECT_EQ(LineForm(system).caption(), "Répertoire destination");
}

TEST_F(SmallDialogs, CancelledLineLeavesTheMark) {
    system.dialogText = R"(2D:\Copies)";
    LineForm form(system);
    show<LineForm>(form, [](LineForm& open) {
        open.Txt.type(R"(E:\)");
        open.Cmd[1].click();
    });
    EXPECT_EQ(system.dialogText, "@");
    EXPECT_FALSE(form.open());
}

TEST_F(SmallDialogs, LineIsHandedBackExactlyAsTyped) {
    system.dialogText = R"(2D:\Copies)";
    LineForm form(system);
    show<LineForm>(form, [](LineForm& open) {
        open.Txt.type(R"(  E:\Été?* )");
        open.Cmd[0].click();
    });
    EXPECT_EQ(system.dialogText, R"(  E:\Été?* )");
}

TEST_F(SmallDialogs, ClearedLineIsHandedBackAsEmpty) {
    system.dialogText = R"(2D:\Copies)";
    LineForm form(system);
    show<LineForm>(form, [](LineForm& open) {
        open.Cmd[2].click();
        open.Cmd[0].click();
    });
    EXPECT_EQ(system.dialogText, "");
}

}  // namespace
}  // namespace coffrelune
