#include "system/paths.h"

#include <gtest/gtest.h>

namespace coffrelune {
namespace {

TEST(TrailingBackslash, IsAddedWhereThereIsNone) {
    EXPECT_EQ(withTrailingBackslash("C:\\Data"), "C:\\Data\\");
    EXPECT_EQ(withTrailingBackslash("C:\\"), "C:\\");
    EXPECT_EQ(withTrailingBackslash(""), "\\");
}

TEST(TrailingBackslash, IsTakenOffOnce) {
    EXPECT_EQ(withoutTrailingBackslash("C:\\Data\\"), "C:\\Data");
    EXPECT_EQ(withoutTrailingBackslash("C:\\Data\\\\"), "C:\\Data\\");
    EXPECT_EQ(withoutTrailingBackslash("C:"), "C:");
    EXPECT_EQ(withoutTrailingBackslash(""), "");
}

void expectSplit(const std::string& path, const std::string& parent, const std::string& last) {
    const SplitPath split = splitPath(path);
    EXPECT_EQ(split.parent, parent) << path;
    EXPECT_EQ(split.last, last) << path;
}

TEST(SplitPath, PartsAtTheLastBackslash) {
    expectSplit("C:\\Data\\Photos", "C:\\Data\\", "Photos");
    expectSplit("C:\\Data\\Photos\\", "C:\\Data\\", "Photos");
    expectSplit("\\\\serveur\\partage", "\\\\serveur\\", "partage");
    expectSplit("C:\\a", "C:\\", "a");
}

TEST(SplitPath, TakesATextWithoutBackslashAsTheParent) {
    expectSplit("C:\\", "C:", "");
    expectSplit("fichier", "fichier", "");
    expectSplit("", "", "");
    expectSplit("\\", "", "");
}

TEST(JoinPath, PutsExactlyOneBackslashBetween) {
    EXPECT_EQ(joinPath("C:\\Data", "Tmp"), "C:\\Data\\Tmp");
    EXPECT_EQ(joinPath("C:\\Data", "\\Tmp"), "C:\\Data\\Tmp");
    EXPECT_EQ(joinPath("C:\\", "Temp"), "C:\\Temp");
    EXPECT_EQ(joinPath("C:\\", "\\Temp"), "C:\\Temp");
    EXPECT_EQ(joinPath("C:\\Data\\\\", "\\\\Tmp\\x"), "C:\\Data\\Tmp\\x");
    EXPECT_EQ(joinPath("\\\\serveur\\partage", "a"), "\\\\serveur\\partage\\a");
}

TEST(JoinPath, KeepsTheBackslashWhenOneSideIsEmpty) {
    EXPECT_EQ(joinPath("C:\\Data", ""), "C:\\Data\\");
    EXPECT_EQ(joinPath("", "a"), "\\a");
    EXPECT_EQ(joinPath("\\", "\\"), "\\");
}

TEST(IsDriveRoot, WantsThreeCharacters) {
    EXPECT_TRUE(isDriveRoot("D:\\"));
    EXPECT_TRUE(isDriveRoot("d:\\"));
    for (const char* path : {"", "D", "D:", "D:\\x", "1:\\", "D:/", "\\\\s", "::\\"}) {
        EXPECT_FALSE(isDriveRoot(path)) << path;
    }
}

TEST(WithoutExtension, CutsAtTheLastDot) {
    EXPECT_EQ(withoutExtension("Ok.wav"), "Ok");
    EXPECT_EQ(withoutExtension("a.b.c"), "a.b");
    EXPECT_EQ(withoutExtension("sans"), "sans");
    EXPECT_EQ(withoutExtension(".cache"), "");
    EXPECT_EQ(withoutExtension("fin."), "fin");
}

TEST(CleanFileName, ReplacesWhatAFileNameCannotHold) {
    EXPECT_EQ(cleanFileName("A:B?", "_"), "A_B_");
    EXPECT_EQ(cleanFileName("<>|\\/*:?\"", "_"), "_________");
    EXPECT_EQ(cleanFileName("Été 2024", "_"), "Été 2024");
    EXPECT_EQ(cleanFileName("", "_"), "");
}

TEST(CleanFileName, TrimsBlanksAfterReplacing) {
    EXPECT_EQ(cleanFileName("  Travail  ", "_"), "Travail");
    EXPECT_EQ(cleanFileName("?a*", " "), "a");
    EXPECT_EQ(cleanFileName("a:b", ""), "ab");
}

TEST(CleanFileName, ReplacesInAFixedOrder) {
    EXPECT_EQ(cleanFileName("a<b", ":"), "a:b") << "a replacement may hold such a character";
    EXPECT_EQ(cleanFileName("a:b", "::"), "a::b");
    EXPECT_EQ(cleanFileName("a<b", "?<"), "a?<<b") << "the later ? is replaced again";
}

}  // namespace
}  // namespace coffrelune
