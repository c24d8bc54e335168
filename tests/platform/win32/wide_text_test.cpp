#include "platform/win32/wide_text.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace coffrelune
