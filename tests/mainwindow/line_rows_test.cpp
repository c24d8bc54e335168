// The rows: what they show in either layout, the row check, and how an edit is stored.
#include "dialogs/exclude_form.h"
#include "mainwindow/main_form_fixture.h"

namespace coffrelune {
namespace {

using testing::IsEmpty;

using Chooser = MemoryWindows::FolderChooser;

class LineRowsTest : public MainFormTest {
  protected:
    void reverse() { pickTab("R"); }
};

TEST_F(LineRowsTest, ShowsSixRowsWithoutASettingsFile) {
    start();
    ASSERT_EQ(form->lines.count(), 6);
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(row(i).NumLbl.caption(), std::to_string(i + 1) + ".");
        EXPECT_EQ(left(i), "");
        EXPECT_EQ(right(i), "");
        EXPECT_FALSE(row(i).ChkS.enabled());
        EXPECT_FALSE(row(i).ChkS.checked());
        EXPECT_FALSE(row(i).ImgOk.visible());
    }
    EXPECT_EQ(LineRows::rowPitch, 480);
    EXPECT_EQ(settings(), "(none)") << "showing writes nothing";
}

TEST_F(LineRowsTest, ShowsAsManyRowsAsTheSettingsSay) {
    start("[Position]\nRepertMax=1\n");
    EXPECT_EQ(form->lines.count(), 1);
    start("[Position]\nRepertMax=12\n[General]\nSource11=\"C:\\Docs\"\n");
    EXPECT_EQ(form->lines.count(), 12);
    EXPECT_EQ(left(11), R"(C:\Docs)");
    start("[Position]\nRepertMax=0\n");
    EXPECT_EQ(form->lines.count(), 6);
    start("[Position]\nRepertMax=-3\n");
    EXPECT_EQ(form->lines.count(), 6);
}

TEST_F(LineRowsTest, KeepsEveryLineOfAFileWithMoreThanTheDialogOffers) {
    start("[Position]\nRepertMax=5000\n[General]\nSource4999=\"C:\\Docs\"\n");
    ASSERT_EQ(form->lines.count(), 5000);
    EXPECT_EQ(left(4999), R"(C:\Docs)");
    EXPECT_EQ(row(4999).NumLbl.caption(), "5000.");
}

TEST_F(LineRowsTest, ShowsSourceAndDestination) {
    startWithLine();
    EXPECT_EQ(left(0), R"(C:\Docs)");
    EXPECT_EQ(right(0), R"(F:\Save)");
    EXPECT_TRUE(row(0).ChkS.enabled());
    EXPECT_TRUE(row(0).ChkS.checked());
    EXPECT_EQ(row(0).Img.image(), "ligne-selectionnee");
    EXPECT_EQ(row(1).Img.image(), "ligne-non-selectionnee");
}

TEST_F(LineRowsTest, ReversedShowsTheCopyOnTheLeftAndTheSourceOnTheRight) {
    start(
        "[General]\n"
        "Source0=\"C:\\Docs\"\nDestination0=\"F:\\Save\"\n"
        "Source1=\"C:\\Data\\Docs\\\"\nDestination1=\"F:\\\"\n"
        "Source2=\"E:\\\"\nDestination2=\"F:\\Save\"\n"
        "Source3=\"C:\\Docs\"\n"
        "Destination4=\"F:\\Save\"\n");
    for (const char* tab : {"R", "C"}) {
        pickTab(tab);
        if (std::string(tab) == "C") form->Cmd.at(4).click();
        EXPECT_EQ(left(0), R"(F:\Save\Docs)");
        EXPECT_EQ(right(0), R"(C:\Docs)");
        EXPECT_EQ(left(1), R"(F:\Docs)");
        EXPECT_EQ(right(1), R"(C:\Data\Docs\)");
        EXPECT_EQ(left(2), R"(F:\Save)") << "a drive root has no last component";
        EXPECT_EQ(right(2), R"(E:\)");
        EXPECT_EQ(left(3), "") << "nothing to read from";
        EXPECT_EQ(right(3), R"(C:\Docs)");
        EXPECT_EQ(right(4), "");
    }
}

TEST_F(LineRowsTest, AComparisonFromSourceToDestinationIsShownAsABackupIs) {
    startWithLine();
    pickTab("C");
    EXPECT_EQ(left(0), R"(C:\Docs)");
    EXPECT_EQ(right(0), R"(F:\Save)");
}

// ---- ticks ---------------------------------------------------------------------------------

TEST_F(LineRowsTest, StoresATickAtOnce) {
    startWithLine();
    row(0).ChkS.click();
    EXPECT_EQ(system->lines[0].selected, 0);
    EXPECT_EQ(row(0).Img.image(), "ligne-non-selectionnee");
    EXPECT_EQ(stored("Select0"), "0");
    row(0).ChkS.click();
    EXPECT_EQ(system->lines[0].selected, 1);
    EXPECT_EQ(row(0).Img.image(), "ligne-selectionnee");
    EXPECT_EQ(stored("Select0"), "1");
}

TEST_F(LineRowsTest, TakesTheTickFromALineWithoutBothPathsAndStoresThat) {
    start(
        "[General]\nSource0=\"C:\\Docs\"\nSelect0=1\nDestination1=\"F:\\Save\"\nSelect1=1\n"
        "Select2=1\n");
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(row(i).ChkS.checked());
        EXPECT_FALSE(row(i).ChkS.enabled());
        EXPECT_EQ(system->lines[static_cast<std::size_t>(i)].selected, 0);
        EXPECT_EQ(stored("Select" + std::to_string(i)), "0");
        EXPECT_EQ(row(i).Img.image(), "ligne-non-selectionnee");
    }
    EXPECT_EQ(stored("Select3"), "") << "nothing is stored where there was no tick";
}

