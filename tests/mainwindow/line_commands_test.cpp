// The row menu and the toolbar's commands on one line.
#include "dialogs/text_dialogs.h"
#include "mainwindow/main_form_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

using Chooser = MemoryWindows::FolderChooser;

constexpr const char* threeLines =
    "[Position]\nRepertMax=3\n"
    "[General]\n"
    "Source0=\"C:\\Docs\"\nDestination0=\"F:\\Save\"\nSelect0=1\n"
    "RepExclu0_Mode=2\nRepExclu0_Rep1=\\Tmp\nRepExclu0_Rep2=\\Old\n"
    "Source1=\"C:\\Photos\"\nDestination1=\"G:\\Save\"\nSelect1=0\n"
    "RepExclu1_Mode=1\n"
    "Source2=\"C:\\Music\"\n";

class LineCommandsTest : public MainFormTest {
  protected:
    CommandBar& menu() { return form->lineCommands.MenuPop; }
    CommandBar& bar() { return form->toolbar.TB; }

    Texts keys(const CommandBar& commands) {
        Texts found;
        for (const CommandBar::Command& each : commands.commands()) found.push_back(each.key);
        return found;
    }
};

TEST_F(LineCommandsTest, MenuAndToolbarOfferTheSameTools) {
    start();
    EXPECT_THAT(keys(menu()), ElementsAre("ModifRep", "ModifRepFich", "Editer", "Prop", "LigneUp",
                                          "LigneDown", "DeleteLigne"));
    EXPECT_THAT(keys(bar()), ElementsAre("Config", "Description", "ModifRep", "ModifRepFich",
                                         "Editer", "Prop", "LigneUp", "LigneDown", "DeleteLigne",
                                         "ModifDest", "Aide", "APropos", "Quitter"));
    for (const CommandBar::Command& each : bar().commands()) EXPECT_NE(each.toolTip, "");
}

TEST_F(LineCommandsTest, ARightClickOpensTheMenuOfItsRowAndSide) {
    start(threeLines);
    int opened = 0;
    form->lineCommands.onPopup = [&] { ++opened; };
    row(0).LblS.rightClick();
    EXPECT_EQ(opened, 1);
    EXPECT_TRUE(menu().find("ModifRepFich")->visible);
    EXPECT_FALSE(menu().find("LigneUp")->enabled);
    EXPECT_TRUE(menu().find("LigneDown")->enabled);
    row(2).LblD.rightClick();
    EXPECT_FALSE(menu().find("ModifRepFich")->visible) << "a destination is no file";
    EXPECT_TRUE(menu().find("LigneUp")->enabled);
    EXPECT_FALSE(menu().find("LigneDown")->enabled);
    row(1).LblS.rightClick();
    EXPECT_TRUE(menu().find("ModifRepFich")->visible);
    EXPECT_TRUE(menu().find("LigneUp")->enabled);
    EXPECT_TRUE(menu().find("LigneDown")->enabled);
    EXPECT_EQ(form->lineCommands.row(), 1);
    EXPECT_EQ(form->lineCommands.side(), LineSide::left);
}

TEST_F(LineCommandsTest, NothingElseOpensWhileTheMenuIsOpen) {
    start(threeLines);
    bool asked = false;
    form->lineCommands.onPopup = [&] {
        form->toolbar.TB.pick("APropos");  // a window that nobody expects fails the test
        asked = true;
    };
    row(0).LblS.rightClick();
    EXPECT_TRUE(asked);
}

TEST_F(LineCommandsTest, ModifRepChoosesForTheSideThatWasPressed) {
    start(threeLines);
    user().chooseNextFolder(R"(C:\New)");
    command("ModifRep", 1, LineSide::left);
    EXPECT_EQ(user().folderChoosers().back(),
              (Chooser{false, "Sélectionnez le répertoire source:", R"(C:\Photos)"}));
    EXPECT_EQ(stored("Source1"), R"(C:\New)");
    user().chooseNextFolder(R"(H:\New)");
    row(1).LblD.rightClick();
    menu().pick("ModifRep");
    EXPECT_EQ(user().folderChoosers().back(),
              (Chooser{false, "Sélectionnez le répertoire destination:", R"(G:\Save)"}));
    EXPECT_EQ(stored("Destination1"), R"(H:\New)");
}

