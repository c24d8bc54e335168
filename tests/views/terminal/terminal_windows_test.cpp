#include "views/terminal/terminal_windows.h"

#include <pthread.h>

#include <csignal>

#include "views/terminal/terminal_fixture.h"

namespace coffrelune {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* replaceQuestion =
    "Ce dossier contient déjà un fichier appelé 'a.txt'\n"
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
    EXPECT_THAT(screen, HasSubstr(std::string(replaceQuestion) + replacePrompt));
}

TEST_F(TerminalWindowsTest, TheProgressIsOneLineThatIsGoneAtTheEnd) {
    memory.files().setCopyCost(200, 0);
    memory.clock().advanceSeconds(60);
    EXPECT_EQ(backup({true, true, true, 200}), RunEnd::finished);
    EXPECT_THAT(screen, HasSubstr("\r62% copiés (5 octets de 8 octets)  "
                                  "Temps restant: Calcul en cours ...  De: C:\\Docs\\\x1b[K"));
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
        frmConfirm question("a.txt");
        program.windows.showModal(question);
        answer = question.answer();
    });
    EXPECT_EQ(answer, ReplacementAnswer::cancel);
}

}  // namespace
}  // namespace coffrelune
