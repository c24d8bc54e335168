#include "engine/line_roots.h"

#include <gtest/gtest.h>

namespace coffrelune {
namespace {

void expectRoots(const LineRoots& roots, const std::string& source, const std::string& destination,
                 const std::string& target) {
    EXPECT_EQ(roots.source, source);
    EXPECT_EQ(roots.destination, destination);
    EXPECT_EQ(roots.target, target);
}

LineRoots normal(const std::string& source, const std::string& destination) {
    return lineRoots(source, destination, Layout::normal);
}

LineRoots reversed(const std::string& source, const std::string& destination) {
    return lineRoots(source, destination, Layout::reversed);
}

TEST(LineRoots, AddTheLastComponentOfTheSource) {
    expectRoots(normal("C:\\Data\\Docs", "F:\\Save"), "C:\\Data\\Docs", "F:\\Save",
                "F:\\Save\\Docs");
    expectRoots(normal("C:\\Docs", "F:\\"), "C:\\Docs", "F:\\", "F:\\Docs");
    expectRoots(normal("C:\\Docs\\a.txt", "F:\\Save"), "C:\\Docs\\a.txt", "F:\\Save",
                "F:\\Save\\a.txt");
}

TEST(LineRoots, AddTheLetterOfADriveRoot) {
    expectRoots(normal("E:\\", "F:\\Save"), "E:\\", "F:\\Save", "F:\\Save\\E");
    expectRoots(normal("E:\\", "F:\\"), "E:\\", "F:\\", "F:\\E");
}

TEST(LineRoots, TakeADriveWithoutItsBackslashForItsRoot) {
    expectRoots(normal("E:", "F:"), "E:\\", "F:\\", "F:\\E");
    expectRoots(normal("C:\\Docs", "F:"), "C:\\Docs", "F:\\", "F:\\Docs");
    expectRoots(reversed("E:", "F:\\Save"), "F:\\Save\\E", "E:\\", "E:\\");
}

TEST(LineRoots, AddTheNameOfAShare) {
    expectRoots(normal("\\\\nas\\photos", "F:\\Save"), "\\\\nas\\photos", "F:\\Save",
                "F:\\Save\\photos");
    expectRoots(normal("C:\\Docs", "\\\\nas\\photos\\Save"), "C:\\Docs", "\\\\nas\\photos\\Save",
                "\\\\nas\\photos\\Save\\Docs");
}

TEST(LineRoots, JoinWithOneBackslash) {
    EXPECT_EQ(normal("C:\\Docs\\", "F:\\Save\\").target, "F:\\Save\\Docs");
    EXPECT_EQ(normal("C:\\Data\\Docs\\", "F:\\Save").target, "F:\\Save\\Docs");
}

// With an empty last component the copy would be the destination itself, where other lines lie.
TEST(LineRoots, NeverMakeTheDestinationItselfTheTarget) {
    expectRoots(normal("C:\\Docs\\\\", "F:\\Save\\\\"), "C:\\Docs\\", "F:\\Save\\",
                "F:\\Save\\Docs");
    expectRoots(normal("E:\\\\", "F:\\Save"), "E:\\", "F:\\Save", "F:\\Save\\E");
    EXPECT_EQ(normal("Docs", "F:\\Save").target, "F:\\Save\\Docs");
}

TEST(LineRoots, AreTheSameHoweverTheLineSpellsItsPlaces) {
    for (const char* source : {R"(E:\Docs\.)", R"(E:\Docs\Mai\..)", R"(E:\.\Docs)", "E:/Docs",
                               R"(E:\\Docs\\.)", R"(E:\..\Docs)", R"(\\?\E:\Docs)"}) {
        for (const char* destination :
             {R"(F:\Save)", R"(F:\Save\.)", "F:/Save", R"(F:\\Save)", R"(F:\Autre\..\Save)"}) {
            expectRoots(normal(source, destination), R"(E:\Docs)", R"(F:\Save)", R"(F:\Save\Docs)");
            expectRoots(reversed(source, destination), R"(F:\Save\Docs)", "E:\\", R"(E:\Docs)");
        }
    }
    for (const char* source : {R"(E:\.)", R"(E:\Docs\..)", R"(E:\..)", "E:/", R"(E:\\.\)"}) {
        expectRoots(normal(source, R"(F:\..)"), "E:\\", "F:\\", R"(F:\E)");
    }
    EXPECT_EQ(normal(R"(\\nas\photos\..)", "F:").target, R"(F:\photos)");
}

TEST(LineRoots, KeepTheBlanksOfNames) {
    expectRoots(normal(R"(C:\ Docs \a. )", R"(F:\Save )"), R"(C:\ Docs \a. )", R"(F:\Save )",
                R"(F:\Save \a. )");
}

TEST(LineRoots, LeadBackToTheVerySourceWhenReversed) {
    expectRoots(reversed("C:\\Data\\Docs", "F:\\Save"), "F:\\Save\\Docs", "C:\\", "C:\\Data\\Docs");
    expectRoots(reversed("E:\\", "F:\\Save"), "F:\\Save\\E", "E:\\", "E:\\");
    expectRoots(reversed("C:\\Docs\\a.txt", "F:\\Save"), "F:\\Save\\a.txt", "C:\\",
                "C:\\Docs\\a.txt");
    expectRoots(reversed("C:\\Docs\\", "F:\\Save\\"), "F:\\Save\\Docs", "C:\\", "C:\\Docs\\");
}

TEST(LineRoots, WantOnlyTheShareToExistWhenReversed) {
    expectRoots(reversed("\\\\nas\\photos\\2024\\Mai", "F:\\Save"), "F:\\Save\\Mai",
                "\\\\nas\\photos", "\\\\nas\\photos\\2024\\Mai");
    expectRoots(reversed("\\\\nas\\photos", "F:\\Save"), "F:\\Save\\photos", "\\\\nas\\photos",
                "\\\\nas\\photos");
}

TEST(CopyName, IsTheLastComponentOrTheLetter) {
    EXPECT_EQ(copyName("C:\\Data\\Docs"), "Docs");
    EXPECT_EQ(copyName("C:\\Data\\Docs\\"), "Docs");
    EXPECT_EQ(copyName("C:\\Docs"), "Docs");
    EXPECT_EQ(copyName("e:\\"), "e");
    EXPECT_EQ(copyName("E:"), "E");
    EXPECT_EQ(copyName("\\\\nas\\photos\\"), "photos");
}

TEST(Volume, IsTheDriveRootOrTheShare) {
    EXPECT_EQ(volumeOf("C:\\Data\\Docs"), "C:\\");
    EXPECT_EQ(volumeOf("C:"), "C:\\");
    EXPECT_EQ(volumeOf("\\\\nas\\photos\\2024"), "\\\\nas\\photos");
    EXPECT_EQ(volumeOf("\\\\nas\\photos\\"), "\\\\nas\\photos");
    EXPECT_EQ(volumeOf("\\\\nas\\photos"), "\\\\nas\\photos");
    EXPECT_EQ(volumeOf("\\\\nas"), "\\\\nas");
}

}  // namespace
}  // namespace coffrelune
