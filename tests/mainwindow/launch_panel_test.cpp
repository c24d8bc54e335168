// Tabs and the launch button.
#include "mainwindow/main_form_fixture.h"

namespace coffrelune {
namespace {

using testing::IsEmpty;

class LaunchPanelTest : public MainFormTest {
  protected:
    Button& launch() { return form->Cmd.at(1); }
};

TEST_F(LaunchPanelTest, HasATabForEachKind) {
    start();
    const auto& tabs = form->launch.Onglet.tabs();
    ASSERT_EQ(tabs.size(), 3U);
    EXPECT_EQ(tabs[0].key + tabs[0].caption, "S&Sauvegarde");
    EXPECT_EQ(tabs[1].key + tabs[1].caption, "R&Restauration");
    EXPECT_EQ(tabs[2].key + tabs[2].caption, "C&Comparaison");
    EXPECT_EQ(form->launch.Onglet.selectedKey(), "S");
}

TEST_F(LaunchPanelTest, TheButtonSaysWhatItLaunches) {
    start();
    EXPECT_EQ(launch().caption(), "Lancer la Sauvegarde");
    EXPECT_EQ(launch().toolTip(), "Cliquez ici pour lancer la sauvegarde");
    pickTab("R");
    EXPECT_EQ(system->operationKind, OperationKind::restore);
    EXPECT_EQ(launch().caption(), "Lancer la Restauration");
    EXPECT_EQ(launch().toolTip(), "Cliquez ici pour lancer la restauration");
    pickTab("C");
    EXPECT_EQ(system->operationKind, OperationKind::comparison);
    EXPECT_EQ(launch().caption(), "Lancer la Comparaison");
    EXPECT_EQ(launch().toolTip(), "Cliquez ici pour lancer la comparaison");
    pickTab("S");
    EXPECT_EQ(system->operationKind, OperationKind::backup);
    EXPECT_EQ(launch().caption(), "Lancer la Sauvegarde");
}

TEST_F(LaunchPanelTest, ABackupCopiesTheSelectedLines) {
    startWithLine("Source1=\"C:\\Docs\"\nDestination1=\"F:\\Other\"\nSelect1=0\n");
    disk().directory(R"(F:\Other)");
    user().answer(Answer::ok);
    launch().click();
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "aaaaa");
    EXPECT_FALSE(disk().exists(R"(F:\Other\Docs)"));
    EXPECT_FALSE(row(0).ImgOk.visible()) << "the done marks go with the final message";
    EXPECT_TRUE(launch().enabled());
    EXPECT_FALSE(form->schedule.Timer1.enabled()) << "no automatic backup, no timer";
}

TEST_F(LaunchPanelTest, ButtonAndTimerAreOffDuringARun) {
    startWithLine("AutoSave=1\nAutoTime=23:00\n");
    windows.whileOpen = [&] {
        EXPECT_FALSE(launch().enabled());
        EXPECT_FALSE(form->schedule.Timer1.enabled());
    };
    user().answer(Answer::ok);
    launch().click();
    EXPECT_TRUE(launch().enabled());
    EXPECT_TRUE(form->schedule.Timer1.enabled());
}

TEST_F(LaunchPanelTest, ARestoreNeedsBothConfirmations) {
    startWithLine();
    disk().file(R"(F:\Save\Docs\b.txt)", "b", fileTimeAt(2025, 3, 2));
    pickTab("R");
    user().answer(Answer::cancel);
    launch().click();
    EXPECT_THAT(lastMessage(),
                IsQuestion("Confirmez-vous la restauration des fichiers ?", form->caption()));
    user().answer(Answer::ok);
    user().answer(Answer::cancel);
    launch().click();
    EXPECT_THAT(
        lastMessage(),
        IsQuestion("Vous êtes bien sûr de vous ?\n(Restauration des fichiers)", form->caption()));
    EXPECT_THAT(user().shown(), IsEmpty());
    for (int i = 0; i < 3; ++i) user().answer(Answer::ok);
    launch().click();
    EXPECT_EQ(disk().content(R"(C:\Docs\b.txt)"), "b");
    EXPECT_EQ(stored("LastRest"), "14/03/2025 10:00:00");
}

TEST_F(LaunchPanelTest, NothingIsLaunchedTwiceNorBehindADialog) {
    startWithLine();
    windows.whileOpen = [&] {
        launch().setEnabled(true);
        launch().click();
        pickTab("C");
        form->toolbar.TB.pick("Description");
        row(0).CmdS.click();
    };
    user().answer(Answer::ok);
    launch().click();
    EXPECT_EQ(user().shown(), Texts{"Sauvegarde ..."});
    EXPECT_EQ(form->launch.Onglet.selectedKey(), "S");
    EXPECT_EQ(system->operationKind, OperationKind::backup);
}

}  // namespace
}  // namespace coffrelune
