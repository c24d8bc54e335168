#include "engine/exclusion_rules.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace coffrelune
