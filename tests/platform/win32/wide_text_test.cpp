#include "platform/win32/wide_text.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "platform/characters.h"

namespace coffrelune {
namespace {

TEST(WideText, GivesEveryCharacterBothWays) {
    EXPECT_EQ(wide("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8C\x92"), L"a\u00E9\u20AC\U0001F312");
    EXPECT_EQ(narrow(L"a\u00E9\u20AC\U0001F312"), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8C\x92");
    EXPECT_EQ(wide(""), L"");
    EXPECT_EQ(narrow(L""), "");
}

TEST(WideText, KeepsNulCharacters) {
    EXPECT_EQ(wide(std::string_view("a\0b", 3)), std::wstring(L"a\0b", 3));
    EXPECT_EQ(narrow(std::wstring_view(L"a\0b", 3)), std::string("a\0b", 3));
}

TEST(WideText, GivesEveryNameOfTheDiskBack) {
    for (unsigned unit = 1; unit < 0x10000; ++unit) {
        const std::wstring alone(1, static_cast<wchar_t>(unit));
        ASSERT_EQ(wide(narrow(alone)), alone) << unit;
    }
    for (const std::wstring& name :
         {std::wstring(L"x\xD800y"), std::wstring(L"\xDC00\xD800"), std::wstring(L"\xD83C"),
          std::wstring(L"\xD800\xD83C\xDF12"), std::wstring(L"\xDCE9.txt")}) {
        EXPECT_EQ(wide(narrow(name)), name);
    }
}

TEST(WideText, TakesBytesThatAreNoTextForLoneSurrogates) {
    EXPECT_EQ(wide("a\xE9z"), L"a\xDCE9z");
    EXPECT_EQ(wide("\xC3"), L"\xDCC3");
}

std::string encoded(unsigned codePage, const std::string& text, bool& complete) {
    std::string bytes = "something else";
    complete = AnsiCodePage(codePage).encode(text, bytes);
    return bytes;
}

TEST(AnsiCodePage, IsTheOneOfTheUser) {
    EXPECT_EQ(AnsiCodePage().codePage(), GetACP());
}

TEST(AnsiCodePage, GivesEveryByteOfTheWesternPageAsItsTable) {
    const AnsiCodePage page(1252);
    const Windows1252 table;
    for (int byte = 1; byte < 256; ++byte) {
        const std::string one(1, static_cast<char>(byte));
        EXPECT_EQ(page.decode(one), table.decode(one)) << byte;
        std::string back;
        EXPECT_TRUE(page.encode(page.decode(one), back)) << byte;
        EXPECT_EQ(back, one) << byte;
    }
}

TEST(AnsiCodePage, PutsOneQuestionMarkForEachCharacterThatItDoesNotHold) {
    bool complete = true;
    EXPECT_EQ(encoded(1252, "été Łódź 日本 🌒!", complete),
              "\xE9t\xE9 ?\xF3"
              "d? ?? ?!");
    EXPECT_FALSE(complete);
    EXPECT_EQ(encoded(1252, "été €", complete), "\xE9t\xE9 \x80");
    EXPECT_TRUE(complete);
    EXPECT_EQ(encoded(1252, "", complete), "");
    EXPECT_TRUE(complete);
}

TEST(AnsiCodePage, TakesNoNearRelative) {
    bool complete = true;
    // "Ā" would be "A" and "∞" would be "8" by the best fit.
    EXPECT_EQ(encoded(1252, "Ā∞", complete), "??");
    EXPECT_FALSE(complete);
}

TEST(AnsiCodePage, HoldsOtherAlphabets) {
    bool complete = false;
    EXPECT_EQ(encoded(1250, "Łódź", complete), "\xA3\xF3\x64\x9F");
    EXPECT_TRUE(complete);
    EXPECT_EQ(AnsiCodePage(1250).decode("\xA3\xF3\x64\x9F"), "Łódź");
    EXPECT_EQ(encoded(1253, "Αθήνα", complete), "\xC1\xE8\xDE\xED\xE1");
    EXPECT_TRUE(complete);
    EXPECT_EQ(encoded(1253, "été", complete), "?t?");
    EXPECT_FALSE(complete);
}

TEST(AnsiCodePage, HoldsCharactersOfTwoBytes) {
    bool complete = false;
    EXPECT_EQ(encoded(932, "日本", complete), "\x93\xFA\x96\x7B");
    EXPECT_TRUE(complete);
    EXPECT_EQ(AnsiCodePage(932).decode("\x93\xFA\x96\x7B"), "日本");
    // The second byte of this one is a backslash.
    EXPECT_EQ(AnsiCodePage(932).decode("C:\\\x83\x5C"), "C:\\ソ");
}

TEST(AnsiCodePage, ThatIsUtf8ConvertsNothing) {
    bool complete = false;
    EXPECT_EQ(encoded(CP_UTF8, "日本 🌒", complete), "日本 🌒");
    EXPECT_TRUE(complete);
    EXPECT_EQ(AnsiCodePage(CP_UTF8).decode("日本\xFF"), "日本\xFF");
}

TEST(AnsiCodePage, DecodesAnyBytes) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) all.push_back(static_cast<char>(byte));
    for (const unsigned page : {1252U, 1250U, 932U}) {
        EXPECT_FALSE(AnsiCodePage(page).decode(all).empty()) << page;
    }
    EXPECT_EQ(AnsiCodePage(1252).decode(""), "");
}

TEST(AnsiCodePage, TakesHalfACharacterForOneThatItDoesNotHold) {
    bool complete = true;
    EXPECT_EQ(encoded(1252, "a\xED\xA0\x80z", complete), "a?z");
    EXPECT_FALSE(complete);
}

}  // namespace
}  // namespace coffrelune
