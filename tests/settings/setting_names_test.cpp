#include "settings/setting_names.h"

#include <gtest/gtest.h>

namespace coffrelune {
namespace {

TEST(ReservedName, IsPositionInAnyCaseAndBetweenBlanks) {
    for (const char* name : {"Position", "POSITION", "position", " position", "Position  "}) {
        EXPECT_TRUE(isReserved(name)) << name;
    }
}

TEST(ReservedName, LeavesEveryOtherNameFree) {
    for (const char* name : {"", " ", "Positions", "Pos ition", "General", "Position (x)"}) {
        EXPECT_FALSE(isReserved(name)) << name;
    }
}

}  // namespace
}  // namespace coffrelune
