#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

constexpr std::uint64_t limit = std::uint64_t{1} << 24;  // where a 32-bit float counts by twos

TEST_F(Engine, LosesASmallFileInALargeTotal) {
    disk().file("C:\\Docs\\a.bin").hole = limit;
    disk().file("C:\\Docs\\b.txt", "1");
    analyse("C:\\Docs", "F:\\");
    EXPECT_EQ(statistics.totalBytes, static_cast<float>(limit));
}

TEST_F(Engine, CountsTheSmallFileWhenItComesFirst) {
    disk().file("C:\\Docs\\a.txt", "12");
    disk().file("C:\\Docs\\b.bin").hole = limit;
    analyse("C:\\Docs", "F:\\");
    EXPECT_EQ(statistics.totalBytes, static_cast<float>(limit + 2));
}

TEST_F(Engine, AddsAnExactSizeOfManyGigabytes) {
    disk().file("C:\\Docs\\a.bin").hole = 3 * (std::uint64_t{1} << 32) + 4096;
    analyse("C:\\Docs", "F:\\");
    EXPECT_EQ(statistics.totalBytes, 12'884'905'984.0F);
}

TEST_F(Engine, RoundsTheTotalAndNotTheSizeThatIsAdded) {
    disk().file("C:\\Docs\\a.txt", "1");
    disk().file("C:\\Docs\\b.bin").hole = limit + 1;
    run("C:\\Docs", "F:\\");
    EXPECT_EQ(statistics.totalBytes, static_cast<float>(limit + 2));
    EXPECT_EQ(statistics.bytesDone, static_cast<float>(limit + 2));
}

TEST_F(Engine, LosesTheSameInTheBytesDone) {
    disk().file("C:\\Docs\\a.bin").hole = limit;
    disk().file("C:\\Docs\\b.txt", "1");
    run("C:\\Docs", "F:\\");
    EXPECT_EQ(statistics.bytesDone, static_cast<float>(limit));
    EXPECT_EQ(disk().content("F:\\Docs\\b.txt"), "1");
    // What the run really did is counted exactly.
    EXPECT_EQ(statistics.tallies[0].bytes, limit + 1);
    EXPECT_EQ(statistics.tallies[0].files, 2U);
}

TEST_F(Engine, CountsASingleFileOfALineInTheSameTotal) {
    disk().file("C:\\a.bin").hole = limit;
    disk().file("C:\\b.txt", "1");
    analyse("C:\\a.bin", "F:\\");
    analyse("C:\\b.txt", "F:\\");
    EXPECT_EQ(statistics.totalBytes, static_cast<float>(limit));
}

}  // namespace
}  // namespace coffrelune
