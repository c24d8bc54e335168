#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"
#include "platform/names.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MemoryHoldTest : public testing::Test {
  protected:
    MemoryHoldTest() {
        disk.file("C:\\Docs\\a.txt", "abc");
        disk.file("C:\\Docs\\Sous\\b.txt", "abc");
        disk.volume("F:\\");
    }

    std::unique_ptr<HeldTree> hold(const std::string& path) {
        std::unique_ptr<HeldTree> held;
        EXPECT_EQ(files.hold(path, held).code(), 0U) << path;
        return held;
    }

    std::uint32_t lookUpCode(const std::string& path) {
        FileEntry ignored;
        return files.lookUp(path, LinkRule::refuse, ignored).code();
    }

    std::uint32_t openCode(const std::string& path, LinkRule links) {
        std::unique_ptr<Directory> opened;
        return files.openDirectory(path, links, Wanted::everything, opened).code();
    }

    std::uint32_t copy(const std::string& from, const std::string& to) {
        return files.copyFile(from, to, LinkRule::refuse, nullptr).code();
    }

    MemoryDisk disk;
    MemoryClock clock;
    MemoryFiles files{disk, clock};
};

TEST_F(MemoryHoldTest, RecordsTheCallsOfATree) {
    const auto held = hold("C:\\Docs");
    EXPECT_TRUE(held->claim(TreeUse::write).ok());
    EXPECT_TRUE(held->flush().ok());
    EXPECT_TRUE(files.writeWhole("C:\\Docs\\c", "x", Durability::nextFlush).ok());
    EXPECT_TRUE(files.writeWhole("C:\\Docs\\c", "x", Durability::now).ok());
    EXPECT_TRUE(files.createDirectory("C:\\Docs\\d", DirectoryAccess::ownerOnly).ok());
    EXPECT_TRUE(files.matchDirectory("C:\\Docs", "C:\\Docs\\d").ok());
    EXPECT_TRUE(files.removeDirectory("C:\\Docs\\d").ok());
    EXPECT_THAT(files.calls(),
                ElementsAre("hold C:\\Docs", "claim C:\\Docs", "flush C:\\Docs",
                            "writeWhole C:\\Docs\\c nextFlush", "writeWhole C:\\Docs\\c",
                            "createDirectory C:\\Docs\\d", "matchDirectory C:\\Docs C:\\Docs\\d",
                            "removeDirectory C:\\Docs\\d"));
    EXPECT_EQ(files.writes().size(), 5U);
}

TEST_F(MemoryHoldTest, PlaceIsTheVolumeWithThePathInItsSpelling) {
    disk.volume("F:\\").foldsCase = true;
    disk.directory("F:\\Save\\Docs");
    disk.link("C:\\lien", "F:\\Save");
    const TreePlace place = hold("C:\\lien\\DOCS")->place();
    EXPECT_EQ(place.volume, "memory:F:\\");
    EXPECT_EQ(place.path, "\\Save\\Docs");
    EXPECT_EQ(place, hold("F:\\save\\docs\\")->place());
    EXPECT_EQ(hold("F:\\")->place().path, "\\");
    disk.directory("\\\\nas\\photos\\2024");
    EXPECT_EQ(hold("\\\\nas\\photos\\2024")->place().path, "\\2024");
    EXPECT_EQ(hold("\\\\nas\\photos")->place().path, "\\");
}

TEST_F(MemoryHoldTest, PlaceIsOnTheVolumeThatATestNames) {
    const TreePlace before = hold("C:\\Docs")->place();
    disk.volume("C:\\").identity = "uuid:1234-ABCD";
    const TreePlace after = hold("C:\\Docs")->place();
    EXPECT_EQ(after.volume, "uuid:1234-ABCD");
    EXPECT_EQ(after.path, before.path);
    EXPECT_NE(after.self, before.self);
}

TEST_F(MemoryHoldTest, AnswersAsTheDiskDoesWhenItsDriveIsPulledOut) {
    const auto held = hold("C:\\Docs");
    disk.volume("C:\\").present = false;
    EXPECT_EQ(lookUpCode("C:\\Docs\\a.txt"), error_number::pathNotFound);
    EXPECT_EQ(held->flush().code(), error_number::deviceDoesNotExist);
    EXPECT_EQ(held->claim(TreeUse::read).code(), error_number::deviceDoesNotExist);
    disk.volume("C:\\").present = true;
    disk.volume("C:\\").ready = false;
    EXPECT_EQ(lookUpCode("C:\\Docs\\a.txt"), error_number::notReady);
}

