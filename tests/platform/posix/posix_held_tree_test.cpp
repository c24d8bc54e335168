#include "platform/posix/posix_held_tree.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/wait.h>

#include "platform/posix/temporary_directory.h"
#include "platform/posix/unique_fd.h"

namespace coffrelune {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class TreePlaceTest : public testing::Test {
  protected:
    /// The directory as one of a volume of this type that is mounted on the test's directory.
    void mountAs(const std::string& type, const std::string& source, const std::string& root = "/",
                 const std::string& options = "rw") {
        sources_.mountInfo =
            disk_.write("mountinfo", "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n9 1 8:17 " + root + " " +
                                         disk_.makeDirectory("point") + " rw - " + type + " " +
                                         source + " " + options + "\n");
        sources_.uuidDirectory = disk_.makeDirectory("uuid");
    }

    void nameDevice(const std::string& uuid) {
        disk_.write("sdb1", "");
        std::filesystem::create_symlink("../sdb1", disk_.at("uuid/" + uuid));
    }

    TreePlace placeOf(const std::string& name) const {
        const std::string path = disk_.at(name);
        const UniqueFd fd(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        return treePlaceOf(fd.get(), path, sources_);
    }

    void run(const std::vector<std::string>& words) const {
        std::vector<char*> arguments;
        arguments.reserve(words.size() + 1);
        for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            execvp(arguments[0], arguments.data());
            _exit(127);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_EQ(status, 0);
    }

    TemporaryDirectory disk_;
    MountSources sources_;
};

TEST_F(TreePlaceTest, NamesAVolumeByItsUuid) {
    mountAs("ext4", disk_.at("sdb1"), "/sous\\040dossier");
    nameDevice("1234-ABCD");
    disk_.makeDirectory("point/Photos");
    const TreePlace place = placeOf("point/Photos");
    EXPECT_EQ(place.volume, "uuid:1234-ABCD");
    EXPECT_EQ(place.path, "\\sous dossier\\Photos");
    EXPECT_THAT(place.self,
                StartsWith("uuid:1234-ABCD " + std::to_string(disk_.stat("point/Photos").st_ino)));
}

TEST_F(TreePlaceTest, SubvolumesOfOneDiskAreVolumesOfTheirOwn) {
    mountAs("btrfs", disk_.at("sdb1"), "/@home/paul", "rw,subvolid=257,subvol=/@home");
    nameDevice("c1c1");
    EXPECT_EQ(placeOf("point").volume, "uuid:c1c1/@home");
    EXPECT_EQ(placeOf("point").path, "\\@home\\paul");
    mountAs("btrfs", disk_.at("sdb1"), "/", "rw,subvolid=5,subvol=/");
    EXPECT_EQ(placeOf("point").volume, "uuid:c1c1");
}

TEST_F(TreePlaceTest, NamesAShareByItsServer) {
    mountAs("cifs", "//nas/photos");
    EXPECT_EQ(placeOf("point").volume, "share://nas/photos");
    mountAs("nfs4", "serveur:/export/data", "/annee");
    EXPECT_EQ(placeOf("point").volume, "share://serveur/export/data");
    EXPECT_EQ(placeOf("point").path, "\\annee");
    mountAs("fuse.rclone", "nuage:");
    EXPECT_THAT(placeOf("point").volume, IsEmpty());
    EXPECT_THAT(placeOf("point").self, IsEmpty());
}

TEST_F(TreePlaceTest, SaysNothingOfAVolumeWithoutALastingNumber) {
    mountAs("vfat", "/dev/absent");
    EXPECT_THAT(placeOf("point").volume, IsEmpty());
    mountAs("ext4", "/dev/absent");
    EXPECT_THAT(placeOf("point").volume, StartsWith("fsid:"));
    EXPECT_EQ(placeOf("point").volume, placeOf("point").volume);
}

TEST_F(TreePlaceTest, SaysNothingWithoutAMountTable) {
    sources_.mountInfo = disk_.at("absent");
    disk_.makeDirectory("point");
    EXPECT_EQ(placeOf("point"), TreePlace());
}

TEST_F(TreePlaceTest, NoLineIsBrokenApart) {
    mountAs("btrfs", disk_.at("sdb1"), "/@a\\012b", "rw,subvol=/@a\\012b");
    nameDevice("c1c1");
    EXPECT_THAT(placeOf("point").volume, Not(HasSubstr("\n")));
    EXPECT_THAT(placeOf("point").self, Not(HasSubstr("\n")));
    mountAs("vfat", disk_.at("sdb1"));
    disk_.makeDirectory("point/a\nb");
    EXPECT_THAT(placeOf("point/a\nb").self, Not(HasSubstr("\n")));
}

TEST_F(TreePlaceTest, DirectoryIsKnownAgainAfterARename) {
    mountAs("ext4", disk_.at("sdb1"));
    nameDevice("1");
    disk_.makeDirectory("point/avant");
    const TreePlace before = placeOf("point/avant");
    std::filesystem::rename(disk_.at("point/avant"), disk_.at("point/apres"));
    EXPECT_EQ(placeOf("point/apres").self, before.self);
    EXPECT_NE(placeOf("point/apres").path, before.path);
}

TEST_F(TreePlaceTest, CopyWithAllAttributesIsAnotherDirectory) {
    mountAs("ext4", disk_.at("sdb1"));
    nameDevice("1");
    disk_.makeDirectory("point/original");
    run({"cp", "-a", disk_.at("point/original"), disk_.at("point/copie")});
    EXPECT_NE(placeOf("point/copie").self, placeOf("point/original").self);
    // Even one that comes to bear the number of its original.
    const std::string before = placeOf("point/original").self;
    std::filesystem::remove(disk_.at("point/original"));
    disk_.makeDirectory("point/original");
    EXPECT_NE(placeOf("point/original").self, before);
}

TEST_F(TreePlaceTest, WhereInodesDoNotLastThePathStandsInForThem) {
    mountAs("vfat", disk_.at("sdb1"));
    nameDevice("1234-ABCD");
    disk_.makeDirectory("point/a");
    disk_.makeDirectory("point/b");
    EXPECT_THAT(placeOf("point/a").self, StartsWith("uuid:1234-ABCD \\134a"));
    EXPECT_NE(placeOf("point/a").self, placeOf("point/b").self);
}

}  // namespace
}  // namespace coffrelune
