#include "platform/posix/posix_services.h"

#include <gmock/gmock.h>

#include <cstdlib>

#include "platform/posix/file_times.h"
#include "platform/posix/posix_platform.h"
#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// A system whose mount table a test writes; every mount point is what it says.
class PosixDrivesTest : public testing::Test {
  protected:
    PosixDrivesTest() { write("", ""); }

    void write(const std::string& mountInfo, const std::string& fstab) {
        system_.write("mountinfo", "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n" + mountInfo);
        system_.write("fstab", fstab);
    }

    PosixOptions options() {
        PosixOptions options;
        options.settingsDirectory = settings_.at();
        options.mounts = {system_.at("mountinfo"), system_.at("fstab"), system_.at("by-uuid")};
        options.probe = [this](const std::string& point) -> std::optional<dev_t> {
            if (point == vanished_) return std::nullopt;
            return dev_t{4711};
        };
        return options;
    }

    TemporaryDirectory settings_;
    TemporaryDirectory system_;
    std::string vanished_;
};

TEST_F(PosixDrivesTest, SystemDiskIsC) {
    PosixPlatform platform(options());
    EXPECT_THAT(platform.drives().roots(), ElementsAre("C:\\"));
    EXPECT_EQ(platform.drives().fromNative("/etc/fstab"), "C:\\etc\\fstab");
    EXPECT_EQ(platform.drives().windowsDirectory(), "");
    EXPECT_THAT(settings_.names(), testing::IsEmpty());
}

TEST_F(PosixDrivesTest, VolumesComeAndGoWithoutLosingTheirLetter) {
    PosixPlatform platform(options());
    write("2 1 8:17 / /media/cle rw - vfat /dev/sdb1 rw\n", "");
    EXPECT_THAT(platform.drives().roots(), ElementsAre("C:\\", "D:\\"));
    EXPECT_EQ(platform.drives().fromNative("/media/cle/Photos"), "D:\\Photos");
    write("3 1 8:33 / /mnt/disque rw - ext4 /dev/sdc1 rw\n", "");
    EXPECT_THAT(platform.drives().roots(), ElementsAre("C:\\", "E:\\"));
    // Absent, it keeps its letter: nothing may be written into its empty mount point.
    EXPECT_EQ(platform.drives().fromNative("/media/cle/Photos"), "D:\\Photos");
    EXPECT_EQ(platform.drives().fromNative("/media/cle"), "D:\\");
    EXPECT_EQ(platform.drives().fromNative("/media/clef"), "C:\\media\\clef");
    EXPECT_EQ(platform.files().createDirectory("D:\\Photos", DirectoryAccess::usual).code(), 55U);
    EXPECT_THAT(settings_.read("Lecteurs.ini"),
                HasSubstr("D=path:/media/cle\nE=path:/mnt/disque\n"));

    PosixPlatform next(options());
    write(
        "3 1 8:33 / /mnt/disque rw - ext4 /dev/sdc1 rw\n"
        "2 1 8:17 / /media/cle rw - vfat /dev/sdb1 rw\n",
        "");
    EXPECT_THAT(next.drives().roots(), ElementsAre("C:\\", "D:\\", "E:\\"));
    EXPECT_EQ(next.drives().fromNative("/media/cle"), "D:\\");
}

TEST_F(PosixDrivesTest, VolumeIsKnownByItsUuidWhereverItIsMounted) {
    const std::string device = system_.write("sdb1", "");
    system_.makeDirectory("by-uuid");
    ASSERT_EQ(symlink(device.c_str(), system_.at("by-uuid/1234-ABCD").c_str()), 0);
    write("2 1 8:17 / /media/cle rw - vfat " + device + " rw\n", "");
    PosixPlatform platform(options());
    EXPECT_EQ(platform.drives().fromNative("/media/cle/x"), "D:\\x");
    write("2 1 8:17 / /mnt/autre rw - vfat " + device + " rw\n", "");
    platform.drives().roots();
    EXPECT_EQ(platform.drives().fromNative("/mnt/autre/x"), "D:\\x");
    EXPECT_THAT(settings_.read("Lecteurs.ini"), HasSubstr("D=uuid:1234-ABCD\n"));
}

