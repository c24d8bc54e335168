#include "platform/posix/octal.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace coffrelune