TEST_F(LineCommandsTest, ModifRepFichMayChooseASingleFile) {
    start(threeLines);
    user().chooseNextFolder(R"(C:\Docs\a.txt)");
    row(1).LblS.rightClick();
    menu().pick("ModifRepFich");
    EXPECT_EQ(
        user().folderChoosers().back(),
        (Chooser{true, "Sélectionnez le répertoire (ou le fichier) source:", R"(C:\Photos)"}));
    EXPECT_EQ(stored("Source1"), R"(C:\Docs\a.txt)");
    EXPECT_EQ(left(1), R"(C:\Docs\a.txt)");
}

TEST_F(LineCommandsTest, EditerHandsOverThePathAndItsSide) {
    start(threeLines);
    user().stepIn<LineForm>([](LineForm& dialog) {
        EXPECT_EQ(dialog.caption(), "Répertoire source");
        EXPECT_EQ(dialog.Txt.text(), R"(C:\Photos)");
        dialog.Txt.type(R"(C:\Typed)");
        dialog.Cmd[0].click();
    });
    command("Editer", 1, LineSide::left);
    EXPECT_EQ(left(1), R"(C:\Typed)");
    EXPECT_EQ(stored("Source1"), R"(C:\Typed)");
    user().stepIn<LineForm>([](LineForm& dialog) {
        EXPECT_EQ(dialog.caption(), "Répertoire destination");
        EXPECT_EQ(dialog.Txt.text(), R"(G:\Save)");
        dialog.Txt.type(R"(H:\Typed)");
        dialog.Cmd[0].click();
    });
    command("Editer", 1, LineSide::right);
    EXPECT_EQ(stored("Destination1"), R"(H:\Typed)");
}

TEST_F(LineCommandsTest, EditerTakesANativePathButNoCurrentDirectory) {
    NativeDrives drives;
    Platform native{memory.files(), drives,          memory.clock(), memory.locale(),
                    ansi,           memory.sounds(), windows};
    SystemMod other(native, {"", home, 3, 5});
    other.LoadSettings();
    MainForm window(other, desktop);
    const auto edit = [&](const char* text) {
        user().stepIn<LineForm>([text](LineForm& dialog) {
            dialog.Txt.type(text);
            dialog.Cmd[0].click();
        });
        (void)window.lineCommands.run("Editer");
        return other.lines[0].source;
    };
    EXPECT_EQ(edit("/Photos"), R"(C:\Photos)");
    for (const char* text : {"relative", "hello world", R"("C:\quoted")", "file:///tmp/a%20b"}) {
        EXPECT_EQ(edit(text), text);
    }
}

TEST_F(LineCommandsTest, EditerCancelledChangesNothingAndAnEmptyTextEmptiesThePath) {
    start(threeLines);
    const std::size_t writes = writeCount();
    user().stepIn<LineForm>([](LineForm& dialog) { dialog.Cmd[1].click(); });
    command("Editer", 0);
    user().stepIn<LineForm>([](LineForm& dialog) { dialog.closeBox(); });
    command("Editer", 0);
    EXPECT_EQ(left(0), R"(C:\Docs)");
    EXPECT_EQ(writeCount(), writes);
    user().stepIn<LineForm>([](LineForm& dialog) {
        dialog.Cmd[2].click();
        dialog.Cmd[0].click();
    });
    command("Editer", 0);
    EXPECT_EQ(left(0), "");
    EXPECT_EQ(stored("Source0"), "");
    EXPECT_FALSE(row(0).ChkS.checked());
    EXPECT_EQ(stored("Select0"), "0");
}

TEST_F(LineCommandsTest, PropShowsThePropertiesOfAPathThatIsThere) {
    start(threeLines);
    command("Prop", 0, LineSide::left);
    command("Prop", 0, LineSide::right);
    command("Prop", 2, LineSide::right);
    EXPECT_THAT(shell().properties(), ElementsAre(R"(C:\Docs)", R"(F:\Save)"));
}

// ---- moving --------------------------------------------------------------------------------

TEST_F(LineCommandsTest, MovingALineExchangesEverythingOfTheTwo) {
    start(threeLines);
    command("LigneDown", 0);
    EXPECT_EQ(left(0), R"(C:\Photos)");
    EXPECT_EQ(right(0), R"(G:\Save)");
    EXPECT_FALSE(row(0).ChkS.checked());
    EXPECT_EQ(left(1), R"(C:\Docs)");
    EXPECT_EQ(right(1), R"(F:\Save)");
    EXPECT_TRUE(row(1).ChkS.checked());
    EXPECT_EQ(stored("Source0"), R"(C:\Photos)");
    EXPECT_EQ(stored("Destination0"), R"(G:\Save)");
    EXPECT_EQ(stored("Select0"), "0");
    EXPECT_EQ(stored("Source1"), R"(C:\Docs)");
    EXPECT_EQ(stored("Destination1"), R"(F:\Save)");
    EXPECT_EQ(stored("Select1"), "1");
}

