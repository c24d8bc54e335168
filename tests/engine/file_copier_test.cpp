#include "engine/file_copier.h"

#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::uint64_t spring = fileTimeAt(2024, 3, 1, 8, 15) + 1234567;

class FileCopierTest : public testing::Test, protected EngineBench {
  protected:
    FileCopierTest() {
        disk().file("C:\\a.txt", "content", spring);
        system.options.SynchroDate = 0;
    }

    Status copy(const std::string& source = "C:\\a.txt", const std::string& to = "F:\\a.txt") {
        FileEntry entry;
        EXPECT_TRUE(memory.files().lookUp(source, LinkRule::follow, entry).ok());
        faulty.restart();
        return copyAs(entry, source, to);
    }
    Status copyAs(const FileEntry& entry, const std::string& source, const std::string& to) {
        memory.files().clearCalls();
        return copier.copy(entry, source, to, LinkRule::refuse);
    }

    bool make(const std::string& path) {
        memory.files().clearCalls();
        bool created = false;
        EXPECT_TRUE(copier.createPath(path, DirectoryAccess::usual, created).ok()) << path;
        return created;
    }

    Progress progress{state};
    FileCopier copier{system, progress};
};

// ---- attempts
// ------------------------------------------------------------------------------------

TEST_F(FileCopierTest, CopiesAtTheFirstAttempt) {
    EXPECT_TRUE(copy().ok());
    EXPECT_THAT(memory.files().writes(), ElementsAre("copyFile C:\\a.txt F:\\a.txt"));
    EXPECT_EQ(disk().content("F:\\a.txt"), "content");
}

TEST_F(FileCopierTest, OverwritesAReadOnlyFileAtTheSecondAttempt) {
    disk().file("F:\\a.txt", "old", spring - 1, attribute::readOnly | attribute::hidden);
    EXPECT_TRUE(copy().ok());
    EXPECT_THAT(memory.files().writes(),
                ElementsAre("copyFile C:\\a.txt F:\\a.txt", "setAttributes F:\\a.txt 128",
                            "copyFile C:\\a.txt F:\\a.txt"));
    EXPECT_EQ(disk().content("F:\\a.txt"), "content");
}

TEST_F(FileCopierTest, GivesUpAfterTheSecondAttemptWithItsNumber) {
    const FileEntry entry = disk().find("C:\\a.txt")->entry();
    faulty.fail("copyFile", "C:\\a.txt", error_number::accessDenied, 1);
    faulty.fail("copyFile", "C:\\a.txt", error_number::diskFull);
    EXPECT_EQ(copyAs(entry, "C:\\a.txt", "F:\\a.txt").code(), error_number::diskFull);
    EXPECT_EQ(faulty.failureCount(), 2U);
}

TEST_F(FileCopierTest, LeavesAttributesAndTimesAloneAfterAFailure) {
    system.options.SynchroDate = -1;
    system.options.DelReadOnly = -1;
    disk().file("C:\\a.txt", "content", spring, attribute::readOnly);
    disk().file("F:\\a.txt", "old", spring - 5, attribute::hidden);
    disk().setInUse("C:\\a.txt");
    EXPECT_EQ(copy().code(), error_number::sharingViolation);
    EXPECT_EQ(disk().content("F:\\a.txt"), "old");
    EXPECT_EQ(disk().lastWrite("F:\\a.txt"), spring - 5);
    EXPECT_THAT(memory.files().calls("setTimes"), IsEmpty());
    // That of the second attempt alone.
    EXPECT_THAT(memory.files().calls("setAttributes"), ElementsAre("setAttributes F:\\a.txt 128"));
}

TEST_F(FileCopierTest, MakesNoSecondAttemptAtAnAbandonedCopy) {
    disk().file("F:\\a.txt", "old", spring - 5, attribute::readOnly);
    memory.files().abandonCopies();
    EXPECT_EQ(copy().code(), error_number::requestAborted);
    EXPECT_THAT(memory.files().writes(), ElementsAre("copyFile C:\\a.txt F:\\a.txt"));
    EXPECT_EQ(disk().attributes("F:\\a.txt"), attribute::readOnly);
}

