// What the disk does on Linux only; what it does on every system is in the contract suite.
#include <gmock/gmock.h>

#include "platform/posix/native_path.h"
#include "platform/posix/posix_platform.h"
#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

std::vector<std::string> listed(FileService& files, const std::string& path, Wanted wanted) {
    std::unique_ptr<Directory> directory;
    EXPECT_EQ(files.openDirectory(path, LinkRule::refuse, wanted, directory).code(), 0U) << path;
    std::vector<std::string> names;
    for (FileEntry entry; directory && directory->next(entry);) names.push_back(entry.name);
    std::sort(names.begin(), names.end());
    return names;
}

std::uint32_t openCode(FileService& files, const std::string& path,
                       Wanted wanted = Wanted::everything) {
    std::unique_ptr<Directory> directory;
    return files.openDirectory(path, LinkRule::refuse, wanted, directory).code();
}

class PosixFilesTest : public testing::Test {
  protected:
    FileService& files() { return platform_.files(); }

    TemporaryDirectory disk_;
    PosixPlatform platform_{std::vector<PathRoot>{PathRoot::drive('D', disk_.at())}};
};

TEST_F(PosixFilesTest, ListingKeepsToFilesDirectoriesAndLinks) {
    disk_.write("a", "");
    disk_.write(".~coffrelune-0123456789abcdef.tmp", "half");
    disk_.makeDirectory("d");
    ASSERT_EQ(symlink("d", disk_.at("l").c_str()), 0);
    ASSERT_EQ(mkfifo(disk_.at("tube").c_str(), 0666), 0);
    EXPECT_THAT(listed(files(), "D:\\", Wanted::everything), ElementsAre("a", "d", "l"));
    EXPECT_THAT(listed(files(), "D:\\", Wanted::files), ElementsAre("a", "l"));
    EXPECT_THAT(listed(files(), "D:\\", Wanted::directories), ElementsAre("d"));
    EXPECT_THAT(listed(files(), "D:\\", Wanted::nothing), IsEmpty());
    FileEntry entry;
    EXPECT_EQ(files().lookUp("D:\\tube", LinkRule::follow, entry).code(), 2U);
}

TEST_F(PosixFilesTest, ListingMarksWhatItCouldNotLookAt) {
    disk_.makeDirectory("noms seuls");
    disk_.write("noms seuls/a", "abc");
    chmod(disk_.at("noms seuls").c_str(), 0444);
    FileEntry entry;
    {
        const WithoutPrivileges user;
        std::unique_ptr<Directory> directory;
        ASSERT_TRUE(files()
                        .openDirectory("D:\\noms seuls", LinkRule::refuse, Wanted::files, directory)
                        .ok());
        ASSERT_TRUE(directory->next(entry));
        EXPECT_EQ(entry.name, "a");
        EXPECT_EQ(entry.failure, error_number::accessDenied);
    }
    chmod(disk_.at("noms seuls").c_str(), 0755);
    // The same record serves for the next entry.
    ASSERT_TRUE(files().lookUp("D:\\noms seuls\\a", LinkRule::refuse, entry).ok());
    EXPECT_FALSE(entry.isUnreadable());
}

TEST_F(PosixFilesTest, FileOfTheFirstMomentIsNoneThatCouldNotBeLookedAt) {
    disk_.write("a", "abc");
    ASSERT_TRUE(files().setTimes("D:\\a", {1, 1, 1}).ok());
    std::unique_ptr<Directory> directory;
    ASSERT_TRUE(files().openDirectory("D:\\", LinkRule::refuse, Wanted::files, directory).ok());
    FileEntry entry;
    entry.failure = error_number::accessDenied;
    ASSERT_TRUE(directory->next(entry));
    EXPECT_FALSE(entry.isUnreadable());
}

TEST_F(PosixFilesTest, DirectoryThatMayNotBeReadStillServesLookUps) {
    disk_.makeDirectory("ferme");
    disk_.write("ferme/a", "abc");
    chmod(disk_.at("ferme").c_str(), 0311);
    const WithoutPrivileges user;
    EXPECT_EQ(openCode(files(), "D:\\ferme", Wanted::files), 5U);
    std::unique_ptr<Directory> directory;
    ASSERT_TRUE(
        files().openDirectory("D:\\ferme", LinkRule::refuse, Wanted::nothing, directory).ok());
    FileEntry entry;
    EXPECT_FALSE(directory->next(entry));
    ASSERT_TRUE(directory->lookUp("a", entry));
    EXPECT_EQ(entry.size, 3U);
    EXPECT_FALSE(directory->lookUp("absent", entry));
    EXPECT_TRUE(directory->status().ok());
}

