#include "platform/win32/win32_files.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "platform/win32/test_disk.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t oldTime = 133330464001234567;
constexpr std::uint64_t newTime = oldTime + 36'000'000'000;

class Win32FilesTest : public testing::Test {
  protected:
    std::string at(const std::string& name) const { return base_.at(name); }

    std::uint32_t copy(const std::string& from, const std::string& to) {
        return files_.copyFile(at(from), at(to), LinkRule::refuse, nullptr).code();
    }

    std::vector<FileEntry> listed(const std::string& name, Wanted wanted = Wanted::everything) {
        std::unique_ptr<Directory> opened;
        EXPECT_EQ(files_.openDirectory(at(name), LinkRule::enter, wanted, opened).code(), 0U);
        std::vector<FileEntry> found;
        for (FileEntry entry; opened && opened->next(entry);) found.push_back(entry);
        EXPECT_TRUE(opened && opened->status().ok());
        return found;
    }

    std::vector<std::string> names(const std::string& name, Wanted wanted = Wanted::everything) {
        std::vector<std::string> found;
        for (const FileEntry& entry : listed(name, wanted)) found.push_back(entry.name);
        std::sort(found.begin(), found.end());
        return found;
    }

    std::uint32_t openCode(const std::string& name, LinkRule links = LinkRule::enter,
                           Wanted wanted = Wanted::directories) {
        std::unique_ptr<Directory> opened;
        return files_.openDirectory(at(name), links, wanted, opened).code();
    }

    FileEntry entry(const std::string& name) {
        FileEntry found;
        EXPECT_EQ(files_.lookUp(at(name), LinkRule::refuse, found).code(), 0U) << name;
        return found;
    }

    disk::Temporary base_;
    Win32Files files_;
};

TEST_F(Win32FilesTest, LookUpsCareForNoCase) {
    disk::makeFile(at("Lettre.TXT"), "abc", oldTime);
    FileEntry found;
    std::unique_ptr<Directory> opened;
    ASSERT_TRUE(files_.openDirectory(at(""), LinkRule::refuse, Wanted::nothing, opened).ok());
    EXPECT_TRUE(opened->lookUp("lettre.txt", found));
    EXPECT_EQ(found.size, 3U);
    EXPECT_EQ(found.times.lastWrite, oldTime);
    EXPECT_TRUE(files_.lookUp(at("LETTRE.txt"), LinkRule::refuse, found).ok());
    EXPECT_THAT(names(""), ElementsAre("Lettre.TXT"));
}

TEST_F(Win32FilesTest, CopyOverANameThatDiffersByCaseReplacesThatFile) {
    disk::makeFile(at("LETTRE.txt"), "old", oldTime);
    disk::makeDirectory(at("source"));
    disk::makeFile(at("source\\lettre.TXT"), "new", newTime);
    ASSERT_EQ(copy("source\\lettre.TXT", "lettre.TXT"), 0U);
    EXPECT_EQ(disk::content(at("lettre.txt")), "new");
    EXPECT_EQ(disk::names(at("")).size(), 2U);
}

TEST_F(Win32FilesTest, CopyOntoTheSameFileInAnotherCaseIsRefused) {
    disk::makeFile(at("lettre.txt"), "abc", oldTime);
    EXPECT_EQ(copy("lettre.txt", "LETTRE.TXT"), error_number::sharingViolation);
    EXPECT_EQ(disk::content(at("lettre.txt")), "abc");
    EXPECT_THAT(disk::names(at("")), ElementsAre("lettre.txt"));
}

TEST_F(Win32FilesTest, ListingShowsWhatIsHeldOpenWithoutOpeningIt) {
    disk::makeFile(at("tenu.txt"), "abc", oldTime);
    const disk::Held held(at("tenu.txt"));
    const std::vector<FileEntry> found = listed("");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].size, 3U);
    EXPECT_EQ(found[0].times.lastWrite, oldTime);
    EXPECT_EQ(entry("tenu.txt").times.lastWrite, oldTime);
}

