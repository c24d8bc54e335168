// How a run ends: interrupted, with errors, and how long it took.
#include "operation/operation_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// ---- interruption -------------------------------------------------------------------------------

using InterruptedRun = OperationTest;

TEST_F(InterruptedRun, InTheTreePassLeavesEverythingElseOut) {
    interruptAtLabel(3, "1 répertoire(s) lu(s), 1 répertoire(s) créé(s)");
    runCopie();
    EXPECT_FALSE(copie->open());
    EXPECT_TRUE(control.interruptionRequested);
    EXPECT_FALSE(copie->Cmd.enabled());
    EXPECT_THAT(filesBelow(R"(F:\Save)"), ElementsAre(R"(F:\Save\Docs)"));
    EXPECT_THAT(filesBelow(R"(G:\Save)"), IsEmpty());
    EXPECT_THAT(windows.changesOf("Lbl1"), ElementsAre("Copie de l'arborescence..."));
    EXPECT_THAT(windows.changesOf("AnalyseChk"), IsEmpty());
    EXPECT_EQ(system.options.ArbreMode, 0);
    EXPECT_FALSE(statistics.copyPassStarted);
}

TEST_F(InterruptedRun, InTheTreePassStillShowsTheEndWhenErrorsWereCounted) {
    disk().setUnreadable(R"(C:\Docs\Sub)");
    interruptAtLabel(3, "2 répertoire(s) lu(s), 2 répertoire(s) créé(s)");
    user().stepIn<Copie>([](Copie& window) {
        EXPECT_TRUE(window.finished());
        EXPECT_EQ(window.Cmd.caption(), "Fermer");
        EXPECT_TRUE(window.Cmd.enabled());
        window.Cmd.click();
    });
    runCopie();
    EXPECT_THAT(journal(),
                ElementsAre("Début de la Sauvegarde ...", R"(Erreur: 5 - Fichier: C:\Docs\Sub)",
                            "Fin de la Sauvegarde ... 1 erreur(s).",
                            "Durée de la Sauvegarde ... : 00:00:00"));
    EXPECT_FALSE(statistics.copyPassStarted);
}

TEST_F(InterruptedRun, BeforeTheAnalysisLeavesAnalysisAndCopyOut) {
    interruptAtLabel(3, "Analyse de :");
    runCopie();
    EXPECT_EQ(statistics.totalBytes, 0);
    EXPECT_FALSE(statistics.copyPassStarted);
    EXPECT_THAT(copies(), IsEmpty());
}

TEST_F(InterruptedRun, InTheAnalysisStopsAfterThatLine) {
    placeOldCopy();
    system.SuiviAnalyse = -1;
    interruptAtLabel(4, R"(C:\Docs\a.txt)");
    runCopie();
    EXPECT_EQ(statistics.totalBytes, 5);
    EXPECT_FALSE(statistics.copyPassStarted);
    EXPECT_TRUE(copie->AnalyseChk.visible());
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "old");
}

TEST_F(InterruptedRun, InTheCopyKeepsWhatIsCompleteAndMarksNothingAsDone) {
    interruptAtLabel(0, "31% copiés (5 octets de 16 octets)");
    runCopie();
    EXPECT_FALSE(copie->open());
    EXPECT_TRUE(statistics.copyPassStarted);
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "aaaaa");
    EXPECT_FALSE(disk().exists(R"(F:\Save\Docs\Sub\b.txt)"));
    EXPECT_THAT(eventsThat("done "), IsEmpty());
}

TEST_F(InterruptedRun, InTheSecondLineKeepsTheMarkOfTheFirst) {
    disk().file(R"(D:\Photos\e.jpg)", "e");
    interruptAtLabel(1, R"(De: D:\Photos\)");
    runCopie();
    EXPECT_THAT(eventsThat("done "), ElementsAre("done 0"));
    EXPECT_FALSE(disk().exists(R"(G:\Save\Photos\e.jpg)"));
}

TEST_F(InterruptedRun, BeforeTheFirstPassIsNotForgotten) {
    user().answer(Answer::yes);
    whenEventsRun([](Copie&) { return true; }, [](Copie& window) { window.Cmd.click(); });
    runCopie();
    EXPECT_TRUE(control.interruptionRequested);
    EXPECT_THAT(memory.files().calls("openDirectory"), IsEmpty());
}

TEST_F(InterruptedRun, AStopRequestedBeforeTheRunBeginsDoesNotStopIt) {
    makeCopie();
    copie->requestInterruption();
    showCopie();
    EXPECT_FALSE(control.interruptionRequested);
    EXPECT_EQ(copies().size(), 3U);
}

