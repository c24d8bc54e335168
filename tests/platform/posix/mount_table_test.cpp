#include "platform/posix/mount_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/sysmacros.h>

#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

TEST(Octal, WritesWhatWouldBreakALineApart) {
    EXPECT_EQ(escapeOctal("/mnt/a b\n\\é"), "/mnt/a\\040b\\012\\134é");
    EXPECT_EQ(escapeOctal(""), "");
}

TEST(Octal, AnyTextComesBack) {
    std::string every;
    for (int byte = 0; byte < 256; ++byte) every += static_cast<char>(byte);
    std::string back = "before";
    EXPECT_TRUE(unescapeOctal(escapeOctal(every), back));
    EXPECT_EQ(back, every);
}

TEST(Octal, BackslashThatBeginsNoSequenceStandsForItself) {
    std::string text;
    for (const std::string odd : {"a\\", "a\\04", "a\\048", "a\\x41", "\\\\"}) {
        EXPECT_FALSE(unescapeOctal(odd, text)) << odd;
        EXPECT_EQ(text, odd);
    }
    EXPECT_FALSE(unescapeOctal("\\9\\101", text));
    EXPECT_EQ(text, "\\9A");
}

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

const std::string table =
    "22 27 0:21 / /proc rw,relatime - proc proc rw\n"
    "24 27 0:6 / /dev rw - devtmpfs devtmpfs rw\n"
    "25 24 0:23 / /dev/shm rw - tmpfs tmpfs rw\n"
    "27 1 8:1 / / rw,relatime shared:1 master:2 - ext4 /dev/sda1 rw,errors=remount-ro\n"
    "28 27 0:24 / /run rw - tmpfs tmpfs rw\n"
    "30 28 8:17 / /run/media/paul/Cl\\303\\251\\040USB rw - vfat /dev/sdb1 rw\n"
    "31 27 8:33 /@photos /mnt/photos rw - btrfs /dev/sdc1 rw\n"
    "32 27 0:50 / /mnt/nas rw - cifs //nas/photos rw\n"
    "33 27 0:51 / /srv/nfs rw - nfs4 serveur:/export/data rw\n"
    "34 27 8:49 / /donnees rw - ext4 /dev/sdd1 rw\n"
    "35 27 8:50 / /home rw - ext4 /dev/sdd2 rw\n"
    "36 27 8:51 / /opt/autre rw - ext4 /dev/sdd3 rw\n"
    "37 27 0:60 / /mnt/ram rw - tmpfs tmpfs rw\n"
    "38 27 8:1 /srv/bind /mnt/bind rw - ext4 /dev/sda1 rw\n";

const std::map<std::string, std::string> uuids = {{"/dev/sdb1", "1234-ABCD"},
                                                  {"/dev/sdc1", "c1c1"}};

std::vector<std::string> textsOf(const std::vector<Volume>& volumes) {
    std::vector<std::string> texts;
    texts.reserve(volumes.size());
    for (const Volume& volume : volumes) texts.push_back(volume.identity + " " + volume.point);
    return texts;
}

std::vector<std::string> textsOf(const std::vector<Share>& shares) {
    std::vector<std::string> texts;
    texts.reserve(shares.size());
    for (const Share& share : shares) texts.push_back(share.core + " " + share.point);
    return texts;
}

std::vector<std::string> sharesIn(const std::string& mountInfo) {
    return textsOf(sharesOf(parseMounts(mountInfo)));
}

TEST(MountTable, ReadsLinesWithEscapesAndOptionalFields) {
    const auto mounts = parseMounts(table);
    ASSERT_EQ(mounts.size(), 14U);
    EXPECT_EQ(mounts[3].point, "/");
    EXPECT_EQ(mounts[3].type, "ext4");
    EXPECT_EQ(mounts[3].source, "/dev/sda1");
    EXPECT_EQ(mounts[3].device, makedev(8, 1));
    EXPECT_EQ(mounts[5].point, "/run/media/paul/Clé USB");
    EXPECT_EQ(mounts[6].root, "/@photos");
}

