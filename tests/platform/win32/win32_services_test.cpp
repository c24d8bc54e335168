#include "platform/win32/win32_services.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>

#include "platform/win32/test_disk.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/win32_platform.h"

namespace coffrelune {
namespace {

using testing::Contains;

constexpr const char* guardVariable = "COFFRELUNE_TEST_CLAIMED";
constexpr std::uint32_t letIn = 10;
constexpr std::uint32_t refused = 11;

TEST(Win32Drives, AreRootsInTheOrderOfTheirLetters) {
    const std::vector<std::string> roots = Win32Drives().roots();
    EXPECT_THAT(roots, Contains("C:\\"));
    for (const std::string& root : roots) {
        EXPECT_EQ(root.substr(1), ":\\");
        EXPECT_TRUE(root[0] >= 'A' && root[0] <= 'Z') << root;
    }
    EXPECT_TRUE(std::is_sorted(roots.begin(), roots.end()));
}

TEST(Win32Drives, KnowTheSystemsOwnDirectory) {
    const std::string directory = Win32Drives().windowsDirectory();
    EXPECT_TRUE((disk::attributes(directory).value_or(0) & attribute::directory) != 0) << directory;
    EXPECT_TRUE(disk::attributes(directory + "\\system32").has_value()) << directory;
}

// The programs are linked for systems that came after version 5.
TEST(Win32Drives, TakeAGivenPathAsOtherProgramsDo) {
    const disk::Temporary base;
    disk::makeDirectory(base.at("Save"));
    Win32Drives drives;
    for (const char* name : {"Save ", "Save.", "Save. .", "Save .\\", "Save"}) {
        EXPECT_EQ(drives.fromNative(base.at(name)), base.at("Save")) << name;
        EXPECT_EQ(drives.fromWindow(base.at(name)), base.at("Save")) << name;
    }
    EXPECT_EQ(drives.fromNative(base.at("nouveau.")), base.at("nouveau"));
    // Newer Windows takes such a name for that of a file.
    if (disk::isWine()) {
        EXPECT_EQ(drives.fromNative(base.at("CON")), R"(\\.\CON)");
    }
    EXPECT_EQ(drives.fromNative("F:\\"), "F:\\");
}

TEST(Win32Drives, TakeAGivenPathLiterallyWhereSomethingBearsIt) {
    const disk::Temporary base;
    for (const char* name : {"Fin.", "Fin", "Blanc ", "NUL"}) {
        disk::makeDirectory(base.at(name));
        EXPECT_EQ(Win32Drives().fromNative(base.at(name)), base.at(name)) << name;
    }
}

TEST(OwnVersion, GivesTheLevelOfASystemThatCopiesWithProgress) {
    EXPECT_EQ(ownSystemLevel(), 2);
}

TEST(Win32Clock, CountsInTheTimeZoneOfTheSystem) {
    // 2023-07-05 14:13:20.1239999 UTC; every zone differs from it by some quarters of an hour.
    const LocalTime local = toLocalTime(133'330'400'001'239'999);
    EXPECT_EQ(local.year, 2023);
    EXPECT_EQ(local.month, 7);
    EXPECT_GE(local.day, 4);
    EXPECT_LE(local.day, 6);
    EXPECT_EQ(local.minute % 15, 13);
    EXPECT_EQ(local.second, 20);
    EXPECT_EQ(local.millisecond, 123);
    EXPECT_EQ(toLocalTime(133'330'400'001'239'999 + 36'000'000'000).hour, (local.hour + 1) % 24);
}

TEST(Win32Locale, WritesNumbersAsItsLanguageDoes) {
    EXPECT_EQ(Win32Locale("fr-FR").decimalSeparator(), ",");
    EXPECT_EQ(Win32Locale("en-US").decimalSeparator(), ".");
}

TEST(Win32Locale, OfNoKnownLanguageIsFrench) {
    EXPECT_EQ(Win32Locale("no such language").decimalSeparator(), ",");
}

TEST(Win32Locale, OfTheUserIsNeverEmpty) {
    EXPECT_FALSE(Win32Locale().decimalSeparator().empty());
}

TEST(Win32Guard, RefusesASecondHolderOfTheSamePlaceHoweverItIsSpelled) {
    const disk::Temporary base;
    disk::makeDirectory(base.at("Réglages"));
    Win32Guard first;
    Win32Guard second;
    ASSERT_TRUE(first.claim(base.at("Réglages")));
    EXPECT_FALSE(second.claim(base.at("Réglages")));
    EXPECT_FALSE(second.claim(base.at("RÉGLAGES\\")));
    EXPECT_FALSE(second.claim(base.at("réglages\\.")));
    EXPECT_TRUE(second.claim(base.at("")));
}

TEST(Win32Guard, LetsItsOwnHolderClaimAgainAndOthersAfterItsEnd) {
    const disk::Temporary base;
    Win32Guard second;
    {
        Win32Guard first;
        EXPECT_TRUE(first.claim(base.at("")));
        EXPECT_TRUE(first.claim(base.at("")));
        EXPECT_FALSE(second.claim(base.at("")));
    }
    EXPECT_TRUE(second.claim(base.at("")));
}

// Not a test of its own: the second process of the next one tells by its exit status.
TEST(Win32GuardProcess, TellsWhetherItMayRun) {
    const std::string directory = disk::environment(guardVariable);
    if (directory.empty()) GTEST_SKIP() << "runs only as the second process of another test";
    ExitProcess(Win32Guard().claim(directory) ? letIn : refused);
}

TEST(Win32Guard, RefusesAnotherProcess) {
    const disk::Temporary base;
    const std::string test = "Win32GuardProcess.TellsWhetherItMayRun";
    EXPECT_EQ(disk::runTestAgain(test, guardVariable, base.at("")), letIn);
    Win32Guard guard;
    ASSERT_TRUE(guard.claim(base.at("")));
    EXPECT_EQ(disk::runTestAgain(test, guardVariable, base.at("")), refused);
}

TEST(Win32Guard, HoldsAnObjectOfTheWholeMachineThatNoNameCanHarm) {
    const std::string name = guardName(R"(C:\Docs\été)");
    const std::string start = "Global\\Coffrelune-";
    EXPECT_TRUE(name.starts_with(start)) << name;
    EXPECT_EQ(name.size(), start.size() + 16);
    EXPECT_EQ(name.find_first_not_of("0123456789abcdef", start.size()), std::string::npos) << name;
    EXPECT_EQ(guardName(R"(c:\DOCS\ÉTÉ)"), name);
    EXPECT_NE(guardName(R"(C:\Docs\ete)"), name);
}

TEST(ProgramPlace, IsThatOfTheRunningProgram) {
    const std::string program = executablePath();
    EXPECT_TRUE(program.ends_with("win32_tests.exe")) << program;
    EXPECT_TRUE(disk::attributes(program).has_value()) << program;
    SetEnvironmentVariableW(L"COFFRELUNE_HOME", nullptr);
    EXPECT_EQ(settingsDirectory() + "\\win32_tests.exe", program);
}

TEST(ProgramPlace, IsTheChosenOneWhenTheUserChose) {
    const auto chosen = [](const wchar_t* value) {
        SetEnvironmentVariableW(L"COFFRELUNE_HOME", value);
        return settingsDirectory();
    };
    const std::string own = chosen(nullptr);
    EXPECT_EQ(chosen(L"C:\\R\u00E9glages"), "C:\\Réglages");
    EXPECT_EQ(chosen(L"C:/Reglages"), "C:\\Reglages");
    EXPECT_EQ(chosen(L""), own);
    EXPECT_TRUE(chosen(L"relatif").ends_with("\\relatif"));
    EXPECT_GT(chosen(L"relatif").size(), std::string("C:\\relatif").size());
    SetEnvironmentVariableW(L"COFFRELUNE_HOME", nullptr);
}

TEST(Win32Platform, TurnsSystemBoxesIntoErrorsForItsThread) {
    SetThreadErrorMode(0, nullptr);
    const Win32Platform platform;
    EXPECT_NE(GetThreadErrorMode() & SEM_FAILCRITICALERRORS, 0U);
}

}  // namespace
}  // namespace coffrelune
