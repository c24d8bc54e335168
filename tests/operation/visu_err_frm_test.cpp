#include "operation/visu_err_frm.h"

#include "operation/error_list.h"
#include "operation/operation_fixture.h"
#include "operation/results.h"

namespace coffrelune {
namespace {

using testing::IsEmpty;

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