TEST(MountTable, LeavesOutLinesThatMakeNoSense) {
    EXPECT_THAT(parseMounts(""), IsEmpty());
    EXPECT_THAT(parseMounts("bonjour\n\n1 2 3:4 / /mnt rw\n"), IsEmpty());
    EXPECT_THAT(parseMounts("1 2 x:4 / /mnt rw - ext4 /dev/x rw\n"), IsEmpty());
    EXPECT_THAT(parseMounts("1 2 3:4 / mnt rw - ext4 /dev/x rw\n"), IsEmpty());
    EXPECT_THAT(parseMounts("1 2 3:4 / /mnt rw - ext4\n"), IsEmpty());
    EXPECT_EQ(parseMounts("1 2 3:4 / /mnt rw - ext4 /dev/x rw").size(), 1U);
}

TEST(MountTable, LaterMountCoversAnEarlierOneOnTheSamePoint) {
    const auto mounts = parseMounts(
        "1 2 0:3 / /mnt/x rw - autofs systemd-1 rw\n1 2 8:3 / /mnt/x rw - ext4 /dev/sdx rw\n");
    ASSERT_EQ(mounts.size(), 1U);
    EXPECT_EQ(mounts[0].type, "ext4");
}

TEST(MountTable, ReadsTheFstabPointsThatAreNotTheSystemsOwn) {
    const auto points = parseFstabPoints(
        "# /dev/x /commentaire ext4 defaults 0 0\n"
        "UUID=1 / ext4 defaults 0 1\n"
        "UUID=2\t/boot/efi vfat umask=0077 0 1\n"
        "UUID=3 none swap sw 0 0\n"
        "/swapfile /swap swap sw 0 0\n"
        "UUID=4 /donnees/ ext4 defaults 0 2\n"
        "UUID=5 /mon\\040disque ext4 defaults 0 2\n"
        "UUID=6 /home ext4 defaults 0 2\n"
        "UUID=7 /var/lib ext4 defaults 0 2\n"
        "tmpfs /tmp tmpfs size=1G 0 0\n"
        "UUID=8 /usr ext4 defaults 0 2\n"
        "UUID=9 /efi vfat defaults 0 2\n"
        "UUID=10\n");
    EXPECT_THAT(points, UnorderedElementsAre("/donnees", "/mon disque"));
}

TEST(MountTable, DrivesAreWhatAPersonPlugsInOrMounts) {
    const auto volumes = volumesOf(parseMounts(table), {"/donnees"}, uuids);
    EXPECT_THAT(textsOf(volumes), ElementsAre("uuid:1234-ABCD /run/media/paul/Clé USB",
                                              "uuid:c1c1/@photos /mnt/photos",
                                              "path:/donnees /donnees", "path:/mnt/ram /mnt/ram"));
}

TEST(MountTable, VolumeMountedTwiceIsOneDrive) {
    const auto mounts = parseMounts(
        "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n"
        "2 1 8:17 / /mnt/a rw - vfat /dev/sdb1 rw\n"
        "3 1 8:17 / /mnt/b rw - vfat /dev/sdb1 rw\n");
    EXPECT_THAT(textsOf(volumesOf(mounts, {}, uuids)), ElementsAre("uuid:1234-ABCD /mnt/a"));
}

TEST(MountTable, SharesHaveTheirServersName) {
    EXPECT_THAT(textsOf(sharesOf(parseMounts(table))),
                ElementsAre("\\\\nas\\photos /mnt/nas", "\\\\serveur\\export\\data /srv/nfs"));
}

TEST(MountTable, SharesOfEveryFormAreUnderstood) {
    EXPECT_THAT(sharesIn("1 2 0:5 /sous /mnt/s rw - cifs //nas/docs/sous rw\n"),
                ElementsAre("\\\\nas\\docs\\sous /mnt/s"));
    EXPECT_THAT(sharesIn("1 2 0:5 / /mnt/s rw - smb3 //nas/docs/ rw\n"),
                ElementsAre("\\\\nas\\docs /mnt/s"));
    EXPECT_THAT(sharesIn("1 2 0:5 / /mnt/tout rw - nfs srv:/ rw\n"),
                ElementsAre("\\\\srv\\tout /mnt/tout"));
    EXPECT_THAT(sharesIn("1 2 0:5 / /mnt/s rw - cifs bizarre rw\n"), IsEmpty());
}

