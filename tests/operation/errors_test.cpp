#include "operation/errors.h"

#include <gtest/gtest.h>

#include "operation/operation_fixture.h"
#include "operation/results.h"

namespace coffrelune {
namespace {

using testing::IsEmpty;

class ErrorList : public OperationTest {
  protected:
    ErrorList() {
        system.options.ContinueOnError = -1;
        system.AutoMode = true;  // the window closes by itself
    }
    std::string pathFor(const std::string& configuration, OperationKind kind) {
        system.configurationName = configuration;
        return errorListPath(system, kind);
    }
};

TEST_F(ErrorList, IsNamedAfterTheKindAndTheConfiguration) {
    EXPECT_EQ(pathFor("Travail", OperationKind::backup), R"(C:\Coffrelune\S_Travail.err)");
    EXPECT_EQ(pathFor("Travail", OperationKind::restore), R"(C:\Coffrelune\R_Travail.err)");
    EXPECT_EQ(pathFor("Travail", OperationKind::comparison), R"(C:\Coffrelune\C_Travail.err)");
}

TEST_F(ErrorList, ReplacesWhatAFileNameCannotHold) {
    EXPECT_EQ(pathFor("Travail/Maison", OperationKind::backup),
              R"(C:\Coffrelune\S_Travail_Maison.err)");
    EXPECT_EQ(pathFor("??", OperationKind::backup), R"(C:\Coffrelune\S___.err)");
    EXPECT_EQ(pathFor(R"(<>|\/*:?")", OperationKind::backup), R"(C:\Coffrelune\S__________.err)");
    EXPECT_EQ(pathFor(" Travail ", OperationKind::backup), R"(C:\Coffrelune\S_Travail.err)");
}

TEST_F(ErrorList, HoldsTheWholeJournalInTheCodePage) {
    disk().file(R"(C:\Docs\été €.txt)", "x");
    failCopyOf(R"(C:\Docs\été €.txt)", 32);
    runCopie();
    EXPECT_EQ(errorList("S_Travail.err"),
              "D\xE9"
              "but de la Sauvegarde ...\r\nErreur: 32 - Fichier: C:\\Docs\\\xE9t\xE9 \x80.txt\r\n");
}

TEST_F(ErrorList, EndsWithTheLinesThatTheUserSaw) {
    system.AutoMode = false;
    failCopyOf(R"(C:\Docs\a.txt)", 5);
    user().stepIn<Copie>([](Copie& window) { window.Cmd.click(); });
    runCopie();
    EXPECT_EQ(errorList("S_Travail.err"),
              "D\xE9"
              "but de la Sauvegarde ...\r\nErreur: 5 - Fichier: C:\\Docs\\a.txt\r\n"
              "Fin de la Sauvegarde ... 1 erreur(s).\r\n"
              "Dur\xE9"
              "e de la Sauvegarde ... : 00:00:00\r\n");
}

TEST_F(ErrorList, ReplacesWhatTheCodePageLacksByAQuestionMark) {
    EXPECT_TRUE(EcritErreurs(system, "日本 a\u0301 \xFF\r\n").ok());
    EXPECT_EQ(errorList("S_Travail.err"), "?? a? ?\r\n");
}

TEST_F(ErrorList, ShorterJournalReplacesALongerOneCompletely) {
    failCopyOf(R"(C:\Docs\a.txt)", 5);
    failCopyOf(R"(D:\Photos\c.jpg)", 5);
    runCopie();
    faults.restart();
    failCopyOf(R"(D:\Photos\c.jpg)", 5);
    runCopie();
    EXPECT_EQ(errorList("S_Travail.err"),
              "D\xE9"
              "but de la Sauvegarde ...\r\nErreur: 5 - Fichier: D:\\Photos\\c.jpg\r\n");
}

TEST_F(ErrorList, OfAnEarlierRunStaysAfterARunWithoutError) {
    disk().file(R"(C:\Coffrelune\S_Travail.err)", "earlier");
    runCopie();
    EXPECT_EQ(errorList("S_Travail.err"), "earlier");
    EXPECT_THAT(memory.files().calls("removeFile"), IsEmpty());
}

TEST_F(ErrorList, OfARestoreIsAFileOfItsOwn) {
    system.operationKind = OperationKind::restore;
    EXPECT_TRUE(EcritErreurs(system, "journal\r\n").ok());
    EXPECT_EQ(errorList("R_Travail.err"), "journal\r\n");
    EXPECT_EQ(errorList("S_Travail.err"), "(none)");
}

TEST_F(ErrorList, ThatCannotBeWrittenIsToldAndTheRunGoesOn) {
    disk().file(R"(C:\Coffrelune\S_Travail.err)", "earlier");
    failCopyOf(R"(C:\Docs\a.txt)", 5);
    faults.fail("writeWhole", R"(C:\Coffrelune\S_Travail.err)", error_number::diskFull);
    const RunEnd end = launch(RunMode::unattended);
    EXPECT_EQ(end, RunEnd::finished);
    EXPECT_THAT(user().notices(),
                testing::Contains("La liste des erreurs n'a pas pu être écrite dans "
                                  R"(C:\Coffrelune\S_Travail.err (erreur 112).)"));
    EXPECT_EQ(errorList("S_Travail.err"), "earlier");
    EXPECT_EQ(setting("Travail", "LastSaveNbErr"), "1");
}

TEST_F(ErrorList, IsNotWrittenByARunWithoutASettingsDirectory) {
    system.homeDirectory.clear();
    failCopyOf(R"(C:\Docs\a.txt)", 5);
    runCopie();
    EXPECT_EQ(statistics.errorCount, 1);
    EXPECT_THAT(user().notices(), IsEmpty());
    for (const std::string& call : faults.calls()) EXPECT_EQ(call.find(".err"), std::string::npos);
}

TEST(ErrorCause, OfAStopByTheUserIsEmpty) {
    EXPECT_EQ(errorCause(0, ""), "");
}

TEST(ErrorCause, TellsWhatIsWrongWithTheDestination) {
    EXPECT_EQ(errorCause(3, ""), "Répertoire non trouvé.");
    EXPECT_EQ(errorCause(5, ""), "Accès disque destination refusé.");
    EXPECT_EQ(errorCause(19, ""),
              "Ce disque est protégé en écriture.\n"
              "Retirez la protection en écriture ou utilisez un autre disque.");
    EXPECT_EQ(errorCause(21, ""), "Il n'y a pas de disque dans le lecteur destination.");
    EXPECT_EQ(errorCause(31, ""), "Le disque destination n'est pas formaté.");
    EXPECT_EQ(errorCause(55, ""), "Le disque destination n'existe pas.");
    EXPECT_EQ(errorCause(112, ""), "Le disque destination est plein.");
}

TEST(ErrorCause, NamesThePlaceOfASharingOrLockViolation) {
    const std::string text =
        "Impossible de copier: C:\\Docs\\, Violation de partage.\n"
        "Le fichier source ou destination est peut-être en cours d'utilisation.";
    EXPECT_EQ(errorCause(32, R"(C:\Docs\)"), text);
    EXPECT_EQ(errorCause(33, R"(C:\Docs\)"), text);
}

TEST(ErrorCause, GivesTheNumberOfEveryOtherError) {
    EXPECT_EQ(errorCause(2, ""), "Erreur 2");
    EXPECT_EQ(errorCause(1117, R"(C:\Docs\)"), "Erreur 1117");
}

TEST(ErrorCause, ShowsControlCharactersInsteadOfObeyingThem) {
    EXPECT_EQ(errorCause(32, "C:\\a\n\x1b[2J\\"),
              "Impossible de copier: C:\\a␊␛[2J\\, Violation de partage.\n"
              "Le fichier source ou destination est peut-être en cours d'utilisation.");
}

using Viewer = OperationTest;

TEST_F(Viewer, ShowsTheListOfTheCurrentKindAndConfiguration) {
    system.lastResult(OperationKind::backup).errorCount = 7;
    system.lastResult(OperationKind::restore).errorCount = 3;
    system.operationKind = OperationKind::restore;
    ASSERT_TRUE(EcritErreurs(system, "Début de la Restauration ...\r\nété\r\n").ok());
    const VisuErrFrm viewer(system);
    EXPECT_EQ(viewer.caption(), "Liste des dernières erreurs de sauvegarde");
    EXPECT_EQ(viewer.Lbl[0].caption(), "Configuration : Travail (Restauration)");
    // The backup's count, whatever the kind shown.
    EXPECT_EQ(viewer.Lbl[1].caption(), "Nombre d'erreur(s): 7");
    ASSERT_EQ(viewer.ListeTxt.lineCount(), 2U);
    EXPECT_EQ(viewer.ListeTxt.line(1), "été");
}

TEST_F(Viewer, IsEmptyWithoutAList) {
    const VisuErrFrm viewer(system);
    EXPECT_EQ(viewer.ListeTxt.lineCount(), 0U);
    EXPECT_THAT(user().messages(), IsEmpty());
}

TEST_F(Viewer, TakesAListThatCannotBeReadForAMissingOne) {
    ASSERT_TRUE(EcritErreurs(system, "x\r\n").ok());
    disk().setUnreadable(R"(C:\Coffrelune\S_Travail.err)");
    const VisuErrFrm viewer(system);
    EXPECT_EQ(viewer.ListeTxt.lineCount(), 0U);
}

TEST_F(Viewer, ClosesWithItsButton) {
    VisuErrFrm viewer(system);
    viewer.Cmd.click();
    EXPECT_FALSE(viewer.open());
}

// What the main window says of the last runs.
class Summary : public OperationTest {
  protected:
    LastResult& backup() { return system.lastResult(OperationKind::backup); }
    ResultSummary of(OperationKind kind) { return summarize(system, kind); }
};

TEST_F(Summary, OfANewConfigurationIsEmpty) {
    const ResultSummary summary = of(OperationKind::backup);
    EXPECT_EQ(summary.cleanLine, "");
    EXPECT_EQ(summary.problemLine, "");
    EXPECT_EQ(summary.countLine, "");
}

TEST_F(Summary, SaysDayMonthAndTimeInFrench) {
    backup() = {"03/03/2025 08:05:09", "00:01:23", "", "", 0};
    const ResultSummary summary = of(OperationKind::backup);
    EXPECT_EQ(summary.cleanLine, "Dernière sauvegarde sans erreur le lun. 3 mars 2025 à 08:05");
    EXPECT_EQ(summary.cleanToolTip, "Durée de la sauvegarde: 00:01:23");
}

TEST_F(Summary, ACleanRunAfterAFailedOneHidesTheFailure) {
    backup() = {"04/03/2025 08:00:00", "00:00:01", "03/03/2025 08:00:00", "00:00:02", 5};
    const ResultSummary summary = of(OperationKind::backup);
    EXPECT_NE(summary.cleanLine, "");
    EXPECT_EQ(summary.problemLine, "");
    EXPECT_EQ(summary.countLine, "");
}

TEST_F(Summary, AFailedRunAfterACleanOneShowsBoth) {
    backup() = {"03/03/2025 08:00:00", "00:00:01", "04/03/2025 09:30:00", "00:00:02", 5};
    const ResultSummary summary = of(OperationKind::backup);
    EXPECT_NE(summary.cleanLine, "");
    EXPECT_EQ(summary.problemLine, "Dernière sauvegarde avec erreur le mar. 4 mars 2025 à 09:30");
    EXPECT_EQ(summary.countLine, "5 erreur(s)");
    EXPECT_EQ(summary.problemToolTip, "Durée de la sauvegarde: 00:00:02");
    EXPECT_EQ(summary.linkText, "Voir les erreurs");
}

TEST_F(Summary, HasItsOwnWordsForEachKind) {
    system.lastResult(OperationKind::restore) = {"03/03/2025 08:00:00", "", "", "", 0};
    system.lastResult(OperationKind::comparison) = {"", "", "03/03/2025 08:00:00", "00:00:09", 12};
    EXPECT_EQ(of(OperationKind::restore).cleanLine,
              "Dernière restauration sans erreur le lun. 3 mars 2025 à 08:00");
    const ResultSummary comparison = of(OperationKind::comparison);
    EXPECT_EQ(comparison.problemLine,
              "Dernière comparaison avec copie le lun. 3 mars 2025 à 08:00");
    EXPECT_EQ(comparison.countLine, "12 copie(s)");
    EXPECT_EQ(comparison.problemToolTip, "Durée de la comparaison: 00:00:09");
    EXPECT_EQ(comparison.linkText, "Voir les copies");
}

TEST_F(Summary, ADateThatIsNoneCountsAsNever) {
    backup() = {"hier", "00:00:01", "31/02/2026 25:00:00", "00:00:02", 5};
    const ResultSummary summary = of(OperationKind::backup);
    EXPECT_EQ(summary.cleanLine, "");
    EXPECT_EQ(summary.problemLine, "");
    EXPECT_EQ(summary.countLine, "");
    EXPECT_EQ(backup().cleanDate, "hier");
}

TEST_F(Summary, ANegativeCountIsNone) {
    backup() = {"", "", "04/03/2025 09:30:00", "00:00:02", -5};
    EXPECT_EQ(of(OperationKind::backup).countLine, "0 erreur(s)");
    EXPECT_EQ(backup().errorCount, -5);
}

}  // namespace
}  // namespace coffrelune
