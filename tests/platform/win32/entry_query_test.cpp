#include "platform/win32/entry_query.h"

#include <gtest/gtest.h>

namespace coffrelune {
namespace {

constexpr std::uint32_t reparse = 1024;
constexpr std::uint32_t archive = 32;

TEST(SpecialFiles, AreSocketsLinuxDevicesAndStandInsOfPrograms) {
    for (const std::uint32_t tag :
         {0x80000023U, 0x80000024U, 0x80000025U, 0x80000026U, 0x8000001BU}) {
        EXPECT_TRUE(isSpecial(reparse | archive, tag)) << std::hex << tag;
    }
}

// Links, and what only seems to be something else than a file: deduplicated, kept in a cloud.
TEST(SpecialFiles, AreNoneOfTheOtherReparsePoints) {
    for (const std::uint32_t tag :
         {0U, 0xA000000CU, 0xA0000003U, 0xA000001DU, 0x80000013U, 0x9000001AU, 0x80000017U}) {
        EXPECT_FALSE(isSpecial(reparse | archive, tag)) << std::hex << tag;
    }
}

// The field that holds a tag means nothing for other files.
TEST(SpecialFiles, AreReparsePoints) {
    EXPECT_FALSE(isSpecial(archive, 0x80000023U));
}

}  // namespace
}  // namespace coffrelune
