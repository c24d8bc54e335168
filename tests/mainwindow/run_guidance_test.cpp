// What the main window says beside a run: why it did not do all, the first steps, what comes next.
#include "mainwindow/main_form_fixture.h"

namespace coffrelune {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

class RunGuidanceTest : public MainFormTest {
  protected:
    Texts notices() const {
        Texts shown;
        for (const Label& label : form->notices.Lbl) {
            if (label.visible()) shown.push_back(label.caption());
        }
        return shown;
    }
    void launch() {
        user().answer(Answer::ok);
        form->Cmd.at(MainForm::launchCmd).click();
    }
};

TEST_F(RunGuidanceTest, ASourceThatIsNotThereIsNamedAfterTheRun) {
    start("[General]\nSource0=C:\\Absent\nDestination0=F:\\Save\nSelect0=1\n");
    launch();
    EXPECT_THAT(notices(), Contains(HasSubstr("Ligne 1 : la source C:\\Absent est introuvable.")));
}

TEST_F(RunGuidanceTest, ADestinationThatIsNotThereIsNamedWithTheStop) {
    start("[General]\nSource0=C:\\Docs\nDestination0=F:\\Absent\nSelect0=1\n");
    launch();
    EXPECT_EQ(lastMessage().text, "Rien à sauvegarder !\n\nLe disque destination n'existe pas.");
    EXPECT_THAT(notices(), Contains(HasSubstr("Sauvegarde interrompue, incomplète : Le disque "
                                              "destination n'existe pas.")));
    EXPECT_THAT(notices(), Contains(HasSubstr("Ligne 1 : la destination F:\\Absent est "
                                              "introuvable.")));
}

TEST_F(RunGuidanceTest, ABackupThatNobodyStartedSaysThatItWasStopped) {
    startWithLine();
    stopNextRun();
    form->launch.backUpUnattended();
    EXPECT_THAT(user().notices(), Contains("Sauvegarde interrompue avant la copie : rien n'a été "
                                           "copié."));
}

TEST_F(RunGuidanceTest, ABackupThatTheUserStopsSaysSo) {
    startWithLine();
    stopNextRun();
    launch();
    EXPECT_THAT(notices(), Contains(HasSubstr("Sauvegarde interrompue à votre demande")));
}

TEST_F(RunGuidanceTest, ALineThatIsFilledAndNotTickedIsNamed) {
    startWithLine("Source1=C:\\Docs\nDestination1=F:\\Ailleurs\nSelect1=0\n");
    launch();
    EXPECT_THAT(notices(), Contains(HasSubstr("Ligne 2 : remplie mais pas cochée")));
}

TEST_F(RunGuidanceTest, ABackupWithNothingToCopySaysThatAllIsUpToDate) {
    startWithLine("Modifie=1\nConfirmation=1\n");
    launch();
    launch();
    EXPECT_THAT(notices(), Contains(HasSubstr("Tout est à jour")));
}

TEST_F(RunGuidanceTest, ARunThatDidAllSaysNothing) {
    startWithLine("Modifie=1\n");
    launch();
    EXPECT_THAT(notices(), Not(Contains(HasSubstr("Ligne"))));
}

TEST_F(RunGuidanceTest, ADiskThatMayBeTooSmallIsSaidBeforeTheCopyWhichRunsAllTheSame) {
    memoryDesktop.driveInformation().set("F:\\", {"", {}, 1'000, 0});
    startWithLine("Modifie=1\n");
    launch();
    EXPECT_THAT(user().notices(), Contains(HasSubstr("Le disque F:\\ risque d'être trop petit")));
    EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\a.txt)"));
}

TEST_F(RunGuidanceTest, ADiskWithRoomIsNotSpokenOf) {
    memoryDesktop.driveInformation().set("F:\\", {"", {}, 1'000'000, 1'000'000});
    startWithLine("Modifie=1\n");
    launch();
    EXPECT_THAT(user().notices(), Not(Contains(HasSubstr("risque"))));
}

TEST_F(RunGuidanceTest, TheFirstStepsGoOnceALineIsFilled) {
    start();
    EXPECT_TRUE(form->steps.Lbl[0].visible());
    form->lines.edit(0, LineSide::left, "C:\\Docs");
    EXPECT_TRUE(form->steps.Lbl[0].visible());
    form->lines.edit(0, LineSide::right, "F:\\Save");
    EXPECT_FALSE(form->steps.Lbl[0].visible());
    EXPECT_FALSE(form->steps.TitleLbl.visible());
}

TEST_F(RunGuidanceTest, TheButtonCountsTheExclusionsOfItsLine) {
    startWithLine("RepExclu0_Mode=2\nRepExclu0_Rep1=\\A\nRepExclu0_Rep2=\\B\nRepExclu1_Mode=1\n");
    EXPECT_EQ(row(0).CmdEx.caption(), "Exclusions (2)");
    EXPECT_EQ(row(0).CmdEx.spokenName(), "Exclusions (2) de la sauvegarde 1");
    EXPECT_EQ(row(1).CmdEx.caption(), "Exclusions (toutes)");
    EXPECT_EQ(row(2).CmdEx.caption(), "Exclusions");
}

TEST_F(RunGuidanceTest, TheNextBackupIsSaidInWords) {
    startWithLine("AutoSave=1\nAutoTime=19:30\n");
    EXPECT_EQ(form->schedule.NextLbl.caption(), "Prochaine sauvegarde : aujourd'hui à 19:30");
    typeInto(form->schedule.AutoHr, "08:30");
    EXPECT_EQ(form->schedule.NextLbl.caption(), "Prochaine sauvegarde : demain à 08:30");
}

TEST_F(RunGuidanceTest, AnotherTabThatHoldsTheBackupBackIsSaid) {
    startWithLine("AutoSave=1\nAutoTime=19:30\n");
    pickTab("R");
    EXPECT_EQ(form->schedule.NextLbl.caption(),
              "Prochaine sauvegarde : aujourd'hui à 19:30, pas sous cet onglet");
    EXPECT_EQ(form->schedule.NextLbl.toolTip(),
              "Elle part quand l'onglet « Sauvegarde » est affiché.");
}

TEST_F(RunGuidanceTest, WithoutAnAutomaticBackupNothingIsSaidOfTheNextOne) {
    startWithLine();
    EXPECT_FALSE(form->schedule.NextLbl.visible());
}

TEST_F(RunGuidanceTest, AcceptedRoundedDatesAreStored) {
    startWithLine();
    EXPECT_EQ(system->options.DatesArrondies, 0);
    EXPECT_FALSE(form->notices.DatesCmd.visible());
    form->notices.showDates({"F:\\ arrondit les dates"}, true);
    form->notices.DatesCmd.click();
    EXPECT_EQ(system->options.DatesArrondies, -1);
    EXPECT_EQ(system->ReadSetting("Position", "DatesArrondies"), "-1");
}

TEST_F(RunGuidanceTest, AGoodBackupThatIsOverAWeekOldIsSpokenOfUntilTheNextRun) {
    startWithLine("Modifie=1\nConfirmation=1\nLastSaveOk=01/03/2025 10:00:00\n");
    EXPECT_THAT(notices(), Contains(HasSubstr("Dernière sauvegarde complète et sans erreur le "
                                              "sam. 1 mars 2025 à 10:00, il y a 13 jours.")));
    launch();
    EXPECT_THAT(notices(), Not(Contains(HasSubstr("jours"))));
    EXPECT_EQ(stored("LastSaveOk"), "14/03/2025 10:00:00");
}

TEST_F(RunGuidanceTest, NeitherARecentBackupNorANewConfigurationIsSpokenOf) {
    startWithLine("LastSaveOk=08/03/2025 10:00:00\n");
    EXPECT_THAT(notices(), testing::IsEmpty());
    start();
    EXPECT_THAT(notices(), testing::IsEmpty());
}

TEST_F(RunGuidanceTest, AConfigurationThatHasOnlyFailedIsSpokenOf) {
    startWithLine("LastSaveErr=13/03/2025 10:00:00\nLastSaveNbErr=2\n");
    EXPECT_THAT(notices(), Contains(HasSubstr("ne s'est encore faite sans erreur")));
}

TEST_F(RunGuidanceTest, TheDesktopTellsTheEndOfARunThatNobodyWatched) {
    startWithLine("Modifie=1\nAutoSave=1\nAutoTime=10:01\n");
    ASSERT_EQ(tickUntil(2025, 3, 14, 10, 2), 1);
    ASSERT_EQ(shell().notices().size(), 1U);
    EXPECT_EQ(shell().notices()[0].target, "Sauvegarde terminée");
    EXPECT_EQ(shell().notices()[0].parameters, "General : 1 fichier(s) copié(s).");
    launch();
    EXPECT_EQ(shell().notices().size(), 1U) << "who starts a run sees its end";
}

TEST_F(RunGuidanceTest, AKeyKeepsTheDesktopQuiet) {
    start(
        "[Position]\nNotification=0\n[General]\nSource0=C:\\Docs\nDestination0=F:\\Save\n"
        "Select0=1\nModifie=1\nAutoSave=1\nAutoTime=10:01\n");
    ASSERT_EQ(tickUntil(2025, 3, 14, 10, 2), 1);
    EXPECT_TRUE(shell().notices().empty());
}

TEST_F(RunGuidanceTest, HelpOpensTheManualBesideTheProgramOrWhereAPackageHasPutIt) {
    start();
    system->executablePath = R"(C:\Programme\coffrelune.exe)";
    user().answer(Answer::ok);
    form->toolbar.TB.pick("Aide");
    EXPECT_THAT(lastMessage().text, HasSubstr("Le manuel n'est pas installé"));
    const std::string folder = system->executablePath.substr(0, system->executablePath.rfind('\\'));
    disk().file(folder + R"(\aide\manuel.html)", "page");
    form->toolbar.TB.pick("Aide");
    ASSERT_EQ(shell().opened().size(), 1U);
    EXPECT_EQ(shell().opened()[0].target, folder + R"(\aide\manuel.html)");
}

}  // namespace
}  // namespace coffrelune