TEST_F(Win32FilesTest, WhatIsHeldOpenWithoutSharingGivesThirtyTwo) {
    disk::makeFile(at("tenu.txt"), "abc", oldTime);
    disk::makeFile(at("libre.txt"), "def", newTime);
    std::string bytes;
    {
        const disk::Held held(at("tenu.txt"));
        EXPECT_EQ(copy("tenu.txt", "copie.txt"), error_number::sharingViolation);
        EXPECT_EQ(copy("libre.txt", "tenu.txt"), error_number::sharingViolation);
        EXPECT_EQ(files_.removeFile(at("tenu.txt")).code(), error_number::sharingViolation);
        EXPECT_EQ(files_.readWhole(at("tenu.txt"), 100, bytes).code(),
                  error_number::sharingViolation);
        EXPECT_EQ(files_.writeWhole(at("tenu.txt"), "x", Durability::now).code(),
                  error_number::sharingViolation);
    }
    EXPECT_THAT(disk::names(at("")), ElementsAre("libre.txt", "tenu.txt"));
    EXPECT_EQ(disk::content(at("tenu.txt")), "abc");
    EXPECT_EQ(copy("libre.txt", "tenu.txt"), 0U);
    EXPECT_EQ(disk::content(at("tenu.txt")), "def");
}

TEST_F(Win32FilesTest, SourceThatOthersReadIsCopied) {
    disk::makeFile(at("lu.txt"), "abc", oldTime);
    const disk::Held held(at("lu.txt"), true);
    EXPECT_EQ(copy("lu.txt", "copie.txt"), 0U);
    EXPECT_EQ(disk::content(at("copie.txt")), "abc");
}

TEST_F(Win32FilesTest, CopyTakesHiddenAndReadOnlyButOnlyReadOnlyResists) {
    disk::makeFile(at("cache.txt"), "abc", oldTime);
    disk::makeFile(at("verrou.txt"), "old", oldTime);
    ASSERT_TRUE(files_.setAttributes(at("cache.txt"), attribute::hidden).ok());
    ASSERT_EQ(copy("cache.txt", "copie.txt"), 0U);
    if (!disk::isWine() || (entry("cache.txt").attributes & attribute::hidden) != 0) {
        EXPECT_NE(entry("copie.txt").attributes & attribute::hidden, 0U);
    }
    EXPECT_EQ(copy("cache.txt", "copie.txt"), 0U);

    ASSERT_TRUE(files_.setAttributes(at("verrou.txt"), attribute::readOnly).ok());
    EXPECT_EQ(copy("cache.txt", "verrou.txt"), error_number::accessDenied);
    EXPECT_EQ(files_.removeFile(at("verrou.txt")).code(), error_number::accessDenied);
    EXPECT_EQ(files_.writeWhole(at("verrou.txt"), "x", Durability::now).code(),
              error_number::accessDenied);
    EXPECT_EQ(disk::content(at("verrou.txt")), "old");
}

TEST_F(Win32FilesTest, LeftoverThatIsReadOnlyAlreadyIsRemovedToo) {
    const std::string leftover = ".~coffrelune-0123456789abcdef.tmp";
    disk::makeFile(at(leftover), "half");
    disk::setAttributes(at(leftover), attribute::readOnly);
    disk::makeFile(at(".~coffrelune-photos.tmp"), "mine");
    disk::makeDirectory(at(".~coffrelune-fedcba9876543210.tmp"));
    disk::makeFile(at(".~coffrelune-fedcba9876543210.tmp\\a"), "half");
    disk::setAttributes(at(".~coffrelune-fedcba9876543210.tmp\\a"), attribute::readOnly);
    EXPECT_THAT(names("", Wanted::files), ElementsAre(".~coffrelune-photos.tmp"));
    EXPECT_TRUE(files_.removeLeftovers(at("")).ok());
    EXPECT_THAT(disk::names(at("")), ElementsAre(".~coffrelune-photos.tmp"));
}

