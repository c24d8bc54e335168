#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/memory_windows.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(MemoryChoosers, GiveThePreparedPathsAndKeepWhatWasAsked) {
    MemoryWindows windows;
    windows.chooseNextFolder(R"(C:\Docs)");
    windows.chooseNextFolder("");
    windows.chooseNextFile(R"(C:\a.exe)");
    EXPECT_EQ(windows.chooseFolder(true, "Où ?", R"(C:\)"), R"(C:\Docs)");
    EXPECT_EQ(windows.chooseFolder(false, "Encore ?", ""), "");
    EXPECT_EQ(windows.chooseFile("Programme", "Tous|*.*"), R"(C:\a.exe)");
    EXPECT_THAT(windows.folderChoosers(),
                ElementsAre(MemoryWindows::FolderChooser{true, "Où ?", R"(C:\)"},
                            MemoryWindows::FolderChooser{false, "Encore ?", ""}));
    EXPECT_THAT(windows.fileChoosers(),
                ElementsAre(MemoryWindows::FileChooser{"Programme", "Tous|*.*"}));
    EXPECT_THAT(windows.problems(), IsEmpty());
}

TEST(MemoryChoosers, AreAProblemAndCancelledWhenNotExpected) {
    MemoryWindows windows;
    EXPECT_EQ(windows.chooseFolder(false, "Où ?", ""), "");
    EXPECT_EQ(windows.chooseFile("Programme", ""), "");
    EXPECT_THAT(windows.problems(),
                ElementsAre("chooser not expected: Où ?", "chooser not expected: Programme"));
}

TEST(MemoryChoosers, PathsThatWereNotAskedForAreAProblem) {
    MemoryWindows windows;
    windows.chooseNextFolder("a");
    windows.chooseNextFile("b");
    EXPECT_THAT(windows.problems(), ElementsAre("2 choices left over"));
}

}  // namespace
}  // namespace coffrelune
