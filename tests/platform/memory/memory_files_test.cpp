#include "platform/memory/memory_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

class MemoryFilesTest : public testing::Test {
  protected:
    MemoryFilesTest() { disk.volume("F:\\"); }

    std::uint32_t copy(const std::string& from, const std::string& to) {
        return files.copyFile(from, to, LinkRule::refuse, nullptr).code();
    }

    MemoryDisk disk;
    MemoryClock clock;
    MemoryFiles files{disk, clock};
};

TEST_F(MemoryFilesTest, RecordsEveryCall) {
    disk.file("C:\\a", "abc");
    FileEntry found;
    std::unique_ptr<Directory> opened;
    ASSERT_TRUE(files.openDirectory("C:\\", LinkRule::follow, Wanted::files, opened).ok());
    EXPECT_TRUE(opened->next(found));
    EXPECT_FALSE(opened->lookUp("b", found));
    ASSERT_EQ(copy("C:\\a", "F:\\b"), 0U);
    ASSERT_TRUE(files.setAttributes("F:\\b", 128).ok());
    EXPECT_THAT(files.calls(), ElementsAre("openDirectory C:\\", "find C:\\b",
                                           "copyFile C:\\a F:\\b", "setAttributes F:\\b 128"));
    EXPECT_THAT(files.calls("find"), ElementsAre("find C:\\b"));
    EXPECT_THAT(files.writes(), ElementsAre("copyFile C:\\a F:\\b", "setAttributes F:\\b 128"));
    files.clearCalls();
    EXPECT_THAT(files.calls(), testing::IsEmpty());
}

TEST_F(MemoryFilesTest, ListsDotsEverywhereButAtTheTop) {
    disk.file("C:\\Docs\\a");
    const auto names = [&](const std::string& path, Wanted wanted) {
        std::vector<std::string> listed;
        std::unique_ptr<Directory> opened;
        EXPECT_TRUE(files.openDirectory(path, LinkRule::refuse, wanted, opened).ok());
        for (FileEntry one; opened->next(one);) listed.push_back(one.name);
        return listed;
    };
    EXPECT_THAT(names("C:\\", Wanted::everything), ElementsAre("Docs"));
    EXPECT_THAT(names("C:\\Docs", Wanted::everything), ElementsAre(".", "..", "a"));
    EXPECT_THAT(names("C:\\Docs", Wanted::directories), ElementsAre(".", ".."));
    EXPECT_THAT(names("C:\\Docs", Wanted::files), ElementsAre("a"));
}

TEST_F(MemoryFilesTest, CallsTheHookAtEachChunkBeforeTheFinalName) {
    disk.file("C:\\a", "0123456789");
    disk.file("F:\\a", "old");
    files.setChunkSize(4);
    std::vector<std::uint64_t> transferred;
    files.copyHook = [&](const CopyMoment& moment) {
        transferred.push_back(moment.transferred);
        EXPECT_EQ(moment.size, 10U);
        EXPECT_EQ(disk.content("F:\\a"), "old");
    };
    ASSERT_EQ(copy("C:\\a", "F:\\a"), 0U);
    EXPECT_THAT(transferred, ElementsAre(4U, 8U, 10U));
    EXPECT_EQ(disk.content("F:\\a"), "0123456789");
}

TEST_F(MemoryFilesTest, MovesTheClockByTheCostOfACopy) {
    disk.file("C:\\a", std::string(1500, 'x'));
    files.setChunkSize(700);
    files.setCopyCost(50, 1000);
    ASSERT_EQ(copy("C:\\a", "F:\\a"), 0U);
    EXPECT_EQ(clock.monotonicMilliseconds(), 51);
    // The half millisecond left over from the first copy counts.
    ASSERT_EQ(copy("C:\\a", "F:\\b"), 0U);
    EXPECT_EQ(clock.monotonicMilliseconds(), 103);
}

