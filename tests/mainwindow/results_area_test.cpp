// The summary of the last runs, the comparison's list and its direction.
#include "mainwindow/main_form_fixture.h"
#include "operation/errors.h"

namespace coffrelune {
namespace {

using testing::IsEmpty;

constexpr const char* comparisonTab = "C";

class ResultsAreaTest : public MainFormTest {
  protected:
    ResultsArea& results() { return form->results; }
    std::string line(std::size_t index) { return results().LastSaveLbl.at(index).caption(); }
};

TEST_F(ResultsAreaTest, ANewConfigurationHasNothingToShow) {
    start();
    for (const char* tab : {"S", "R", "C"}) {
        pickTab(tab);
        for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(line(i), "");
        EXPECT_FALSE(results().OkImg.visible());
        EXPECT_FALSE(results().ErrImg.visible());
        EXPECT_FALSE(results().NbErrImg.visible());
        EXPECT_FALSE(results().VoirErrLbl.visible());
    }
}

TEST_F(ResultsAreaTest, ACleanRunAfterAFailedOneHidesTheFailure) {
    start(
        "[General]\nLastSave=04/03/2025 08:05:00\nLastDureeSave=00:01:23\n"
        "LastSaveErr=03/03/2025 08:05:00\nLastSaveNbErr=4\n");
    EXPECT_EQ(line(0), "Dernière sauvegarde sans erreur le mar. 4 mars 2025 à 08:05");
    EXPECT_EQ(line(1), "");
    EXPECT_EQ(line(2), "");
    EXPECT_TRUE(results().OkImg.visible());
    EXPECT_EQ(results().OkImg.toolTip(), "Durée de la sauvegarde: 00:01:23");
    EXPECT_FALSE(results().ErrImg.visible());
    EXPECT_FALSE(results().NbErrImg.visible());
    EXPECT_FALSE(results().VoirErrLbl.visible());
}

TEST_F(ResultsAreaTest, AFailedRunAfterACleanOneShowsBoth) {
    start(
        "[General]\nLastSave=03/03/2025 08:05:00\nLastDureeSave=00:01:23\n"
        "LastSaveErr=04/03/2025 18:30:00\nLastDureeSaveErr=00:02:00\nLastSaveNbErr=4\n");
    EXPECT_EQ(line(0), "Dernière sauvegarde sans erreur le lun. 3 mars 2025 à 08:05");
    EXPECT_EQ(line(1), "Dernière sauvegarde avec erreur le mar. 4 mars 2025 à 18:30");
    EXPECT_EQ(line(2), "4 erreur(s)");
    EXPECT_EQ(results().ErrImg.toolTip(), "Durée de la sauvegarde: 00:02:00");
    EXPECT_TRUE(results().OkImg.visible());
    EXPECT_TRUE(results().ErrImg.visible());
    EXPECT_TRUE(results().NbErrImg.visible());
    EXPECT_TRUE(results().VoirErrLbl.visible());
    EXPECT_EQ(results().VoirErrLbl.caption(), "Voir les erreurs");
}

TEST_F(ResultsAreaTest, ADateThatIsNoneCountsAsNever) {
    for (const char* date : {"foo", "31/02/2026 25:00:00", "31/02/2026 10:00:00", "04/03/2025"}) {
        const std::string spoilt = std::string("[General]\nLastSave=") + date +
                                   "\nLastSaveErr=" + date + "\nLastSaveNbErr=4\n";
        start(spoilt);
        for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(line(i), "") << date;
        EXPECT_FALSE(results().OkImg.visible());
        EXPECT_FALSE(results().ErrImg.visible());
        EXPECT_FALSE(results().NbErrImg.visible());
        EXPECT_FALSE(results().VoirErrLbl.visible());
        EXPECT_EQ(settings(), spoilt);
    }
}

TEST_F(ResultsAreaTest, ASpoiltDateOfOneRunLeavesTheOther) {
    start("[General]\nLastSave=foo\nLastSaveErr=04/03/2025 18:30:00\nLastSaveNbErr=4\n");
    EXPECT_EQ(line(0), "");
    EXPECT_EQ(line(1), "Dernière sauvegarde avec erreur le mar. 4 mars 2025 à 18:30");
    EXPECT_EQ(line(2), "4 erreur(s)");
}

TEST_F(ResultsAreaTest, ANegativeCountShowsAsNone) {
    const std::string spoilt = "[General]\nLastSaveErr=04/03/2025 18:30:00\nLastSaveNbErr=-4\n";
    start(spoilt);
    EXPECT_EQ(line(2), "0 erreur(s)");
    EXPECT_EQ(settings(), spoilt);
}

TEST_F(ResultsAreaTest, EachKindHasItsOwnTexts) {
    start(
        "[General]\nLastRest=03/03/2025 08:05:00\nLastRestErr=04/03/2025 08:05:00\n"
        "LastRestNbErr=2\nLastDureeRest=00:00:01\nLastDureeRestErr=00:00:02\n"
        "LastComp=03/03/2025 09:05:00\nLastCompErr=04/03/2025 09:05:00\nLastCompNbErr=12\n"
        "LastDureeComp=00:00:03\nLastDureeCompErr=00:00:04\n");
    pickTab("R");
    EXPECT_EQ(line(0), "Dernière restauration sans erreur le lun. 3 mars 2025 à 08:05");
    EXPECT_EQ(line(1), "Dernière restauration avec erreur le mar. 4 mars 2025 à 08:05");
    EXPECT_EQ(line(2), "2 erreur(s)");
    EXPECT_EQ(results().OkImg.toolTip(), "Durée de la restauration: 00:00:01");
    EXPECT_EQ(results().VoirErrLbl.caption(), "Voir les erreurs");
    pickTab(comparisonTab);
    EXPECT_EQ(line(0), "Dernière comparaison sans copie le lun. 3 mars 2025 à 09:05");
    EXPECT_EQ(line(1), "Dernière comparaison avec copie le mar. 4 mars 2025 à 09:05");
    EXPECT_EQ(line(2), "12 copie(s)");
    EXPECT_EQ(results().ErrImg.toolTip(), "Durée de la comparaison: 00:00:04");
    EXPECT_EQ(results().VoirErrLbl.caption(), "Voir les copies");
    pickTab("S");
    EXPECT_EQ(line(0), "");
}

TEST_F(ResultsAreaTest, TheLinkOpensTheErrorListOfTheKind) {
    start("[General]\nLastRestErr=04/03/2025 08:05:00\nLastRestNbErr=2\n");
    disk().file(R"(C:\Coffrelune\R_General.err)", "Erreur: 5\r\n");
    pickTab("R");
    user().stepIn<VisuErrFrm>([](VisuErrFrm& viewer) {
        EXPECT_EQ(viewer.Lbl[0].caption(), "Configuration : General (Restauration)");
        EXPECT_EQ(viewer.ListeTxt.line(0), "Erreur: 5");
        viewer.Cmd.click();
    });
    results().VoirErrLbl.click();
}

TEST_F(ResultsAreaTest, TheFolderOfALineOpensFromTheListOfErrorsAndFromTheComparison) {
    start("[General]\nLastSaveErr=04/03/2025 08:05:00\nLastSaveNbErr=1\n");
    disk().file(R"(C:\Coffrelune\S_General.err)", "Erreur: 5 - Fichier: C:\\Coffrelune\\a\r\n");
    user().stepIn<VisuErrFrm>([](VisuErrFrm& viewer) {
        viewer.ListeTxt.pick({0});
        viewer.search.FolderCmd.click();
        viewer.Cmd.click();
    });
    results().VoirErrLbl.click();
    EXPECT_FALSE(results().search.FilterTxt.visible());
    pickTab("C");
    EXPECT_TRUE(results().search.FilterTxt.visible());
    results().TxtCp.append("C:\\Coffrelune\\b n'existe pas");
    results().TxtCp.pick({0});
    results().search.FolderCmd.click();
    const MemoryShell::Opened folder{"C:\\Coffrelune", ""};
    EXPECT_THAT(shell().opened(), testing::ElementsAre(folder, folder));
}

TEST_F(ResultsAreaTest, ABackupIsSummarisedWhenItEnds) {
    startWithLine();
    user().answer(Answer::ok);
    form->Cmd.at(1).click();
    EXPECT_EQ(line(0), "Dernière sauvegarde sans erreur le ven. 14 mars 2025 à 10:00");
    EXPECT_EQ(lastMessage().text, "Sauvegarde terminée sans erreur.\r\n\r\nDurée : 00:00:00");
}

// ---- comparisons ---------------------------------------------------------------------------

TEST_F(ResultsAreaTest, StartsWithNoComparisonFromSourceToDestination) {
    start();
    EXPECT_EQ(form->Cmd.at(4).caption(), "Comparaison Source -> Destination");
    EXPECT_EQ(results().LblComp.caption(), "Aucune comparaison effectuée.");
    EXPECT_EQ(results().TxtCp.lineCount(), 0U);
}

TEST_F(ResultsAreaTest, TheComparisonsControlsAreOnItsTabOnly) {
    start();
    for (const char* tab : {"C", "R", "C", "S"}) {
        pickTab(tab);
        const bool shown = std::string(tab) == comparisonTab;
        EXPECT_EQ(form->Cmd.at(4).visible(), shown);
        EXPECT_EQ(results().TxtCp.visible(), shown);
        EXPECT_EQ(results().LblComp.visible(), shown);
    }
}

TEST_F(ResultsAreaTest, AComparisonFillsItsListAndSummary) {
    startWithLine();
    pickTab(comparisonTab);
    form->Cmd.at(1).click();
    EXPECT_THAT(user().messages(), IsEmpty());
    ASSERT_GE(results().TxtCp.lineCount(), 2U);
    EXPECT_EQ(results().TxtCp.line(0), "***** Sauvegarde n°1");
    EXPECT_THAT(results().LblComp.caption(), testing::StartsWith("1 fichier(s) à copier"));
    EXPECT_EQ(line(0), "");
    EXPECT_EQ(line(1), "Dernière comparaison avec copie le ven. 14 mars 2025 à 10:00");
    EXPECT_EQ(line(2), "1 copie(s)");
    EXPECT_TRUE(form->Cmd.at(1).enabled());
}

TEST_F(ResultsAreaTest, TheDirectionTurnsTheLinesRoundAndKeepsTheList) {
    startWithLine();
    pickTab(comparisonTab);
    form->Cmd.at(1).click();
    const std::string list = results().TxtCp.text();
    const std::string summary = results().LblComp.caption();
    form->Cmd.at(4).click();
    EXPECT_EQ(form->Cmd.at(4).caption(), "Comparaison Destination -> Source");
    EXPECT_EQ(left(0), R"(F:\Save\Docs)");
    EXPECT_EQ(results().TxtCp.text(), list);
    EXPECT_EQ(results().LblComp.caption(), summary);
    form->Cmd.at(4).click();
    EXPECT_EQ(form->Cmd.at(4).caption(), "Comparaison Source -> Destination");
    EXPECT_EQ(left(0), R"(C:\Docs)");
}

TEST_F(ResultsAreaTest, TheListSurvivesTabChanges) {
    startWithLine();
    pickTab(comparisonTab);
    form->Cmd.at(1).click();
    form->Cmd.at(4).click();
    const std::string list = results().TxtCp.text();
    pickTab("S");
    EXPECT_EQ(left(0), R"(C:\Docs)") << "a backup is never reversed";
    pickTab(comparisonTab);
    EXPECT_EQ(results().TxtCp.text(), list);
    EXPECT_EQ(left(0), R"(F:\Save\Docs)") << "the direction stays";
}

// What the clean-run line says on its way.
class CaptionsOf final : public ControlPeer {
  public:
    void controlChanged(Control& control) override { captions.push_back(control.caption()); }
    Texts captions;
};

TEST_F(ResultsAreaTest, ACleanComparisonIsFirstSaidInShort) {
    startWithLine();
    disk().file(R"(F:\Save\Docs\a.txt)", "aaaaa", fileTimeAt(2025, 3, 1));
    pickTab(comparisonTab);
    CaptionsOf peer;
    results().LastSaveLbl[0].attach(&peer);
    form->Cmd.at(1).click();
    EXPECT_THAT(peer.captions, testing::ElementsAre(
                                   "Dernière comparaison le ven. 14 mars 2025 à 10:00",
                                   "Dernière comparaison sans copie le ven. 14 mars 2025 à 10:00"));
    results().LastSaveLbl[0].attach(nullptr);
}

TEST_F(ResultsAreaTest, WithoutACleanComparisonNothingIsSaidOfOne) {
    startWithLine();
    pickTab(comparisonTab);
    CaptionsOf peer;
    results().LastSaveLbl[0].attach(&peer);
    form->Cmd.at(1).click();
    EXPECT_THAT(peer.captions, IsEmpty());
    results().LastSaveLbl[0].attach(nullptr);
}

}  // namespace
}  // namespace coffrelune
