#include "platform/windows1252.h"

#include <gtest/gtest.h>

namespace coffrelune {
namespace {

TEST(Windows1252, EncodesFrenchTextAndItsTypography) {
    const Windows1252 codec;
    std::string bytes;
    EXPECT_TRUE(codec.encode("Été à Noël – œuvre à 5 €…", bytes));
    EXPECT_EQ(bytes, "\xC9t\xE9 \xE0 No\xEBl \x96 \x9Cuvre \xE0 5 \x80\x85");
    EXPECT_EQ(codec.decode(bytes), "Été à Noël – œuvre à 5 €…");
}

TEST(Windows1252, EveryByteSurvivesDecodingAndEncoding) {
    const Windows1252 codec;
    std::string all;
    for (int byte = 0; byte < 256; ++byte) all.push_back(static_cast<char>(byte));
    std::string back;
    EXPECT_TRUE(codec.encode(codec.decode(all), back));
    EXPECT_EQ(back, all);
}

TEST(Windows1252, FreeBytesAreTheControlsOfTheSameNumber) {
    const Windows1252 codec;
    EXPECT_EQ(codec.decode("\x81\x8D\x8F\x90\x9D"), "\u0081\u008D\u008F\u0090\u009D");
}

TEST(Windows1252, PutsOneQuestionMarkForEachCharacterItCannotHold) {
    const Windows1252 codec;
    std::string bytes = "old";
    EXPECT_FALSE(codec.encode("a日本🌒b", bytes));
    EXPECT_EQ(bytes, "a???b");
    // The C1 control whose byte means another character has no byte of its own.
    EXPECT_FALSE(codec.encode("\u0080", bytes));
    EXPECT_EQ(bytes, "?");
}

TEST(Windows1252, PutsAQuestionMarkForEachByteThatIsNoUtf8) {
    const Windows1252 codec;
    std::string bytes;
    EXPECT_FALSE(codec.encode("a\xE9z\xFF", bytes));
    EXPECT_EQ(bytes, "a?z?");
}

TEST(Windows1252, TakesEmptyText) {
    const Windows1252 codec;
    std::string bytes = "old";
    EXPECT_TRUE(codec.encode("", bytes));
    EXPECT_EQ(bytes, "");
    EXPECT_EQ(codec.decode(""), "");
}

}  // namespace
}  // namespace coffrelune
