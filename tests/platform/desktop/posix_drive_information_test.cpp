#include "platform/posix/desktop/posix_drive_information.h"

#include <gmock/gmock.h>
#include <sys/statvfs.h>

#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

/// D: is a directory of the test; what is mounted there, and on which device, the test says.
class PosixDriveInformationTest : public testing::Test {
  protected:
    PosixDriveInformationTest() {
        system_.makeDirectory("by-label");
        system_.makeDirectory("block");
        device_ = system_.write("sdb1", "");
        mount("8:17", "vfat", device_);
    }

    void mount(const std::string& number, const std::string& type, const std::string& source) {
        system_.write("mountinfo", "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n2 1 " + number + " / " +
                                       volume_ + " rw - " + type + " " + source + " rw\n");
    }

    void label(const std::string& name) {
        ASSERT_EQ(symlink(device_.c_str(), system_.at("by-label/" + name).c_str()), 0);
    }

    /// A partition of a disk, as /sys/dev/block shows it.
    void disk(const std::string& place, const std::string& removable) {
        system_.makeDirectory(place + "/sdb1");
        system_.write(place + "/removable", removable);
        ASSERT_EQ(symlink(system_.at(place + "/sdb1").c_str(), system_.at("block/8:17").c_str()),
                  0);
    }

    std::string typeOf(const std::string& root) { return drives_.describe(root).typeName; }

    TemporaryDirectory system_;
    std::string volume_ = system_.makeDirectory("media/cle");
    std::string device_;
    DriveTable table_{{PathRoot::drive('D', volume_), PathRoot::drive('E', system_.at("absent")),
                       PathRoot::drive('F', volume_, dev_t{1}),
                       PathRoot::share("serveur", "docs", volume_)}};
    PosixDriveInformation drives_{
        table_, {system_.at("mountinfo"), system_.at("by-label"), system_.at("block")}};
};

TEST_F(PosixDriveInformationTest, LabelIsThatOfTheMountedDevice) {
    ASSERT_EQ(symlink(system_.write("sdc1", "").c_str(), system_.at("by-label/AUTRE").c_str()), 0);
    label(R"(MA\x20CL\xc3\x89)");
    std::string text;
    ASSERT_TRUE(drives_.volumeLabel("D:\\", text).ok());
    EXPECT_EQ(text, "MA CLÉ");
    ASSERT_TRUE(drives_.volumeLabel("d:\\", text).ok());
    EXPECT_EQ(text, "MA CLÉ");
}

TEST_F(PosixDriveInformationTest, AVolumeWithoutALabelHasAnEmptyOne) {
    std::string text = "old";
    EXPECT_TRUE(drives_.volumeLabel("D:\\", text).ok());
    EXPECT_EQ(text, "");
    mount("0:50", "tmpfs", "tmpfs");
    EXPECT_TRUE(drives_.volumeLabel("D:\\", text).ok());
    EXPECT_EQ(text, "");
}

TEST_F(PosixDriveInformationTest, ADriveThatCannotBeReadIsNotReady) {
    label("CLE");
    for (const char* root : {"E:\\", "F:\\", "Z:\\", ""}) {
        std::string text = "old";
        std::uint64_t total = 1;
        std::uint64_t free = 1;
        EXPECT_EQ(drives_.volumeLabel(root, text).code(), error_number::notReady) << root;
        EXPECT_EQ(text, "") << root;
        EXPECT_EQ(drives_.sizes(root, total, free).code(), error_number::notReady) << root;
        EXPECT_EQ(total, 0U) << root;
        EXPECT_EQ(free, 0U) << root;
    }
}

TEST_F(PosixDriveInformationTest, SizesAreThoseOfItsFileSystem) {
    struct statvfs volume {};
    ASSERT_EQ(statvfs(volume_.c_str(), &volume), 0);
    std::uint64_t total = 0;
    std::uint64_t free = 0;
    ASSERT_TRUE(drives_.sizes("D:\\", total, free).ok());
    EXPECT_EQ(total, std::uint64_t{volume.f_blocks} * volume.f_frsize);
    EXPECT_GT(total, 0U);
    EXPECT_LE(free, total);
}

