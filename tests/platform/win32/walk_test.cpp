// The engine on a real Windows disk: what its walk meets there and nowhere else.
#include <gmock/gmock.h>

#include "engine/engine_fixture.h"
#include "platform/names.h"
#include "platform/win32/test_disk.h"
#include "platform/win32/win32_platform.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint64_t oldTime = 133330464001234567;

class Win32Walk : public testing::Test {
  protected:
    Win32Walk() {
        disk::makeDirectory(base_.at("Docs"));
        disk::makeDirectory(base_.at("Save"));
        system_.Modifie = 1;
        system_.options.SynchroDate = -1;
        statistics_.tallies.resize(12);
        control_.askBeforeReplacing = false;
    }

    std::string source(const std::string& name) const { return base_.at("Docs\\" + name); }
    std::string copies() const { return base_.at("Save\\Docs"); }
    std::string copy(const std::string& name) const { return copies() + "\\" + name; }

    /// A backup of Docs to Save: the copy pass alone.
    void backUp() { backUp(base_.at("Docs"), base_.at("Save")); }
    void backUp(const std::string& from, const std::string& to) {
        walk(lineRoots(from, to, Layout::normal), {Pass::copy});
    }
    void restore() {
        walk(lineRoots(base_.at("Docs"), base_.at("Save"), Layout::reversed), {Pass::copy});
    }
    void walk(const LineRoots& roots, const std::vector<Pass>& passes) {
        RunState run{system_, window_, switches_, control_, statistics_};
        CopyErrors errors(run);
        CopieMod engine(run, errors);
        LineTrees trees(run, errors, {0, roots, exclusions_});
        for (const Pass pass : passes) engine.walkLine(trees, pass);
    }
    /// What is in a directory, without the program's own certificates.
    static std::vector<std::string> names(const std::string& path) {
        std::vector<std::string> found = disk::names(path);
        std::erase_if(found, [](const std::string& name) { return ownFileKind(name).has_value(); });
        return found;
    }

    disk::Temporary base_;
    Win32Platform native_;
    MemoryPlatform memory_;
    Platform platform_{native_.files(), native_.drives(), memory_.clock(),  native_.locale(),
                       native_.ansi(),  memory_.sounds(), memory_.windows()};
    SystemMod system_{platform_, {"", "", 3, 5}};
    RunSwitches switches_;
    RunControl control_;
    RunStatistics statistics_;
    RecordingDisplay window_;
    ExclusionList exclusions_;
};

TEST_F(Win32Walk, UnchangedFileIsNeverOpened) {
    disk::makeFile(source("a.txt"), "abc", oldTime);
    backUp();
    ASSERT_EQ(disk::content(copy("a.txt")), "abc");
    const disk::Held heldSource(source("a.txt"));
    const disk::Held heldCopy(copy("a.txt"));
    backUp();
    EXPECT_EQ(statistics_.errorCount, 0);
    EXPECT_EQ(statistics_.tallies[0].files, 1U);
}

TEST_F(Win32Walk, FileHeldOpenStopsTheRunUnlessErrorsArePassedOver) {
    disk::makeFile(source("a.txt"), "a", oldTime);
    disk::makeFile(source("b.txt"), "b", oldTime);
    const disk::Held held(source("a.txt"));
    backUp();
    EXPECT_TRUE(control_.interruptionRequested);
    EXPECT_EQ(control_.lastErrorNumber, error_number::sharingViolation);
    EXPECT_THAT(window_.journal, ElementsAre("Erreur: 32 - Fichier: " + source("a.txt")));
    EXPECT_FALSE(disk::attributes(copy("b.txt")).has_value());

    control_.interruptionRequested = false;
    system_.options.ContinueOnError = -1;
    backUp();
    EXPECT_FALSE(control_.interruptionRequested);
    EXPECT_EQ(disk::content(copy("b.txt")), "b");
    EXPECT_THAT(names(copies()), ElementsAre("b.txt"));
}

TEST_F(Win32Walk, NameInAnotherCaseIsTheSameFileButNotTheSameExclusion) {
    disk::makeDirectory(source("Tmp"));
    disk::makeDirectory(source("Garde"));
    disk::makeFile(source("Tmp\\t.txt"), "t", oldTime);
    disk::makeFile(source("Garde\\g.txt"), "g", oldTime);
    disk::makeFile(source("LETTRE.TXT"), "abc", oldTime);
    disk::makeDirectory(base_.at("Save\\docs"));
    disk::makeFile(base_.at("Save\\docs\\lettre.txt"), "abc", oldTime);
    exclusions_ = {ExclusionMode::listed, {"\\Tmp", "\\GARDE"}};
    backUp();
    EXPECT_THAT(names(copies()), ElementsAre("Garde", "lettre.txt"));
    EXPECT_EQ(statistics_.tallies[0].files, 1U);
}

TEST_F(Win32Walk, ReadOnlyCopyIsReplacedAndHiddenFilesAreCopied) {
    disk::makeFile(source("verrou.txt"), "new", oldTime + 10'000'000);
    disk::makeFile(source("cache.txt"), "hidden", oldTime);
    disk::setAttributes(source("cache.txt"), attribute::hidden);
    disk::makeDirectory(copies());
    disk::makeFile(copy("verrou.txt"), "old", oldTime);
    disk::setAttributes(copy("verrou.txt"), attribute::readOnly);
    backUp();
    EXPECT_EQ(statistics_.errorCount, 0);
    EXPECT_EQ(disk::content(copy("verrou.txt")), "new");
    EXPECT_EQ(disk::content(copy("cache.txt")), "hidden");
}

