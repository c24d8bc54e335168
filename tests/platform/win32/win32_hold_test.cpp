#include <gmock/gmock.h>
#include <windows.h>

#include "platform/names.h"
#include "platform/win32/test_disk.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/win32_files.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class Win32HoldTest : public testing::Test {
  protected:
    std::string at(const std::string& name = {}) const { return base_.at(name); }

    std::unique_ptr<HeldTree> hold(const std::string& name, Win32Files& files) {
        std::unique_ptr<HeldTree> held;
        EXPECT_EQ(files.hold(at(name), held).code(), 0U) << name;
        return held;
    }
    std::unique_ptr<HeldTree> hold(const std::string& name) { return hold(name, files_); }

    std::uint32_t lookUpCode(const std::string& name) {
        FileEntry found;
        return files_.lookUp(at(name), LinkRule::refuse, found).code();
    }

    bool move(const std::string& from, const std::string& to) {
        return MoveFileExW(wide(at(from)).c_str(), wide(at(to)).c_str(), 0) != 0;
    }

    std::string lockFile(const std::string& directory) const {
        return at(directory) + "\\" + ownFileName(OwnFile::lock, 0);
    }

    disk::Temporary base_;
    Win32Files files_;
};

TEST_F(Win32HoldTest, HeldDirectoryKeepsItsNameUntilItIsLetGo) {
    disk::makeDirectory(at("Arbre"));
    auto held = hold("Arbre");
    EXPECT_FALSE(move("Arbre", "Autre"));
    EXPECT_EQ(files_.removeDirectory(at("Arbre")).code(), error_number::sharingViolation);
    held.reset();
    EXPECT_TRUE(move("Arbre", "Autre"));
}

TEST_F(Win32HoldTest, DirectoryThatWasWalkedThroughCannotBeExchanged) {
    disk::makeDirectory(at("Arbre"));
    disk::makeDirectory(at("Arbre\\Sous"));
    disk::makeFile(at("Arbre\\Sous\\a.txt"), "abc");
    const auto held = hold("Arbre");
    ASSERT_EQ(lookUpCode("Arbre\\Sous\\a.txt"), 0U);
    EXPECT_FALSE(move("Arbre\\Sous", "ailleurs"));
    disk::makeDirectory(at("Arbre\\Autre"));
    EXPECT_EQ(lookUpCode("Arbre\\Autre\\a.txt"), error_number::fileNotFound);
    EXPECT_TRUE(move("Arbre\\Sous", "ailleurs"));
    EXPECT_EQ(lookUpCode("Arbre\\Sous\\a.txt"), error_number::pathNotFound);
}

TEST_F(Win32HoldTest, DirectoryOnTheWayCanBeRemovedByTheProgramItself) {
    disk::makeDirectory(at("Arbre"));
    disk::makeDirectory(at("Arbre\\Sous"));
    disk::makeDirectory(at("Arbre\\Sous\\Fond"));
    const auto held = hold("Arbre");
    ASSERT_EQ(lookUpCode("Arbre\\Sous\\Fond\\a.txt"), error_number::fileNotFound);
    EXPECT_TRUE(files_.removeDirectory(at("Arbre\\Sous\\Fond")).ok());
    EXPECT_TRUE(files_.removeDirectory(at("Arbre\\Sous")).ok());
    EXPECT_THAT(disk::names(at("Arbre")), IsEmpty());
}

TEST_F(Win32HoldTest, LookUpThroughAnOpenDirectoryMeetsTheLinkThatTookItsPlace) {
    disk::makeDirectory(at("Arbre"));
    disk::makeDirectory(at("Arbre\\Sous"));
    disk::makeDirectory(at("Arbre\\Vide"));
    disk::makeDirectory(at("Ailleurs"));
    disk::makeFile(at("Ailleurs\\a.txt"), "abc");
    const auto held = hold("Arbre");
    std::unique_ptr<Directory> opened;
    ASSERT_TRUE(
        files_.openDirectory(at("Arbre\\Sous"), LinkRule::enter, Wanted::nothing, opened).ok());
    ASSERT_EQ(lookUpCode("Arbre\\Vide\\a.txt"), error_number::fileNotFound);
    ASSERT_TRUE(move("Arbre\\Sous", "parti"));
    if (!disk::makeDirectoryLink(at("Arbre\\Sous"), "..\\Ailleurs")) {
        GTEST_SKIP() << "this user may not make links";
    }
    FileEntry found;
    EXPECT_FALSE(opened->lookUp("a.txt", found));
    EXPECT_EQ(opened->status().code(), error_number::cannotResolveName);
    EXPECT_EQ(lookUpCode("Arbre\\Sous\\a.txt"), error_number::cannotResolveName);
}