TEST_F(PosixFilesTest, FailedLookUpIsToldFromAnAbsentName) {
    disk_.makeDirectory("ferme");
    disk_.write("ferme/a", "abc");
    std::unique_ptr<Directory> directory;
    ASSERT_TRUE(
        files().openDirectory("D:\\ferme", LinkRule::refuse, Wanted::nothing, directory).ok());
    FileEntry entry;
    EXPECT_FALSE(directory->lookUp("absent", entry));
    EXPECT_FALSE(directory->lookUp(std::string(300, 'x'), entry));
    EXPECT_FALSE(directory->lookUp("", entry));
    EXPECT_FALSE(directory->lookUp("../a", entry));
    EXPECT_FALSE(directory->lookUp(std::string("a\0b", 3), entry));
    EXPECT_TRUE(directory->status().ok());
    chmod(disk_.at("ferme").c_str(), 0444);
    const WithoutPrivileges user;
    EXPECT_FALSE(directory->lookUp("a", entry));
    EXPECT_EQ(directory->status().code(), 5U);
}

TEST_F(PosixFilesTest, EntryThatCannotBeLookedAtIsListedAllTheSame) {
    disk_.makeDirectory("ferme");
    disk_.write("ferme/a", "abc");
    chmod(disk_.at("ferme").c_str(), 0444);
    const WithoutPrivileges user;
    EXPECT_THAT(listed(files(), "D:\\ferme", Wanted::files), ElementsAre("a"));
    EXPECT_EQ(files().copyFile("D:\\ferme\\a", "D:\\b", LinkRule::refuse, nullptr).code(), 5U);
}

TEST_F(PosixFilesTest, MissingParentIsToldFromAMissingName) {
    disk_.write("a", "");
    FileEntry entry;
    EXPECT_EQ(files().lookUp("D:\\absent", LinkRule::refuse, entry).code(), 2U);
    EXPECT_EQ(files().lookUp("D:\\absent\\x", LinkRule::refuse, entry).code(), 3U);
    EXPECT_EQ(files().lookUp("D:\\a\\x", LinkRule::refuse, entry).code(), 3U);
    EXPECT_EQ(openCode(files(), "D:\\absent"), 2U);
    EXPECT_EQ(openCode(files(), "D:\\absent\\x"), 3U);
    EXPECT_EQ(openCode(files(), "D:\\a\\x"), 3U);
    EXPECT_EQ(openCode(files(), "D:\\a"), 267U);
    EXPECT_EQ(files().createDirectory("D:\\absent\\x", DirectoryAccess::usual).code(), 3U);
    EXPECT_EQ(files().createDirectory("D:\\", DirectoryAccess::usual).code(), 183U);
    EXPECT_EQ(files().removeFile("D:\\absent\\x").code(), 3U);
    EXPECT_EQ(files().copyFile("D:\\a", "D:\\absent\\x", LinkRule::refuse, nullptr).code(), 3U);
    EXPECT_EQ(files().lookUp("E:\\", LinkRule::refuse, entry).code(), 55U);
}

TEST_F(PosixFilesTest, DriveRootIsNeverCopiedOverNorRemoved) {
    disk_.write("a", "abc");
    EXPECT_EQ(files().copyFile("D:\\a", "D:\\", LinkRule::refuse, nullptr).code(), 5U);
    EXPECT_EQ(files().copyFile("D:\\", "D:\\b", LinkRule::refuse, nullptr).code(), 5U);
    EXPECT_EQ(files().removeFile("D:\\").code(), 5U);
    EXPECT_THAT(disk_.names(), ElementsAre("a"));
}

