#include "platform/memory/faulty_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

class FaultyFilesTest : public testing::Test {
  protected:
    FaultyFilesTest() {
        system.disk().file("C:\\a", "abc");
        system.disk().file("C:\\b", "abc");
        system.disk().volume("F:\\");
    }

    std::uint32_t copy(const std::string& from, const std::string& to) {
        return faulty.copyFile(from, to, LinkRule::refuse, nullptr).code();
    }

    MemoryPlatform system;
    FaultyFiles faulty{system.files()};
};

TEST_F(FaultyFilesTest, ForwardsAndCounts) {
    std::unique_ptr<Directory> opened;
    ASSERT_TRUE(faulty.openDirectory("C:\\", LinkRule::follow, Wanted::files, opened).ok());
    FileEntry found;
    EXPECT_TRUE(opened->next(found));
    EXPECT_TRUE(opened->lookUp("b", found));
    EXPECT_EQ(copy("C:\\a", "F:\\a"), 0U);
    EXPECT_EQ(faulty.resolve("c:\\a"), "C:\\a");
    FileId id;
    std::string bytes;
    EXPECT_TRUE(faulty.identify("F:\\a", id).ok());
    EXPECT_TRUE(faulty.createDirectory("F:\\Sous", DirectoryAccess::usual).ok());
    EXPECT_TRUE(faulty.setAttributes("F:\\a", 1).ok());
    EXPECT_TRUE(faulty.setTimes("F:\\a", {7, 7, 7}).ok());
    EXPECT_TRUE(faulty.readWhole("F:\\a", 10, bytes).ok());
    EXPECT_TRUE(faulty.writeWhole("F:\\c", "new", Durability::now).ok());
    EXPECT_TRUE(faulty.removeFile("F:\\c").ok());
    EXPECT_TRUE(faulty.removeLeftovers("F:\\").ok());
    EXPECT_TRUE(faulty.lookUp("F:\\a", LinkRule::refuse, found).ok());
    EXPECT_THAT(faulty.calls(),
                ElementsAre("openDirectory C:\\", "next C:\\", "find C:\\b", "copyFile C:\\a F:\\a",
                            "identify F:\\a", "createDirectory F:\\Sous", "setAttributes F:\\a",
                            "setTimes F:\\a", "readWhole F:\\a", "writeWhole F:\\c",
                            "removeFile F:\\c", "removeLeftovers F:\\", "lookUp F:\\a"));
    EXPECT_EQ(faulty.callCount(), 13U);
    EXPECT_EQ(faulty.failureCount(), 0U);
    EXPECT_EQ(system.disk().content("F:\\a"), "abc");
}

TEST_F(FaultyFilesTest, FailsTheCallOfANumberAndDoesNotForwardIt) {
    faulty.failCall(2, 1117);
    EXPECT_EQ(copy("C:\\a", "F:\\a"), 0U);
    EXPECT_EQ(copy("C:\\b", "F:\\b"), 1117U);
    EXPECT_EQ(copy("C:\\b", "F:\\c"), 0U);
    EXPECT_FALSE(system.disk().exists("F:\\b"));
    EXPECT_EQ(faulty.failureCount(), 1U);
}

TEST_F(FaultyFilesTest, FailsCallsByNameAndPath) {
    faulty.fail("copyFile", "F:\\a", 112);
    faulty.fail("copyFile", "C:\\b", 32, 1);
    faulty.fail("", "F:\\x", 5);
    EXPECT_EQ(copy("C:\\a", "F:\\a"), 112U);
    EXPECT_EQ(copy("C:\\a", "F:\\a"), 112U);
    EXPECT_EQ(copy("C:\\b", "F:\\b"), 32U);
    EXPECT_EQ(copy("C:\\b", "F:\\b"), 0U);
    EXPECT_EQ(faulty.createDirectory("F:\\x", DirectoryAccess::usual).code(), 5U);
    EXPECT_EQ(faulty.removeFile("F:\\x").code(), 5U);
    EXPECT_EQ(faulty.createDirectory("F:\\y", DirectoryAccess::usual).code(), 0U);
}

