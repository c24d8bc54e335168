#include "operation/copie.h"
#include "operation/operation_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

const Replacement replacement = {"a.txt", {"Dossier : F:\\", "Fichier en place : 3 octets", "x"}};

TEST(FrmConfirm, NamesTheFileAndOffersFourAnswers) {
    frmConfirm question(replacement);
    EXPECT_EQ(question.caption(), "Confirmation du remplacement du fichier");
    EXPECT_EQ(question.Lbl[0].caption(), "Ce dossier contient déjà un fichier appelé 'a.txt'");
    EXPECT_EQ(question.Lbl[1].caption(), "Etes-vous sûr de vouloir remplacer ce fichier ?");
    std::vector<std::string> captions;
    for (const Button* button : question.buttons()) captions.push_back(button->caption());
    EXPECT_THAT(captions, ElementsAre("&Oui", "&Tous", "&Non", "Annuler"));
    std::vector<std::string> lines;
    for (const Label* label : question.labels()) lines.push_back(label->caption());
    EXPECT_THAT(lines, ElementsAre(question.Lbl[0].caption(), "Dossier : F:\\",
                                   "Fichier en place : 3 octets", "x", question.Lbl[1].caption()));
    EXPECT_EQ(question.Image1.image(), "attention");
}

TEST(FrmConfirm, AnswersAsThePressedButtonSaysAndCloses) {
    using enum ReplacementAnswer;
    std::size_t button = 0;
    for (const ReplacementAnswer answer : {yes, yesToAll, no, cancel}) {
        frmConfirm question(replacement);
        question.Cmd.at(button++).click();
        EXPECT_EQ(question.answer(), answer);
        EXPECT_FALSE(question.open());
    }
}

TEST(FrmConfirm, EnterKeepsTheFileAndEscapeCancels) {
    frmConfirm question(replacement);
    EXPECT_EQ(question.defaultButton(), &question.Cmd[2]);
    EXPECT_EQ(question.cancelButton(), &question.Cmd[3]);
}

TEST(FrmConfirm, ClosedWithoutAButtonItCancels) {
    frmConfirm question(replacement);
    question.closeBox();
    EXPECT_EQ(question.answer(), ReplacementAnswer::cancel);
    EXPECT_FALSE(question.open());
}

/// Two files of C:\Docs have an older copy; Sub\b.txt is new.
class ReplacementQuestion : public OperationTest {
  protected:
    ReplacementQuestion() {
        placeOldCopy();
        disk().file(R"(C:\Docs\d.txt)", "dddd", fileTimeAt(2024, 3, 1));
        disk().file(R"(F:\Save\Docs\d.txt)", "old", fileTimeAt(2023, 1, 1));
        selectOnly({0});
    }
    void press(std::size_t button) {
        user().stepIn<frmConfirm>([this, button](frmConfirm& question) {
            asked.push_back(question.Lbl[0].caption());
            folders.push_back(question.Facts[0].caption());
            question.Cmd.at(button).click();
        });
    }
    std::string copyOf(const std::string& name) {
        return disk().content(R"(F:\Save\Docs\)" + name).value_or("(none)");
    }
    std::vector<std::string> asked;
    std::vector<std::string> folders;
};

TEST_F(ReplacementQuestion, AsksForEachExistingFileAndForNoNewOne) {
    press(0);
    press(0);
    runCopie();
    EXPECT_THAT(asked, ElementsAre("Ce dossier contient déjà un fichier appelé 'a.txt'",
                                   "Ce dossier contient déjà un fichier appelé 'd.txt'"));
    EXPECT_EQ(copyOf("a.txt"), "aaaaa");
    EXPECT_EQ(copyOf("d.txt"), "dddd");
    EXPECT_EQ(copyOf(R"(Sub\b.txt)"), "bbb");
}

TEST_F(ReplacementQuestion, AsksInTheCopyPassOnly) {
    press(0);
    press(0);
    runCopie();
    const auto shown =
        std::find(events.begin(), events.end(), "shown Confirmation du remplacement du fichier");
    ASSERT_NE(shown, events.end());
    EXPECT_TRUE(statistics.copyPassStarted);
    EXPECT_EQ(std::count(events.begin(), events.end(), *shown), 2);
}

