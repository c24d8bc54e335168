// The window itself: what it shows when it opens, its button, its check box, how it closes.
#include "operation/copie.h"

#include "operation/operation_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Kind {
    OperationKind kind;
    const char* caption;
    const char* firstLine;
    const char* picture;
    const char* errorPicture;
    const char* question;
};

class CopieOfKind : public OperationTest, public testing::WithParamInterface<Kind> {
  protected:
    CopieOfKind() {
        system.operationKind = GetParam().kind;
        selectOnly({});
    }
};

TEST_P(CopieOfKind, OpensWithTheCaptionOfItsKind) {
    makeCopie();
    EXPECT_EQ(copie->caption(), GetParam().caption);
}

TEST_P(CopieOfKind, BeginsTheJournalWithItsCaption) {
    makeCopie();
    EXPECT_EQ(copie->ECTxt.text(), std::string(GetParam().firstLine) + "\r\n");
}

TEST_P(CopieOfKind, ShowsTheDirectionPictureOfItsKindBetweenTheDrives) {
    makeCopie();
    EXPECT_EQ(copie->ImgSens.image(), GetParam().picture);
    EXPECT_TRUE(copie->ImgSens.visible());
    EXPECT_TRUE(copie->ImgSrc.visible());
    EXPECT_TRUE(copie->ImgDest.visible());
}

TEST_P(CopieOfKind, AsksWithTheWordOfItsKindBeforeItStops) {
    makeCopie();
    user().answer(Answer::no);
    copie->Cmd.click();
    ASSERT_EQ(user().messages().size(), 1U);
    EXPECT_THAT(user().messages()[0],
                IsMessage(GetParam().question, GetParam().caption, MessageIcon::question));
    EXPECT_EQ(user().messages()[0].buttons, MessageButtons::yesNo);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, CopieOfKind,
    testing::Values(Kind{OperationKind::backup, "Sauvegarde ...", "Début de la Sauvegarde ...",
                         "sens-sauvegarde", "sens-sauvegarde-erreur",
                         "Voulez-vous interrompre la sauvegarde ?"},
                    Kind{OperationKind::restore, "Restauration ...", "Début de la Restauration ...",
                         "sens-restauration", "sens-restauration-erreur",
                         "Voulez-vous interrompre la restauration ?"},
                    Kind{OperationKind::comparison, "Comparaison ...",
                         "Début de la Comparaison ...", "sens-comparaison", "",
                         "Voulez-vous interrompre la comparaison ?"}),
    [](const auto& tested) {
        return "Kind" + std::to_string(static_cast<int>(tested.param.kind));
    });

class CopieWindow : public OperationTest {
  protected:
    CopieWindow() { makeCopie(); }
    bool stopRequested() { return operation->control().interruptionRequested; }
};

TEST_F(CopieWindow, OpensWithTheBarAtZeroAndTheButtonReadyToInterrupt) {
    EXPECT_EQ(copie->ProgBar.value(), 0);
    EXPECT_EQ(copie->Cmd.caption(), "Annuler");
    EXPECT_TRUE(copie->Cmd.enabled());
    EXPECT_EQ(copie->AnalyseChk.caption(), "Suivi de l'analyse");
    EXPECT_FALSE(copie->ImgAtt[0].visible());
    EXPECT_FALSE(copie->ImgAtt[1].visible());
    EXPECT_FALSE(copie->finished());
}

TEST_F(CopieWindow, ShowsTheErrorPictureAndTheWarningMarkOfABackup) {
    copie->MajErreurImg();
    EXPECT_EQ(copie->ImgSens.image(), "sens-sauvegarde-erreur");
    EXPECT_TRUE(copie->ImgAtt[0].visible());
    EXPECT_FALSE(copie->ImgAtt[1].visible());
}

TEST_F(CopieWindow, ShowsTheErrorPictureAndTheWarningMarkOfARestore) {
    system.operationKind = OperationKind::restore;
    copie->MajErreurImg();
    EXPECT_EQ(copie->ImgSens.image(), "sens-restauration-erreur");
    EXPECT_FALSE(copie->ImgAtt[0].visible());
    EXPECT_TRUE(copie->ImgAtt[1].visible());
}