TEST_F(Win32HoldTest, LinkThatWasEnteredIsAllowedForAsLongAsItLeadsToTheSamePlace) {
    disk::makeDirectory(at("Arbre"));
    disk::makeDirectory(at("Ailleurs"));
    disk::makeFile(at("Ailleurs\\a.txt"), "abc");
    if (!disk::makeDirectoryLink(at("Arbre\\lien"), "..\\Ailleurs")) {
        GTEST_SKIP() << "this user may not make links";
    }
    const auto held = hold("Arbre");
    EXPECT_EQ(lookUpCode("Arbre\\lien\\a.txt"), error_number::cannotResolveName);
    std::unique_ptr<Directory> opened;
    ASSERT_TRUE(
        files_.openDirectory(at("Arbre\\lien"), LinkRule::enter, Wanted::files, opened).ok());
    opened.reset();
    EXPECT_EQ(lookUpCode("Arbre\\lien\\a.txt"), 0U);
    ASSERT_EQ(lookUpCode("Arbre\\a.txt"), error_number::fileNotFound);
    disk::makeDirectory(at("Arbre\\Autre"));
    ASSERT_EQ(lookUpCode("Arbre\\Autre\\a.txt"), error_number::fileNotFound);
    ASSERT_TRUE(move("Ailleurs", "parti"));
    disk::makeDirectory(at("Ailleurs"));
    disk::makeFile(at("Ailleurs\\a.txt"), "other");
    EXPECT_EQ(files_.removeFile(at("Arbre\\lien\\a.txt")).code(), error_number::cannotResolveName);
    EXPECT_EQ(disk::content(at("Ailleurs\\a.txt")), "other");
}

TEST_F(Win32HoldTest, LinkThatWasEnteredIsStillRefusedWhereLinksAre) {
    disk::makeDirectory(at("Arbre"));
    disk::makeDirectory(at("Arbre\\Autre"));
    disk::makeDirectory(at("Ailleurs"));
    if (!disk::makeDirectoryLink(at("Arbre\\lien"), "..\\Ailleurs")) {
        GTEST_SKIP() << "this user may not make links";
    }
    const auto held = hold("Arbre");
    const auto code = [&](const std::string& name, LinkRule links) {
        std::unique_ptr<Directory> opened;
        return files_.openDirectory(at("Arbre\\" + name), links, Wanted::nothing, opened).code();
    };
    EXPECT_EQ(code("lien", LinkRule::enter), 0U);
    EXPECT_EQ(code("Autre", LinkRule::refuse), 0U);  // the way to the link is left
    EXPECT_EQ(code("lien", LinkRule::refuse), error_number::notADirectory);
}

TEST_F(Win32HoldTest, PlaceNamesTheVolumeAndThePathThere) {
    disk::makeDirectory(at("Arbre"));
    const auto held = hold("Arbre");
    const TreePlace place = held->place();
    EXPECT_THAT(place.volume, StartsWith("uuid:"));
    EXPECT_THAT(place.path, testing::EndsWith("\\Arbre"));
    EXPECT_THAT(place.path, StartsWith("\\"));
    EXPECT_THAT(place.path, testing::Not(HasSubstr(":")));
    disk::makeFile(at("Arbre\\a.txt"), "abc");
    EXPECT_EQ(hold("Arbre")->place(), place);
}

TEST_F(Win32HoldTest, WriterShowsALockFileThatNoListingGivesAndThatGoesWithIt) {
    disk::makeDirectory(at("Arbre"));
    auto held = hold("Arbre");
    ASSERT_TRUE(held->claim(TreeUse::read).ok());
    EXPECT_THAT(disk::names(at("Arbre")), IsEmpty());
    ASSERT_TRUE(held->claim(TreeUse::write).ok());
    EXPECT_THAT(disk::names(at("Arbre")), ElementsAre(ownFileName(OwnFile::lock, 0)));
    std::vector<std::string> names;
    EXPECT_TRUE(files_.ownFiles(at("Arbre"), names).ok());
    EXPECT_THAT(names, IsEmpty());
    held.reset();
    EXPECT_THAT(disk::names(at("Arbre")), IsEmpty());
}

