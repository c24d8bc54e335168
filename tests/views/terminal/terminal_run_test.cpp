// The progress line of an operation, its journal, and what it hands on.
#include "views/terminal/terminal_run.h"

#include "views/terminal/terminal_fixture.h"

namespace coffrelune {
namespace {

/// What an operation shows, without the operation.
class TerminalRunTest : public TerminalWindowsTest {
  protected:
    void show(const std::function<void(TerminalRun&)>& action, bool journal = false,
              const StreamLayout& layout = interactive, RunSwitches switches = {}) {
        run(layout, "", [&](Program& program) {
            Operation operation(program.system, switches);
            TerminalRun shown(operation, program.host, program.windows, program.terminal, journal);
            action(shown);
            journalText = shown.journal();
            comparison = program.host.comparisonList().text();
            summary = program.host.comparisonSummary().caption();
        });
    }
    std::string journalText;
    std::string comparison;
    std::string summary;
};

TEST_F(TerminalRunTest, ShowsThePhasesBeforeTheCopy) {
    show([](TerminalRun& run) {
        run.showPhase("Analyse de la copie...", "Analyse de :");
        run.showFile("C:\\Docs\\a\x1b[2J.txt");
        run.refresh(1000);
    });
    EXPECT_EQ(screen, "\rAnalyse de la copie...  Analyse de :  C:\\Docs\\a␛[2J.txt\x1b[K\r\x1b[K");
}

TEST_F(TerminalRunTest, ShowsCountsAndDirectoriesUntilThereIsAPercentage) {
    show([](TerminalRun& run) {
        run.showPhase("Copie de l'arborescence...", "Aucun répertoire créé");
        run.showCount("1 répertoire(s) lu(s), 1 répertoire(s) créé(s)");
        run.refresh(1000);
        run.showSource(R"(C:\Docs\)");
        run.showDestination(R"(F:\Save\Docs\)");
        run.refresh(2000);
    });
    EXPECT_EQ(screen,
              "\rCopie de l'arborescence...  1 répertoire(s) lu(s), 1 répertoire(s) créé(s)\x1b[K"
              "\rDe: C:\\Docs\\  Vers: F:\\Save\\Docs\\\x1b[K\r\x1b[K");
}

TEST_F(TerminalRunTest, ShowsPercentageTimeRateAndSourceOfACopy) {
    const auto copying = [](TerminalRun& run) {
        run.showPhase("Analyse de la copie...", "Analyse de :");
        run.showFile(R"(C:\Docs\a.txt)");
        run.showCopyPhase("Temps restant: Calcul en cours ...");
        run.showSource(R"(C:\Docs\)");
        run.showDestination(R"(F:\Save\Docs\)");
        run.showPercentage(62, "62% copiés");
        run.showRemainingTime("Temps restant: 5 secondes");
        run.showRate("Taux de transfert: 1,50 Mo/s");
        run.refresh(1000);
    };
    show(copying, false, {true, true, true, 200});
    EXPECT_EQ(screen,
              "\r62% copiés  Temps restant: 5 secondes  Taux de transfert: 1,50 Mo/s  "
              "De: C:\\Docs\\\x1b[K\r\x1b[K");
}

TEST_F(TerminalRunTest, IsDrawnTenTimesASecondAtMostAndOnlyAfterAChange) {
    show([](TerminalRun& run) {
        run.showPhase("un", "");
        run.refresh(1000);
        run.showPhase("deux", "");
        run.refresh(1099);  // too early
        run.showPhase("trois", "");
        run.refresh(1100);
        run.refresh(1300);  // nothing has changed
    });
    EXPECT_EQ(screen, "\run\x1b[K\rtrois\x1b[K\r\x1b[K");
}

TEST_F(TerminalRunTest, KeepsItsJournalAndPrintsItOnlyWhenItIsWanted) {
    const auto action = [](TerminalRun& run) {
        run.AjouteECTxt("Début");
        run.AjouteECTxt("Erreur: 5 - Fichier: C:\\a\nb");
    };
    show(action, false, noTerminal);
    EXPECT_EQ(output, "");
    EXPECT_EQ(journalText, "Début\r\nErreur: 5 - Fichier: C:\\a␊b\r\n");
    show(action, true, noTerminal);
    EXPECT_EQ(output, "Début\nErreur: 5 - Fichier: C:\\a␊b\n");
}

TEST_F(TerminalRunTest, SaysWhatIsCriticalAndKeepsItInTheJournalOfAnUnattendedRun) {
    const auto action = [](TerminalRun& run) {
        run.showCritical("Répertoire 'C:\\a\x1b' non trouvé.");
    };
    show(action, false, noTerminal);
    EXPECT_EQ(errors, "Répertoire 'C:\\a␛' non trouvé.\n");
    EXPECT_EQ(journalText, "");
    RunSwitches unattended;
    unattended.unattended = true;
    show(action, false, noTerminal, unattended);
    EXPECT_EQ(errors, "Répertoire 'C:\\a␛' non trouvé.\n");
    EXPECT_EQ(journalText, "Répertoire 'C:\\a␛' non trouvé.\r\n");
}

TEST_F(TerminalRunTest, HandsTheResultOfAComparisonToItsHost) {
    show([](TerminalRun& run) {
        run.addToComparison("of the one before");
        run.showComparisonSummary("before");
        run.showComparisonPhase("Comparaison en cours...");
        run.addToComparison("F:\\a\nb n'existe pas");
        run.showComparisonSummary("1 fichier(s)");
    });
    EXPECT_EQ(comparison, "F:\\a␊b n'existe pas\r\n");
    EXPECT_EQ(summary, "1 fichier(s)");
}

}  // namespace
}  // namespace coffrelune
