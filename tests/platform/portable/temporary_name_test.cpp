#include "platform/temporary_name.h"

#include <gtest/gtest.h>

namespace coffrelune {
namespace {

TEST(TemporaryNameOfANumber, HoldsItInSixteenDigits) {
    EXPECT_EQ(temporaryName(0), ".~coffrelune-0000000000000000.tmp");
    EXPECT_EQ(temporaryName(0x0123456789ABCDEF), ".~coffrelune-0123456789abcdef.tmp");
    EXPECT_EQ(temporaryName(~std::uint64_t{0}), ".~coffrelune-ffffffffffffffff.tmp");
}

TEST(TemporaryNameOfANumber, IsRecognisedAndNothingLikeItIs) {
    const std::string name = temporaryName(0xFEDCBA9876543210);
    EXPECT_TRUE(isTemporaryName(name));
    EXPECT_FALSE(isTemporaryName(name + "x"));
    EXPECT_FALSE(isTemporaryName("x" + name));
    EXPECT_FALSE(isTemporaryName(name.substr(1)));
    for (std::size_t i = 0; i < name.size(); ++i) {
        std::string changed = name;
        changed[i] = 'Z';
        EXPECT_FALSE(isTemporaryName(changed)) << changed;
    }
}

}  // namespace
}  // namespace coffrelune