TEST_F(PosixFilesTest, ReadOnlyIsTheOwnersWriteBit) {
    chmod(disk_.write("a", "").c_str(), 0666);
    ASSERT_TRUE(files().setAttributes("D:\\a", attribute::readOnly | attribute::hidden).ok());
    EXPECT_EQ(disk_.stat("a").st_mode & 0777, 0444U);
    ASSERT_TRUE(files().setAttributes("D:\\a", attribute::normal).ok());
    EXPECT_EQ(disk_.stat("a").st_mode & 0777, 0644U);
    ASSERT_EQ(symlink("a", disk_.at("l").c_str()), 0);
    EXPECT_TRUE(files().setAttributes("D:\\l", attribute::readOnly).ok());
    EXPECT_EQ(disk_.stat("a").st_mode & 0777, 0644U);
}

TEST_F(PosixFilesTest, DeepTreesKeepFewDescriptors) {
    constexpr int levels = 400;
    std::string path = "D:";
    std::vector<std::unique_ptr<Directory>> open;
    for (int level = 0; level < levels; ++level) {
        ASSERT_TRUE(files().createDirectory(path + "\\d", DirectoryAccess::usual).ok());
        std::unique_ptr<Directory> directory;
        ASSERT_TRUE(
            files().openDirectory(path, LinkRule::refuse, Wanted::everything, directory).ok());
        open.push_back(std::move(directory));
        path += "\\d";
    }
    const auto descriptors = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                             std::filesystem::directory_iterator());
    };
    EXPECT_LT(descriptors(), 200);
    for (const auto& directory : open) {
        FileEntry entry;
        EXPECT_TRUE(directory->lookUp("d", entry));
        EXPECT_FALSE(directory->lookUp("absent", entry));
        ASSERT_TRUE(directory->next(entry));
        EXPECT_EQ(entry.name, "d");
        EXPECT_FALSE(directory->next(entry));
        EXPECT_TRUE(directory->status().ok());
    }
    open.clear();
    EXPECT_LT(descriptors(), 50);
}

TEST_F(PosixFilesTest, DirectoryTellsWhetherItHasTheRightsOfAnother) {
    disk_.makeDirectory("a");
    disk_.makeDirectory("b");
    const auto areSame = [&] {
        std::unique_ptr<Directory> a;
        std::unique_ptr<Directory> b;
        EXPECT_TRUE(files().openDirectory("D:\\a", LinkRule::refuse, Wanted::files, a).ok());
        EXPECT_TRUE(files().openDirectory("D:\\b", LinkRule::refuse, Wanted::nothing, b).ok());
        return b->hasRightsOf(*a);
    };
    const auto date = std::filesystem::last_write_time(disk_.at("a"));
    std::filesystem::last_write_time(disk_.at("b"), date + std::chrono::seconds(1));
    EXPECT_FALSE(areSame());
    std::filesystem::last_write_time(disk_.at("b"), date);
    EXPECT_TRUE(areSame());
    ASSERT_EQ(chmod(disk_.at("b").c_str(), 0711), 0);
    EXPECT_FALSE(areSame());
    ASSERT_EQ(chmod(disk_.at("a").c_str(), 0711), 0);
    EXPECT_TRUE(areSame());
}

TEST_F(PosixFilesTest, SubdirectoriesOfAHeldTreeAreListedAsTheyComeAndGo) {
    disk_.makeDirectory("a");
    disk_.write("a/f", "");
    std::unique_ptr<HeldTree> held;
    ASSERT_TRUE(files().hold("D:\\", held).ok());
    EXPECT_THAT(listed(files(), "D:\\a", Wanted::directories), IsEmpty());
    disk_.makeDirectory("a/d");
    EXPECT_THAT(listed(files(), "D:\\a", Wanted::directories), ElementsAre("d"));
    std::filesystem::remove(disk_.at("a/d"));
    EXPECT_THAT(listed(files(), "D:\\a", Wanted::directories), IsEmpty());
}

TEST_F(PosixFilesTest, ResolveGivesOneTextForLettersThatOverlap) {
    disk_.makeDirectory("media/cle/x");
    PosixPlatform two({PathRoot::drive('C', disk_.at()),
                       PathRoot::drive('F', disk_.at("media/cle")),
                       PathRoot::share("nas", "p", disk_.makeDirectory("nas"))});
    EXPECT_EQ(two.files().resolve("C:\\media\\cle"), "F:\\");
    EXPECT_EQ(two.files().resolve("c:\\media\\cle\\x\\"), "F:\\x");
    EXPECT_EQ(two.files().resolve("F:\\x"), "F:\\x");
    EXPECT_EQ(two.files().resolve("C:\\nas\\a"), "\\\\nas\\p\\a");
    EXPECT_EQ(two.files().resolve("Z:\\absent"), "Z:\\absent");
}