TEST_F(Win32FilesTest, LeftoverThatAProcessStillWritesStays) {
    const std::string leftover = ".~coffrelune-0123456789abcdef.tmp";
    disk::makeFile(at(leftover), "half");
    {
        const disk::Held held(at(leftover), true);
        EXPECT_TRUE(files_.removeLeftovers(at("")).ok());
        EXPECT_THAT(disk::names(at("")), ElementsAre(leftover));
    }
    EXPECT_TRUE(files_.removeLeftovers(at("")).ok());
    EXPECT_THAT(disk::names(at("")), IsEmpty());
}

TEST_F(Win32FilesTest, NamesThatShortPathsCannotBearAreCopiedListedAndRemoved) {
    disk::makeFile(at("source"), "abc", oldTime);
    for (const std::string name :
         {"fin.", "fin ", "fin...", " debut", "CON", "nul.txt", "aux", "COM1.log", "LPT9"}) {
        SCOPED_TRACE(name);
        ASSERT_EQ(copy("source", name), 0U);
        EXPECT_THAT(names("", Wanted::files), testing::Contains(name));
        EXPECT_EQ(entry(name).name, name);
        EXPECT_EQ(disk::content(at(name)), "abc");
        ASSERT_EQ(copy(name, "retour"), 0U);
        EXPECT_TRUE(files_.removeFile(at(name)).ok());
        EXPECT_TRUE(files_.removeFile(at("retour")).ok());
    }
    EXPECT_THAT(disk::names(at("")), ElementsAre("source"));
}

TEST_F(Win32FilesTest, NamesThatDifferByTheirEndAloneAreTwoFiles) {
    disk::makeFile(at("un"), "1", oldTime);
    disk::makeFile(at("deux"), "2", oldTime);
    ASSERT_EQ(copy("un", "fin"), 0U);
    ASSERT_EQ(copy("deux", "fin."), 0U);
    EXPECT_EQ(disk::content(at("fin")), "1");
    EXPECT_EQ(disk::content(at("fin.")), "2");
    ASSERT_TRUE(files_.removeFile(at("fin.")).ok());
    EXPECT_EQ(disk::content(at("fin")), "1");
}

TEST_F(Win32FilesTest, WildcardsAreNamesOfNothing) {
    disk::makeFile(at("a.txt"), "abc");
    FileEntry found;
    std::unique_ptr<Directory> opened;
    ASSERT_TRUE(files_.openDirectory(at(""), LinkRule::refuse, Wanted::files, opened).ok());
    for (const char* name : {"*", "*.txt", "?.txt", "a.<", "a\".txt", "a>txt"}) {
        EXPECT_FALSE(opened->lookUp(name, found)) << name;
        EXPECT_FALSE(files_.lookUp(at(name), LinkRule::refuse, found).ok()) << name;
        EXPECT_FALSE(files_.removeFile(at(name)).ok()) << name;
    }
    EXPECT_FALSE(opened->lookUp("a.txt:flux", found));
    EXPECT_TRUE(opened->status().ok());
    EXPECT_EQ(disk::content(at("a.txt")), "abc");
}

TEST_F(Win32FilesTest, LookUpInADirectoryThatIsGoneSaysSo) {
    disk::makeDirectory(at("Sous"));
    std::unique_ptr<Directory> opened;
    ASSERT_TRUE(files_.openDirectory(at("Sous"), LinkRule::refuse, Wanted::nothing, opened).ok());
    disk::empty(at(""));
    FileEntry found;
    EXPECT_FALSE(opened->lookUp("a.txt", found));
    EXPECT_FALSE(opened->status().ok());
}

