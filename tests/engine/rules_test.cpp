#include "engine/rules.h"

#include <gtest/gtest.h>

#include "platform/memory/memory_services.h"

namespace coffrelune {
namespace {

LeftOut rules(int mode, std::vector<std::string> directories = {}) {
    LeftOut leftOut;
    leftOut.windowsDirectory = "C:\\WINDOWS";
    leftOut.root = "C:\\Data\\";
    leftOut.lists = {{static_cast<ExclusionMode>(mode), std::move(directories)}};
    return leftOut;
}

TEST(SystemFiles, AreSkippedInAnyCase) {
    for (const char* name : {"pagefile.sys", "hiberfil.sys", "thumbs.db", "ntuser.dat",
                             "ntuser.dat.log", "usrclass.dat", "usrclass.dat.log"}) {
        EXPECT_TRUE(isSystemFile(name)) << name;
    }
    EXPECT_TRUE(isSystemFile("NTUSER.DAT"));
    EXPECT_TRUE(isSystemFile("Thumbs.db"));
    EXPECT_TRUE(isSystemFile("UsrClass.DAT.Log"));
}

TEST(SystemFiles, AreKnownByTheirWholeNameOnly) {
    for (const char* name : {"", "a", "pagefile.sy", "pagefile.sys2", "xthumbs.db", "ntuser.dat.",
                             "ntuser.dat.log2", "usrclass.dat.log.old"}) {
        EXPECT_FALSE(isSystemFile(name)) << name;
    }
}

TEST(ExcludedDirectories, HoldTheSystemFoldersInTheirExactCase) {
    const LeftOut all = rules(0);
    for (const char* name : {"System Volume Information", "Recycled", ".", ".."}) {
        EXPECT_TRUE(isExcludedDirectory("C:\\Data\\", name, all)) << name;
    }
    for (const char* name : {"RECYCLED", "recycled", "system volume information", "Recycled2"}) {
        EXPECT_FALSE(isExcludedDirectory("C:\\Data\\", name, all)) << name;
    }
}

TEST(ExcludedDirectories, HoldTheWindowsDirectoryInItsExactSpelling) {
    const LeftOut all = rules(0);
    EXPECT_TRUE(isExcludedDirectory("C:\\", "WINDOWS", all));
    EXPECT_FALSE(isExcludedDirectory("C:\\", "Windows", all));
    EXPECT_FALSE(isExcludedDirectory("D:\\", "WINDOWS", all));
    EXPECT_FALSE(isExcludedDirectory("C:\\Data\\", "WINDOWS", all));
}

TEST(ExcludedDirectories, AreAllOfThemWhenALineTakesNoSubdirectory) {
    EXPECT_TRUE(isExcludedDirectory("C:\\Data\\", "Photos", rules(1)));
    EXPECT_TRUE(isExcludedDirectory("C:\\Data\\", "Photos", rules(1, {"Autre"})));
}

TEST(ExcludedDirectories, AreTheListedOnesAtTheirPlaceOnly) {
    const LeftOut listed = rules(2, {"Photos", "Docs\\Brouillons"});
    EXPECT_TRUE(isExcludedDirectory("C:\\Data\\", "Photos", listed));
    EXPECT_TRUE(isExcludedDirectory("C:\\Data\\Docs\\", "Brouillons", listed));
    EXPECT_FALSE(isExcludedDirectory("C:\\Data\\Docs\\", "Photos", listed));
    EXPECT_FALSE(isExcludedDirectory("C:\\Data\\", "photos", listed));
    EXPECT_FALSE(isExcludedDirectory("C:\\Data\\", "Photos2", listed));
    EXPECT_FALSE(isExcludedDirectory("C:\\Data\\", "Docs", listed));
}

TEST(ExcludedDirectories, AreFoundWithOrWithoutALeadingBackslashInTheList) {
    EXPECT_TRUE(isExcludedDirectory("C:\\Data\\", "Tmp", rules(2, {"\\Tmp"})));
    LeftOut drive = rules(2, {"Temp", "\\Tmp"});
    drive.root = "C:\\";
    EXPECT_TRUE(isExcludedDirectory("C:\\", "Temp", drive));
    EXPECT_TRUE(isExcludedDirectory("C:\\", "Tmp", drive));
    EXPECT_FALSE(isExcludedDirectory("C:\\Data\\", "Temp", drive));
}

TEST(ExcludedDirectories, IgnoreTheListInEveryOtherMode) {
    for (const int mode : {0, 3, -1, 255}) {
        EXPECT_FALSE(isExcludedDirectory("C:\\Data\\", "Photos", rules(mode, {"Photos"}))) << mode;
    }
}

TEST(ExcludedDirectories, AreNoneForAnEmptyListOrEntry) {
    EXPECT_FALSE(isExcludedDirectory("C:\\Data\\", "Photos", rules(2)));
    EXPECT_FALSE(isExcludedDirectory("C:\\Data\\", "Photos", rules(2, {""})));
}

TEST(DirectoriesKeptFromDeletion, AreThoseLeftOutInAnyCase) {
    LeftOut leftOut = rules(2, {"\\Tmp", "Été"});
    leftOut.lists.push_back({ExclusionMode::listed, {"Docs\\Brouillons"}});
    EXPECT_TRUE(isExcludedFromDeletion("C:\\Data\\", "TMP", leftOut));
    EXPECT_TRUE(isExcludedFromDeletion("C:\\Data\\", "éTÉ", leftOut));
    EXPECT_TRUE(isExcludedFromDeletion("C:\\Data\\docs\\", "BROUILLONS", leftOut));
    EXPECT_TRUE(isExcludedFromDeletion("c:\\", "Windows", leftOut));
    EXPECT_FALSE(isExcludedFromDeletion("C:\\Data\\", "Tmp2", leftOut));
    EXPECT_FALSE(isExcludedFromDeletion("C:\\Data\\Docs\\", "Tmp", leftOut));
    EXPECT_FALSE(isExcludedDirectory("C:\\Data\\", "TMP", leftOut)) << "the copy is exact";
}

TEST(SpecialFolders, AreTheThreeOfWindowsInTheirExactCase) {
    EXPECT_TRUE(isSpecialFolder("C:\\Docs\\Ma musique"));
    EXPECT_TRUE(isSpecialFolder("C:\\Docs\\Mes images\\"));
    EXPECT_TRUE(isSpecialFolder("C:\\Mes vidéos"));
    EXPECT_FALSE(isSpecialFolder("C:\\Docs\\mes images"));
    EXPECT_FALSE(isSpecialFolder("C:\\Mes images\\2024"));
    EXPECT_FALSE(isSpecialFolder("C:\\Docs\\Toutes Mes images"));
}

constexpr std::uint64_t second = 10'000'000;  // in units of 100 ns
constexpr std::uint64_t hour = 3600 * second;

FileEntry file(std::uint64_t lastWrite, std::uint64_t size = 5,
               std::uint32_t attributes = attribute::normal) {
    FileEntry entry;
    entry.name = "a.txt";
    entry.attributes = attributes;
    entry.size = size;
    entry.times = {1, 2, lastWrite};
    return entry;
}

const std::uint64_t noon = fileTimeAt(2024, 7, 10, 12, 30, 15);

// ---- dates
// ---------------------------------------------------------------------------------------

TEST(DateComparison, IsExactToTheUnit) {
    EXPECT_EQ(compareDates(noon, noon, false), 0);
    EXPECT_EQ(compareDates(noon + 1, noon, false), 1);
    EXPECT_EQ(compareDates(noon, noon + 1, false), -1);
    EXPECT_EQ(compareDates(noon + 1, noon, true), 1);
    EXPECT_EQ(compareDates(0, ~std::uint64_t{0}, true), -1);
}

TEST(SummerTime, ForgivesASourceThatIsExactlyOneHourLater) {
    EXPECT_EQ(compareDates(noon + hour, noon, true), 0);
    EXPECT_EQ(compareDates(noon + hour, noon, false), 1);
}

TEST(SummerTime, ForgivesTheEarlierSourceNothing) {
    EXPECT_EQ(compareDates(noon, noon + hour, true), -1);
}

TEST(SummerTime, WantsEveryOtherFieldEqual) {
    const auto at = [](int year, int month, int day, int hours, int minute, int seconds) {
        return fileTimeAt(year, month, day, hours, minute, seconds);
    };
    const std::uint64_t copy = at(2023, 6, 9, 11, 30, 15);
    EXPECT_EQ(compareDates(at(2023, 6, 9, 12, 30, 15), copy, true), 0);
    EXPECT_EQ(compareDates(at(2024, 6, 9, 12, 30, 15), copy, true), 1) << "year";
    EXPECT_EQ(compareDates(at(2023, 7, 9, 12, 30, 15), copy, true), 1) << "month";
    EXPECT_EQ(compareDates(at(2023, 6, 10, 12, 30, 15), copy, true), 1) << "day";
    EXPECT_EQ(compareDates(at(2023, 6, 9, 12, 31, 15), copy, true), 1) << "minute";
    EXPECT_EQ(compareDates(at(2023, 6, 9, 12, 30, 16), copy, true), 1) << "second";
    // With the hour taken off these two would be earlier than the copy.
    EXPECT_EQ(compareDates(at(2023, 6, 9, 12, 29, 15), copy, true), 1) << "an earlier minute";
    EXPECT_EQ(compareDates(at(2023, 6, 9, 12, 30, 14), copy, true), 1) << "an earlier second";
    EXPECT_EQ(compareDates(at(2023, 6, 9, 13, 30, 15), copy, true), 1) << "two hours";
    EXPECT_EQ(compareDates(at(2023, 6, 9, 11, 30, 15) + 1, copy, true), 1) << "no hour at all";
}

TEST(SummerTime, StopsAtMidnight) {
    const std::uint64_t lastHour = fileTimeAt(2024, 7, 9, 23, 30, 0);
    EXPECT_EQ(compareDates(lastHour + hour, lastHour, true), 1);
    const std::uint64_t firstHour = fileTimeAt(2024, 7, 10, 0, 30, 0);
    EXPECT_EQ(compareDates(firstHour + hour, firstHour, true), 0);
    // The destination at 22 h and the source at 23 h are an ordinary pair.
    EXPECT_EQ(compareDates(lastHour, lastHour - hour, true), 0);
}

// The rule for the destination's side would move 11:30 forward instead of 12:30 back. Were it the
// one that fires, the parts of a second would compare the same; only the extremes of the range
// could tell the two apart, so what is held here is that exactly one hour is taken off, once.
TEST(SummerTime, TakesTheHourOffOnce) {
    EXPECT_EQ(compareDates(noon + hour + 3, noon + 2, true), 1);
    EXPECT_EQ(compareDates(noon + hour + 2, noon + 3, true), -1);
    EXPECT_EQ(compareDates(noon + hour + 3, noon + 3, true), 0);
}

TEST(SummerTime, LeavesThePartOfASecondToDecide) {
    const std::uint64_t tenth = second / 10;
    EXPECT_EQ(compareDates(noon + hour + 2 * tenth, noon + tenth, true), 1);
    EXPECT_EQ(compareDates(noon + hour + tenth, noon + 2 * tenth, true), -1);
    EXPECT_EQ(compareDates(noon + hour - tenth, noon, true), 1) << "another second of the minute";
}

// ---- what is done with a file
// --------------------------------------------------------------------

Decision between(std::uint64_t source, std::uint64_t destination, const DecisionOptions& options) {
    const FileEntry copy = file(destination);
    return decide(file(source), &copy, options);
}

void expectLeft(const Decision& decision) {
    EXPECT_FALSE(decision.copy);
    EXPECT_FALSE(decision.isNew);
    EXPECT_EQ(decision.status, "No");
}

void expectCopied(const Decision& decision, std::string_view status, bool isNew = false) {
    EXPECT_TRUE(decision.copy);
    EXPECT_EQ(decision.isNew, isNew);
    EXPECT_EQ(decision.status, status);
}

TEST(Decision, CopiesWhatTheDestinationLacks) {
    expectCopied(decide(file(noon), nullptr, {}), " n'existe pas", true);
    expectCopied(decide(file(noon), nullptr, {true, true, true}), " n'existe pas", true);
}

TEST(Decision, TakesADirectoryForNoCopyOfAFile) {
    const FileEntry directory = file(noon, 0, attribute::directory);
    for (const bool newerOnly : {false, true}) {
        expectCopied(decide(file(noon), &directory, {true, newerOnly, true}), " n'existe pas",
                     true);
        expectCopied(decide(file(noon - 1), &directory, {true, newerOnly, true}), " n'existe pas",
                     true);
    }
    expectCopied(decide(file(noon), &directory, {false, false, false}), " à copier", true);
}

// A volume that holds no links has the content of a link's target under its name.
TEST(Decision, TakesALinkAndAFileOfTheSameTimeForCopiesOfEachOther) {
    const FileEntry link = file(noon, 5, attribute::link);
    const FileEntry plain = file(noon);
    expectLeft(decide(link, &plain, {}));
    expectLeft(decide(plain, &link, {}));
}

TEST(Decision, LeavesEqualFilesAlone) {
    expectLeft(between(noon, noon, {}));
    expectLeft(between(noon, noon, {true, true, true}));
}

TEST(Decision, LeavesFilesOfEqualTimeAloneThoughSizeOrAttributesDiffer) {
    const FileEntry longer = file(noon, 9);
    const FileEntry hidden = file(noon, 5, attribute::hidden);
    const FileEntry both = file(noon, 9, attribute::readOnly);
    for (const FileEntry* copy : {&longer, &hidden, &both}) {
        expectLeft(decide(file(noon), copy, {}));
        expectLeft(decide(file(noon), copy, {true, true, true}));
    }
}

TEST(Decision, ComparesTheLastWriteTimeAlone) {
    FileEntry copy = file(noon);
    copy.times.creation = noon + hour;
    copy.times.lastAccess = noon - hour;
    expectLeft(decide(file(noon), &copy, {}));
}

TEST(Decision, CopiesALaterSource) {
    expectCopied(between(noon + 1, noon, {}), " est plus ancien");
    expectCopied(between(noon + 1, noon, {true, true, true}), " est plus ancien");
}

TEST(Decision, CopiesAnEarlierSourceUnlessOnlyNewerFilesCount) {
    expectCopied(between(noon, noon + 1, {true, false, true}), " est plus récent");
    expectLeft(between(noon, noon + 1, {true, true, true}));
    expectLeft(between(noon, noon + 1, {true, true, false}));
}

TEST(Decision, ForgivesTheHourOnlyWhenOnlyNewerFilesCount) {
    expectLeft(between(noon + hour, noon, {true, true, true}));
    expectCopied(between(noon + hour, noon, {true, true, false}), " est plus ancien");
    expectCopied(between(noon + hour, noon, {true, false, true}), " est plus ancien");
    expectCopied(between(noon + hour, noon, {true, false, false}), " est plus ancien");
}

TEST(Decision, CopiesEverythingWithoutComparing) {
    const DecisionOptions all{false, true, true};
    expectCopied(decide(file(noon), nullptr, all), " à copier", true);
    expectCopied(between(noon, noon, all), " à remplacer");
    expectCopied(between(noon, noon + hour, all), " à remplacer");
}

}  // namespace
}  // namespace coffrelune