// ---- attributes and times
// ------------------------------------------------------------------------

TEST_F(FileCopierTest, TakesTheReadOnlyBitOffTheCopy) {
    system.options.DelReadOnly = -1;
    disk().file("C:\\a.txt", "content", spring, attribute::readOnly | attribute::hidden);
    EXPECT_TRUE(copy().ok());
    EXPECT_EQ(disk().attributes("F:\\a.txt"), attribute::hidden);
}

TEST_F(FileCopierTest, KeepsTheReadOnlyBitWithoutTheOption) {
    disk().file("C:\\a.txt", "content", spring, attribute::readOnly);
    EXPECT_TRUE(copy().ok());
    EXPECT_EQ(disk().attributes("F:\\a.txt"), attribute::readOnly);
}

TEST_F(FileCopierTest, SetsNoAttributesForAWritableSource) {
    system.options.DelReadOnly = -1;
    EXPECT_TRUE(copy().ok());
    EXPECT_THAT(memory.files().calls("setAttributes"), IsEmpty());
}

TEST_F(FileCopierTest, NeverSetsTheReadOnlyBit) {
    copier.setAttributes("C:\\a.txt", attribute::readOnly | attribute::hidden);
    EXPECT_EQ(disk().attributes("C:\\a.txt"), attribute::hidden);
    EXPECT_THAT(memory.files().calls("setAttributes"), ElementsAre("setAttributes C:\\a.txt 2"));
}

TEST_F(FileCopierTest, GivesTheCopyAllTimesOfTheListedSource) {
    system.options.SynchroDate = -1;
    FileEntry entry = disk().find("C:\\a.txt")->entry();
    entry.times = {spring + 1, spring + 2, spring + 3};
    EXPECT_TRUE(copyAs(entry, "C:\\a.txt", "F:\\a.txt").ok());
    EXPECT_EQ(disk().find("F:\\a.txt")->times, entry.times);
}

TEST_F(FileCopierTest, SetsNoTimesWithoutTheOption) {
    EXPECT_TRUE(copy().ok());
    EXPECT_THAT(memory.files().calls("setTimes"), IsEmpty());
}

TEST_F(FileCopierTest, TakesAFailureToSetTimesForNoError) {
    system.options.SynchroDate = -1;
    const FileEntry entry = disk().find("C:\\a.txt")->entry();
    faulty.fail("setTimes", "", error_number::accessDenied);
    EXPECT_TRUE(copyAs(entry, "C:\\a.txt", "F:\\a.txt").ok());
    EXPECT_EQ(faulty.failureCount(), 1U);
    EXPECT_EQ(disk().lastWrite("F:\\a.txt"), spring);
}

// ---- notifications
// -------------------------------------------------------------------------------

TEST_F(FileCopierTest, IsToldOfProgressWhereTheSystemCan) {
    statistics.totalBytes = 7;
    system.OsLevel = 1;
    EXPECT_TRUE(copy().ok());
    EXPECT_EQ(window.percentages.back().first, 100);
}

TEST_F(FileCopierTest, IsToldNothingInTheAlternativeMode) {
    system.options.AltCopie = -1;
    EXPECT_TRUE(copy().ok());
    EXPECT_THAT(window.percentages, IsEmpty());
    EXPECT_EQ(disk().content("F:\\a.txt"), "content");
}

TEST_F(FileCopierTest, IsToldNothingByASystemThatCannot) {
    system.OsLevel = 0;
    EXPECT_TRUE(copy().ok());
    EXPECT_THAT(window.percentages, IsEmpty());
    EXPECT_EQ(disk().content("F:\\a.txt"), "content");
}

// ---- directories
// ---------------------------------------------------------------------------------

TEST_F(FileCopierTest, CreatesEveryMissingLevel) {
    EXPECT_TRUE(make("F:\\Save\\Docs\\Mai"));
    EXPECT_THAT(memory.files().calls("createDirectory"),
                ElementsAre("createDirectory F:\\Save", "createDirectory F:\\Save\\Docs",
                            "createDirectory F:\\Save\\Docs\\Mai"));
    EXPECT_TRUE(disk().exists("F:\\Save\\Docs\\Mai"));
}