TEST(PosixPseudoMounts, AreNotListed) {
    struct statx proc {};
    ASSERT_EQ(statPath("/proc", true, proc), 0);
    struct statx root {};
    ASSERT_EQ(statPath("/", true, root), 0);
    ASSERT_NE(deviceOf(proc), deviceOf(root)) << "this test needs /proc to be mounted";
    const std::vector<PathRoot> roots = {PathRoot::drive('C', "/")};
    PosixPlatform hiding(roots, {deviceOf(proc)});
    PosixPlatform showing(roots);
    EXPECT_THAT(listed(hiding.files(), "C:\\", Wanted::directories), Not(Contains("proc")));
    EXPECT_THAT(listed(hiding.files(), "C:\\", Wanted::directories), Contains("tmp"));
    EXPECT_THAT(listed(showing.files(), "C:\\", Wanted::directories), Contains("proc"));
}

// The drive's directory is there, but what is mounted on it is not what it was when the table was
// read: the volume has been taken away in the middle of a run.
class UnmountedVolume : public testing::Test {
  protected:
    UnmountedVolume() {
        source_.write("a", "abc");
        mountPoint_.write("reste", "");
    }

    FileService& files() { return platform_.files(); }

    TemporaryDirectory source_;
    TemporaryDirectory mountPoint_;
    PosixPlatform platform_{std::vector<PathRoot>{
        PathRoot::drive('C', source_.at()),
        PathRoot::drive('F', mountPoint_.at(), mountPoint_.stat().st_dev + 1)}};
};

TEST_F(UnmountedVolume, IsNeverWrittenTo) {
    EXPECT_EQ(files().copyFile("C:\\a", "F:\\a", LinkRule::refuse, nullptr).code(), 55U);
    EXPECT_EQ(files().createDirectory("F:\\d", DirectoryAccess::usual).code(), 55U);
    EXPECT_EQ(files().writeWhole("F:\\b", "x", Durability::now).code(), 55U);
    EXPECT_EQ(files().removeFile("F:\\reste").code(), 55U);
    EXPECT_EQ(files().setAttributes("F:\\reste", attribute::readOnly).code(), 55U);
    EXPECT_EQ(files().setTimes("F:\\reste", {1, 1, 1}).code(), 55U);
    EXPECT_EQ(files().removeLeftovers("F:\\").code(), 55U);
    EXPECT_EQ(files().createDirectory("F:\\d\\plus bas", DirectoryAccess::usual).code(), 55U);
    EXPECT_THAT(mountPoint_.names(), ElementsAre("reste"));
}

TEST_F(UnmountedVolume, DoesNotPassForAnEmptyOne) {
    FileEntry entry;
    std::string bytes;
    FileId id;
    EXPECT_EQ(openCode(files(), "F:\\"), 55U);
    EXPECT_EQ(openCode(files(), "F:\\Photos"), 55U);
    EXPECT_EQ(files().lookUp("F:\\", LinkRule::follow, entry).code(), 55U);
    EXPECT_EQ(files().lookUp("F:\\Photos\\x", LinkRule::refuse, entry).code(), 55U);
    EXPECT_EQ(files().identify("F:\\Photos", id).code(), 55U);
    EXPECT_EQ(files().copyFile("F:\\x", "C:\\x", LinkRule::refuse, nullptr).code(), 55U);
    EXPECT_EQ(files().readWhole("F:\\x", 10, bytes).code(), 55U);
}

TEST_F(UnmountedVolume, IsToldFromOneThatIsThere) {
    PosixPlatform mounted(
        std::vector<PathRoot>{PathRoot::drive('F', mountPoint_.at(), mountPoint_.stat().st_dev)});
    EXPECT_EQ(mounted.files().createDirectory("F:\\d", DirectoryAccess::usual).code(), 0U);
    EXPECT_EQ(mounted.files().copyFile("F:\\reste", "F:\\d\\b", LinkRule::refuse, nullptr).code(),
              0U);
    EXPECT_EQ(openCode(mounted.files(), "F:\\absent"), 2U);
}

}  // namespace
}  // namespace coffrelune