TEST_F(PosixDrivesTest, VolumeThatVanishesWhileTheTableIsReadIsNoDrive) {
    write("2 1 8:17 / /media/cle rw - vfat /dev/sdb1 rw\n", "");
    vanished_ = "/media/cle";
    PosixPlatform platform(options());
    EXPECT_THAT(platform.drives().roots(), ElementsAre("C:\\"));
}

TEST_F(PosixDrivesTest, FstabAndSharesCount) {
    write(
        "2 1 8:17 / /donnees rw - ext4 /dev/sdb1 rw\n"
        "3 1 0:50 / /srv/nas rw - cifs //nas/photos rw\n",
        "UUID=x /donnees ext4 defaults 0 2\n");
    PosixPlatform platform(options());
    EXPECT_THAT(platform.drives().roots(), ElementsAre("C:\\", "D:\\"));
    EXPECT_EQ(platform.drives().fromNative("/donnees/x"), "D:\\x");
    EXPECT_EQ(platform.drives().fromNative("/srv/nas/x"), "\\\\nas\\photos\\x");
    EXPECT_EQ(platform.files().resolve("C:\\srv\\nas\\x"), "\\\\nas\\photos\\x");
}

TEST_F(PosixDrivesTest, ATextFromAWindowKnowsNoCurrentDirectory) {
    write("2 1 8:17 / /media/cle rw - vfat /dev/sdb1 rw\n", "");
    PosixPlatform platform(options());
    for (const char* text : {"", "relative", "hello world", "./x", "..", "~other", "a~",
                             "\"C:\\x\"", "file:///tmp", "C:x", "D:\\x", "\\\\nas\\photos"}) {
        EXPECT_EQ(platform.drives().fromWindow(text), text);
    }
    EXPECT_EQ(platform.drives().fromWindow("/media/cle/../cle/x/"), "D:\\x");
    EXPECT_EQ(platform.drives().fromWindow("D:\\Photos\\."), "D:\\Photos");
    EXPECT_EQ(platform.drives().fromWindow("D:\\\\Photos/..\\x "), "D:\\x ");
    EXPECT_EQ(platform.drives().fromWindow("/tmp/x\n"), "C:\\tmp\\x\n");
    EXPECT_TRUE(platform.drives().fromNative("relative").ends_with("\\relative"));
}

TEST_F(PosixDrivesTest, ATildeFromAWindowIsTheHomeDirectoryWhenThereIsOne) {
    write("2 1 8:17 / /media/cle rw - vfat /dev/sdb1 rw\n", "");
    PosixPlatform platform(options());
    const DriveTable& table = platform.driveTable();
    EXPECT_EQ(table.fromWindow("~", "/home/luc"), "C:\\home\\luc");
    EXPECT_EQ(table.fromWindow("~/Mes photos/", "/home/luc/"), "C:\\home\\luc\\Mes photos");
    EXPECT_EQ(table.fromWindow("~/x", "/media/cle"), "D:\\x");
    EXPECT_EQ(table.fromWindow("~", "/"), "C:\\");
    for (const char* unknown : {"", "luc"}) {
        EXPECT_EQ(table.fromWindow("~", unknown), "~");
        EXPECT_EQ(table.fromWindow("~/x", unknown), "~/x");
    }
}

TEST_F(PosixDrivesTest, TheHomeDirectoryIsThatOfTheEnvironment) {
    PosixPlatform platform(options());
    const char* old = std::getenv("HOME");
    const std::string saved = old == nullptr ? "" : old;
    setenv("HOME", "/home/luc", 1);
    const std::string known = platform.drives().fromWindow("~/x");
    unsetenv("HOME");
    const std::string unknown = platform.drives().fromWindow("~/x");
    if (old != nullptr) setenv("HOME", saved.c_str(), 1);
    EXPECT_EQ(known, "C:\\home\\luc\\x");
    EXPECT_EQ(unknown, "~/x");
}

TEST_F(PosixDrivesTest, BoundDirectoryIsTheSamePlace) {
    write("2 1 8:1 /srv/bind /mnt/bind rw - ext4 /dev/sda1 rw\n", "");
    PosixPlatform platform(options());
    EXPECT_THAT(platform.drives().roots(), ElementsAre("C:\\"));
    EXPECT_EQ(platform.files().resolve("C:\\mnt\\bind\\x"), "C:\\srv\\bind\\x");
}

