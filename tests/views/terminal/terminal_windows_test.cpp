#include "views/terminal/terminal_windows.h"

#include <pthread.h>

#include <csignal>

#include "views/terminal/terminal_fixture.h"

// The progress line of an operation, its journal, and what it hands on.

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

using testing::HasSubstr;
using testing::Not;

constexpr const char* replaceQuestion =
    "Ce dossier contient déjà un fichier appelé 'a.txt'\n"
    "Dossier : F:\\\n"
    "1 octet\n"
    "2 octets\n"
    "Etes-vous sûr de vouloir remplacer ce fichier ?\n";
constexpr const char* replacePrompt = "[O]ui / [T]ous / [N]on / [A]nnuler : ";

// ---- questions ----------------------------------------------------------------------------------

TEST_F(TerminalWindowsTest, AWindowIsAQuestionWithItsButtonsAsAnswers) {
    EXPECT_EQ(confirm("o\n"), ReplacementAnswer::yes);
    EXPECT_EQ(screen, std::string(replaceQuestion) + replacePrompt);
}

TEST_F(TerminalWindowsTest, AnAnswerIsALetterOrTheWholeWordInAnyCase) {
    EXPECT_EQ(confirm("t\n"), ReplacementAnswer::yesToAll);
    EXPECT_EQ(confirm("N\n"), ReplacementAnswer::no);
    EXPECT_EQ(confirm(" a \n"), ReplacementAnswer::cancel);
    EXPECT_EQ(confirm("OUI\n"), ReplacementAnswer::yes);
    EXPECT_EQ(confirm("annuler\n"), ReplacementAnswer::cancel);
}

TEST_F(TerminalWindowsTest, AnUnknownAnswerAsksAgain) {
    EXPECT_EQ(confirm("\nou\nx\nn\n"), ReplacementAnswer::no);
    const std::string prompt = replacePrompt;
    EXPECT_EQ(screen, replaceQuestion + prompt + prompt + prompt + prompt);
}

TEST_F(TerminalWindowsTest, TheEndOfTheInputIsTheCloseBox) {
    EXPECT_EQ(confirm("x\n\x04"), ReplacementAnswer::cancel);
}

TEST_F(TerminalWindowsTest, WithNobodyToAskTheWindowIsClosed) {
    EXPECT_EQ(confirm("", noTerminal), ReplacementAnswer::cancel);
    EXPECT_THAT(output + errors, Not(HasSubstr("[O]ui")));
}

TEST_F(TerminalWindowsTest, TheWholeQuestionStandsWhereTheAnswerIsTyped) {
    EXPECT_EQ(confirm("o\n", {true, false, true}), ReplacementAnswer::yes);
    EXPECT_EQ(screen, std::string(replaceQuestion) + replacePrompt);
}

TEST_F(TerminalWindowsTest, AMessageBoxWithAChoiceIsAsked) {
    Answer first = Answer::ok;
    Answer second = Answer::yes;
    run(interactive, "o\nn\n", [&](Program& program) {
        first = program.windows.showMessage({"Confirmez-vous la copie ?", "titre",
                                             MessageIcon::question, MessageButtons::okCancel});
        second = program.windows.showMessage(
            {"Encore ?", "titre", MessageIcon::question, MessageButtons::yesNo});
    });
    EXPECT_EQ(first, Answer::ok);
    EXPECT_EQ(second, Answer::no);
    EXPECT_EQ(screen, "Confirmez-vous la copie ?\n[O]K / [A]nnuler : Encore ?\n[O]ui / [N]on : ");
}

TEST_F(TerminalWindowsTest, AMessageBoxThatNobodyAnswersIsRefused) {
    Answer first = Answer::ok;
    Answer second = Answer::yes;
    run(noTerminal, "", [&](Program& program) {
        first = program.windows.showMessage(
            {"Un ?", "", MessageIcon::question, MessageButtons::okCancel});
        second = program.windows.showMessage(
            {"Deux ?", "", MessageIcon::question, MessageButtons::yesNo});
    });
    EXPECT_EQ(first, Answer::cancel);
    EXPECT_EQ(second, Answer::no);
    EXPECT_EQ(output, "Un ?\nDeux ?\n");
}

