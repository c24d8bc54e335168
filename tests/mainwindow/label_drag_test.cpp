// Dragging paths between labels and folders onto them.
#include "mainwindow/main_form_fixture.h"

namespace coffrelune {
namespace {

using Dragged = PathLabel::Dragged;

class LabelDragTest : public MainFormTest {
  protected:
    static Dragged text(const std::string& text) { return {true, text, {}}; }
    static Dragged files(const Texts& files) { return {false, "", files}; }
};

TEST_F(LabelDragTest, APressOffersTheLabelsFullPath) {
    startWithLine();
    row(0).LblS.press();
    EXPECT_EQ(form->drag.data(), R"(C:\Docs)");
    row(0).LblD.press();
    EXPECT_EQ(form->drag.data(), R"(F:\Save)");
}

TEST_F(LabelDragTest, AnEmptyLabelStartsNothing) {
    startWithLine();
    row(0).LblS.press();
    row(1).LblS.press();
    EXPECT_EQ(form->drag.data(), "");
}

TEST_F(LabelDragTest, OnlyTextAndFilesAreAccepted) {
    EXPECT_EQ(LabelDrag::over(text("x")), LabelDrag::Effect::copy);
    EXPECT_EQ(LabelDrag::over(files({"x"})), LabelDrag::Effect::copy);
    EXPECT_EQ(LabelDrag::over(Dragged{}), LabelDrag::Effect::none);
    startWithLine();
    const std::size_t writes = writeCount();
    row(0).LblS.drop(Dragged{});
    form->drag.drop(0, LineSide::left, Dragged{});
    EXPECT_EQ(writeCount(), writes);
    EXPECT_EQ(left(0), R"(C:\Docs)");
}

TEST_F(LabelDragTest, ATextReplacesThePathOfItsRowAndSide) {
    startWithLine();
    row(1).LblD.drop(text(R"(G:\Copies)"));
    EXPECT_EQ(right(1), R"(G:\Copies)");
    EXPECT_EQ(stored("Destination1"), R"(G:\Copies)");
    row(0).LblS.drop(text(R"(C:\Photos)"));
    EXPECT_EQ(stored("Source0"), R"(C:\Photos)");
}

TEST_F(LabelDragTest, APathGoesFromOneRowAndSideToAnother) {
    startWithLine();
    row(0).LblD.press();
    row(3).LblS.drop(text(form->drag.data()));
    EXPECT_EQ(stored("Source3"), R"(F:\Save)");
    EXPECT_EQ(right(0), R"(F:\Save)");
}

TEST_F(LabelDragTest, NoBackupStartsWhileAPathIsDragged) {
    startWithLine("AutoSave=1\nAutoTime=12:00\n");
    setClock(2025, 3, 14, 12, 0, 5);
    row(0).LblS.press();
    row(0).LblS.drag(true);
    EXPECT_EQ(tick(), 0);
    row(1).LblS.drop(text(form->drag.data()));
    EXPECT_EQ(stored("Source1"), R"(C:\Docs)") << "the drag itself is no obstacle to its end";
    row(0).LblS.drag(false);
    EXPECT_EQ(tick(), 1);
}

TEST_F(LabelDragTest, ADragThatWasGivenUpLetsBackupsStartAgain) {
    startWithLine("AutoSave=1\nAutoTime=12:00\n");
    setClock(2025, 3, 14, 12, 0, 5);
    row(0).LblS.drag(true);
    row(0).LblS.drag(false);
    EXPECT_EQ(tick(), 1);
}

TEST_F(LabelDragTest, OfSeveralFilesTheFirstCounts) {
    startWithLine();
    row(1).LblS.drop(files({R"(C:\One)", R"(C:\Two)"}));
    EXPECT_EQ(stored("Source1"), R"(C:\One)");
    EXPECT_EQ(left(1), R"(C:\One)");
    EXPECT_EQ(left(2), "");
}

TEST_F(LabelDragTest, AnEmptyTextEmptiesNothing) {
    startWithLine();
    row(0).LblS.drop(text(""));
    EXPECT_EQ(left(0), R"(C:\Docs)");
}

TEST_F(LabelDragTest, ATextOfNothingButALineEndOrQuotesEmptiesNothing) {
    startWithLine();
    for (const char* nothing : {"\n", "\r\n", "\"\"", "''\n"}) {
        row(0).LblS.drop(text(nothing));
        EXPECT_EQ(left(0), R"(C:\Docs)");
    }
}

TEST_F(LabelDragTest, APathFromOneOfItsLabelsStaysAsItIs) {
    startWithLine();
    form->lines.edit(0, LineSide::left, "C:\\Docs\n");
    row(0).LblS.press();
    row(1).LblS.drop(text(form->drag.data()));
    EXPECT_EQ(system->lines[1].source, "C:\\Docs\n") << "a line end may belong to a name";
}

TEST_F(LabelDragTest, ADropInTheReversedLayoutIsTakenApartAsAnEditIs) {
    startWithLine();
    pickTab("R");
    row(0).LblS.press();
    row(0).LblS.drop(text(form->drag.data()));
    EXPECT_EQ(left(0), R"(F:\Save\Docs)");
    EXPECT_EQ(system->lines[0].destination, R"(F:\Save)");
    row(0).LblS.drop(files({R"(G:\Copies)"}));
    EXPECT_EQ(stored("Destination0"), R"(G:\Copies)");
}

TEST_F(LabelDragTest, NothingIsDroppedWhileSomethingIsOpen) {
    startWithLine();
    windows.whileOpen = [&] { row(0).LblS.drop(text(R"(C:\Other)")); };
    user().chooseNextFolder("");
    row(0).CmdS.click();
    EXPECT_EQ(left(0), R"(C:\Docs)");
}

TEST_F(LabelDragTest, ANativePathIsTurnedIntoItsDriveFormWhereItEnters) {
    NativeDrives drives;
    Platform native{memory.files(), drives,          memory.clock(), memory.locale(),
                    ansi,           memory.sounds(), windows};
    SystemMod other(native, {"", home, 3, 5});
    other.LoadSettings();
    MainForm window(other, desktop);
    window.lines.row(0).LblS.drop(files({"/Photos"}));
    window.lines.row(0).LblD.drop(text("/Save"));
    EXPECT_EQ(other.lines[0].source, R"(C:\Photos)");
    EXPECT_EQ(other.lines[0].destination, R"(C:\Save)");
    window.lines.row(1).LblS.drop(text("file:///Mes%20photos\r\n"));
    window.lines.row(1).LblD.drop(text("\"/Save\"\n"));
    EXPECT_EQ(other.lines[1].source, R"(C:\Mes photos)");
    EXPECT_EQ(other.lines[1].destination, R"(C:\Save)");
    window.lines.row(2).LblS.drop(text("hello world"));
    EXPECT_EQ(other.lines[2].source, "hello world");
}

}  // namespace
}  // namespace coffrelune