TEST_F(MemoryFilesTest, CopiesFilesLargerThanMemory) {
    disk.file("C:\\film", "start").hole = 5'000'000'000;
    std::uint64_t last = 0;
    files.copyHook = [&](const CopyMoment& moment) { last = moment.transferred; };
    ASSERT_EQ(copy("C:\\film", "F:\\film"), 0U);
    EXPECT_EQ(last, 5'000'000'005U);
    EXPECT_EQ(disk.find("F:\\film")->size(), 5'000'000'005U);
    EXPECT_EQ(disk.content("F:\\film"), "start");
}

TEST_F(MemoryFilesTest, FailsInTheMiddleWhenTheDriveIsPulledOut) {
    disk.file("C:\\a", "0123456789");
    disk.file("F:\\a", "old");
    files.setChunkSize(4);
    files.copyHook = [&](const CopyMoment&) { disk.volume("F:\\").present = false; };
    EXPECT_EQ(copy("C:\\a", "F:\\a"), error_number::deviceDoesNotExist);
    disk.volume("F:\\").present = true;
    EXPECT_EQ(disk.content("F:\\a"), "old");
}

TEST_F(MemoryFilesTest, FailsInTheMiddleWhenTheSourceCannotBeReadOn) {
    disk.file("C:\\a", "0123456789");
    files.setChunkSize(4);
    files.copyHook = [&](const CopyMoment&) { disk.find("C:\\a")->readError = 1117; };
    EXPECT_EQ(copy("C:\\a", "F:\\a"), error_number::ioDevice);
    EXPECT_THAT(disk.list("F:\\"), testing::IsEmpty());
}

TEST_F(MemoryFilesTest, AbandonedFromTheHookACopyLeavesNothing) {
    disk.file("C:\\a", "abc");
    files.copyHook = [&](const CopyMoment&) { files.abandonCopies(); };
    EXPECT_EQ(copy("C:\\a", "F:\\a"), error_number::requestAborted);
    EXPECT_THAT(disk.list("F:\\"), testing::IsEmpty());
}

TEST_F(MemoryFilesTest, DriveThatIsWriteProtectedCanBeReadOnly) {
    disk.file("F:\\a", "abc");
    disk.file("C:\\b", "new");
    disk.leftover("F:\\");
    disk.volume("F:\\").writeProtected = true;
    EXPECT_EQ(copy("C:\\b", "F:\\b"), error_number::writeProtect);
    EXPECT_EQ(files.createDirectory("F:\\Sous", DirectoryAccess::usual).code(),
              error_number::writeProtect);
    EXPECT_EQ(files.removeFile("F:\\a").code(), error_number::writeProtect);
    EXPECT_EQ(files.setAttributes("F:\\a", 1).code(), error_number::writeProtect);
    EXPECT_EQ(files.setTimes("F:\\a", {1, 1, 1}).code(), error_number::writeProtect);
    EXPECT_EQ(files.writeWhole("F:\\a", "x", Durability::now).code(), error_number::writeProtect);
    EXPECT_EQ(files.removeLeftovers("F:\\").code(), error_number::writeProtect);
    EXPECT_EQ(copy("F:\\a", "C:\\c"), 0U);
}

TEST_F(MemoryFilesTest, DriveWithoutAMediumIsNotReady) {
    disk.file("F:\\a", "abc");
    disk.volume("F:\\").ready = false;
    FileEntry found;
    std::unique_ptr<Directory> opened;
    EXPECT_EQ(files.lookUp("F:\\", LinkRule::follow, found).code(), error_number::notReady);
    EXPECT_EQ(files.openDirectory("F:\\", LinkRule::follow, Wanted::files, opened).code(),
              error_number::notReady);
    EXPECT_EQ(copy("F:\\a", "C:\\a"), error_number::notReady);
    EXPECT_THAT(disk.driveRoots(), testing::Contains("F:\\"));
}

TEST_F(MemoryFilesTest, FileInUseCanNeitherBeReadNorReplaced) {
    disk.file("C:\\a", "abc");
    disk.file("C:\\b", "new");
    disk.setInUse("C:\\a");
    EXPECT_EQ(copy("C:\\a", "F:\\a"), error_number::sharingViolation);
    EXPECT_EQ(copy("C:\\b", "C:\\a"), error_number::sharingViolation);
    EXPECT_EQ(files.removeFile("C:\\a").code(), error_number::sharingViolation);
    disk.setInUse("C:\\a", false);
    EXPECT_EQ(copy("C:\\a", "F:\\a"), 0U);
}

TEST_F(MemoryFilesTest, UnreadableDirectoryIsFoundAndNotListed) {
    disk.file("C:\\Docs\\a", "abc");
    disk.setUnreadable("C:\\Docs");
    std::unique_ptr<Directory> opened;
    FileEntry found;
    EXPECT_EQ(files.openDirectory("C:\\Docs", LinkRule::refuse, Wanted::files, opened).code(), 5U);
    EXPECT_TRUE(files.lookUp("C:\\Docs", LinkRule::refuse, found).ok());
}

TEST_F(MemoryFilesTest, DirectoryThatRefusesWritesTakesNoNewNames) {
    disk.file("C:\\a", "abc");
    disk.directory("F:\\Ferme").writeError = 5;
    EXPECT_EQ(copy("C:\\a", "F:\\Ferme\\a"), 5U);
    EXPECT_EQ(files.createDirectory("F:\\Ferme\\Sous", DirectoryAccess::usual).code(), 5U);
}

TEST_F(MemoryFilesTest, DriveWithoutLinksGetsTheContentOfALinkedFile) {
    disk.file("C:\\a", "abc", 42);
    disk.directory("C:\\Docs");
    disk.link("C:\\lien", "a");
    disk.link("C:\\vers Docs", "Docs");
    disk.volume("F:\\").holdsLinks = false;
    EXPECT_EQ(copy("C:\\lien", "F:\\lien"), 0U);
    EXPECT_EQ(disk.content("F:\\lien"), "abc");
    EXPECT_EQ(disk.lastWrite("F:\\lien"), 42U);
    EXPECT_EQ(disk.attributes("F:\\lien"), attribute::normal);
    EXPECT_EQ(copy("C:\\vers Docs", "F:\\vers Docs"), error_number::notSupported);
    EXPECT_FALSE(disk.exists("F:\\vers Docs"));
}

TEST_F(MemoryFilesTest, ListingBreaksOffWhenTheDriveIsPulledOut) {
    disk.file("F:\\a");
    disk.file("F:\\b");
    std::unique_ptr<Directory> opened;
    ASSERT_TRUE(files.openDirectory("F:\\", LinkRule::refuse, Wanted::files, opened).ok());
    FileEntry found;
    EXPECT_TRUE(opened->next(found));
    disk.volume("F:\\").present = false;
    EXPECT_FALSE(opened->next(found));
    EXPECT_EQ(opened->status().code(), error_number::deviceDoesNotExist);
    EXPECT_FALSE(opened->lookUp("a", found));
}

TEST_F(MemoryFilesTest, ReplacedFileKeepsItsPlaceInTheOrder) {
    disk.file("F:\\a", "old");
    disk.file("F:\\b");
    disk.file("C:\\a", "new");
    ASSERT_EQ(copy("C:\\a", "F:\\a"), 0U);
    ASSERT_EQ(copy("C:\\a", "F:\\c"), 0U);
    EXPECT_THAT(disk.list("F:\\"), ElementsAre("F:\\a", "F:\\b", "F:\\c"));
}

TEST_F(MemoryFilesTest, NamesThatAreNoUtf8AreKept) {
    disk.file("C:\\caf\xE9", "abc");
    ASSERT_EQ(copy("C:\\caf\xE9", "F:\\caf\xE9"), 0U);
    EXPECT_THAT(disk.list("F:\\"), ElementsAre("F:\\caf\xE9"));
}

TEST(MemoryPlatform, HandsOutItsServices) {
    MemoryPlatform system;
    system.disk().volume("C:\\");
    system.drives().setWindowsDirectory("C:\\Windows");
    system.locale().set(".");
    system.sounds().setDeviceCount(0);
    system.guard().setHeldByAnother("C:\\Prog");
    const Platform platform = system.platform();
    EXPECT_THAT(platform.drives.roots(), ElementsAre("C:\\"));
    EXPECT_EQ(platform.drives.windowsDirectory(), "C:\\Windows");
    EXPECT_EQ(platform.locale.decimalSeparator(), ".");
    EXPECT_EQ(platform.sounds.deviceCount(), 0);
    platform.sounds.play("C:\\Prog\\Ok.wav");
    EXPECT_THAT(system.sounds().played(), ElementsAre("C:\\Prog\\Ok.wav"));
    EXPECT_FALSE(system.guard().claim("C:\\Prog"));
    EXPECT_TRUE(system.guard().claim("C:\\Autre"));
    EXPECT_THAT(system.guard().claims(), ElementsAre("C:\\Prog", "C:\\Autre"));
    ASSERT_TRUE(platform.files.createDirectory("C:\\Docs", DirectoryAccess::usual).ok());
    EXPECT_EQ(system.disk().lastWrite("C:\\Docs"), system.clock().fileTime());
}

}  // namespace
}  // namespace coffrelune
