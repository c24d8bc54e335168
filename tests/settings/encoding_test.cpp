#include "settings/encoding.h"

#include <gtest/gtest.h>

#include "platform/characters.h"
#include "settings/settings_text.h"

namespace coffrelune {
namespace {

TEST(EscapeCharacters, WritesPrivateUseCharacters) {
    EXPECT_EQ(escapeCharacters("a\r\nb", lineBreakers), "a\uF00D\uF00Ab");
    EXPECT_EQ(escapeCharacters("a|b", "|"), "a\uF07Cb");
    EXPECT_EQ(escapeCharacters("a|b", lineBreakers), "a|b");
}

TEST(EscapeCharacters, ComesBackExactly) {
    const std::string nul("x\0y", 3);
    for (const std::string& text :
         {std::string(), std::string("\n"), nul, std::string("\uF00A"), std::string("\uF01B"),
          std::string("\uF01B\n"), std::string("\n\uF01B"), std::string("\uF01B\uF00A"),
          std::string("\uF01B\uF01B\uF00D\r"), std::string("\uF07C\uF05C\uEFFF"),
          std::string("\xE9\n\xFF")}) {
        EXPECT_EQ(unescapeCharacters(escapeCharacters(text, lineBreakers), lineBreakers), text);
    }
}

TEST(EscapeCharacters, LeavesAForeignEscapeAlone) {
    EXPECT_EQ(unescapeCharacters("a\uF01Bb\uF01B", lineBreakers), "a\uF01Bb\uF01B");
}

TEST(ProtectQuotes, AddsAPairWhereReadingWouldTakeOneOff) {
    EXPECT_EQ(protectQuotes("\"a b\""), "\"\"a b\"\"");
    EXPECT_EQ(protectQuotes("'a'"), "\"'a'\"");
    EXPECT_EQ(protectQuotes("\"\""), "\"\"\"\"");
    EXPECT_EQ(protectQuotes("\"a\" \"b\""), "\"\"a\" \"b\"\"");
}

TEST(ProtectQuotes, LeavesEveryOtherValueAsItIs) {
    for (const char* value : {"", "\"", "'", "a", "aa", "\"a'", "a \"b\"", "\"a\" b", "/x"}) {
        EXPECT_EQ(protectQuotes(value), value);
    }
}

TEST(ProtectQuotes, LetsParametersReadBackAsTyped) {
    const Windows1252 ansi;
    for (const char* typed :
         {"\"C:\\a b\" \"D:\\c\"", "'x'", "\"\"", "\"", "/x \"y\"", "\"\"a\"\"", "abc"}) {
        SettingsText text(ansi);
        ASSERT_EQ(text.setValue("A", "PrmToRun", protectQuotes(typed)), SettingsText::Edit::made);
        EXPECT_EQ(text.value("A", "PrmToRun"), typed);
    }
}

}  // namespace
}  // namespace coffrelune
