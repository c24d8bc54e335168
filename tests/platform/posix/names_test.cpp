#include "platform/posix/names.h"

#include <gtest/gtest.h>

namespace coffrelune {
namespace {

TEST(Names, ShowBackslashAndColonAsPrivateCharacters) {
    EXPECT_EQ(toCoreName("a\\b:c"),
              "a\xEF\x81\x9C"
              "b\xEF\x80\xBA"
              "c");
    EXPECT_EQ(toNativeName("a\xEF\x81\x9C"
                           "b\xEF\x80\xBA"
                           "c"),
              "a\\b:c");
}

TEST(Names, LeaveEveryOtherByteAlone) {
    for (const std::string name :
         {"Été *?\"<>|\n\t", "\xFF\xFE brut \x80", "", "日本", "\xEF", "\xEF\x81"}) {
        EXPECT_EQ(toCoreName(name), name);
        EXPECT_EQ(toNativeName(name), name);
    }
}

TEST(Names, WithPrivateCharactersOfTheirOwnStayApart) {
    const std::string own =
        "a\xEF\x81\x9C"
        "b";
    EXPECT_NE(toCoreName(own), toCoreName("a\\b"));
    EXPECT_EQ(toNativeName(toCoreName(own)), own);
}

// Every sequence of up to six of these pieces, which are all that the mapping looks at.
TEST(Names, ComeBackWhateverTheyAre) {
    const std::string pieces[] = {"\\",   ":", "\xEF\x81\x9C", "\xEF\x80\xBA", "\xEF\x83\xBF",
                                  "\xEF", "x"};
    for (int code = 0; code < 7 * 7 * 7 * 7 * 7 * 7; ++code) {
        std::string name;
        for (int rest = code; rest > 0; rest /= 7) name += pieces[rest % 7];
        ASSERT_EQ(toNativeName(toCoreName(name)), name) << code;
    }
}

TEST(Names, TypedEscapeWithoutMeaningIsKept) {
    EXPECT_EQ(toNativeName("a\xEF\x83\xBFz"), "a\xEF\x83\xBFz");
    EXPECT_EQ(toNativeName("a\xEF\x83\xBF"), "a\xEF\x83\xBF");
}

}  // namespace
}  // namespace coffrelune