TEST_F(TerminalWindowsTest, MessagesAreLinesAndNoticesWarnings) {
    run(noTerminal, "", [&](Program& program) {
        EXPECT_EQ(program.windows.showMessage({"fini\r\n\r\nDurée", "", MessageIcon::information}),
                  Answer::ok);
        EXPECT_EQ(program.windows.showMessage({"grave", "", MessageIcon::critical}), Answer::ok);
        program.windows.notice("note");
    });
    EXPECT_EQ(output, "fini\n\nDurée\n");
    EXPECT_EQ(errors, "grave\nnote\n");
}

// ---- an operation -------------------------------------------------------------------------------

TEST_F(TerminalWindowsTest, ARunWithoutATerminalPrintsItsMessageAndNoEscapeCode) {
    EXPECT_EQ(backup(noTerminal), RunEnd::finished);
    EXPECT_EQ(output, "Sauvegarde terminée sans erreur.\n\nDurée : 00:00:00\n");
    EXPECT_EQ(errors, "");
}

TEST_F(TerminalWindowsTest, TheJournalIsPrintedLineByLineWhenItIsWanted) {
    memory.disk().setInUse(R"(C:\Docs\a.txt)");
    EXPECT_EQ(backup(noTerminal, "", true), RunEnd::interrupted);
    EXPECT_EQ(
        output,
        "Début de la Sauvegarde ...\nErreur: 32 - Fichier: C:\\Docs\\a.txt\n"
        "Fin de la Sauvegarde ... 1 erreur(s).\nDurée de la Sauvegarde ... : 00:00:00\n"
        "Sauvegarde interrompue !\n\nImpossible de copier: C:\\Docs\\, Violation de partage.\n"
        "Le fichier source ou destination est peut-être en cours d'utilisation.\n");
}

TEST_F(TerminalWindowsTest, ARunWithErrorsDoesNotWaitForFermer) {
    memory.disk().setInUse(R"(C:\Docs\a.txt)");
    EXPECT_EQ(backup(interactive), RunEnd::interrupted);
    EXPECT_THAT(screen, Not(HasSubstr("[F]ermer")));
    EXPECT_TRUE(memory.disk().exists(R"(C:\Coffrelune\S_Travail.err)"));
}

TEST_F(TerminalWindowsTest, TheReplacementIsAskedOnTheTerminal) {
    memory.disk().file(R"(F:\Save\Docs\a.txt)", "old", fileTimeAt(2023, 1, 1));
    memory.disk().file(R"(F:\Save\Docs\b.txt)", "old", fileTimeAt(2023, 1, 1));
    EXPECT_EQ(backup(interactive, "n\no\n"), RunEnd::finished);
    EXPECT_EQ(memory.disk().content(R"(F:\Save\Docs\a.txt)"), "old");
    EXPECT_EQ(memory.disk().content(R"(F:\Save\Docs\b.txt)"), "bbb");
    EXPECT_THAT(screen,
                HasSubstr("Ce dossier contient déjà un fichier appelé 'a.txt'\n"
                          "Dossier : F:\\Save\\Docs\n"
                          "Fichier en place : 3 octets, dim. 1 janvier 2023 à 00:00:00\n"
                          "Remplacé par : 5 octets, ven. 1 mars 2024 à 00:00:00, plus récent\n"
                          "Etes-vous sûr de vouloir remplacer ce fichier ?\n" +
                          std::string(replacePrompt)));
}

TEST_F(TerminalWindowsTest, TheProgressIsOneLineThatIsGoneAtTheEnd) {
    memory.files().setCopyCost(200, 0);
    memory.clock().advanceSeconds(60);
    EXPECT_EQ(backup({true, true, true, 200}), RunEnd::finished);
    EXPECT_THAT(screen, HasSubstr("\r62% copiés (5 octets de 8 octets)  "
                                  "Temps restant: Calcul en cours ...  De: C:\\Docs\\  "
                                  "Fichier: a.txt\x1b[K"));
    const std::string end = "\r\x1b[KSauvegarde terminée sans erreur.\n\nDurée : 00:00:00\n";
    ASSERT_GE(screen.size(), end.size());
    EXPECT_EQ(screen.substr(screen.size() - end.size()), end);
    const std::string line = screen.substr(0, screen.size() - end.size());
    EXPECT_EQ(line.find('\n'), std::string::npos);
}