TEST(MountTable, PseudoFileSystemsAreKnownByTheirDevice) {
    EXPECT_THAT(
        pseudoDevicesOf(parseMounts(table)),
        UnorderedElementsAre(makedev(0, 21), makedev(0, 6), makedev(0, 23), makedev(0, 24)));
}

TEST(MountTable, OnePlaceHasOneSpellingAcrossMounts) {
    const auto mounts = parseMounts(table);
    EXPECT_EQ(canonicalMountPath(mounts, "/mnt/bind/a/b"), "/srv/bind/a/b");
    EXPECT_EQ(canonicalMountPath(mounts, "/mnt/bind"), "/srv/bind");
    EXPECT_EQ(canonicalMountPath(mounts, "/srv/bind/a"), "/srv/bind/a");
    EXPECT_EQ(canonicalMountPath(mounts, "/mnt/photos/x"), "/mnt/photos/x");
    EXPECT_EQ(canonicalMountPath({}, "/a"), "/a");
}

TEST(MountTable, PlaceThatAnotherMountHidesKeepsItsOwnSpelling) {
    const auto mounts = parseMounts(
        "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n"
        "2 1 8:17 / /srv/bind rw - ext4 /dev/sdb1 rw\n"
        "3 1 8:1 /srv/bind /mnt/bind rw - ext4 /dev/sda1 rw\n");
    // /srv/bind of the system disk can be seen at /mnt/bind only.
    EXPECT_EQ(canonicalMountPath(mounts, "/mnt/bind/a"), "/mnt/bind/a");
    EXPECT_EQ(canonicalMountPath(mounts, "/srv/bind/a"), "/srv/bind/a");
}

TEST(MountTable, UuidsAreReadFromTheLinks) {
    const TemporaryDirectory disk;
    disk.write("sdz1", "");
    disk.makeDirectory("by-uuid");
    ASSERT_EQ(symlink("../sdz1", disk.at("by-uuid/AAAA-BBBB").c_str()), 0);
    const std::map<std::string, std::string> expected = {{disk.at("sdz1"), "AAAA-BBBB"}};
    EXPECT_EQ(readUuids(disk.at("by-uuid")), expected);
    EXPECT_THAT(readUuids(disk.at("absent")), IsEmpty());
}

TEST(MountTable, NetworkVolumesThatNoShareIsNamedAfterGetALetter) {
    for (const char* type : {"cifs", "smb3", "nfs", "nfs4", "fuse.sshfs", "fuse.rclone", "davfs"}) {
        EXPECT_TRUE(isNetworkType(type)) << type;
    }
    EXPECT_FALSE(isNetworkType("ext4"));
    EXPECT_FALSE(isNetworkType("fuseblk"));
    const auto mounts = parseMounts("1 2 0:9 / /mnt/x rw - fuse.sshfs moi@serveur:/home rw\n");
    EXPECT_THAT(textsOf(volumesOf(mounts, {}, {})), ElementsAre("path:/mnt/x /mnt/x"));
    EXPECT_THAT(sharesOf(mounts), IsEmpty());
}

TEST(MountTable, KnowsTheSubvolumeThatAMountShows) {
    const auto mounts = parseMounts(
        "7 2 0:9 /@home/paul /mnt/x rw - btrfs /dev/sdc1 rw,subvolid=257,subvol=/@home\n"
        "8 2 0:9 / /mnt/y rw - btrfs /dev/sdc1 rw,subvolid=5,subvol=/\n"
        "9 2 8:1 / /mnt/z rw - ext4 /dev/sda1 rw\n");
    ASSERT_EQ(mounts.size(), 3U);
    EXPECT_EQ(mounts[0].id, 7U);
    EXPECT_EQ(mounts[0].subvolume, "/@home");
    EXPECT_EQ(mounts[1].subvolume, "/");
    EXPECT_EQ(mounts[2].subvolume, "");
}

}  // namespace
}  // namespace coffrelune
