#include "platform/posix/whole_file.h"

#include <gmock/gmock.h>

#include <cerrno>

#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

TEST(WholeFile, ReadsFilesOfTheKernelThatHaveNoSize) {
    std::string bytes;
    ASSERT_EQ(readWholeFile("/proc/self/mountinfo", 64U << 20, bytes), 0);
    EXPECT_THAT(bytes, testing::HasSubstr(" / "));
    EXPECT_EQ(readWholeFile("/proc/self/mountinfo", 10, bytes), EFBIG);
    EXPECT_EQ(bytes, "");
}

TEST(WholeFile, FifoIsRefusedAndNotWaitedFor) {
    const TemporaryDirectory disk;
    ASSERT_EQ(mkfifo(disk.at("tube").c_str(), 0666), 0);
    std::string bytes;
    EXPECT_EQ(readWholeFile(disk.at("tube"), 100, bytes), EACCES);
    EXPECT_EQ(writeWholeFile(disk.at("tube"), "abc", Durability::now), EACCES);
    EXPECT_TRUE(S_ISFIFO(disk.stat("tube").st_mode));
}

TEST(WholeFile, KeepsTheModeOfTheFileThatItReplaces) {
    const TemporaryDirectory disk;
    chmod(disk.write("a.ini", "old").c_str(), 0640);
    ASSERT_EQ(writeWholeFile(disk.at("a.ini"), "new", Durability::now), 0);
    EXPECT_EQ(disk.read("a.ini"), "new");
    EXPECT_EQ(disk.stat("a.ini").st_mode & 07777, 0640U);
}

TEST(WholeFile, KeepsTheOwnerWhenRootWritesAUsersFile) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can write another user's file";
    const TemporaryDirectory disk;
    disk.write("a.ini", "old");
    ASSERT_EQ(chown(disk.at("a.ini").c_str(), 65534, 65534), 0);
    ASSERT_EQ(writeWholeFile(disk.at("a.ini"), "new", Durability::now), 0);
    EXPECT_EQ(disk.stat("a.ini").st_uid, 65534U);
    EXPECT_EQ(disk.stat("a.ini").st_gid, 65534U);
}

TEST(WholeFile, NewFileFollowsTheUmask) {
    const TemporaryDirectory disk;
    const mode_t old = umask(0027);
    EXPECT_EQ(writeWholeFile(disk.at("a.ini"), "new", Durability::now), 0);
    umask(old);
    EXPECT_EQ(disk.stat("a.ini").st_mode & 07777, 0640U);
}

TEST(WholeFile, ReadOnlyFileStaysAsItIs) {
    const TemporaryDirectory disk;
    chmod(disk.write("a.ini", "old").c_str(), 0444);
    EXPECT_EQ(writeWholeFile(disk.at("a.ini"), "new", Durability::now), EACCES);
    EXPECT_EQ(disk.read("a.ini"), "old");
    EXPECT_THAT(disk.names(), ElementsAre("a.ini"));
}

TEST(WholeFile, FollowsAChainOfLinksAndCreatesTheirTarget) {
    const TemporaryDirectory disk;
    disk.makeDirectory("reel");
    ASSERT_EQ(symlink("lien2", disk.at("lien1").c_str()), 0);
    ASSERT_EQ(symlink("reel/a.ini", disk.at("lien2").c_str()), 0);
    ASSERT_EQ(writeWholeFile(disk.at("lien1"), "new", Durability::now), 0);
    EXPECT_EQ(disk.read("reel/a.ini"), "new");
    EXPECT_TRUE(S_ISLNK(disk.stat("lien1").st_mode));
}

TEST(WholeFile, DirectoryThatMayNotBeWrittenKeepsTheOldFile) {
    const TemporaryDirectory disk;
    disk.makeDirectory("ferme");
    disk.write("ferme/a.ini", "old");
    chmod(disk.at("ferme/a.ini").c_str(), 0666);
    chmod(disk.at("ferme").c_str(), 0555);
    {
        const WithoutPrivileges user;
        EXPECT_EQ(writeWholeFile(disk.at("ferme/a.ini"), "new", Durability::now), EACCES);
    }
    EXPECT_EQ(disk.read("ferme/a.ini"), "old");
    chmod(disk.at("ferme").c_str(), 0755);
}

}  // namespace
}  // namespace coffrelune