TEST_F(TerminalWindowsTest, AComparisonIsShownAndLeavesItsResultWithItsHost) {
    run(noTerminal, "", [](Program& program) {
        program.system.operationKind = OperationKind::comparison;
        OperationLauncher launcher(program.system, program.host, program.windows);
        EXPECT_EQ(launcher.launchComparison(), RunEnd::finished);
        EXPECT_EQ(program.host.comparisonList().lineCount(), 4U);
        EXPECT_EQ(program.host.comparisonSummary().caption(),
                  "2 fichier(s) à copier soit 8 octets (8 octets)");
    });
    EXPECT_EQ(output + errors, "");
    EXPECT_FALSE(memory.disk().exists(R"(F:\Save\Docs)"));
}

// ---- interruption -------------------------------------------------------------------------------

TEST_F(TerminalWindowsTest, TheFirstSignalStopsTheRunAfterTheFileInProgress) {
    memory.files().setCopyCost(20, 0);
    memory.clock().advanceSeconds(60);
    bool raised = false;
    memory.files().copyHook = [&](const CopyMoment&) {
        if (!std::exchange(raised, true)) std::raise(SIGINT);
    };
    EXPECT_EQ(backup(noTerminal), RunEnd::interrupted);
    EXPECT_EQ(memory.disk().content(R"(F:\Save\Docs\a.txt)"), "aaaaa");
    EXPECT_FALSE(memory.disk().exists(R"(F:\Save\Docs\b.txt)"));
    EXPECT_EQ(output, "Sauvegarde interrompue !\n\n\n");
}

TEST_F(TerminalWindowsTest, TheSecondSignalKeepsTheOldCopyOfTheFileInProgress) {
    memory.disk().file(R"(F:\Save\Docs\a.txt)", "old", fileTimeAt(2023, 1, 1));
    memory.files().copyHook = [&](const CopyMoment&) {
        std::raise(SIGTERM);
        std::raise(SIGTERM);
    };
    EXPECT_EQ(backup(interactive, "t\n"), RunEnd::interrupted);
    EXPECT_EQ(memory.disk().content(R"(F:\Save\Docs\a.txt)"), "old");
    EXPECT_FALSE(memory.disk().exists(R"(F:\Save\Docs\b.txt)"));
}

TEST_F(TerminalWindowsTest, ASignalDuringTheQuestionCancelsTheRun) {
    memory.disk().file(R"(F:\Save\Docs\a.txt)", "old", fileTimeAt(2023, 1, 1));
    const pthread_t program = pthread_self();
    bool asked = false;
    std::thread user;
    meanwhile = [&](RedirectedStreams& streams) {
        user = std::thread([&] {
            asked = streams.waitFor(replacePrompt);
            if (asked) pthread_kill(program, SIGINT);
        });
        return &user;
    };
    const RunEnd end = backup(interactive);
    EXPECT_TRUE(asked);
    EXPECT_EQ(end, RunEnd::interrupted);
    EXPECT_EQ(memory.disk().content(R"(F:\Save\Docs\a.txt)"), "old");
    EXPECT_THAT(screen, HasSubstr("Sauvegarde interrompue !"));
}

TEST_F(TerminalWindowsTest, ASignalJustBeforeTheQuestionIsNotMissed) {
    auto answer = ReplacementAnswer::yes;
    run(interactive, "", [&](Program& program) {
        std::raise(SIGINT);
        frmConfirm question({"a.txt", {"Dossier : F:\\", "1 octet", "2 octets"}});
        program.windows.showModal(question);
        answer = question.answer();
    });
    EXPECT_EQ(answer, ReplacementAnswer::cancel);
}

}  // namespace
}  // namespace coffrelune