TEST_F(InterruptedRun, AStopAfterTheEndDoesNotTurnAFinishedRunIntoAnInterruptedOne) {
    system.options.ContinueOnError = -1;
    failCopyOf(R"(C:\Docs\a.txt)", error_number::accessDenied);
    whenEventsRun([](Copie& window) { return window.finished(); },
                  [](Copie& window) { window.requestInterruption(); });
    user().stepIn<Copie>([](Copie& window) { window.Cmd.click(); });
    runCopie();
    EXPECT_FALSE(control.interruptionRequested);
    EXPECT_FALSE(copie->open());
}

// ---- errors -------------------------------------------------------------------------------------

class RunWithErrors : public OperationTest {
  protected:
    RunWithErrors() {
        system.options.ContinueOnError = -1;
        failCopyOf(R"(C:\Docs\a.txt)", error_number::accessDenied);
        failCopyOf(R"(D:\Photos\c.jpg)", error_number::accessDenied);
        memory.files().setCopyCost(192'000, 0);  // of Sub\b.txt, the only one that succeeds
    }
};

TEST_F(RunWithErrors, StaysOpenUntilFermerIsPressed) {
    bool seen = false;
    user().stepIn<Copie>([&](Copie& window) {
        seen = true;
        EXPECT_TRUE(window.finished());
        EXPECT_EQ(window.Cmd.caption(), "Fermer");
        EXPECT_TRUE(window.Cmd.enabled());
        window.Cmd.click();
        EXPECT_FALSE(window.open());
    });
    runCopie();
    EXPECT_TRUE(seen);
    EXPECT_THAT(user().messages(), IsEmpty());
}

TEST_F(RunWithErrors, TheCloseBoxClosesItToo) {
    user().stepIn<Copie>([](Copie& window) { window.closeBox(); });
    runCopie();
    EXPECT_FALSE(copie->open());
    EXPECT_THAT(user().messages(), IsEmpty());
}

TEST_F(RunWithErrors, ActivatingItAgainWhileItWaitsDoesNothing) {
    user().stepIn<Copie>([](Copie& window) { window.activated(); });
    user().stepIn<Copie>([](Copie& window) { window.Cmd.click(); });
    runCopie();
    EXPECT_EQ(journal().size(), 5U);
    EXPECT_EQ(statistics.errorCount, 2);
}

TEST_F(RunWithErrors, EndsTheJournalWithTheCountAndTheDuration) {
    user().stepIn<Copie>([](Copie& window) { window.Cmd.click(); });
    runCopie();
    EXPECT_THAT(journal(),
                ElementsAre("Début de la Sauvegarde ...", R"(Erreur: 5 - Fichier: C:\Docs\a.txt)",
                            R"(Erreur: 5 - Fichier: D:\Photos\c.jpg)",
                            "Fin de la Sauvegarde ... 2 erreur(s).",
                            "Durée de la Sauvegarde ... : 00:03:12"));
    EXPECT_EQ(system.duration, "00:03:12");
}

TEST_F(RunWithErrors, ShowsTheWarningAndStillCopiesTheRest) {
    user().stepIn<Copie>([](Copie& window) { window.Cmd.click(); });
    runCopie();
    EXPECT_EQ(copie->ImgSens.image(), "sens-sauvegarde-erreur");
    EXPECT_TRUE(copie->ImgAtt[0].visible());
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\Sub\b.txt)"), "bbb");
    EXPECT_THAT(eventsThat("done "), ElementsAre("done 0", "done 1"));
}

TEST_F(RunWithErrors, ClosesByItselfWhenTheProgramRunsUnattended) {
    system.AutoMode = true;
    runCopie();
    EXPECT_FALSE(copie->open());
    EXPECT_THAT(journal(),
                ElementsAre("Début de la Sauvegarde ...", R"(Erreur: 5 - Fichier: C:\Docs\a.txt)",
                            R"(Erreur: 5 - Fichier: D:\Photos\c.jpg)"));
    EXPECT_EQ(system.duration, "00:03:12");
}

// ---- duration -----------------------------------------------------------------------------------

class RunDuration : public OperationTest {
  protected:
    RunDuration() { selectOnly({0}); }
};

TEST_F(RunDuration, CountsAcrossMidnight) {
    clock().set({2024, 12, 31, 23, 59, 50, 0});
    memory.files().setCopyCost(41'500, 0);  // two files
    runCopie();
    EXPECT_EQ(system.duration, "00:01:23");
}

TEST_F(RunDuration, IsZeroWhenTheClockWasSetBack) {
    memory.files().copyHook = [this](const CopyMoment&) { clock().set({2024, 3, 15, 8, 0, 0, 0}); };
    runCopie();
    EXPECT_EQ(system.duration, "00:00:00");
}

TEST_F(RunDuration, BeginsWhenTheWindowOpens) {
    makeCopie();
    clock().advanceSeconds(7);
    showCopie();
    EXPECT_EQ(system.duration, "00:00:07");
}

}  // namespace
}  // namespace coffrelune