TEST_F(PosixDrivesTest, UnreadableTableLeavesTheSystemDisk) {
    PosixOptions absent = options();
    absent.mounts = {system_.at("absent"), system_.at("absent"), system_.at("absent")};
    PosixPlatform platform(absent);
    EXPECT_THAT(platform.drives().roots(), ElementsAre("C:\\"));
}

TEST(PosixProbe, KnowsAMountPointFromADirectory) {
    const TemporaryDirectory disk;
    EXPECT_TRUE(probeMount("/proc").has_value());
    EXPECT_TRUE(probeMount("/").has_value());
    EXPECT_FALSE(probeMount(disk.at()).has_value());
    EXPECT_FALSE(probeMount(disk.write("a", "")).has_value());
    EXPECT_FALSE(probeMount(disk.at("absent")).has_value());
}

TEST(PosixClock, CountsInTheTimeZoneOfTheEnvironment) {
    const char* old = std::getenv("TZ");
    const std::string saved = old == nullptr ? "" : old;
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    tzset();
    timespec time{};
    time.tv_sec = 1'688'566'400;  // 2023-07-05 14:13:20 UTC
    time.tv_nsec = 123'999'999;
    const LocalTime local = toLocalTime(time);
    old == nullptr ? unsetenv("TZ") : setenv("TZ", saved.c_str(), 1);
    tzset();
    EXPECT_EQ(local, (LocalTime{2023, 7, 5, 16, 13, 20, 123}));
}

TEST(PosixClock, GivesAFileItsLocalTime) {
    const timespec time{1'688'566'400, 123'000'000};
    PosixClock clock;
    EXPECT_EQ(clock.localTime(toFileTime(time.tv_sec, 123'000'000)), toLocalTime(time));
}

TEST(PosixLocale, SpeaksFrenchWhereTheSystemSaysNothing) {
    for (const char* name : {"C", "C.UTF-8", "no_such_locale"}) {
        const PosixLocale locale(name);
        EXPECT_EQ(locale.decimalSeparator(), ",") << name;
    }
}

TEST(PosixLocale, TakesWhatTheSystemSays) {
    EXPECT_EQ(PosixLocale(".", ",").decimalSeparator(), ".");
    EXPECT_EQ(PosixLocale(",", "\xE2\x80\xAF").decimalSeparator(), ",");
    EXPECT_EQ(PosixLocale("'", "").decimalSeparator(), "'");
}

TEST(PosixLocale, SpeaksFrenchWhereNoCodePageHoldsWhatTheSystemSays) {
    EXPECT_EQ(PosixLocale("\xD9\xAB", "\xD9\xAC").decimalSeparator(), ",");
    EXPECT_EQ(PosixLocale("\xB7", "\xA0").decimalSeparator(), ",");
    EXPECT_EQ(PosixLocale("", ".").decimalSeparator(), ",");
}

TEST(PosixGuard, RefusesASecondClaimAndLeavesNothingBehind) {
    const TemporaryDirectory disk;
    const std::vector<PathRoot> roots = {PathRoot::drive('D', disk.at())};
    PosixPlatform second(roots);
    {
        PosixPlatform first(roots);
        EXPECT_TRUE(first.guard().claim("D:\\"));
        EXPECT_TRUE(first.guard().claim("D:\\"));
        EXPECT_FALSE(second.guard().claim("D:\\"));
    }
    EXPECT_TRUE(second.guard().claim("D:\\"));
    EXPECT_THAT(disk.names(), testing::IsEmpty());
}

TEST(PosixGuard, LetsTheProgramRunWhereNothingCanBeLocked) {
    const TemporaryDirectory disk;
    PosixPlatform platform(std::vector<PathRoot>{PathRoot::drive('D', disk.at())});
    EXPECT_TRUE(platform.guard().claim("D:\\absent"));
    EXPECT_TRUE(platform.guard().claim("Z:\\"));
}

TEST(PosixSounds, AreAbsentInATerminalSession) {
    PosixSounds sounds;
    EXPECT_EQ(sounds.deviceCount(), 0);
}

}  // namespace
}  // namespace coffrelune