TEST_F(LineRowsTest, ALineJustFilledCanBeTickedAtOnce) {
    start();
    user().chooseNextFolder(R"(C:\Docs)");
    row(2).CmdS.click();
    EXPECT_FALSE(row(2).ChkS.enabled());
    user().chooseNextFolder(R"(F:\Save)");
    row(2).CmdD.click();
    EXPECT_TRUE(row(2).ChkS.enabled());
    EXPECT_FALSE(row(2).ChkS.checked());
    EXPECT_EQ(stored("Select2"), "");
    row(2).ChkS.click();
    EXPECT_EQ(stored("Select2"), "1");
}

// ---- choosing ------------------------------------------------------------------------------

TEST_F(LineRowsTest, ChoosesASource) {
    startWithLine();
    user().chooseNextFolder(R"(C:\Photos)");
    row(0).CmdS.click();
    EXPECT_EQ(user().folderChoosers().back(),
              (Chooser{false, "Sélectionnez le répertoire source:", R"(C:\Docs)"}));
    EXPECT_EQ(left(0), R"(C:\Photos)");
    EXPECT_EQ(system->lines[0].source, R"(C:\Photos)");
    EXPECT_EQ(stored("Source0"), R"(C:\Photos)");
    EXPECT_EQ(stored("Destination0"), R"(F:\Save)");
}

TEST_F(LineRowsTest, ChoosesADestination) {
    startWithLine();
    user().chooseNextFolder(R"(G:\Copies)");
    row(0).CmdD.click();
    EXPECT_EQ(user().folderChoosers().back(),
              (Chooser{false, "Sélectionnez le répertoire destination:", R"(F:\Save)"}));
    EXPECT_EQ(right(0), R"(G:\Copies)");
    EXPECT_EQ(system->lines[0].destination, R"(G:\Copies)");
    EXPECT_EQ(stored("Destination0"), R"(G:\Copies)");
    EXPECT_EQ(stored("Source0"), R"(C:\Docs)");
}

TEST_F(LineRowsTest, ACancelledChooserChangesAndWritesNothing) {
    startWithLine();
    const std::string before = settings();
    const std::size_t writes = writeCount();
    user().chooseNextFolder("");
    row(0).CmdS.click();
    user().chooseNextFolder("");
    row(0).CmdD.click();
    EXPECT_EQ(left(0), R"(C:\Docs)");
    EXPECT_EQ(right(0), R"(F:\Save)");
    EXPECT_EQ(settings(), before);
    EXPECT_EQ(writeCount(), writes);
}

TEST_F(LineRowsTest, StoresPathsBetweenQuotesSoThatBlanksSurvive) {
    start();
    user().chooseNextFolder(R"( C:\Data )");
    row(0).CmdS.click();
    EXPECT_THAT(settings(), testing::HasSubstr("Source0=\" C:\\Data \""));
    restart();
    EXPECT_EQ(left(0), R"( C:\Data )");
}

TEST_F(LineRowsTest, KeepsAnyTextAsAPath) {
    const Texts paths = {"C:\\R&D\\\"x\"",     "@", "C:\\a\nb", "|", "C:\\Été\\日本",
                         std::string(300, 'x')};
    for (const std::string& path : paths) {
        start("[General]\nDestination0=\"F:\\Save\"\n");
        form->lines.edit(0, LineSide::left, path);
        EXPECT_EQ(left(0), path);
        restart();
        EXPECT_EQ(left(0), path);
    }
}

// ---- edits in the reversed layout ----------------------------------------------------------

TEST_F(LineRowsTest, ReversedTheRightLabelIsTheSourceAlone) {
    startWithLine();
    reverse();
    user().chooseNextFolder(R"(C:\Photos)");
    row(0).CmdD.click();
    EXPECT_EQ(system->lines[0].source, R"(C:\Photos)");
    EXPECT_EQ(system->lines[0].destination, R"(F:\Save)");
    EXPECT_EQ(right(0), R"(C:\Photos)");
    EXPECT_EQ(left(0), R"(F:\Save\Photos)") << "the copy follows its source's name";
    pickTab("S");
    EXPECT_EQ(left(0), R"(C:\Photos)");
    EXPECT_EQ(right(0), R"(F:\Save)");
}