TEST_F(MemoryHoldTest, RemovedDirectoryTakesNothingAndNeitherDoesItsSuccessor) {
    const auto held = hold("C:\\Docs\\Sous");
    disk.remove("C:\\Docs");
    disk.directory("C:\\Docs\\Sous");
    EXPECT_EQ(lookUpCode("C:\\Docs\\Sous"), error_number::pathNotFound);
    EXPECT_EQ(files.writeWhole("C:\\Docs\\Sous\\c", "x", Durability::now).code(),
              error_number::pathNotFound);
    EXPECT_THAT(disk.list("C:\\Docs\\Sous"), IsEmpty());
}

TEST_F(MemoryHoldTest, FollowsItsDirectoryAnywhereOnTheVolume) {
    const auto held = hold("C:\\Docs");
    disk.directory("C:\\Archives");
    disk.move("C:\\Docs", "C:\\Archives\\Docs");
    EXPECT_EQ(files.resolve("C:\\Docs\\a.txt"), "C:\\Archives\\Docs\\a.txt");
    EXPECT_EQ(files.writeWhole("C:\\Docs\\c", "x", Durability::now).code(), 0U);
    EXPECT_EQ(disk.content("C:\\Archives\\Docs\\c"), "x");
    EXPECT_FALSE(disk.exists("C:\\Docs"));
}

TEST_F(MemoryHoldTest, IsNotLeftUpwards) {
    disk.file("C:\\secret");
    const auto held = hold("C:\\Docs");
    EXPECT_EQ(lookUpCode("C:\\Docs\\..\\secret"), error_number::fileNotFound);
    EXPECT_EQ(lookUpCode("C:\\Docs\\Sous\\..\\a.txt"), 0U);
}

TEST_F(MemoryHoldTest, PassesALinkThatWasOpenedAndNoOther) {
    disk.file("C:\\Ailleurs\\Sous\\c", "x");
    disk.link("C:\\Relais", "Ailleurs");
    disk.link("C:\\Docs\\lien", "..\\Relais");
    disk.link("C:\\Ailleurs\\boucle", "Sous");
    auto held = hold("C:\\Docs");
    EXPECT_EQ(lookUpCode("C:\\Docs\\lien\\Sous\\c"), error_number::cannotResolveName);
    EXPECT_EQ(openCode("C:\\Docs\\lien", LinkRule::refuse), error_number::notADirectory);
    EXPECT_EQ(lookUpCode("C:\\Docs\\lien\\Sous\\c"), error_number::cannotResolveName);
    ASSERT_EQ(openCode("C:\\Docs\\lien", LinkRule::follow), 0U);
    EXPECT_EQ(lookUpCode("C:\\Docs\\lien\\Sous\\c"), 0U);
    EXPECT_EQ(lookUpCode("C:\\Docs\\lien\\boucle\\c"), error_number::cannotResolveName);
    held = hold("C:\\Docs");
    EXPECT_EQ(lookUpCode("C:\\Docs\\lien\\Sous\\c"), error_number::cannotResolveName);
}

TEST_F(MemoryHoldTest, OwnFilesAndLeftoversAreNotThoseBehindALink) {
    disk.file("C:\\Ailleurs\\" + ownFileName(OwnFile::certificate, 1));
    disk.leftover("C:\\Ailleurs");
    disk.link("C:\\Docs\\lien", "..\\Ailleurs");
    std::vector<std::string> names;
    EXPECT_TRUE(files.ownFiles("C:\\Docs\\lien", names).ok());
    const auto held = hold("C:\\Docs");
    EXPECT_EQ(files.ownFiles("C:\\Docs\\lien", names).code(), error_number::cannotResolveName);
    EXPECT_EQ(files.removeLeftovers("C:\\Docs\\lien").code(), error_number::cannotResolveName);
    EXPECT_EQ(files.writeWhole("C:\\Docs\\lien", "x", Durability::now).code(),
              error_number::accessDenied);
    EXPECT_EQ(disk.list("C:\\Ailleurs").size(), 2U);
}

TEST_F(MemoryHoldTest, ClaimAsksWhatAnotherProcessDoes) {
    const auto held = hold("C:\\Docs");
    disk.setUsedByAnother("C:\\Docs", TreeUse::read);
    EXPECT_TRUE(held->claim(TreeUse::read).ok());
    EXPECT_EQ(held->claim(TreeUse::write).code(), error_number::lockViolation);
    disk.setUsedByAnother("C:\\Docs", TreeUse::write);
    EXPECT_EQ(held->claim(TreeUse::read).code(), error_number::lockViolation);
    EXPECT_TRUE(hold("C:\\Docs\\Sous")->claim(TreeUse::write).ok());
    disk.setUsedByAnother("C:\\Docs", std::nullopt);
    EXPECT_TRUE(held->claim(TreeUse::write).ok());
}