TEST_F(Win32Walk, NamesThatShortPathsCannotBearComeThrough) {
    for (const char* name : {"fin.", "fin ", "CON", "nul.txt"}) {
        disk::makeFile(source(name), name, oldTime);
    }
    disk::makeDirectory(source("dossier."));
    disk::makeFile(source("dossier.\\aux"), "x", oldTime);
    backUp();
    EXPECT_EQ(statistics_.errorCount, 0);
    EXPECT_EQ(names(copies()), names(base_.at("Docs")));
    EXPECT_EQ(disk::content(copy("fin.")), "fin.");
    EXPECT_EQ(disk::content(copy("fin ")), "fin ");
    EXPECT_EQ(disk::content(copy("dossier.\\aux")), "x");
}

TEST_F(Win32Walk, CircleOfLinksIsNamedOnceAndTheRestIsCopied) {
    disk::makeFile(source("a.txt"), "a", oldTime);
    disk::makeDirectory(source("Sous"));
    disk::makeFile(source("Sous\\b.txt"), "b", oldTime);
    if (!disk::makeDirectoryLink(source("Sous\\retour"), "..\\..\\Docs")) {
        GTEST_SKIP() << "this user may not make links";
    }
    disk::makeDirectory(source("Suite"));
    disk::makeFile(source("Suite\\c.txt"), "c", oldTime);
    system_.options.ContinueOnError = 0;
    walk(lineRoots(base_.at("Docs"), base_.at("Save"), Layout::normal),
         {Pass::analysis, Pass::copy});
    EXPECT_FALSE(control_.interruptionRequested);
    EXPECT_THAT(window_.journal, ElementsAre("Erreur: 1921 - Fichier: " + source("Sous\\retour")));
    EXPECT_EQ(disk::content(copy("Suite\\c.txt")), "c");
    EXPECT_THAT(names(copy("Sous")), ElementsAre("b.txt"));
}

TEST_F(Win32Walk, ContentBehindADirectoryLinkIsCopied) {
    disk::makeDirectory(base_.at("Ailleurs"));
    disk::makeFile(base_.at("Ailleurs\\a.txt"), "abc", oldTime);
    if (!disk::makeDirectoryLink(source("lien"), "..\\Ailleurs")) {
        GTEST_SKIP() << "this user may not make links";
    }
    backUp();
    EXPECT_EQ(statistics_.errorCount, 0);
    EXPECT_EQ(disk::content(copy("lien\\a.txt")), "abc");
    EXPECT_EQ(*disk::attributes(copy("lien")) & attribute::link, 0U);
}

TEST_F(Win32Walk, LinkThatStandsInTheCopyIsNotWrittenThrough) {
    disk::makeDirectory(base_.at("Travail"));
    disk::makeFile(base_.at("Travail\\a.txt"), "mine", oldTime);
    disk::makeDirectory(source("s"));
    disk::makeFile(source("s\\a.txt"), "other", oldTime + 10'000'000);
    disk::makeFile(source("z.txt"), "z", oldTime);
    disk::makeDirectory(copies());
    if (!disk::makeDirectoryLink(copy("s"), "..\\..\\Travail")) {
        GTEST_SKIP() << "this user may not make links";
    }
    system_.options.ContinueOnError = -1;
    backUp();
    EXPECT_EQ(disk::content(base_.at("Travail\\a.txt")), "mine");
    EXPECT_THAT(names(base_.at("Travail")), ElementsAre("a.txt"));
    EXPECT_EQ(statistics_.errorCount, 1);
    EXPECT_THAT(window_.journal, ElementsAre("Erreur: 267 - Fichier: " + source("s")));
    EXPECT_EQ(disk::content(copy("z.txt")), "z");
}

TEST_F(Win32Walk, RestoreGoesBackThroughTheLinksThatTheBackupEntered) {
    disk::makeDirectory(base_.at("Ailleurs"));
    disk::makeFile(base_.at("Ailleurs\\a.txt"), "abc", oldTime);
    if (!disk::makeDirectoryLink(source("lien"), "..\\Ailleurs")) {
        GTEST_SKIP() << "this user may not make links";
    }
    backUp();
    disk::makeFile(base_.at("Ailleurs\\a.txt"), "spoilt", oldTime + 10'000'000);
    restore();
    EXPECT_EQ(statistics_.errorCount, 0);
    EXPECT_EQ(disk::content(base_.at("Ailleurs\\a.txt")), "abc");
    EXPECT_NE(*disk::attributes(source("lien")) & attribute::link, 0U);
}

TEST_F(Win32Walk, ItsOwnCopyInsideTheSourceIsNotEnteredHoweverItIsSpelled) {
    disk::makeFile(source("a.txt"), "a", oldTime);
    disk::makeDirectory(source("Copies"));
    for (int run = 0; run < 2; ++run) {
        backUp(base_.at("Docs"), base_.at("DOCS\\COPIES"));
    }
    EXPECT_EQ(statistics_.errorCount, 0);
    EXPECT_THAT(names(source("Copies")), SizeIs(1));
    EXPECT_THAT(names(source("Copies\\Docs")), ElementsAre("Copies", "a.txt"));
    EXPECT_THAT(names(source("Copies\\Docs\\Copies")), IsEmpty());
}

TEST_F(Win32Walk, ItsOwnCopyBehindALinkIsNotEntered) {
    disk::makeFile(source("a.txt"), "a", oldTime);
    if (!disk::makeDirectoryLink(source("sauvegardes"), "..\\Save")) {
        GTEST_SKIP() << "this user may not make links";
    }
    backUp();
    backUp();
    EXPECT_EQ(statistics_.errorCount, 0);
    EXPECT_THAT(names(copies()), ElementsAre("a.txt", "sauvegardes"));
    EXPECT_THAT(names(base_.at("Save\\Docs\\sauvegardes")), IsEmpty());
}

}  // namespace
}  // namespace coffrelune
