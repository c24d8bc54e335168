// The program that is started after a backup.
#include "mainwindow/main_form_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Opened = MemoryShell::Opened;

class ProgramAfterTest : public MainFormTest {
  protected:
    ProgramAfter& program() { return form->program; }
};

TEST_F(ProgramAfterTest, ShowsWhatIsStored) {
    start("[General]\nSelectP=1\nProgToRun=C:\\fin.exe\nPrmToRun=/s 10\n");
    EXPECT_TRUE(program().ChkProg.checked());
    EXPECT_EQ(program().ProgToRunTxt.text(), R"(C:\fin.exe)");
    EXPECT_EQ(program().PrmToRunTxt.text(), "/s 10");
}

TEST_F(ProgramAfterTest, ThePathCannotBeTyped) {
    start("[General]\nProgToRun=C:\\fin.exe\n");
    program().ProgToRunTxt.enter();
    program().ProgToRunTxt.type("x");
    EXPECT_EQ(program().ProgToRunTxt.text(), R"(C:\fin.exe)");
}

TEST_F(ProgramAfterTest, ChoosesAProgram) {
    start();
    user().chooseNextFile(R"(C:\Tools\fin.bat)");
    program().CmdP[0].click();
    EXPECT_EQ(user().fileChoosers().back(),
              (MemoryWindows::FileChooser{
                  "Programme à exécuter automatiquement",
                  "Applications (*.exe)|*.exe|Fichier de commandes (*.bat)|*.bat|Tous les fichiers "
                  "(*.*)|*.*"}));
    EXPECT_EQ(program().ProgToRunTxt.text(), R"(C:\Tools\fin.bat)");
    EXPECT_TRUE(program().ProgToRunTxt.focused());
    EXPECT_EQ(system->ProgToRun, R"(C:\Tools\fin.bat)");
    EXPECT_EQ(stored("ProgToRun"), R"(C:\Tools\fin.bat)");
    EXPECT_FALSE(program().ChkProg.checked());
}

TEST_F(ProgramAfterTest, ACancelledChooserChangesNothing) {
    start("[General]\nProgToRun=C:\\fin.exe\n");
    const std::string before = settings();
    user().chooseNextFile("");
    program().CmdP[0].click();
    EXPECT_EQ(program().ProgToRunTxt.text(), R"(C:\fin.exe)");
    EXPECT_EQ(settings(), before);
}

TEST_F(ProgramAfterTest, ClearingAsksAndEmptiesAllThree) {
    start("[General]\nSelectP=1\nProgToRun=C:\\fin.exe\nPrmToRun=/s\n");
    const std::string before = settings();
    user().answer(Answer::cancel);
    program().CmdP[1].click();
    EXPECT_THAT(
        lastMessage(),
        IsQuestion("Confirmez-vous la suppression du programme à exécuter après la Sauvegarde ?",
                   "Suppression"));
    EXPECT_EQ(settings(), before);
    user().answer(Answer::ok);
    program().CmdP[1].click();
    EXPECT_EQ(program().ProgToRunTxt.text(), "");
    EXPECT_EQ(program().PrmToRunTxt.text(), "");
    EXPECT_FALSE(program().ChkProg.checked());
    EXPECT_EQ(system->ProgToRun, "");
    EXPECT_EQ(system->PrmToRun, "");
    EXPECT_EQ(stored("ProgToRun"), "");
    EXPECT_EQ(stored("PrmToRun"), "");
    EXPECT_EQ(stored("SelectP"), "0");
}

TEST_F(ProgramAfterTest, StoresTheTickAtOnce) {
    start();
    program().ChkProg.click();
    EXPECT_EQ(stored("SelectP"), "1");
    EXPECT_EQ(system->SelectP, 1);
    program().ChkProg.click();
    EXPECT_EQ(stored("SelectP"), "0");
    EXPECT_EQ(system->SelectP, 0);
}

TEST_F(ProgramAfterTest, StoresTheParametersWhenTheFieldIsLeft) {
    start();
    program().PrmToRunTxt.enter();
    program().PrmToRunTxt.type("/s");
    EXPECT_EQ(stored("PrmToRun"), "");
    program().PrmToRunTxt.leave();
    EXPECT_EQ(stored("PrmToRun"), "/s");
    EXPECT_EQ(system->PrmToRun, "/s");
}

