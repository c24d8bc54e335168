#include "platform/platform.h"

#include <gtest/gtest.h>

namespace coffrelune {
namespace {

TEST(SystemLevelTest, IsTwoAboveVersionFive) {
    EXPECT_EQ(systemLevel({true, 6, 0, 6000}), 2);
    EXPECT_EQ(systemLevel({true, 10, 0, 19045}), 2);
}

TEST(SystemLevelTest, IsOneForVersionFiveOneFromItsSoldBuildOn) {
    EXPECT_EQ(systemLevel({true, 5, 1, 2600}), 1);
    EXPECT_EQ(systemLevel({true, 5, 1, 2601}), 1);
    EXPECT_EQ(systemLevel({true, 5, 1, 2599}), 0);
}

TEST(SystemLevelTest, IsZeroForEveryOther) {
    EXPECT_EQ(systemLevel({true, 5, 0, 2600}), 0);
    EXPECT_EQ(systemLevel({true, 5, 2, 3790}), 0);
    EXPECT_EQ(systemLevel({true, 4, 0, 1381}), 0);
    EXPECT_EQ(systemLevel({false, 6, 0, 6000}), 0);
    EXPECT_EQ(systemLevel({false, 4, 90, 3000}), 0);
    EXPECT_EQ(systemLevel({}), 0);
}

}  // namespace
}  // namespace coffrelune
