#include "platform/posix/file_times.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/magic.h>

#include "platform/posix/native_path.h"
#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

constexpr std::int64_t second = 1'000'000'000;
constexpr std::uint64_t at1970 = 116'444'736'000'000'000;

timespec timeAt(std::int64_t seconds, std::int64_t nanoseconds) {
    timespec time{};
    time.tv_sec = seconds;
    time.tv_nsec = nanoseconds;
    return time;
}

void expectRounded(timespec time, std::int64_t granularity, std::int64_t seconds,
                   std::int64_t nanoseconds) {
    const timespec rounded = roundUp(time, granularity);
    EXPECT_EQ(rounded.tv_sec, seconds);
    EXPECT_EQ(rounded.tv_nsec, nanoseconds);
}

TEST(FileTimes, CountHundredsOfNanosecondsSince1601) {
    EXPECT_EQ(toFileTime(0, 0), at1970);
    EXPECT_EQ(toFileTime(1, 199), at1970 + 10'000'001);
    EXPECT_EQ(toFileTime(-1, 999'999'999), at1970 - 1);
    EXPECT_EQ(toFileTime(-11'644'473'600, 0), 0U);
}

TEST(FileTimes, BeforeTheirOriginAndBeyondTheirEndAreClamped) {
    EXPECT_EQ(toFileTime(-11'644'473'601, 999'999'999), 0U);
    EXPECT_EQ(toFileTime(INT64_MIN, 0), 0U);
    EXPECT_GT(toFileTime(INT64_MAX, 0), at1970);
    EXPECT_LE(toFileTime(INT64_MAX, 999'999'999), static_cast<std::uint64_t>(INT64_MAX));
}

TEST(FileTimes, ComeBackExactly) {
    for (const std::uint64_t time : {std::uint64_t{1}, at1970 - 1, at1970, at1970 + 123'456'789,
                                     std::uint64_t{133'330'464'001'234'567}}) {
        const timespec native = toTimespec(time);
        EXPECT_GE(native.tv_nsec, 0);
        EXPECT_EQ(toFileTime(native.tv_sec, static_cast<std::uint32_t>(native.tv_nsec)), time);
    }
}

TEST(FileTimes, RoundUpAndNeverDown) {
    expectRounded(timeAt(10, 0), 2 * second, 10, 0);
    expectRounded(timeAt(10, 1), 2 * second, 12, 0);
    expectRounded(timeAt(11, 0), 2 * second, 12, 0);
    expectRounded(timeAt(11, 999'999'999), 2 * second, 12, 0);
    expectRounded(timeAt(5, 0), second, 5, 0);
    expectRounded(timeAt(5, 1), second, 6, 0);
    expectRounded(timeAt(5, 10'000'000), 10'000'000, 5, 10'000'000);
    expectRounded(timeAt(5, 10'000'001), 10'000'000, 5, 20'000'000);
    expectRounded(timeAt(5, 990'000'001), 10'000'000, 6, 0);
    expectRounded(timeAt(5, 123), 1, 5, 123);
    expectRounded(timeAt(-3, 500), 2 * second, -2, 0);
    expectRounded(timeAt(-4, 0), 2 * second, -4, 0);
}

TEST(FileTimes, GranularityIsThatOfTheVolume) {
    EXPECT_EQ(timeGranularity(MSDOS_SUPER_MAGIC), 2 * second);
    EXPECT_EQ(timeGranularity(0x2011BAB0), 10'000'000);
    EXPECT_EQ(timeGranularity(EXT4_SUPER_MAGIC), 1);
}

TEST(FileTimes, StampIsExactWhereTheVolumeIs) {
    const TemporaryDirectory disk;
    disk.write("a", "");
    UniqueFd fd(open(disk.at().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    ASSERT_EQ(stamp({fd.get(), "a"}, timeAt(5, 7), timeAt(1'700'000'000, 123'456'789), 1), 0);
    EXPECT_EQ(disk.stat("a").st_mtim.tv_sec, 1'700'000'000);
    EXPECT_EQ(disk.stat("a").st_mtim.tv_nsec, 123'456'789);
    EXPECT_EQ(disk.stat("a").st_atim.tv_sec, 5);
}

TEST(FileTimes, StampOmitsWhatIsNotKnown) {
    const TemporaryDirectory disk;
    disk.write("a", "");
    disk.setTime("a", 1000, 5);
    UniqueFd fd(open(disk.at().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    ASSERT_EQ(stamp({fd.get(), "a"}, timeAt(7, 0), timeAt(0, UTIME_OMIT), 1), 0);
    EXPECT_EQ(disk.stat("a").st_mtim.tv_sec, 1000);
    EXPECT_EQ(disk.stat("a").st_mtim.tv_nsec, 5);
    EXPECT_EQ(disk.stat("a").st_atim.tv_sec, 7);
}

TEST(Links, AreRefusedByVolumesThatHoldNone) {
    for (const int error : {EPERM, EOPNOTSUPP, ENOSYS}) {
        EXPECT_TRUE(isLinkRefusal(error, EXT4_SUPER_MAGIC)) << error;
    }
    EXPECT_TRUE(isLinkRefusal(EIO, FUSE_SUPER_MAGIC));
}

TEST(Links, ThatADiskFailsToStoreAreAnError) {
    EXPECT_FALSE(isLinkRefusal(EIO, EXT4_SUPER_MAGIC));
    EXPECT_FALSE(isLinkRefusal(ENOSPC, FUSE_SUPER_MAGIC));
    const TemporaryDirectory disk;
    const UniqueFd fd(open(disk.at().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    EXPECT_FALSE(isLinkRefusalAt(EIO, fd.get()));
    EXPECT_TRUE(isLinkRefusalAt(EPERM, fd.get()));
}

struct statx informationOf(mode_t mode) {
    struct statx information {};
    information.stx_mode = static_cast<std::uint16_t>(mode);
    information.stx_ino = 1;
    return information;
}

std::uint32_t attributesOf(mode_t mode, const std::string& name) {
    FileEntry entry;
    EXPECT_TRUE(fillEntry(informationOf(mode), name, entry));
    return entry.attributes;
}

TEST(FileEntries, BearWindowsAttributes) {
    EXPECT_EQ(attributesOf(S_IFREG | 0644, "a"), 128U);
    EXPECT_EQ(attributesOf(S_IFREG | 0464, "a"), 1U);
    EXPECT_EQ(attributesOf(S_IFREG | 0644, ".a"), 2U);
    EXPECT_EQ(attributesOf(S_IFREG | 0444, ".a"), 3U);
    EXPECT_EQ(attributesOf(S_IFDIR | 0755, "d"), 16U);
    EXPECT_EQ(attributesOf(S_IFDIR | 0555, ".d"), 19U);
    EXPECT_EQ(attributesOf(S_IFDIR | 0755, "."), 16U);
    EXPECT_EQ(attributesOf(S_IFDIR | 0755, ".."), 16U);
    EXPECT_EQ(attributesOf(S_IFLNK | 0777, "l"), 1024U);
    EXPECT_EQ(attributesOf(S_IFLNK | 0077, "l"), 1024U);
}

TEST(FileEntries, AreFilesDirectoriesAndLinksOnly) {
    FileEntry entry;
    for (const mode_t kind : {S_IFIFO, S_IFSOCK, S_IFCHR, S_IFBLK}) {
        EXPECT_FALSE(fillEntry(informationOf(kind | 0644), "x", entry)) << kind;
    }
}

TEST(FileEntries, TakeTheOldestTimeWhereCreationIsNotKept) {
    struct statx information = informationOf(S_IFREG | 0644);
    information.stx_atime.tv_sec = 30;
    information.stx_mtime.tv_sec = 10;
    information.stx_ctime.tv_sec = 20;
    information.stx_btime.tv_sec = 5;
    FileEntry entry;
    ASSERT_TRUE(fillEntry(information, "a", entry));
    EXPECT_EQ(entry.times.creation, toFileTime(10, 0));
    information.stx_mask = STATX_BTIME;
    ASSERT_TRUE(fillEntry(information, "a", entry));
    EXPECT_EQ(entry.times.creation, toFileTime(5, 0));
}

}  // namespace
}  // namespace coffrelune