TEST_F(LineCommandsTest, AMovedLineKeepsItsExclusions) {
    start(threeLines);
    command("LigneUp", 1);
    EXPECT_EQ(stored("RepExclu0_Mode"), "1");
    EXPECT_EQ(stored("RepExclu0_Rep1"), "");
    EXPECT_EQ(stored("RepExclu1_Mode"), "2");
    EXPECT_EQ(stored("RepExclu1_Rep1"), R"(\Tmp)");
    EXPECT_EQ(stored("RepExclu1_Rep2"), R"(\Old)");
    restart();
    system->LoadExclusions(1);
    EXPECT_EQ(system->exclusions.mode, ExclusionMode::listed);
    EXPECT_THAT(system->exclusions.directories, ElementsAre(R"(\Tmp)", R"(\Old)"));
}

TEST_F(LineCommandsTest, MovingThereAndBackLeavesTheSettingsAsTheyRead) {
    start(threeLines);
    command("LigneDown", 1);
    EXPECT_EQ(left(1), R"(C:\Music)");
    EXPECT_EQ(right(1), "");
    command("LigneUp", 2);
    EXPECT_EQ(left(1), R"(C:\Photos)");
    EXPECT_EQ(stored("RepExclu1_Mode"), "1");
    EXPECT_EQ(stored("Destination2"), "");
    EXPECT_EQ(stored("RepExclu2_Rep1"), "");
}

TEST_F(LineCommandsTest, PressingAgainMovesTheSameLineFurther) {
    start(threeLines);
    row(0).LblS.press();
    bar().pick("LigneDown");
    bar().pick("LigneDown");
    EXPECT_EQ(left(0), R"(C:\Photos)");
    EXPECT_EQ(left(1), R"(C:\Music)");
    EXPECT_EQ(left(2), R"(C:\Docs)");
    EXPECT_FALSE(bar().find("LigneDown")->enabled);
    EXPECT_TRUE(bar().find("LigneUp")->enabled);
}

TEST_F(LineCommandsTest, TellsWhereAMovedLineWent) {
    start(threeLines);
    std::vector<std::pair<int, LineSide>> moves;
    form->lineCommands.onMoved = [&](int row, LineSide side) {
        EXPECT_EQ(form->lineCommands.row(), row);
        moves.emplace_back(row, side);
    };
    command("LigneDown", 0, LineSide::right);
    command("LigneUp", 2);
    command("LigneUp", 0);
    command("LigneDown", 2);
    EXPECT_THAT(moves, ElementsAre(std::pair(1, LineSide::right), std::pair(1, LineSide::left)));
}

TEST_F(LineCommandsTest, TheFirstLineCannotGoUpNorTheLastOneDown) {
    start(threeLines);
    const std::size_t writes = writeCount();
    command("LigneUp", 0);
    command("LigneDown", 2);
    (void)form->lineCommands.run("LigneDown");
    row(0).LblS.press();
    (void)form->lineCommands.run("LigneUp");
    EXPECT_EQ(writeCount(), writes);
    EXPECT_EQ(left(0), R"(C:\Docs)");
    EXPECT_EQ(left(2), R"(C:\Music)");
}

TEST_F(LineCommandsTest, MovingInTheReversedLayoutMovesTheLinesNotTheirLabels) {
    start(threeLines);
    pickTab("R");
    command("LigneDown", 0);
    EXPECT_EQ(left(1), R"(F:\Save\Docs)");
    EXPECT_EQ(system->lines[1].destination, R"(F:\Save)");
    EXPECT_EQ(stored("Destination1"), R"(F:\Save)");
    EXPECT_EQ(stored("Source1"), R"(C:\Docs)");
}

TEST_F(LineCommandsTest, ASingleRowCannotMove) {
    start("[Position]\nRepertMax=1\n");
    EXPECT_FALSE(bar().find("LigneUp")->enabled);
    EXPECT_FALSE(bar().find("LigneDown")->enabled);
}

// ---- reset ---------------------------------------------------------------------------------