TEST_F(ReplacementQuestion, NonKeepsThatFileAndGoesOn) {
    press(2);
    press(0);
    runCopie();
    EXPECT_EQ(copyOf("a.txt"), "old");
    EXPECT_EQ(copyOf("d.txt"), "dddd");
    EXPECT_FALSE(control.interruptionRequested);
}

TEST_F(ReplacementQuestion, TousAsksNoMoreInThisRun) {
    press(1);
    runCopie();
    EXPECT_EQ(asked.size(), 1U);
    EXPECT_EQ(copyOf("a.txt"), "aaaaa");
    EXPECT_EQ(copyOf("d.txt"), "dddd");
}

TEST_F(ReplacementQuestion, TousDoesNotLastUntilTheNextRun) {
    press(1);
    runCopie();
    placeOldCopy();
    press(0);
    runCopie();
    EXPECT_EQ(asked.size(), 2U);
}

TEST_F(ReplacementQuestion, AnnulerStopsTheRunAndKeepsTheFile) {
    press(3);
    runCopie();
    EXPECT_TRUE(control.interruptionRequested);
    EXPECT_EQ(copyOf("a.txt"), "old");
    EXPECT_EQ(copyOf("d.txt"), "old");
    EXPECT_EQ(copyOf(R"(Sub\b.txt)"), "(none)");
}

TEST_F(ReplacementQuestion, ClosingTheQuestionStopsTheRunToo) {
    user().stepIn<frmConfirm>([](frmConfirm& question) { question.closeBox(); });
    runCopie();
    EXPECT_TRUE(control.interruptionRequested);
    EXPECT_EQ(copyOf("a.txt"), "old");
}

TEST_F(ReplacementQuestion, IsNotAskedWithOverwritingWithoutConfirmation) {
    system.Confirmation = 1;
    runCopie();
    EXPECT_EQ(copyOf("a.txt"), "aaaaa");
    EXPECT_EQ(copyOf("d.txt"), "dddd");
}

TEST_F(ReplacementQuestion, IsAskedWhenTheSettingIsAnythingButOne) {
    system.Confirmation = -1;
    press(0);
    press(0);
    runCopie();
    EXPECT_EQ(asked.size(), 2U);
}

TEST_F(ReplacementQuestion, IsNotAskedByAnUnattendedRun) {
    EXPECT_EQ(launch(RunMode::unattended), RunEnd::finished);
    EXPECT_EQ(copyOf("a.txt"), "aaaaa");
    EXPECT_EQ(copyOf("d.txt"), "dddd");
}

TEST_F(ReplacementQuestion, KeepingExistingFilesAsksNothingAndCopiesTheNewOnes) {
    launcher = std::make_unique<OperationLauncher>(system, host, stage);
    launcher->keepExistingFiles();
    user().answer(Answer::ok);
    EXPECT_EQ(launcher->LanceOperation(RunMode::startedByUser), RunEnd::finished);
    EXPECT_EQ(copyOf("a.txt"), "old");
    EXPECT_EQ(copyOf("d.txt"), "old");
    EXPECT_EQ(copyOf(R"(Sub\b.txt)"), "bbb");
}

TEST_F(ReplacementQuestion, ShowsAFileNameWithALineEndOnOneLine) {
    makeCopie();
    press(2);
    EXPECT_EQ(copie->DemandeRemplacement({"a\nb", {"Dossier : F:\\a\nb", "", ""}}),
              ReplacementAnswer::no);
    EXPECT_THAT(asked, ElementsAre("Ce dossier contient déjà un fichier appelé 'a␊b'"));
    EXPECT_THAT(folders, ElementsAre("Dossier : F:\\a␊b"));
}

TEST_F(ReplacementQuestion, LetsEventsRunAfterTheQuestionIsGone) {
    makeCopie();
    press(0);
    const std::uint64_t before = user().pendingEventsCount();
    EXPECT_EQ(copie->DemandeRemplacement(replacement), ReplacementAnswer::yes);
    EXPECT_EQ(user().pendingEventsCount(), before + 1);
}

}  // namespace
}  // namespace coffrelune