TEST_F(ProgramAfterTest, LeavingTheParametersUnchangedWritesNothing) {
    start("[General]\nPrmToRun=/s\n");
    const std::size_t writes = writeCount();
    typeInto(program().PrmToRunTxt, "/s");
    EXPECT_EQ(writeCount(), writes);
}

TEST_F(ProgramAfterTest, ParametersBetweenQuotesKeepThem) {
    start();
    typeInto(program().PrmToRunTxt, R"("C:\a b" "D:\c")");
    restart();
    EXPECT_EQ(program().PrmToRunTxt.text(), R"("C:\a b" "D:\c")");
}

TEST_F(ProgramAfterTest, WhatIsStillInTheFieldCountsAtTheLaunchAndAtTheClose) {
    startWithLine("SelectP=1\nProgToRun=C:\\fin.exe\n");
    program().PrmToRunTxt.enter();
    program().PrmToRunTxt.type("/now");
    user().answer(Answer::ok);
    form->Cmd.at(1).click();
    EXPECT_THAT(shell().opened(), ElementsAre(Opened{R"(C:\fin.exe)", "/now"}));
    program().PrmToRunTxt.enter();
    program().PrmToRunTxt.type("/later");
    form->closeBox();
    EXPECT_EQ(stored("PrmToRun"), "/later");
}

TEST_F(ProgramAfterTest, StartsAfterABackupWhateverItsOutcome) {
    startWithLine("SelectP=1\nProgToRun=C:\\fin.exe\nPrmToRun=/s\n");
    user().answer(Answer::ok);
    form->Cmd.at(1).click();
    EXPECT_EQ(shell().opened().size(), 1U);
    // Nothing is left to be copied.
    user().answer(Answer::ok);
    form->Cmd.at(1).click();
    EXPECT_EQ(shell().opened().size(), 2U);
    // The confirmation is refused.
    system->options.ArbreMode = -1;
    user().answer(Answer::cancel);
    form->Cmd.at(1).click();
    EXPECT_THAT(shell().opened(), testing::Each(Opened{R"(C:\fin.exe)", "/s"}));
    EXPECT_EQ(shell().opened().size(), 3U);
}

TEST_F(ProgramAfterTest, StartsOnlyWhenTickedAndChosen) {
    startWithLine("SelectP=0\nProgToRun=C:\\fin.exe\n");
    user().answer(Answer::ok);
    form->Cmd.at(1).click();
    startWithLine("SelectP=1\n");
    user().answer(Answer::ok);
    form->Cmd.at(1).click();
    EXPECT_THAT(shell().opened(), IsEmpty());
}

TEST_F(ProgramAfterTest, StartsAfterNoRestoreAndNoComparison) {
    startWithLine("SelectP=1\nProgToRun=C:\\fin.exe\n");
    disk().file(R"(F:\Save\Docs\a.txt)", "aaaaa", fileTimeAt(2025, 3, 1));
    pickTab("R");
    for (int i = 0; i < 3; ++i) user().answer(Answer::ok);
    form->Cmd.at(1).click();
    EXPECT_EQ(lastMessage().text, "Rien à restaurer !");
    pickTab("C");
    form->Cmd.at(1).click();
    EXPECT_THAT(shell().opened(), IsEmpty());
}

TEST_F(ProgramAfterTest, AScheduledBackupStoresWhatIsStillInTheField) {
    setClock(2025, 3, 14, 11);
    startWithLine("AutoSave=1\nAutoTime=12:00\nLastSave=13/03/2025 12:00:10\n");
    form->program.PrmToRunTxt.enter();
    form->program.PrmToRunTxt.type("/x");
    EXPECT_EQ(tickUntil(2025, 3, 14, 12, 0, 0), 0);
    EXPECT_EQ(stored("PrmToRun"), "");
    EXPECT_EQ(tickUntil(2025, 3, 14, 12, 0, 10), 1);
    EXPECT_EQ(stored("PrmToRun"), "/x");
}

}  // namespace
}  // namespace coffrelune