TEST_F(FaultyFilesTest, BreaksAListingOffHalfWay) {
    faulty.failCall(3, 1117);
    std::unique_ptr<Directory> opened;
    ASSERT_TRUE(faulty.openDirectory("C:\\", LinkRule::follow, Wanted::files, opened).ok());
    FileEntry found;
    EXPECT_TRUE(opened->next(found));
    EXPECT_TRUE(opened->status().ok());
    EXPECT_FALSE(opened->next(found));
    EXPECT_EQ(opened->status().code(), 1117U);
    EXPECT_FALSE(opened->next(found));
    EXPECT_EQ(opened->status().code(), 1117U);
}

TEST_F(FaultyFilesTest, LookUpInADirectoryMayFail) {
    faulty.fail("find", "C:\\a", 5);
    std::unique_ptr<Directory> opened;
    ASSERT_TRUE(faulty.openDirectory("C:\\", LinkRule::follow, Wanted::files, opened).ok());
    FileEntry found;
    EXPECT_TRUE(opened->status().ok());
    EXPECT_FALSE(opened->lookUp("a", found));
    EXPECT_TRUE(opened->lookUp("b", found));
    EXPECT_EQ(opened->status().code(), 5U);
    EXPECT_TRUE(opened->next(found)) << "the listing goes on";
}

TEST_F(FaultyFilesTest, ForwardsAndFailsTheCallsOfAHeldTree) {
    std::unique_ptr<HeldTree> held;
    faulty.fail("hold", "C:\\", 5, 1);
    EXPECT_EQ(faulty.hold("C:\\", held).code(), 5U);
    EXPECT_EQ(held, nullptr);
    ASSERT_TRUE(faulty.hold("C:\\", held).ok());
    EXPECT_EQ(held->place().volume, "memory:C:\\");
    faulty.fail("claim", "C:\\", 33, 1);
    EXPECT_EQ(held->claim(TreeUse::write).code(), 33U);
    EXPECT_TRUE(held->claim(TreeUse::write).ok());
    faulty.fail("flush", "", 1117, 1);
    EXPECT_EQ(held->flush().code(), 1117U);
    EXPECT_TRUE(held->flush().ok());
    EXPECT_THAT(faulty.calls(), ElementsAre("hold C:\\", "hold C:\\", "claim C:\\", "claim C:\\",
                                            "flush C:\\", "flush C:\\"));
    EXPECT_THAT(system.files().calls(), ElementsAre("hold C:\\", "claim C:\\", "flush C:\\"));
}

TEST_F(FaultyFilesTest, ForwardsAndFailsTheCallsForDirectories) {
    system.disk().directory("F:\\Sous");
    faulty.fail("matchDirectory", "F:\\Sous", 5, 1);
    faulty.fail("removeDirectory", "F:\\Sous", 32, 1);
    faulty.fail("ownFiles", "F:\\Sous", 1117, 1);
    std::vector<std::string> names;
    EXPECT_EQ(faulty.matchDirectory("C:\\", "F:\\Sous").code(), 5U);
    EXPECT_EQ(faulty.ownFiles("F:\\Sous", names).code(), 1117U);
    EXPECT_EQ(faulty.removeDirectory("F:\\Sous").code(), 32U);
    EXPECT_TRUE(faulty.matchDirectory("C:\\", "F:\\Sous").ok());
    EXPECT_TRUE(faulty.ownFiles("F:\\Sous", names).ok());
    EXPECT_TRUE(faulty.removeDirectory("F:\\Sous").ok());
    EXPECT_FALSE(system.disk().exists("F:\\Sous"));
    EXPECT_EQ(faulty.callCount(), 6U);
    EXPECT_EQ(faulty.failureCount(), 3U);
}

TEST_F(FaultyFilesTest, RestartForgetsFailuresAndCount) {
    faulty.fail("copyFile", "", 5);
    EXPECT_EQ(copy("C:\\a", "F:\\a"), 5U);
    faulty.restart();
    EXPECT_EQ(faulty.callCount(), 0U);
    EXPECT_EQ(copy("C:\\a", "F:\\a"), 0U);
    EXPECT_EQ(faulty.callCount(), 1U);
}

}  // namespace
}  // namespace coffrelune