TEST_F(Win32HoldTest, LockFileOfARunThatEndedWithItsComputerStopsNobody) {
    disk::makeDirectory(at("Arbre"));
    disk::makeFile(lockFile("Arbre"), "");
    EXPECT_TRUE(hold("Arbre")->claim(TreeUse::read).ok());
    EXPECT_TRUE(hold("Arbre")->claim(TreeUse::write).ok());
    EXPECT_THAT(disk::names(at("Arbre")), IsEmpty());
}

TEST_F(Win32HoldTest, LockFileThatAnotherComputerHoldsIsMet) {
    disk::makeDirectory(at("Arbre"));
    disk::makeFile(lockFile("Arbre"), "");
    const disk::Held other(lockFile("Arbre"));
    const auto held = hold("Arbre");
    EXPECT_EQ(held->claim(TreeUse::read).code(), error_number::lockViolation);
    EXPECT_EQ(held->claim(TreeUse::write).code(), error_number::lockViolation);
}

TEST_F(Win32HoldTest, ServicesOfTheirOwnMeetAsProcessesDo) {
    disk::makeDirectory(at("Arbre"));
    Win32Files others;
    const auto mine = hold("Arbre");
    auto theirs = hold("Arbre", others);
    ASSERT_TRUE(mine->claim(TreeUse::read).ok());
    EXPECT_TRUE(theirs->claim(TreeUse::read).ok());
    EXPECT_EQ(theirs->claim(TreeUse::write).code(), error_number::lockViolation);
    EXPECT_EQ(mine->claim(TreeUse::write).code(), error_number::lockViolation);
    theirs.reset();
    EXPECT_TRUE(mine->claim(TreeUse::write).ok());
    EXPECT_EQ(hold("Arbre", others)->claim(TreeUse::read).code(), error_number::lockViolation);
}

TEST_F(Win32HoldTest, ReadOnlyMarkOfADirectoryDoesNotKeepIt) {
    disk::makeDirectory(at("Arbre"));
    disk::setAttributes(at("Arbre"), attribute::readOnly);
    EXPECT_TRUE(files_.removeDirectory(at("Arbre")).ok());
    EXPECT_FALSE(disk::attributes(at("Arbre")).has_value());
}

TEST_F(Win32HoldTest, DirectoryStaysWithATemporaryThatSomebodyWrites) {
    disk::makeDirectory(at("Arbre"));
    const std::string temporary = at("Arbre\\") + ownFileName(OwnFile::temporary, 1);
    disk::makeFile(temporary, "half");
    {
        const disk::Held held(temporary, true);
        EXPECT_EQ(files_.removeDirectory(at("Arbre")).code(), error_number::directoryNotEmpty);
        EXPECT_EQ(disk::content(temporary), "half");
    }
    EXPECT_TRUE(files_.removeDirectory(at("Arbre")).ok());
}

TEST_F(Win32HoldTest, FlushLeavesNothingBehind) {
    disk::makeDirectory(at("Arbre"));
    disk::makeFile(at("source"), "abc");
    const auto held = hold("Arbre");
    EXPECT_TRUE(held->flush().ok());
    ASSERT_TRUE(files_.copyFile(at("source"), at("Arbre\\a"), LinkRule::refuse, nullptr).ok());
    ASSERT_TRUE(files_.writeWhole(at("Arbre\\b"), "def", Durability::nextFlush).ok());
    EXPECT_TRUE(held->flush().ok());
    EXPECT_THAT(disk::names(at("Arbre")), ElementsAre("a", "b"));
}

TEST_F(Win32HoldTest, FlushThatCannotBeDoneSaysSo) {
    disk::makeDirectory(at("Arbre"));
    VolumeFlush flush;
    NativePath root;
    ASSERT_TRUE(toNative(at("Arbre"), root).ok());
    EXPECT_EQ(flush.flush(), 0U);
    const UniqueHandle notToWrite =
        openShared(root.text, FILE_LIST_DIRECTORY, FILE_FLAG_BACKUP_SEMANTICS);
    ASSERT_TRUE(notToWrite.valid());
    flush.expectWrite(root.child(L"absent"), notToWrite.get());
    if (flush.dataWritten(notToWrite.get()) == 0) {
        GTEST_SKIP() << "this user may flush the volume as a whole";
    }
    EXPECT_EQ(flush.flush(), error_number::pathNotFound);
}

}  // namespace
}  // namespace coffrelune
