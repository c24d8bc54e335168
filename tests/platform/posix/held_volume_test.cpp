// What is mounted under, in and over a tree. Needs the right to mount.
#include <gmock/gmock.h>
#include <sched.h>
#include <sys/mount.h>

#include <cerrno>
#include <cstring>

#include "platform/posix/posix_platform.h"
#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

using testing::IsEmpty;
using testing::StartsWith;

/// A mount table of this process alone, so that no mount outlives the test. 0 or an errno value.
int ownMountTable() {
    static const bool own =
        unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    static const int error = own ? 0 : errno;
    return error;
}

class HeldVolume : public testing::Test {
  protected:
    void SetUp() override {
        const int error = ownMountTable();
        if (error != 0) GTEST_SKIP() << "mounting: " << std::strerror(error);
        disk_.makeDirectory("point");
        disk_.makeDirectory("ailleurs/Sous");
    }

    ~HeldVolume() override {
        for (const std::string& point : points_) umount2(point.c_str(), MNT_DETACH);
    }

    void mountMemory(const std::string& name) {
        ASSERT_EQ(mount("tmpfs", disk_.at(name).c_str(), "tmpfs", 0, "mode=0777"), 0);
        points_.push_back(disk_.at(name));
    }

    void bind(const std::string& what, const std::string& name) {
        ASSERT_EQ(mount(disk_.at(what).c_str(), disk_.at(name).c_str(), nullptr, MS_BIND, nullptr),
                  0);
        points_.push_back(disk_.at(name));
    }

    std::unique_ptr<PosixPlatform> platform() const {
        return std::make_unique<PosixPlatform>(std::vector<PathRoot>{
            PathRoot::drive('C', disk_.at()),
            PathRoot::drive('F', disk_.at("point"), disk_.stat("point").st_dev)});
    }

    static std::unique_ptr<HeldTree> hold(FileService& files, const std::string& path) {
        std::unique_ptr<HeldTree> held;
        EXPECT_EQ(files.hold(path, held).code(), 0U) << path;
        return held;
    }

    TreePlace placeOf(const std::string& path) {
        const auto services = platform();
        return hold(services->files(), path)->place();
    }

    TemporaryDirectory disk_;
    std::vector<std::string> points_;
};

TEST_F(HeldVolume, CannotBeTakenAwayFromUnderAHold) {
    mountMemory("point");
    const auto services = platform();
    auto held = hold(services->files(), "F:\\");
    EXPECT_NE(umount2(disk_.at("point").c_str(), 0), 0);
    // Even torn off, it is the volume that is written to and not the directory under it.
    ASSERT_EQ(umount2(disk_.at("point").c_str(), MNT_DETACH), 0);
    EXPECT_TRUE(services->files().createDirectory("F:\\d", DirectoryAccess::usual).ok());
    EXPECT_TRUE(services->files().writeWhole("F:\\d\\a", "abc", Durability::nextFlush).ok());
    EXPECT_THAT(disk_.names("point"), IsEmpty());
    held.reset();
    EXPECT_EQ(services->files().createDirectory("F:\\d", DirectoryAccess::usual).code(), 55U);
    EXPECT_THAT(disk_.names("point"), IsEmpty());
}

TEST_F(HeldVolume, OtherVolumesBelowAHoldCanStillBeMissed) {
    mountMemory("point");
    const auto services = platform();
    const auto held = hold(services->files(), "C:\\");
    EXPECT_TRUE(services->files().createDirectory("F:\\d", DirectoryAccess::usual).ok());
    ASSERT_EQ(umount2(disk_.at("point").c_str(), 0), 0);
    EXPECT_EQ(services->files().createDirectory("F:\\e", DirectoryAccess::usual).code(), 55U);
    EXPECT_EQ(services->files().writeWhole("F:\\a", "abc", Durability::now).code(), 55U);
    std::unique_ptr<HeldTree> none;
    EXPECT_EQ(services->files().hold("F:\\", none).code(), 55U);
    EXPECT_THAT(disk_.names("point"), IsEmpty());
}

TEST_F(HeldVolume, MountPointsAreTold) {
    disk_.makeDirectory("lie");
    disk_.write("lie/a", "");
    mountMemory("point");
    bind("ailleurs", "lie");
    const auto services = platform();
    std::unique_ptr<Directory> directory;
    ASSERT_TRUE(services->files()
                    .openDirectory("C:\\", LinkRule::refuse, Wanted::directories, directory)
                    .ok());
    std::map<std::string, bool> told;
    for (FileEntry entry; directory->next(entry);) told[entry.name] = entry.mountPoint;
    EXPECT_EQ(told,
              (std::map<std::string, bool>{{"ailleurs", false}, {"lie", true}, {"point", true}}));
    FileEntry entry;
    ASSERT_TRUE(directory->lookUp("lie", entry));
    EXPECT_TRUE(entry.mountPoint);
    ASSERT_TRUE(services->files().lookUp("C:\\point", LinkRule::refuse, entry).ok());
    EXPECT_TRUE(entry.mountPoint);
    ASSERT_TRUE(services->files().lookUp("C:\\lie\\Sous", LinkRule::refuse, entry).ok());
    EXPECT_FALSE(entry.mountPoint);
    EXPECT_EQ(services->files().removeDirectory("C:\\point").code(), 267U);
    EXPECT_EQ(services->files().removeDirectory("C:\\lie").code(), 267U);
}

TEST_F(HeldVolume, IsToldFromTheDirectoryUnderItsMountPoint) {
    const TreePlace bare = placeOf("C:\\point");
    mountMemory("point");
    const TreePlace mounted = placeOf("C:\\point");
    ASSERT_FALSE(mounted.volume.empty());
    EXPECT_NE(mounted.volume, bare.volume);
    EXPECT_NE(mounted.self, bare.self);
    EXPECT_EQ(mounted.path, "\\");
    EXPECT_EQ(placeOf("F:\\"), mounted);
}

TEST_F(HeldVolume, PlaceIsTheSameThroughABindMount) {
    disk_.makeDirectory("lie");
    mountMemory("point");
    disk_.makeDirectory("point/Photos: 1/x");
    bind("point/Photos: 1", "lie");
    const TreePlace place = placeOf("F:\\Photos\xEF\x80\xBA 1\\x");
    EXPECT_THAT(place.volume, StartsWith("fsid:"));
    EXPECT_EQ(place.path, "\\Photos\xEF\x80\xBA 1\\x");
    EXPECT_EQ(placeOf("C:\\lie\\x"), place);
}

}  // namespace
}  // namespace coffrelune
