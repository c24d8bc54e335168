#include "platform/characters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace coffrelune {
namespace {

using testing::ElementsAre;

std::vector<char32_t> read(std::string_view text) {
    std::vector<char32_t> characters;
    for (std::size_t position = 0; position < text.size();) {
        characters.push_back(utf8::next(text, position));
    }
    return characters;
}

std::string write(const std::vector<char32_t>& characters) {
    std::string text;
    for (const char32_t c : characters) utf8::append(text, c);
    return text;
}

char32_t raw(unsigned byte) {
    return utf8::rawByte + byte;
}

TEST(Utf8, ReadsCharactersOfEachLength) {
    EXPECT_THAT(read("aé€🌒"), ElementsAre(U'a', U'é', U'€', U'🌒'));
}

TEST(Utf8, ReadsAZeroByteAsACharacter) {
    EXPECT_THAT(read(std::string_view("a\0b", 3)), ElementsAre(U'a', U'\0', U'b'));
}

TEST(Utf8, EveryCharacterSurvives) {
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
        if (c >= 0xD800 && c <= 0xDFFF) continue;
        std::string text;
        utf8::append(text, c);
        std::size_t position = 0;
        ASSERT_EQ(utf8::next(text, position), c);
        ASSERT_EQ(position, text.size());
    }
}

TEST(Utf8, ReadsWhatIsNoUtf8ByteByByte) {
    EXPECT_THAT(read("\x80z"), ElementsAre(raw(0x80), U'z'));
    EXPECT_THAT(read("\xE9t\xE9"), ElementsAre(raw(0xE9), U't', raw(0xE9)));
    EXPECT_THAT(read("\xFF\xFE"), ElementsAre(raw(0xFF), raw(0xFE)));
}

TEST(Utf8, ReadsTruncatedCharactersByteByByte) {
    EXPECT_THAT(read("\xC3"), ElementsAre(raw(0xC3)));
    EXPECT_THAT(read("\xE2\x82"), ElementsAre(raw(0xE2), raw(0x82)));
    EXPECT_THAT(read("\xF0\x9F\x8C"), ElementsAre(raw(0xF0), raw(0x9F), raw(0x8C)));
    EXPECT_THAT(read("\xE2\x82z"), ElementsAre(raw(0xE2), raw(0x82), U'z'));
}

TEST(Utf8, RefusesOverlongFormsSurrogatesAndWhatIsBeyondUnicode) {
    EXPECT_THAT(read("\xC0\xAF"), ElementsAre(raw(0xC0), raw(0xAF)));
    EXPECT_THAT(read("\xE0\x80\xAF"), ElementsAre(raw(0xE0), raw(0x80), raw(0xAF)));
    EXPECT_THAT(read("\xF0\x80\x80\xAF"), ElementsAre(raw(0xF0), raw(0x80), raw(0x80), raw(0xAF)));
    EXPECT_THAT(read("\xED\xA0\x80"), ElementsAre(raw(0xED), raw(0xA0), raw(0x80)));
    EXPECT_THAT(read("\xF4\x90\x80\x80"), ElementsAre(raw(0xF4), raw(0x90), raw(0x80), raw(0x80)));
}

TEST(Utf8, AnyBytesSurviveReadingAndWriting) {
    std::string bytes;
    std::uint32_t state = 7;
    for (int i = 0; i < 100'000; ++i) {
        state = state * 1664525U + 1013904223U;
        bytes.push_back(static_cast<char>(state >> 24));
    }
    EXPECT_EQ(write(read(bytes)), bytes);
}

bool isUtf8(const std::string& text) {
    for (std::size_t position = 0; position < text.size();) {
        const char32_t character = utf8::next(text, position);
        if (character >= utf8::rawByte + 0x80 && character <= utf8::rawByte + 0xFF) return false;
    }
    return true;
}

TEST(ShownBytes, LeaveValidTextAlone) {
    for (const char* text : {"", "C:\\Été\\日本 🌒", "a&b"}) {
        EXPECT_EQ(shownBytes(text), text);
        EXPECT_EQ(rawBytes(text), text);
    }
}

TEST(ShownBytes, AreValidTextThatGivesTheBytesBack) {
    std::string every = "caf";
    for (int byte = 1; byte < 256; ++byte) every.push_back(static_cast<char>(byte));
    for (const std::string& name : {std::string("C:\\caf\xE9"), std::string("\xED\xB3\xA9 half"),
                                    std::string("\xF4\x90\x80\x80"), every}) {
        EXPECT_FALSE(isUtf8(name));
        EXPECT_TRUE(isUtf8(shownBytes(name)));
        EXPECT_EQ(rawBytes(shownBytes(name)), name);
    }
    EXPECT_EQ(shownBytes("caf\xE9"), "caf\U0010DCE9");
}

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
