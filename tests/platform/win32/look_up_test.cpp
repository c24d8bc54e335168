// Look-ups in a directory: from its listing where that is sure, else from the disk.
#include <gtest/gtest.h>

#include <optional>

#include "platform/names.h"
#include "platform/win32/intercepted_calls.h"
#include "platform/win32/test_disk.h"
#include "platform/win32/win32_files.h"

namespace coffrelune {
namespace {

constexpr std::uint64_t oldTime = 133330464001234567;
constexpr std::uint64_t newTime = oldTime + 36'000'000'000;

class Win32LookUp : public testing::Test {
  protected:
    /// A directory with `count` files, all looked up: as a walk does that finds each of them.
    void fill(int count) {
        for (int i = 0; i < count; ++i) disk::makeFile(at(i), "abc", oldTime);
        ASSERT_TRUE(
            files_.openDirectory(base_.at(), LinkRule::refuse, Wanted::nothing, opened_).ok());
        for (int i = 0; i < count; ++i) EXPECT_EQ(sizeOf(name(i)), 3U) << i;
    }

    static std::string name(int number) { return "fichier " + std::to_string(number) + ".txt"; }
    std::string at(int number) const { return base_.at(name(number)); }

    std::optional<std::uint64_t> sizeOf(const std::string& name) {
        FileEntry entry;
        if (!opened_->lookUp(name, entry)) return std::nullopt;
        EXPECT_EQ(entry.name, name);
        return entry.size;
    }