TEST_F(CopieWindow, AComparisonHasNoErrorPictureToShow) {
    system.operationKind = OperationKind::comparison;
    makeCopie();
    copie->MajErreurImg();
    EXPECT_EQ(copie->ImgSens.image(), "sens-comparaison");
}

TEST_F(CopieWindow, AnsweringNoChangesNothing) {
    user().answer(Answer::no);
    copie->Cmd.click();
    EXPECT_FALSE(stopRequested());
    EXPECT_TRUE(copie->Cmd.enabled());
    EXPECT_TRUE(copie->open());
}

TEST_F(CopieWindow, AnsweringYesRequestsTheStopAndDisablesTheButton) {
    user().answer(Answer::yes);
    copie->Cmd.click();
    EXPECT_TRUE(stopRequested());
    EXPECT_FALSE(copie->Cmd.enabled());
    EXPECT_TRUE(copie->open());
    copie->Cmd.click();  // disabled: no second question
    EXPECT_EQ(user().messages().size(), 1U);
}

TEST_F(CopieWindow, SaysAtOnceThatAStopIsAskedForAndNothingElseInItsPlace) {
    makeCopie();
    copie->showCopyPhase("Temps restant: Calcul en cours ...");
    user().answer(Answer::yes);
    copie->Cmd.click();
    const Label& label = copie->Lbl[Copie::remainingTimeLabel];
    EXPECT_EQ(label.caption(), "Arrêt demandé…");
    copie->showRemainingTime("Temps restant: 5 secondes");
    copie->showPercentage(100, "100% copiés");
    copie->showCopyPhase("Temps restant: Calcul en cours ...");
    EXPECT_EQ(label.caption(), "Arrêt demandé…");
}

TEST_F(CopieWindow, CountsNoRemainingTimeOnceEverythingIsCopied) {
    makeCopie();
    copie->showCopyPhase("Temps restant: Calcul en cours ...");
    copie->showPercentage(99, "99% copiés");
    EXPECT_EQ(copie->Lbl[Copie::remainingTimeLabel].caption(),
              "Temps restant: Calcul en cours ...");
    copie->showPercentage(100, "100% copiés");
    EXPECT_EQ(copie->Lbl[Copie::remainingTimeLabel].caption(), "");
}

TEST_F(CopieWindow, TheCloseBoxAsksAsTheButtonDoes) {
    user().answer(Answer::yes);
    copie->closeBox();
    EXPECT_TRUE(stopRequested());
    EXPECT_TRUE(copie->open());
}

TEST_F(CopieWindow, JournalLinesEndWithCrLfAndLetEventsRun) {
    const std::uint64_t before = user().pendingEventsCount();
    copie->AjouteECTxt("une ligne");
    EXPECT_EQ(copie->ECTxt.text(), "Début de la Sauvegarde ...\r\nune ligne\r\n");
    EXPECT_EQ(user().pendingEventsCount(), before + 1);
}

TEST_F(CopieWindow, AFileNameWithALineEndStaysOneJournalLine) {
    copie->AjouteECTxt("Erreur: 5 - Fichier: C:\\a\r\nb");
    EXPECT_EQ(copie->ECTxt.lineCount(), 2U);
    EXPECT_EQ(copie->ECTxt.line(1), "Erreur: 5 - Fichier: C:\\a␍␊b");
}

TEST_F(CopieWindow, ShowsWhatTheEngineReportsInItsLabels) {
    copie->showSource(R"(C:\Docs\)");
    EXPECT_EQ(copie->Lbl[1].caption(), R"(De: C:\Docs\)");
    copie->showDestination(R"(F:\Save\Docs\)");
    EXPECT_EQ(copie->Lbl[3].caption(), R"(Vers: F:\Save\Docs\)");
    copie->showPercentage(42, "42% copiés (1,50 Mo de 3,57 Mo)");
    EXPECT_EQ(copie->Lbl[0].caption(), "42% copiés (1,50 Mo de 3,57 Mo)");
    EXPECT_EQ(copie->ProgBar.value(), 42);
    copie->showRemainingTime("Temps restant: 5 secondes");
    EXPECT_EQ(copie->Lbl[2].caption(), "Temps restant: 5 secondes");
    copie->showRate("Taux de transfert: 1,50 Mo/s");
    EXPECT_EQ(copie->Lbl[5].caption(), "Taux de transfert: 1,50 Mo/s");
    copie->showCount("3 répertoire(s) lu(s), 0 répertoire(s) créé(s)");
    EXPECT_EQ(copie->Lbl[3].caption(), "3 répertoire(s) lu(s), 0 répertoire(s) créé(s)");
}

