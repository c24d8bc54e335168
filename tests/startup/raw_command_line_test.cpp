#include <gtest/gtest.h>

#include "startup/startup.h"

namespace coffrelune {
namespace {

TEST(RawCommandLine, WithoutArgumentsIsEmpty) {
    for (const char* text :
         {"", "coffrelune.exe", "coffrelune.exe  ", R"("C:\Mes outils\coffrelune.exe")",
          R"("C:\Mes outils\coffrelune.exe)", R"("C:\Mes outils\coffrelune.exe"  )"}) {
        EXPECT_EQ(argumentText(text), "") << text;
    }
}

TEST(RawCommandLine, TheProgramsNameEndsAtItsQuoteOrAtABlank) {
    EXPECT_EQ(argumentText(R"(C:\outils\coffrelune.exe /Auto /Travail)"), "/Auto /Travail");
    EXPECT_EQ(argumentText(R"("C:\Mes outils\coffrelune.exe" /Auto)"), "/Auto");
    EXPECT_EQ(argumentText(R"("C:\Mes outils\coffrelune.exe"/Auto)"), "/Auto");
    EXPECT_EQ(argumentText("coffrelune.exe\t/Auto"), "/Auto");
}

TEST(RawCommandLine, BlanksBeforeTheFirstWordSeparateItFromTheName) {
    EXPECT_EQ(argumentText(R"("coffrelune.exe"   travail)"), "travail");
}

TEST(RawCommandLine, QuotesRoundANameAreNoPartOfIt) {
    EXPECT_EQ(argumentText(R"(coffrelune.exe "/Mes photos")"), "/Mes photos");
    EXPECT_EQ(argumentText(R"(coffrelune.exe /"Mes photos" "/Auto")"), "/Mes photos /Auto");
    EXPECT_EQ(argumentText(R"(coffrelune.exe "")"), "");
}

TEST(RawCommandLine, BlanksWithinQuotesStay) {
    EXPECT_EQ(argumentText(R"(coffrelune.exe " travail")"), " travail");
    EXPECT_EQ(argumentText(R"(coffrelune.exe "/Mes  photos ")"), "/Mes  photos ");
}

TEST(RawCommandLine, BlanksBetweenWordsStay) {
    EXPECT_EQ(argumentText("coffrelune.exe Mes  photos"), "Mes  photos");
    EXPECT_EQ(argumentText("coffrelune.exe travail "), "travail ");
}

TEST(RawCommandLine, AQuoteWithoutAnotherStays) {
    EXPECT_EQ(argumentText(R"(coffrelune.exe /Disque 3")"), R"(/Disque 3")");
    EXPECT_EQ(argumentText(R"(coffrelune.exe "/Auto" /Disque 3")"), R"(/Auto /Disque 3")");
}

TEST(RawCommandLine, ABackslashIsACharacterLikeAnother) {
    EXPECT_EQ(argumentText(R"(coffrelune.exe "/Mes photos\")"), R"(/Mes photos\)");
}

}  // namespace
}  // namespace coffrelune
