#include "platform/time_grid.h"

#include <gtest/gtest.h>

namespace coffrelune {
namespace {

constexpr std::uint64_t second = 10'000'000;
constexpr std::uint64_t of1980 = 119'600'064'000'000'000;
constexpr std::uint64_t of2020 = 132'223'104'000'000'000;
constexpr std::uint64_t of2108 = 159'992'928'000'000'000;

/// A volume that rounds up as the program does.
TimeTrial volumeWith(const TimeGrid& grid) {
    return [grid](std::uint64_t wanted) { return grid.held(wanted); };
}

TimeTrial roundingDown(std::uint64_t step) {
    return [step](std::uint64_t wanted) { return wanted - wanted % step; };
}

TEST(TimeGrid, HoldsTheNextTimeOfItsStep) {
    const TimeGrid grid{2 * second};
    EXPECT_EQ(grid.held(of2020), of2020);
    EXPECT_EQ(grid.held(of2020 + 1), of2020 + 2 * second);
    EXPECT_EQ(grid.held(of2020 + 2 * second - 1), of2020 + 2 * second);
    EXPECT_EQ(TimeGrid().held(of2020 + 1), of2020 + 1);
    EXPECT_EQ(grid.held(UINT64_MAX), UINT64_MAX);
}

TEST(TimeGrid, HoldsNothingBeyondItsEnds) {
    const TimeGrid grid{2 * second, of1980, of2108};
    EXPECT_EQ(grid.held(of1980 - second), of1980);
    EXPECT_EQ(grid.held(of2108 + 1), of2108);
}

TEST(TimeGrid, IsFoundOutByTrialWhicheverWayTheVolumeRounds) {
    for (const std::uint64_t step : {std::uint64_t{1}, std::uint64_t{10}, second / 1000,
                                     second / 100, second / 10, second, 2 * second}) {
        EXPECT_EQ(measureStep(volumeWith({step})), step);
        EXPECT_EQ(measureStep(roundingDown(step)), step);
    }
}

TEST(TimeGrid, OfAVolumeThatKeepsNoTimesIsUnknown) {
    EXPECT_EQ(measureStep([](std::uint64_t) { return of2020; }), 0U);
    EXPECT_EQ(measureStep([](std::uint64_t) { return std::nullopt; }), 0U);
    EXPECT_EQ(measureTimes([](std::uint64_t) { return of2020; }), std::nullopt);
}

TEST(TimeGrid, EndsWhereTheVolumeGivesEverythingBeyondOneTime) {
    const TimeGrid fat{2 * second, of1980, of2108 - 2 * second};
    EXPECT_EQ(measureTimes(volumeWith(fat)), fat);
    EXPECT_EQ(measureTimes(volumeWith({})), TimeGrid());
}

TEST(TimeGrid, EndsWhereTheVolumeRefuses) {
    const auto refusing = [](std::uint64_t wanted) -> std::optional<std::uint64_t> {
        if (wanted < of1980 || wanted >= of2108) return {};
        return wanted;
    };
    const auto grid = measureTimes(refusing);
    ASSERT_TRUE(grid.has_value());
    EXPECT_GE(grid->earliest, of1980);
    EXPECT_LT(grid->earliest, of1980 + 86'400UL * 2 * second);
    EXPECT_LT(grid->latest, of2108);
    EXPECT_GT(grid->latest, of2108 - 86'400UL * 3 * second);
}

// What comes back of a time beyond may be any.
TEST(TimeGrid, HasNoEndWhereTheVolumeStartsAgain) {
    constexpr std::uint64_t from1601To1970 = 11'644'473'600 * second;
    constexpr std::uint64_t round = (std::uint64_t{1} << 32) * second;
    const auto wrapping = [](std::uint64_t wanted) {
        return (wanted - from1601To1970) / second * second % round + from1601To1970;
    };
    EXPECT_EQ(measureTimes(wrapping), TimeGrid{second});
}

}  // namespace
}  // namespace coffrelune