TEST_F(CopieWindow, ACriticalTextIsABoxTitledWithTheCaption) {
    user().answer(Answer::ok);
    copie->showCritical(R"(Répertoire source 'C:\Docs\' non trouvé.)");
    ASSERT_EQ(user().messages().size(), 1U);
    EXPECT_THAT(user().messages()[0], IsMessage(R"(Répertoire source 'C:\Docs\' non trouvé.)",
                                                "Sauvegarde ...", MessageIcon::critical));
}

TEST_F(CopieWindow, ACriticalTextOfAnUnattendedRunGoesToTheJournalAndToANotice) {
    switches.unattended = true;
    makeCopie();
    copie->showCritical(R"(Répertoire source 'C:\Docs\' non trouvé.)");
    EXPECT_THAT(user().messages(), IsEmpty());
    EXPECT_THAT(journal(), ElementsAre("Début de la Sauvegarde ...",
                                       R"(Répertoire source 'C:\Docs\' non trouvé.)"));
    EXPECT_THAT(user().notices(), ElementsAre(R"(Répertoire source 'C:\Docs\' non trouvé.)"));
}

// A directory may be called anything, also what would move the cursor of a terminal.
TEST_F(CopieWindow, ACriticalTextShowsControlCharactersInsteadOfObeyingThem) {
    user().answer(Answer::ok);
    copie->showCritical("Répertoire source 'C:\\a\x1b[2Jb\\' non trouvé.");
    switches.unattended = true;
    makeCopie();
    copie->showCritical("Répertoire source 'C:\\a\nb\\' non trouvé.");
    EXPECT_EQ(user().messages()[0].text, "Répertoire source 'C:\\a␛[2Jb\\' non trouvé.");
    EXPECT_THAT(user().notices(), ElementsAre("Répertoire source 'C:\\a␊b\\' non trouvé."));
}

class SuiviAnalyse : public OperationTest, public testing::WithParamInterface<bool> {
  protected:
    SuiviAnalyse() { system.SuiviAnalyse = GetParam() ? -1 : 0; }
};

TEST_P(SuiviAnalyse, DecidesTheCheckBox) {
    makeCopie();
    EXPECT_EQ(copie->AnalyseChk.checked(), GetParam());
}

TEST_P(SuiviAnalyse, IsWrittenWheneverTheWindowCloses) {
    selectOnly({});
    runCopie();
    EXPECT_EQ(setting("Position", "SuiviAnalyse"), GetParam() ? "-1" : "0");
}

TEST_P(SuiviAnalyse, IsWrittenWhenARunWithErrorsIsClosed) {
    failCopyOf(R"(C:\Docs\a.txt)", error_number::accessDenied);
    user().stepIn<Copie>([](Copie& window) { window.Cmd.click(); });
    runCopie();
    EXPECT_EQ(setting("Position", "SuiviAnalyse"), GetParam() ? "-1" : "0");
}

TEST_P(SuiviAnalyse, FollowsAClickDuringTheAnalysis) {
    whenEventsRun([](Copie& window) { return window.Lbl[1].caption() == "Analyse de la copie..."; },
                  [](Copie& window) { window.AnalyseChk.click(); });
    runCopie();
    EXPECT_EQ(system.SuiviAnalyse, GetParam() ? 0 : -1);
    EXPECT_EQ(setting("Position", "SuiviAnalyse"), GetParam() ? "0" : "-1");
}

INSTANTIATE_TEST_SUITE_P(Copie, SuiviAnalyse, testing::Bool());

using CopieClosing = OperationTest;

TEST_F(CopieClosing, ASettingsFileThatCannotBeWrittenDoesNotKeepTheWindowOpen) {
    faults.fail("writeWhole", R"(C:\Coffrelune\Coffrelune.ini)", error_number::writeProtect);
    runCopie();
    EXPECT_FALSE(copie->open());
    EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\a.txt)"));
}

}  // namespace
}  // namespace coffrelune