TEST_F(FileCopierTest, KeepsOthersOutOfTheLastLevelAlone) {
    bool created = false;
    EXPECT_TRUE(copier.createPath("F:\\Save\\Docs", DirectoryAccess::ownerOnly, created).ok());
    EXPECT_EQ(disk().find("F:\\Save")->mode, MemoryNode::usualMode);
    EXPECT_EQ(disk().find("F:\\Save\\Docs")->mode, MemoryNode::ownerOnlyMode);
}

TEST_F(FileCopierTest, TellsWhetherTheLastLevelWasMadeNow) {
    disk().directory("F:\\Save");
    EXPECT_FALSE(make("F:\\Save"));
    EXPECT_FALSE(make("F:\\Save\\"));
    EXPECT_FALSE(make("F:\\"));
    EXPECT_TRUE(make("F:\\Save\\Docs\\"));
}

TEST_F(FileCopierTest, StartsBelowTheShareOfANetworkPath) {
    disk().volume("\\\\nas\\photos");
    EXPECT_TRUE(make("\\\\nas\\photos\\Save\\Docs"));
    EXPECT_TRUE(disk().exists("\\\\nas\\photos\\Save\\Docs"));
    EXPECT_THAT(memory.files().calls("createDirectory"),
                ElementsAre("createDirectory \\\\nas\\photos\\Save",
                            "createDirectory \\\\nas\\photos\\Save\\Docs"));
}

TEST_F(FileCopierTest, StopsAtAnEmptyComponent) {
    bool created = false;
    EXPECT_EQ(copier.createPath("F:\\Save\\\\Docs", DirectoryAccess::usual, created).code(),
              error_number::pathNotFound);
    EXPECT_TRUE(disk().exists("F:\\Save"));
    EXPECT_FALSE(disk().exists("F:\\Save\\Docs"));
}

TEST_F(FileCopierTest, SucceedsThoughALevelCannotBeMadeThatIsThere) {
    disk().directory("F:\\Save");
    faulty.fail("createDirectory", "F:\\Save", error_number::accessDenied);
    EXPECT_TRUE(make("F:\\Save\\Docs"));
    EXPECT_EQ(faulty.failureCount(), 1U);
}

TEST_F(FileCopierTest, TellsWhyADirectoryCouldNotBeMade) {
    bool created = true;
    disk().volume("F:\\").writeProtected = true;
    EXPECT_EQ(copier.createPath("F:\\Save\\Docs", DirectoryAccess::usual, created).code(),
              error_number::writeProtect);
    EXPECT_FALSE(created);
    EXPECT_EQ(copier.createPath("G:\\Save", DirectoryAccess::usual, created).code(),
              error_number::pathNotFound);
}

// Systems refuse to make a root with a number of their own.
TEST_F(FileCopierTest, AsksForNoRootSoThatItsRefusalHidesNothing) {
    for (const char* root : {"F:", "F:\\", "\\\\nas\\photos", "\\\\nas\\photos\\"}) {
        faulty.fail("createDirectory", root, error_number::accessDenied);
    }
    disk().volume("F:\\").writeProtected = true;
    disk().volume("\\\\nas\\photos").writeProtected = true;
    bool created = true;
    for (const char* path : {"F:\\Save", "F:\\Save\\Docs\\", "\\\\nas\\photos\\Docs"}) {
        EXPECT_EQ(copier.createPath(path, DirectoryAccess::usual, created).code(),
                  error_number::writeProtect)
            << path;
        EXPECT_FALSE(created);
    }
    for (const char* path : {"F:\\", "\\\\nas\\photos"}) EXPECT_FALSE(make(path)) << path;
    EXPECT_EQ(faulty.failureCount(), 0U);
}

TEST_F(FileCopierTest, FailsWhereAFileBearsTheName) {
    disk().file("F:\\Save", "a file");
    bool created = true;
    EXPECT_EQ(copier.createPath("F:\\Save", DirectoryAccess::usual, created).code(),
              error_number::notADirectory);
    EXPECT_FALSE(created);
    EXPECT_EQ(disk().content("F:\\Save"), "a file");
}

}  // namespace
}  // namespace coffrelune