TEST_F(PosixDriveInformationTest, AVolumeIsNamedByItsPlaceUntilItHasALabel) {
    disk("pci/ata1/sdb", "0\n");
    const DriveDescription unnamed = drives_.describe("D:\\");
    EXPECT_EQ(unnamed.displayName, "cle (D:)");
    EXPECT_EQ(unnamed.typeName, "Disque local");
    EXPECT_EQ(unnamed.iconName, "drive-harddisk");
    label("DATA");
    EXPECT_EQ(drives_.describe("D:\\").displayName, "DATA (D:)");
}

TEST_F(PosixDriveInformationTest, ADiskThatComesOutIsRemovable) {
    disk("pci/ata1/sdb", "1\n");
    const DriveDescription drive = drives_.describe("D:\\");
    EXPECT_EQ(drive.displayName, "cle (D:)");
    EXPECT_EQ(drive.iconName, "drive-removable-media");
}

TEST_F(PosixDriveInformationTest, ADiskOnACableIsRemovable) {
    disk("pci/usb2/2-1/sdb", "0\n");
    EXPECT_EQ(typeOf("D:\\"), "Disque amovible");
}

TEST_F(PosixDriveInformationTest, DiscsAndSharesHaveNamesOfTheirOwn) {
    mount("11:0", "iso9660", "/dev/sr0");
    EXPECT_EQ(drives_.describe("D:\\").displayName, "cle (D:)");
    EXPECT_EQ(drives_.describe("D:\\").iconName, "drive-optical");
    mount("0:44", "fuse.sshfs", "moi@serveur:");
    EXPECT_EQ(typeOf("D:\\"), "Lecteur réseau");
    const DriveDescription share = drives_.describe(R"(\\serveur\docs)");
    EXPECT_EQ(share.displayName, R"(Lecteur réseau (\\serveur\docs))");
    EXPECT_EQ(share.iconName, "folder-remote");
}

TEST_F(PosixDriveInformationTest, ADriveThatIsGoneWasTakenOut) {
    EXPECT_EQ(drives_.describe("Z:\\").displayName, "Disque amovible (Z:)");
}

TEST_F(PosixDriveInformationTest, AVolumePluggedInSinceIsFound) {
    const TemporaryDirectory settings;
    const MountSources sources{system_.at("mounts"), system_.at("fstab"), system_.at("by-uuid")};
    system_.write("mounts", "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n");
    DriveTable table(sources, settings.at("Lecteurs.ini"), [this](const std::string&) {
        return std::optional<dev_t>(system_.stat().st_dev);
    });
    PosixDriveInformation drives(
        table, {system_.at("mounts"), system_.at("by-label"), system_.at("block")});
    std::string text;
    EXPECT_EQ(drives.volumeLabel("D:\\", text).code(), error_number::notReady);
    system_.write("mounts", "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n2 1 8:17 / " +
                                std::string("/media/cle") + " rw - vfat " + device_ + " rw\n");
    label("CLE");
    EXPECT_EQ(table.driveRoots(), std::vector<std::string>{"C:\\"});
    (void)drives.volumeLabel("D:\\", text);
    EXPECT_EQ(table.driveRoots(), (std::vector<std::string>{"C:\\", "D:\\"}));
}

TEST(DecodedLabel, TakesOnlyWholeEscapesBack) {
    EXPECT_EQ(decodedLabel(R"(a\x2fb\x20)"), "a/b ");
    EXPECT_EQ(decodedLabel(R"(\x2\xzz\n\x5cx20)"), R"(\x2\xzz\n\x20)");
    EXPECT_EQ(decodedLabel(""), "");
}

}  // namespace
}  // namespace coffrelune