TEST_F(Win32FilesTest, DirectoriesAreListedWithTheirIdentity) {
    disk::makeDirectory(at("Sous"));
    const std::vector<FileEntry> found = listed("", Wanted::directories);
    ASSERT_EQ(found.size(), 1U);
    FileId id;
    ASSERT_TRUE(files_.identify(at("SOUS"), id).ok());
    EXPECT_TRUE(id.known());
    EXPECT_EQ(found[0].id, id);
}

TEST_F(Win32FilesTest, DirectoryLinkIsEnteredAsTheDirectoryThatItShows) {
    disk::makeDirectory(at("Ailleurs"));
    disk::makeFile(at("Ailleurs\\a.txt"), "abc");
    disk::makeDirectory(at("Arbre"));
    if (!disk::makeDirectoryLink(at("Arbre\\lien"), "..\\Ailleurs")) {
        GTEST_SKIP() << "this user may not make links";
    }
    const std::vector<FileEntry> found = listed("Arbre", Wanted::directories);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_TRUE(found[0].isDirectory());
    EXPECT_TRUE(found[0].isLink());
    FileId target;
    ASSERT_TRUE(files_.identify(at("Ailleurs"), target).ok());
    EXPECT_EQ(found[0].id, target);
    EXPECT_THAT(names("Arbre\\lien"), ElementsAre("a.txt"));
    EXPECT_THAT(names("Arbre", Wanted::files), IsEmpty());
}

TEST_F(Win32FilesTest, DirectoryLinkIsRefusedWhereNoneIsExpected) {
    disk::makeDirectory(at("Ailleurs"));
    if (!disk::makeDirectoryLink(at("lien"), "Ailleurs")) {
        GTEST_SKIP() << "this user may not make links";
    }
    for (const Wanted wanted : {Wanted::everything, Wanted::directories, Wanted::nothing}) {
        EXPECT_EQ(openCode("lien", LinkRule::refuse, wanted), error_number::notADirectory);
        EXPECT_EQ(openCode("lien", LinkRule::enter, wanted), 0U);
        EXPECT_EQ(openCode("lien", LinkRule::follow, wanted), 0U);
        EXPECT_EQ(openCode("Ailleurs", LinkRule::refuse, wanted), 0U);
    }
}

TEST_F(Win32FilesTest, DirectoryLinkThatLeadsBackIsNotEntered) {
    disk::makeDirectory(at("Arbre"));
    disk::makeDirectory(at("Arbre\\Sous"));
    if (!disk::makeDirectoryLink(at("Arbre\\Sous\\haut"), "..\\..\\Arbre") ||
        !disk::makeDirectoryLink(at("Arbre\\Sous\\ici"), "..\\Sous") ||
        !disk::makeDirectoryLink(at("Arbre\\Sous\\dehors"), "..\\..")) {
        GTEST_SKIP() << "this user may not make links";
    }
    for (const char* link : {"Arbre\\Sous\\haut", "Arbre\\Sous\\ici", "Arbre\\Sous\\dehors"}) {
        EXPECT_EQ(openCode(link), error_number::cannotResolveName) << link;
        EXPECT_EQ(openCode(link, LinkRule::follow), 0U) << link;
    }
    EXPECT_EQ(openCode("Arbre\\Sous"), 0U);
    EXPECT_THAT(names("Arbre\\Sous"), ElementsAre("dehors", "haut", "ici"));
}

TEST_F(Win32FilesTest, LinksThatLeadToEachOtherAreEnteredOnceEach) {
    disk::makeDirectory(at("Un"));
    disk::makeDirectory(at("Deux"));
    if (!disk::makeDirectoryLink(at("Un\\vers deux"), "..\\Deux") ||
        !disk::makeDirectoryLink(at("Deux\\vers un"), "..\\Un")) {
        GTEST_SKIP() << "this user may not make links";
    }
    EXPECT_EQ(openCode("Un\\vers deux"), 0U);
    EXPECT_EQ(openCode("Un\\vers deux\\vers un"), error_number::cannotResolveName);
}

