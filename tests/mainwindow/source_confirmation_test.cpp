// A backup that kept files because its source is in doubt, and the user who knows better.
#include "dialogs/config_form.h"
#include "mainwindow/main_form_fixture.h"

namespace coffrelune {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* confirmed = "La source est confirmée pour la prochaine sauvegarde.";

class SourceConfirmation : public MainFormTest {
  protected:
    SourceConfirmation() {
        disk().directory(R"(F:\Other)");
        startWithLine(
            "[Position]\nSynchroCopie=-1\nContinueOnError=-1\n"
            "[Autre]\nSource0=\"C:\\Docs\"\nDestination0=\"F:\\Other\"\nSelect0=1\n");
        backUp(false);
        disk().volume(R"(C:\)").identity = "another disk";
        disk().file(R"(F:\Save\Docs\gone.txt)", "gone");
    }
    /// A run that ends with errors waits at "Fermer".
    void backUp(bool withErrors) {
        if (withErrors) user().stepIn<Copie>([](Copie& window) { window.Cmd.click(); });
        user().answer(Answer::ok);
        form->Cmd.at(MainForm::launchCmd).click();
    }
    void restore(bool withErrors) {
        pickTab("R");
        for (int i = 0; i < 2; ++i) user().answer(Answer::ok);
        backUp(withErrors);
        pickTab("S");
    }
    void load(const std::string& name) {
        user().stepIn<ConfigForm>([&name](ConfigForm& dialog) {
            const auto& entries = dialog.Liste.entries();
            for (std::size_t i = 0; i < entries.size(); ++i) {
                if (entries[i] == name) dialog.Liste.pick(static_cast<int>(i));
            }
            dialog.Cmd[0].click();
        });
        form->toolbar.TB.pick("Config");
        ASSERT_EQ(system->configurationName, name);
    }
    bool isKept() { return disk().exists(R"(F:\Save\Docs\gone.txt)"); }
    Button& confirm() { return form->notices.ConfirmCmd; }
    Texts told() {
        Texts lines;
        for (const Label& label : form->notices.Lbl) {
            if (label.visible()) lines.push_back(label.caption());
        }
        return lines;
    }
};

TEST_F(SourceConfirmation, IsOfferedWithTheReasonWhenFilesWereKept) {
    EXPECT_FALSE(confirm().visible());
    backUp(true);
    EXPECT_TRUE(isKept());
    EXPECT_TRUE(confirm().visible());
    EXPECT_THAT(told(),
                ElementsAre(EndsWith(R"(Fichiers excédentaires conservés dans F:\Save\Docs :)"),
                            AllOf(HasSubstr(R"(   C:\Docs n'est pas sur le même volume)"),
                                  HasSubstr("Confirmer la source"))));
    EXPECT_EQ(form->statistics().keptReasons.size(), 1U);
}

TEST_F(SourceConfirmation, LetsTheNextBackupDeleteAndNoneAfterIt) {
    backUp(true);
    confirm().click();
    EXPECT_FALSE(confirm().visible());
    EXPECT_THAT(told(), ElementsAre(EndsWith(confirmed)));
    backUp(false);
    EXPECT_FALSE(isKept());
    EXPECT_THAT(told(), IsEmpty());

    disk().volume(R"(C:\)").identity = "a third disk";
    disk().file(R"(F:\Save\Docs\gone.txt)", "gone");
    backUp(true);
    EXPECT_TRUE(isKept());
    EXPECT_TRUE(confirm().visible());
}

TEST_F(SourceConfirmation, IsForgottenWithTheConfigurationThatItWasFor) {
    backUp(true);
    confirm().click();
    load("Autre");
    EXPECT_THAT(told(), IsEmpty());
    load("General");
    backUp(true);
    EXPECT_TRUE(isKept());
    EXPECT_TRUE(confirm().visible());
    load("Autre");
    EXPECT_FALSE(confirm().visible());
    EXPECT_THAT(told(), IsEmpty());
}

TEST_F(SourceConfirmation, HoldsThroughAComparison) {
    backUp(true);
    confirm().click();
    pickTab("C");
    form->Cmd.at(MainForm::launchCmd).click();
    EXPECT_THAT(told(), ElementsAre(EndsWith(confirmed)));
    pickTab("S");
    backUp(false);
    EXPECT_FALSE(isKept());
}

// It spoke of the source as it was before.
TEST_F(SourceConfirmation, IsForgottenByARestore) {
    backUp(true);
    confirm().click();
    disk().file(R"(C:\Docs\mine.txt)", "mine");
    restore(true);
    EXPECT_TRUE(disk().exists(R"(C:\Docs\mine.txt)"));
    EXPECT_FALSE(confirm().visible());
    EXPECT_THAT(told(), ElementsAre(HasSubstr(R"(Fichiers excédentaires conservés dans C:\Docs)"),
                                    HasSubstr("n'est pas sur le volume")));
    disk().remove(R"(C:\Docs\gone.txt)");
    backUp(true);
    EXPECT_TRUE(isKept());
}

TEST_F(SourceConfirmation, IsOfferedAfterAScheduledBackupToo) {
    system->AutoMode = true;  // nobody closes its window
    form->launch.backUpUnattended();
    EXPECT_TRUE(isKept());
    EXPECT_TRUE(confirm().visible());
    confirm().click();
    form->launch.backUpUnattended();
    EXPECT_FALSE(isKept());
    EXPECT_FALSE(confirm().visible());
}

}  // namespace
}  // namespace coffrelune