TEST_F(MemoryHoldTest, ClaimThatIsRefusedLeavesTheOneBefore) {
    MemoryFiles others{disk, clock};
    std::unique_ptr<HeldTree> theirs;
    ASSERT_TRUE(others.hold("C:\\Docs", theirs).ok());
    ASSERT_TRUE(theirs->claim(TreeUse::read).ok());
    const auto held = hold("C:\\Docs");
    ASSERT_TRUE(held->claim(TreeUse::read).ok());
    EXPECT_EQ(held->claim(TreeUse::write).code(), error_number::lockViolation);
    EXPECT_EQ(theirs->claim(TreeUse::write).code(), error_number::lockViolation);
}

TEST_F(MemoryHoldTest, DirectoriesHaveRightsThatAreMatched) {
    disk.find("C:\\Docs")->mode = 0750;
    disk.find("C:\\Docs")->owner = "marie";
    ASSERT_TRUE(files.createDirectory("F:\\Docs", DirectoryAccess::ownerOnly).ok());
    ASSERT_TRUE(files.createDirectory("F:\\Autres", DirectoryAccess::usual).ok());
    EXPECT_EQ(disk.find("F:\\Docs")->mode, 0700U);
    EXPECT_EQ(disk.find("F:\\Autres")->mode, 0755U);
    ASSERT_TRUE(files.matchDirectory("C:\\Docs", "F:\\Docs").ok());
    EXPECT_EQ(disk.find("F:\\Docs")->mode, 0750U);
    EXPECT_EQ(disk.find("F:\\Docs")->owner, "marie");
}

TEST_F(MemoryHoldTest, VolumeWithoutRightsMatchesNone) {
    disk.volume("F:\\").holdsRights = false;
    disk.find("C:\\Docs")->mode = 0750;
    ASSERT_TRUE(files.createDirectory("F:\\Docs", DirectoryAccess::ownerOnly).ok());
    ASSERT_TRUE(files.matchDirectory("C:\\Docs", "F:\\Docs").ok());
    EXPECT_EQ(disk.find("F:\\Docs")->mode, 0755U);
}

TEST_F(MemoryHoldTest, RightsAndRemovalObeyTheVolume) {
    disk.directory("F:\\Docs");
    disk.setMountPoint("C:\\Docs\\Sous");
    EXPECT_EQ(files.removeDirectory("C:\\Docs\\Sous").code(), error_number::sharingViolation);
    EXPECT_EQ(files.removeDirectory("F:\\").code(), error_number::accessDenied);
    disk.volume("F:\\").writeProtected = true;
    EXPECT_EQ(files.removeDirectory("F:\\Docs").code(), error_number::writeProtect);
    EXPECT_EQ(files.matchDirectory("C:\\Docs", "F:\\Docs").code(), error_number::writeProtect);
    disk.volume("F:\\").writeProtected = false;
    disk.find("F:\\Docs")->writeError = 5;
    EXPECT_EQ(files.removeDirectory("F:\\Docs").code(), 5U);
    EXPECT_EQ(files.matchDirectory("C:\\Docs", "F:\\Docs").code(), 5U);
    EXPECT_TRUE(disk.exists("F:\\Docs"));
}

TEST_F(MemoryHoldTest, MountPointIsToldByListingsAndLookUps) {
    disk.setMountPoint("C:\\Docs\\Sous");
    std::unique_ptr<Directory> opened;
    ASSERT_TRUE(files.openDirectory("C:\\Docs", LinkRule::refuse, Wanted::everything, opened).ok());
    std::vector<std::string> mounts;
    for (FileEntry one; opened->next(one);) {
        if (one.mountPoint) mounts.push_back(one.name);
    }
    EXPECT_THAT(mounts, ElementsAre("Sous"));
    FileEntry found;
    EXPECT_TRUE(opened->lookUp("Sous", found));
    EXPECT_TRUE(found.mountPoint);
    EXPECT_TRUE(files.lookUp("C:\\Docs\\Sous", LinkRule::refuse, found).ok());
    EXPECT_TRUE(found.mountPoint);
    disk.setMountPoint("C:\\Docs\\Sous", false);
    EXPECT_TRUE(opened->lookUp("Sous", found));
    EXPECT_FALSE(found.mountPoint);
}

TEST_F(MemoryHoldTest, FileThatEndsEarlyIsNotCopied) {
    disk.file("F:\\a", "old");
    disk.setTruncatedAt("C:\\Docs\\a.txt", 2);
    EXPECT_EQ(copy("C:\\Docs\\a.txt", "F:\\a"), error_number::handleEof);
    EXPECT_EQ(disk.content("F:\\a"), "old");
    EXPECT_THAT(disk.list("F:\\"), ElementsAre("F:\\a"));
    EXPECT_EQ(disk.find("C:\\Docs\\a.txt")->size(), 3U);
    std::string bytes;
    EXPECT_TRUE(files.readWhole("C:\\Docs\\a.txt", 10, bytes).ok());
    EXPECT_EQ(bytes, "ab");
}

}  // namespace
}  // namespace coffrelune
