// The stop that the user asks for, and the copy that he gives up.
#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Interruption : public Engine {
  protected:
    Interruption() {
        for (const char* path :
             {"C:\\Docs\\a", "C:\\Docs\\b", "C:\\Docs\\A\\c", "C:\\Docs\\B\\d"}) {
            disk().file(path, "new");
        }
    }

    /// The user asks for a stop while `source` is being copied.
    void stopDuring(const std::string& source) {
        memory.files().copyHook = [this, source](const CopyMoment& moment) {
            if (moment.source == source) control.interruptionRequested = true;
        };
    }
};

TEST_F(Interruption, FinishesTheFileInProgress) {
    stopDuring("C:\\Docs\\a");
    act("C:\\Docs", "F:\\");
    EXPECT_EQ(disk().content("F:\\Docs\\a"), "new");
    EXPECT_EQ(memory.files().calls("copyFile").size(), 1U);
    EXPECT_EQ(statistics.tallies[0].files, 1U);
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(Interruption, StopsBeforeTheSubdirectories) {
    stopDuring("C:\\Docs\\b");
    act("C:\\Docs", "F:\\");
    EXPECT_EQ(memory.files().calls("copyFile").size(), 2U);
    EXPECT_EQ(statistics.directoriesRead, 1);
}

TEST_F(Interruption, StopsBetweenDirectories) {
    stopDuring("C:\\Docs\\A\\c");
    act("C:\\Docs", "F:\\");
    EXPECT_EQ(memory.files().calls("copyFile").size(), 3U);
    EXPECT_FALSE(disk().exists("F:\\Docs\\B"));
}

TEST_F(Interruption, StopsAnAnalysisAtTheNextEntry) {
    window.onEvents = [this] { control.interruptionRequested = true; };
    analyse("C:\\Docs", "F:\\");
    EXPECT_EQ(statistics.totalBytes, 3);
    EXPECT_EQ(statistics.directoriesRead, 1);
}

TEST_F(Interruption, StopsBetweenEmptyDirectories) {
    disk().directory("C:\\Vide\\A");
    disk().directory("C:\\Vide\\B");
    window.onEvents = [this] { control.interruptionRequested = true; };
    act("C:\\Vide", "F:\\");
    EXPECT_THAT(list("F:\\"), ElementsAre("F:\\Vide", "F:\\Vide\\A"));
}

TEST_F(Interruption, KeepsTheOldContentOfAnAbandonedCopy) {
    const std::uint64_t old = fileTimeAt(2010, 1, 1);
    disk().file("F:\\Docs\\b", "the old content", old);
    memory.files().setChunkSize(1);
    memory.files().copyHook = [this](const CopyMoment& moment) {
        if (moment.source == "C:\\Docs\\b" && moment.transferred == 2) {
            memory.files().abandonCopies();
        }
    };
    run("C:\\Docs", "F:\\");
    EXPECT_EQ(disk().content("F:\\Docs\\b"), "the old content");
    EXPECT_EQ(disk().lastWrite("F:\\Docs\\b"), old);
    EXPECT_THAT(list("F:\\"), ElementsAre("F:\\Docs", "F:\\Docs\\b", "F:\\Docs\\A", "F:\\Docs\\B",
                                          "F:\\Docs\\a"));
    EXPECT_TRUE(control.interruptionRequested);
    EXPECT_EQ(statistics.errorCount, 0);
    EXPECT_EQ(control.lastErrorNumber, 0U);
    EXPECT_THAT(window.journal, IsEmpty());
    EXPECT_EQ(statistics.tallies[0].files, 1U);
}

TEST_F(Interruption, CountsNoErrorForAnAbandonedSingleFile) {
    disk().file("F:\\a", "old");
    memory.files().copyHook = [this](const CopyMoment&) { memory.files().abandonCopies(); };
    run("C:\\Docs\\a", "F:\\");
    EXPECT_EQ(disk().content("F:\\a"), "old");
    EXPECT_THAT(list("F:\\"), ElementsAre("F:\\a"));
    EXPECT_TRUE(control.interruptionRequested);
    EXPECT_EQ(statistics.errorCount, 0);
    EXPECT_EQ(statistics.bytesDone, 0);
}

TEST_F(Interruption, LeavesTheRestToTheNextRun) {
    stopDuring("C:\\Docs\\b");
    run("C:\\Docs", "F:\\");
    memory.files().copyHook = nullptr;
    memory.files().clearCalls();
    run("C:\\Docs", "F:\\");
    EXPECT_EQ(memory.files().calls("copyFile").size(), 2U);
    EXPECT_EQ(disk().content("F:\\Docs\\B\\d"), "new");
}

}  // namespace
}  // namespace coffrelune
