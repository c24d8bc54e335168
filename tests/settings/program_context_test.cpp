#include "settings/program_context.h"

#include <gtest/gtest.h>

namespace coffrelune {
namespace {

void expectRead(const std::string& text, bool autoMode, const std::optional<std::string>& name) {
    const CommandLine result = readCommandLine(text);
    EXPECT_EQ(result.AutoMode, autoMode) << '"' << text << '"';
    EXPECT_EQ(result.configurationName, name) << '"' << text << '"';
}

TEST(CommandLine, AsksForNothingWhenEmpty) {
    expectRead("", false, std::nullopt);
}

TEST(CommandLine, KnowsAutoInAnyCase) {
    for (const char* text : {"/Auto", "/auto", "/AUTO", "/ aUTO ", "  /Auto"}) {
        expectRead(text, true, std::nullopt);
    }
}

TEST(CommandLine, TakesAnyOtherSwitchAsAName) {
    expectRead("/travail", false, "Travail");
    expectRead("/ÉTÉ 2024", false, "Été 2024");
    expectRead("/silent", false, "Silent");
    expectRead("/Automatique", false, "Automatique");
}

TEST(CommandLine, TakesABareNameWhole) {
    expectRead("Travail", false, "Travail");
    expectRead("mes PHOTOS", false, "Mes photos");
    expectRead(" travail", false, " travail");
    expectRead("travail ", false, "Travail ");
    expectRead(" ", false, " ");
    expectRead("Auto", false, "Auto");
}

TEST(CommandLine, IgnoresWhatStandsBeforeTheFirstSlash) {
    expectRead("x/Auto", true, std::nullopt);
    expectRead("Travail /Auto", true, std::nullopt);
    expectRead("x/photos", false, "Photos");
}

TEST(CommandLine, TakesSwitchesInAnyOrder) {
    expectRead("/Auto /Travail", true, "Travail");
    expectRead("/Travail /Auto", true, "Travail");
    expectRead("/auto/travail", true, "Travail");
}

TEST(CommandLine, LetsTheLastNameWin) {
    expectRead("/Travail /Photos", false, "Photos");
    expectRead("/Travail /Auto /Photos /Auto", true, "Photos");
}

TEST(CommandLine, ClearsTheNameWithAnEmptyElement) {
    expectRead("/Auto/", true, "");
    expectRead("/", false, "");
    expectRead("/Travail/ ", false, "");
    expectRead("//Travail", false, "Travail");
}

}  // namespace
}  // namespace coffrelune