TEST_F(LineRowsTest, ReversedTheLeftLabelIsTheDestinationWithoutWhatWasAppended) {
    for (const char* typed : {R"(G:\Copies\Docs)", R"(G:\Copies)"}) {
        startWithLine();
        reverse();
        form->lines.edit(0, LineSide::left, typed);
        EXPECT_EQ(system->lines[0].destination, R"(G:\Copies)");
        EXPECT_EQ(left(0), R"(G:\Copies\Docs)");
        pickTab("S");
        EXPECT_EQ(right(0), R"(G:\Copies)") << "back to backup, the component is gone again";
        EXPECT_EQ(stored("Destination0"), R"(G:\Copies)");
        EXPECT_EQ(stored("Source0"), R"(C:\Docs)");
    }
}

TEST_F(LineRowsTest, ARestoreStoresBothPathsTogether) {
    startWithLine();
    reverse();
    system->lines[0].source = R"(C:\Other)";
    form->lines.edit(0, LineSide::left, R"(G:\Copies)");
    EXPECT_EQ(stored("Source0"), R"(C:\Other)");
    EXPECT_EQ(stored("Destination0"), R"(G:\Copies)");
}

TEST_F(LineRowsTest, StoreSourceAndStoreDestinationTakeWhatTheLabelsHold) {
    startWithLine();
    row(0).LblS.setPath(R"(C:\A)");
    form->lines.StoreSource(0);
    EXPECT_EQ(stored("Source0"), R"(C:\A)");
    row(0).LblD.setPath(R"(G:\B)");
    form->lines.StoreDestination(0);
    EXPECT_EQ(stored("Destination0"), R"(G:\B)");
}

TEST_F(LineRowsTest, EmptyingTheLeftLabelReversedUnticksTheLine) {
    startWithLine();
    reverse();
    form->lines.edit(0, LineSide::left, "");
    EXPECT_EQ(system->lines[0].destination, "");
    EXPECT_FALSE(row(0).ChkS.checked());
    EXPECT_EQ(stored("Select0"), "0");
    EXPECT_EQ(stored("Source0"), R"(C:\Docs)");
}

// ---- exclusions ----------------------------------------------------------------------------

TEST_F(LineRowsTest, ExclusionsNeedASource) {
    start("[General]\nDestination0=\"F:\\Save\"\n");
    user().answer(Answer::ok);
    row(0).CmdEx.click();
    EXPECT_THAT(lastMessage(),
                IsMessage("Sélectionnez d'abord un disque ou répertoire à sauvegarder !",
                          "Coffrelune Version 3.05", MessageIcon::information));
    EXPECT_THAT(user().shown(), IsEmpty());
}

TEST_F(LineRowsTest, ExclusionsOpenOnTheLinesSourceInEitherLayout) {
    startWithLine("Source1=\"C:\\Photos\"\nDestination1=\"F:\\Save\"\n");
    for (const char* tab : {"S", "R"}) {
        pickTab(tab);
        user().stepIn<ExcludeForm>([](ExcludeForm& dialog) {
            EXPECT_EQ(dialog.SourceLbl.path(), R"(C:\Photos)");
            dialog.OptExclu[1].click();
            dialog.Cmd[0].click();
        });
        row(1).CmdEx.click();
        EXPECT_EQ(stored("RepExclu1_Mode"), "1");
    }
}

// ---- number of rows ------------------------------------------------------------------------

TEST_F(LineRowsTest, MoreRowsKeepEveryLine) {
    startWithLine("Source5=\"C:\\Photos\"\n");
    int told = 0;
    const auto before = form->lines.onRowsChanged;
    form->lines.onRowsChanged = [&] {
        ++told;
        before();
    };
    form->lines.SetRowCount(8);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(form->lines.count(), 9);
    EXPECT_EQ(system->lines.size(), 9U);
    EXPECT_EQ(left(0), R"(C:\Docs)");
    EXPECT_EQ(left(5), R"(C:\Photos)");
    EXPECT_EQ(row(8).NumLbl.caption(), "9.");
    EXPECT_EQ(stored("Position", "RepertMax"), "9");
}

TEST_F(LineRowsTest, FewerRowsCutTheLinesBeyondThem) {
    startWithLine("Source5=\"C:\\Photos\"\n");
    row(5).LblS.press();
    form->lines.SetRowCount(2);
    EXPECT_EQ(form->lines.count(), 3);
    EXPECT_EQ(system->lines.size(), 3U);
    EXPECT_EQ(stored("Position", "RepertMax"), "3");
    EXPECT_EQ(stored("Source5"), R"(C:\Photos)") << "the stored line is left alone";
    EXPECT_EQ(form->lineCommands.row(), 2) << "the toolbar acts on a row that exists";
}

TEST_F(LineRowsTest, MarksALineAsDone) {
    startWithLine();
    form->showLineDone(0, true);
    EXPECT_TRUE(row(0).ImgOk.visible());
    form->showLineDone(0, false);
    EXPECT_FALSE(row(0).ImgOk.visible());
}

}  // namespace
}  // namespace coffrelune