    disk::Temporary base_;
    Win32Files files_;
    std::unique_ptr<Directory> opened_;
};

// What somebody else changes meanwhile shows who answers.
TEST_F(Win32LookUp, AsksTheSystemNothingForWhatTheListingHasTold) {
    constexpr int many = 1100;  // more than what is read of a listing at a time
    fill(many);
    for (const int i : {10, 700, many - 1}) {
        disk::makeFile(at(i), "longer", newTime);
        EXPECT_EQ(sizeOf(name(i)), 3U) << i;
    }
}

TEST_F(Win32LookUp, GivesAllThatALookUpByPathGives) {
    fill(20);
    for (const int i : {0, 19}) {
        FileEntry direct;
        FileEntry found;
        ASSERT_TRUE(files_.lookUp(at(i), LinkRule::refuse, direct).ok());
        ASSERT_TRUE(opened_->lookUp(name(i), found));
        EXPECT_EQ(found.attributes, direct.attributes);
        EXPECT_EQ(found.size, direct.size);
        EXPECT_EQ(found.times, direct.times);
    }
}

TEST_F(Win32LookUp, AsksTheSystemForEveryOtherSpelling) {
    fill(20);
    disk::makeFile(at(7), "longer", newTime);
    EXPECT_EQ(sizeOf("FICHIER 7.txt"), 6U);
    EXPECT_EQ(sizeOf("Fichier 8.TXT"), 3U);
}

TEST_F(Win32LookUp, AsksTheSystemForWhatIsNotListed) {
    fill(20);
    EXPECT_EQ(sizeOf("nouveau.txt"), std::nullopt);
    disk::makeFile(base_.at("nouveau.txt"), "x", oldTime);
    EXPECT_EQ(sizeOf("nouveau.txt"), 1U);
    EXPECT_TRUE(opened_->status().ok());
}

TEST_F(Win32LookUp, AsksForNothingInADirectoryThatIsEmptyButForItsOwnFiles) {
    disk::makeFile(base_.at(ownFileName(OwnFile::temporary, 1)), "half");
    disk::makeDirectory(base_.at("plein"));
    disk::makeFile(base_.at("plein\\a.txt"), "a");
    const auto calls = [&](const std::string& directory) {
        EXPECT_TRUE(
            files_.openDirectory(directory, LinkRule::refuse, Wanted::nothing, opened_).ok());
        const CallCount count;
        for (int i = 0; i < 50; ++i) EXPECT_EQ(sizeOf(name(i)), std::nullopt);
        EXPECT_TRUE(opened_->status().ok());
        return count.calls();
    };
    EXPECT_EQ(calls(base_.at("plein")), 51);
    disk::empty(base_.at("plein"));
    EXPECT_EQ(calls(base_.at("plein")), 5);
    EXPECT_EQ(calls(base_.at()), 51);  // with a directory in it
    disk::empty(base_.at());
    const BrokenListings broken(error_number::ioDevice);
    EXPECT_EQ(calls(base_.at()), 51);
}

TEST_F(Win32LookUp, AsksInAnEmptyDirectoryForWhatMayBearAnotherName) {
    const std::string own = ownFileName(OwnFile::certificate, 7);
    disk::makeFile(base_.at(own), "own");
    disk::makeFile(base_.at("source"), "longer", newTime);
    disk::makeDirectory(base_.at("vide"));
    ASSERT_TRUE(
        files_.openDirectory(base_.at("vide"), LinkRule::refuse, Wanted::nothing, opened_).ok());
    for (int i = 0; i < 20; ++i) EXPECT_EQ(sizeOf(name(i)), std::nullopt);
    const auto asks = [&](const std::string& name) {
        const CallCount count;
        EXPECT_EQ(sizeOf(name), std::nullopt) << name;
        return count.calls() == 1;
    };
    EXPECT_TRUE(asks(own));
    EXPECT_TRUE(asks("~$LETT~1.DOC"));
    EXPECT_FALSE(asks("été.txt"));
    const std::string copy = base_.at("vide\\a.txt");
    ASSERT_TRUE(files_.copyFile(base_.at("source"), copy, LinkRule::refuse, nullptr).ok());
    EXPECT_TRUE(asks("été.txt"));
    EXPECT_TRUE(asks("b."));
    EXPECT_FALSE(asks("b.txt"));
    EXPECT_EQ(sizeOf("A.TXT"), 6U);
}

TEST_F(Win32LookUp, SeesWhatTheProgramWritesIntoAnEmptyDirectory) {
    const std::string source = base_.at("source");
    disk::makeFile(source, "longer", newTime);
    disk::makeDirectory(base_.at("vide"));
    ASSERT_TRUE(
        files_.openDirectory(base_.at("vide"), LinkRule::refuse, Wanted::nothing, opened_).ok());
    for (int i = 0; i < 20; ++i) EXPECT_EQ(sizeOf(name(i)), std::nullopt);
    const std::string copy = base_.at("vide\\" + name(7));
    ASSERT_TRUE(files_.copyFile(source, copy, LinkRule::refuse, nullptr).ok());
    EXPECT_EQ(sizeOf(name(7)), 6U);
    EXPECT_EQ(sizeOf("FICHIER 7.TXT"), 6U);
    EXPECT_EQ(sizeOf(name(8)), std::nullopt);
    // Such a name may be the short one of what was written.
    disk::makeFile(base_.at("vide\\FICHIE~1.TXT"), "abc");
    EXPECT_EQ(sizeOf("FICHIE~1.TXT"), 3U);
    ASSERT_TRUE(files_.createDirectory(base_.at("vide\\sous"), DirectoryAccess::usual).ok());
    FileEntry made;
    EXPECT_TRUE(opened_->lookUp("sous", made));
    EXPECT_TRUE(opened_->lookUp("Sous", made));
}

TEST_F(Win32LookUp, SeesEveryWriteOfTheProgram) {
    fill(20);
    disk::makeFile(base_.at("source"), "longer", newTime);
    ASSERT_TRUE(files_.copyFile(base_.at("source"), at(3), LinkRule::refuse, nullptr).ok());
    EXPECT_EQ(sizeOf(name(3)), 6U);
    ASSERT_TRUE(files_.removeFile(at(4)).ok());
    EXPECT_EQ(sizeOf(name(4)), std::nullopt);
    ASSERT_TRUE(files_.writeWhole(at(5), "x", Durability::now).ok());
    EXPECT_EQ(sizeOf(name(5)), 1U);

    FileEntry entry;
    ASSERT_TRUE(files_.setTimes(at(6), {newTime, newTime, newTime}).ok());
    ASSERT_TRUE(opened_->lookUp(name(6), entry));
    EXPECT_EQ(entry.times.lastWrite, newTime);
    ASSERT_TRUE(files_.setAttributes(at(7), attribute::readOnly).ok());
    ASSERT_TRUE(opened_->lookUp(name(7), entry));
    EXPECT_TRUE(entry.isReadOnly());
    ASSERT_TRUE(files_.removeFile(at(8)).ok());
    ASSERT_TRUE(files_.createDirectory(at(8), DirectoryAccess::usual).ok());
    ASSERT_TRUE(opened_->lookUp(name(8), entry));
    EXPECT_TRUE(entry.isDirectory());
}

TEST_F(Win32LookUp, SeesWritesUnderANameInAnotherCase) {
    fill(20);
    ASSERT_TRUE(files_.writeWhole(base_.at("FICHIER 3.TXT"), "longer", Durability::now).ok());
    EXPECT_EQ(sizeOf(name(3)), 6U);
}

TEST_F(Win32LookUp, TrustsTheListingNoMoreOnceAShortNameIsWritten) {
    fill(20);
    disk::makeFile(at(3), "longer", newTime);  // as that name may have done
    ASSERT_TRUE(files_.writeWhole(base_.at("FICHIE~1.TXT"), "x", Durability::now).ok());
    EXPECT_EQ(sizeOf(name(3)), 6U);
}

}  // namespace
}  // namespace coffrelune