TEST_F(LineCommandsTest, DeleteLigneAsksAndEmptiesTheLineAndItsExclusions) {
    start(threeLines);
    user().answer(Answer::ok);
    command("DeleteLigne", 0);
    EXPECT_THAT(lastMessage(),
                IsQuestion("Remise à zéro de la sauvegarde 1 ?", "Coffrelune Version 3.05"));
    EXPECT_EQ(left(0), "");
    EXPECT_EQ(right(0), "");
    EXPECT_EQ(stored("Source0"), "");
    EXPECT_EQ(stored("Destination0"), "");
    EXPECT_EQ(stored("RepExclu0_Mode"), "0");
    EXPECT_EQ(stored("RepExclu0_Rep1"), "");
    EXPECT_EQ(stored("RepExclu0_Rep2"), "");
    EXPECT_FALSE(row(0).ChkS.checked());
    EXPECT_FALSE(row(0).ChkS.enabled());
    EXPECT_EQ(stored("Select0"), "0");
    EXPECT_EQ(left(1), R"(C:\Photos)");
}

TEST_F(LineCommandsTest, DeleteLigneNamesTheRowFromOneAndDoesNothingWhenRefused) {
    start(threeLines);
    const std::string before = settings();
    user().answer(Answer::cancel);
    command("DeleteLigne", 2);
    EXPECT_THAT(lastMessage(),
                IsQuestion("Remise à zéro de la sauvegarde 3 ?", "Coffrelune Version 3.05"));
    EXPECT_EQ(settings(), before);
    EXPECT_EQ(left(2), R"(C:\Music)");
}

TEST_F(LineCommandsTest, DeleteLigneEmptiesBothPathsInTheReversedLayoutToo) {
    start(threeLines);
    pickTab("R");
    user().answer(Answer::ok);
    command("DeleteLigne", 0);
    EXPECT_EQ(system->lines[0].source, "");
    EXPECT_EQ(system->lines[0].destination, "");
    EXPECT_EQ(stored("Source0"), "");
    EXPECT_EQ(stored("Destination0"), "");
}

// ---- directories behind a gap ----------------------------------------------------------------

constexpr const char* withGaps =
    "[Position]\nRepertMax=12\n"
    "[General]\n"
    "Source1=\"C:\\Docs\"\nDestination1=\"F:\\Save\"\n"
    "RepExclu1_Mode=2\nRepExclu1_Rep1=\\a\nRepExclu1_Rep3=\\c\nRepExclu1_Rep12=\\d\n"
    "Source2=\"C:\\Photos\"\nDestination2=\"F:\\Save\"\n"
    "RepExclu2_Mode=2\nRepExclu2_Rep1=\\x\nRepExclu2_Rep2=\\y\n"
    "RepExclu11_Mode=2\nRepExclu11_Rep1=\\eleven\nRepExclu11_Rep3=\\hidden\n";

TEST_F(LineCommandsTest, NoDirectoryBehindAGapJoinsTheLineThatTakesThePlace) {
    start(withGaps);
    command("LigneDown", 1);
    system->LoadExclusions(1);
    EXPECT_THAT(system->exclusions.directories, ElementsAre(R"(\x)", R"(\y)"));
    system->LoadExclusions(2);
    EXPECT_THAT(system->exclusions.directories, ElementsAre(R"(\a)"));
    EXPECT_EQ(stored("RepExclu1_Rep3"), "");
    EXPECT_EQ(stored("RepExclu1_Rep12"), "");
    EXPECT_EQ(stored("RepExclu11_Rep3"), R"(\hidden)");
}

TEST_F(LineCommandsTest, DeleteLigneEmptiesAListBehindItsGapToo) {
    start(withGaps);
    user().answer(Answer::ok);
    command("DeleteLigne", 1);
    for (const char* key : {"RepExclu1_Rep1", "RepExclu1_Rep3", "RepExclu1_Rep12"}) {
        EXPECT_EQ(stored(key), "") << key;
    }
    EXPECT_EQ(stored("RepExclu1_Mode"), "0");
    EXPECT_EQ(stored("RepExclu2_Rep2"), R"(\y)");
    EXPECT_EQ(stored("RepExclu11_Mode"), "2");
    EXPECT_EQ(stored("RepExclu11_Rep1"), R"(\eleven)");
    EXPECT_EQ(stored("RepExclu11_Rep3"), R"(\hidden)");
}

}  // namespace
}  // namespace coffrelune