TEST_F(Win32FilesTest, RemovingADirectoryLinkKeepsWhatItShows) {
    disk::makeDirectory(at("Ailleurs"));
    disk::makeFile(at("Ailleurs\\a.txt"), "abc");
    if (!disk::makeDirectoryLink(at("lien"), "Ailleurs")) {
        GTEST_SKIP() << "this user may not make links";
    }
    const Status removed = files_.removeFile(at("lien"));
    if (!disk::isWine()) {
        EXPECT_TRUE(removed.ok());
        EXPECT_FALSE(disk::attributes(at("lien")).has_value());
    }
    EXPECT_EQ(disk::content(at("Ailleurs\\a.txt")), "abc");
}

TEST_F(Win32FilesTest, FileLinkIsCopiedAsOne) {
    if (disk::isWine()) GTEST_SKIP() << "Wine shows a link to a file as that file";
    disk::makeFile(at("cible"), "abc", oldTime);
    if (!disk::makeFileLink(at("lien"), "cible")) {
        GTEST_SKIP() << "this user may not make links";
    }
    ASSERT_TRUE(files_.setTimes(at("lien"), {0, 0, newTime}).ok());
    ASSERT_EQ(copy("lien", "copie"), 0U);
    EXPECT_TRUE(entry("copie").isLink());
    EXPECT_EQ(entry("copie").times.lastWrite, newTime);
    EXPECT_EQ(entry("cible").times.lastWrite, oldTime);
}

TEST_F(Win32FilesTest, NamedStreamsGoWithTheFile) {
    disk::makeFile(at("a.txt"), "abc", oldTime);
    if (disk::isWine()) GTEST_SKIP() << "Wine's host has no named streams";
    disk::makeFile(at("a.txt:note"), "remember");
    ASSERT_TRUE(files_.setTimes(at("a.txt"), {0, 0, oldTime}).ok());
    ASSERT_EQ(copy("a.txt", "b.txt"), 0U);
    EXPECT_EQ(disk::content(at("b.txt:note")), "remember");
    EXPECT_EQ(disk::content(at("b.txt")), "abc");
    EXPECT_EQ(entry("b.txt").times.lastWrite, oldTime);
}

TEST_F(Win32FilesTest, SettingsFileKeepsItsAttributesAndItsCreationTime) {
    disk::makeFile(at("a.ini"), "old");
    ASSERT_TRUE(files_.setTimes(at("a.ini"), {oldTime, oldTime, oldTime}).ok());
    ASSERT_TRUE(files_.setAttributes(at("a.ini"), attribute::hidden).ok());
    const FileEntry before = entry("a.ini");
    ASSERT_TRUE(files_.writeWhole(at("a.ini"), "new", Durability::now).ok());
    const FileEntry after = entry("a.ini");
    EXPECT_EQ(after.attributes & attribute::hidden, before.attributes & attribute::hidden);
    // Wine's host keeps no creation time and shows another one in its place.
    if (!disk::isWine()) {
        EXPECT_EQ(after.times.creation, oldTime);
    }
    EXPECT_NE(after.times.lastWrite, oldTime);
    EXPECT_EQ(disk::content(at("a.ini")), "new");
}

TEST_F(Win32FilesTest, PathsThatAreNoneFailWithoutTouchingTheDisk) {
    FileEntry found;
    for (const char* path : {"", "a.txt", "C:a.txt", R"(\a.txt)", R"(\\.\C:)"}) {
        EXPECT_EQ(files_.lookUp(path, LinkRule::refuse, found).code(), 3U) << path;
        EXPECT_EQ(files_.createDirectory(path, DirectoryAccess::usual).code(), 3U) << path;
    }
    EXPECT_EQ(files_.createDirectory(at("a:b"), DirectoryAccess::usual).code(), 123U);
    EXPECT_THAT(disk::names(at("")), IsEmpty());
}

}  // namespace
}  // namespace coffrelune
