#include <map>

#include "contract/contract_fixture.h"
#include "platform/names.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ListingContract : public Contract {
  protected:
    std::vector<std::string> filesListed(const std::string& path) {
        std::unique_ptr<Directory> opened;
        EXPECT_TRUE(files().openDirectory(path, LinkRule::refuse, Wanted::files, opened).ok());
        std::vector<std::string> names;
        for (FileEntry found; opened->next(found);) names.push_back(found.name);
        EXPECT_TRUE(opened->status().ok());
        met_ = opened->takeDirectories();
        return names;
    }
    /// While filesListed() listed the files.
    const std::vector<FileEntry>& directoriesMet() const { return met_; }

    std::vector<FileEntry> directoriesListed(const std::string& path) {
        std::unique_ptr<Directory> opened;
        EXPECT_TRUE(
            files().openDirectory(path, LinkRule::refuse, Wanted::directories, opened).ok());
        std::vector<FileEntry> entries;
        for (FileEntry found; opened->next(found);) {
            if (found.name != "." && found.name != "..") entries.push_back(found);
        }
        return entries;
    }

    static void expectSame(const std::vector<FileEntry>& found,
                           const std::vector<FileEntry>& expected) {
        ASSERT_EQ(found.size(), expected.size());
        for (std::size_t i = 0; i < found.size(); ++i) {
            EXPECT_EQ(found[i].name, expected[i].name);
            EXPECT_EQ(found[i].attributes, expected[i].attributes);
            EXPECT_EQ(found[i].id, expected[i].id);
            EXPECT_EQ(found[i].times.lastWrite, expected[i].times.lastWrite);
            EXPECT_EQ(found[i].mountPoint, expected[i].mountPoint);
        }
    }

  private:
    std::vector<FileEntry> met_;
};
class TreeLinkListingContract : public ListingContract {};
class LinkListingContract : public Contract {};
class UnreadableContract : public Contract {};
class SpecialContract : public Contract {};
// Windows has no such things among its files.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SpecialContract);

INSTANTIATE_TEST_SUITE_P(On, ListingContract, testing::ValuesIn(contractSystems()), contractName);
INSTANTIATE_TEST_SUITE_P(On, TreeLinkListingContract,
                         testing::ValuesIn(contractSystems(Capability::treeLinks)), contractName);
INSTANTIATE_TEST_SUITE_P(On, LinkListingContract,
                         testing::ValuesIn(contractSystems(Capability::links)), contractName);
INSTANTIATE_TEST_SUITE_P(On, UnreadableContract,
                         testing::ValuesIn(contractSystems(Capability::unreadable)), contractName);
INSTANTIATE_TEST_SUITE_P(On, SpecialContract,
                         testing::ValuesIn(contractSystems(Capability::special)), contractName);

TEST_P(ListingContract, GivesNameSizeAttributesAndTimes) {
    make("a.txt", "twelve bytes", oldTime);
    make("verrou.txt", "", newTime);
    ASSERT_TRUE(files().setAttributes(at("verrou.txt"), attribute::readOnly).ok());
    system().makeDirectory(at("Sous"));

    std::map<std::string, FileEntry> found;
    const auto opened = open(directory());
    for (FileEntry one; opened->next(one);) found[one.name] = one;

    EXPECT_TRUE(opened->status().ok());
    EXPECT_EQ(found["a.txt"].size, 12U);
    EXPECT_EQ(found["a.txt"].times.lastWrite, oldTime);
    EXPECT_EQ(commonAttributes(found["a.txt"]), attribute::normal);
    EXPECT_EQ(found["verrou.txt"].size, 0U);
    EXPECT_EQ(found["verrou.txt"].times.lastWrite, newTime);
    EXPECT_EQ(commonAttributes(found["verrou.txt"]), attribute::readOnly);
    EXPECT_TRUE(found["Sous"].isDirectory());
    EXPECT_FALSE(found["Sous"].isLink());
    EXPECT_GT(found["Sous"].times.lastWrite, 0U);
}

TEST_P(ListingContract, GivesTheSameAsALookUp) {
    make("a.txt", "abc", oldTime);
    const auto opened = open(directory());
    FileEntry inDirectory;
    ASSERT_TRUE(opened->lookUp("a.txt", inDirectory));
    FileEntry inListing;
    while (opened->next(inListing) && inListing.name != "a.txt") {
    }
    for (const FileEntry& one : {inDirectory, inListing, entry(at("a.txt"))}) {
        EXPECT_EQ(one.name, "a.txt");
        EXPECT_EQ(one.size, 3U);
        EXPECT_EQ(commonAttributes(one), attribute::normal);
        EXPECT_EQ(one.times.lastWrite, oldTime);
        if (one.id.known()) {
            EXPECT_EQ(one.id, identity(at("a.txt")));
        }
    }
}

TEST_P(ListingContract, GivesEachOfManyEntriesOnce) {
    std::map<std::string, int> expected;
    for (int i = 0; i < 3000; ++i) {
        const std::string name = "fichier numero " + std::to_string(i) + ".txt";
        make(name, "");
        expected[name] = 1;
    }
    std::map<std::string, int> found;
    for (const std::string& name : listed(directory())) ++found[name];
    EXPECT_EQ(found, expected);
}

TEST_P(ListingContract, GoesOnWhileItsFilesAreRemoved) {
    for (int i = 0; i < 500; ++i) make(std::to_string(i), "");
    const auto opened = open(directory());
    int removed = 0;
    for (FileEntry one; opened->next(one);) {
        if (one.isDirectory()) continue;
        EXPECT_TRUE(files().removeFile(at(one.name)).ok());
        ++removed;
    }
    EXPECT_TRUE(opened->status().ok());
    EXPECT_EQ(removed, 500);
    EXPECT_THAT(system().names(directory()), IsEmpty());
}

TEST_P(ListingContract, GivesOnlyWhatIsWanted) {
    make("a.txt", "");
    system().makeDirectory(at("Sous"));
    EXPECT_THAT(listed(directory()), ElementsAre("Sous", "a.txt"));
    EXPECT_THAT(listed(directory(), Wanted::directories), ElementsAre("Sous"));
    EXPECT_THAT(listed(directory(), Wanted::files), ElementsAre("a.txt"));
}

TEST_P(ListingContract, DirectoriesMetOnTheWayAreThoseOfTheirOwnListing) {
    system().makeDirectory(at("Sous"));
    system().makeDirectory(at("Suite"));
    make("a.txt", "abc");
    make(ownFileName(OwnFile::certificate, 2), "own");
    system().makeDirectory(at(ownFileName(OwnFile::certificate, 3)));
    // What a run that was killed has filled beside its place, and not named.
    system().makeDirectory(at(ownFileName(OwnFile::temporary, 4)));
    const std::vector<FileEntry> expected = directoriesListed(directory());
    EXPECT_THAT(expected, testing::SizeIs(3));
    EXPECT_THAT(filesListed(directory()), ElementsAre("a.txt"));
    expectSame(directoriesMet(), expected);
}

TEST_P(ListingContract, DirectoriesAreMetWhereThereIsNoFile) {
    EXPECT_THAT(filesListed(directory()), IsEmpty());
    EXPECT_THAT(directoriesMet(), IsEmpty());
    EXPECT_THAT(filesListed(system().secondDrive()), IsEmpty());
    EXPECT_THAT(directoriesMet(), IsEmpty());
    system().makeDirectory(at("Sous"));
    EXPECT_THAT(filesListed(directory()), IsEmpty());
    expectSame(directoriesMet(), directoriesListed(directory()));
}

TEST_P(ListingContract, DirectoriesAreMetInTheTopOfADrive) {
    EXPECT_THAT(filesListed(system().drive()), IsEmpty());
    EXPECT_THAT(directoriesMet(), testing::SizeIs(1));
    expectSame(directoriesMet(), directoriesListed(system().drive()));
}

TEST_P(TreeLinkListingContract, LinksToDirectoriesAreMetAsTheyAreListed) {
    system().makeDirectory(at("Sous"));
    system().makeLink(at("lien"), "Sous");
    make("a.txt", "abc");
    (void)filesListed(directory());
    expectSame(directoriesMet(), directoriesListed(directory()));
}

TEST_P(LinkListingContract, GivesALinkToADirectoryAmongTheFiles) {
    system().makeDirectory(at("Sous"));
    system().makeLink(at("vers Sous"), "Sous");
    EXPECT_THAT(listed(directory(), Wanted::directories), ElementsAre("Sous"));
    EXPECT_THAT(listed(directory(), Wanted::files), ElementsAre("vers Sous"));
}

TEST_P(ListingContract, OpensAnEmptyDirectoryAndAnEmptyDriveRoot) {
    EXPECT_THAT(listed(directory()), IsEmpty());
    EXPECT_THAT(listed(system().secondDrive()), IsEmpty());
}

TEST_P(ListingContract, IgnoresATrailingBackslash) {
    make("a.txt", "");
    EXPECT_THAT(listed(at("")), ElementsAre("a.txt"));
    EXPECT_TRUE(entry(at("")).isDirectory());
}

TEST_P(ListingContract, FailsForAMissingDirectory) {
    EXPECT_THAT(openCode(at("absent")), testing::AnyOf(2U, 3U));
    EXPECT_THAT(openCode(at("absent\\plus bas")), testing::AnyOf(2U, 3U));
}

TEST_P(ListingContract, FailsForAFile) {
    make("a.txt", "");
    EXPECT_EQ(openCode(at("a.txt"), LinkRule::refuse), error_number::notADirectory);
    EXPECT_EQ(openCode(at("a.txt"), LinkRule::follow), error_number::notADirectory);
}

TEST_P(LinkListingContract, EntersALinkOnlyWhenAskedTo) {
    system().makeDirectory(at("Sous"));
    make("Sous\\a.txt", "");
    system().makeLink(at("lien"), "Sous");
    EXPECT_EQ(openCode(at("lien"), LinkRule::refuse), error_number::notADirectory);
    EXPECT_EQ(openCode(at("lien"), LinkRule::enter), error_number::notADirectory);

    const auto opened = open(at("lien"), LinkRule::follow);
    FileEntry found;
    EXPECT_TRUE(opened->lookUp("a.txt", found));
}

TEST_P(LinkListingContract, FailsForALinkThatLeadsNowhereOrInACircle) {
    system().makeLink(at("nulle part"), "absent");
    system().makeLink(at("un"), "deux");
    system().makeLink(at("deux"), "un");
    EXPECT_THAT(openCode(at("nulle part"), LinkRule::follow), testing::AnyOf(2U, 3U));
    EXPECT_NE(openCode(at("un"), LinkRule::follow), error_number::none);
    EXPECT_THAT(listed(directory()), ElementsAre("deux", "nulle part", "un"));
}

TEST_P(LinkListingContract, GivesALinkAsAnEntryOfItsOwn) {
    make("cible", "a longer content");
    system().makeLink(at("lien"), "cible");
    const auto opened = open(directory());
    FileEntry inDirectory;
    ASSERT_TRUE(opened->lookUp("lien", inDirectory));
    for (const FileEntry& one : {inDirectory, entry(at("lien"))}) {
        EXPECT_TRUE(one.isLink());
        EXPECT_FALSE(one.isDirectory());
        EXPECT_EQ(one.size, 5U);
    }
    FileEntry target;
    ASSERT_TRUE(files().lookUp(at("lien"), LinkRule::follow, target).ok());
    EXPECT_FALSE(target.isLink());
    EXPECT_EQ(target.size, 16U);
}

TEST_P(ListingContract, LookUpFailsForWhatIsNotThere) {
    FileEntry ignored;
    EXPECT_EQ(files().lookUp(at("absent"), LinkRule::refuse, ignored).code(), 2U);
    EXPECT_THAT(files().lookUp(at("absent\\x"), LinkRule::refuse, ignored).code(),
                testing::AnyOf(2U, 3U));
    EXPECT_FALSE(open(directory())->lookUp("absent", ignored));
}

TEST_P(ListingContract, LookUpInAnOpenDirectorySeesEveryWriteBeforeIt) {
    make("a.txt", "abc", oldTime);
    make("longer.txt", "abcdef", newTime);
    const auto opened = open(directory());
    FileEntry found;
    while (opened->next(found)) {
    }
    EXPECT_FALSE(opened->lookUp("b.txt", found));

    ASSERT_EQ(copy(at("a.txt"), at("b.txt")), 0U);
    ASSERT_TRUE(opened->lookUp("b.txt", found));
    EXPECT_EQ(found.size, 3U);

    ASSERT_EQ(copy(at("longer.txt"), at("b.txt")), 0U);
    ASSERT_TRUE(opened->lookUp("b.txt", found));
    EXPECT_EQ(found.size, 6U);
    EXPECT_EQ(found.times.lastWrite, newTime);

    ASSERT_TRUE(files().setTimes(at("b.txt"), {oldTime, oldTime, oldTime}).ok());
    ASSERT_TRUE(opened->lookUp("b.txt", found));
    EXPECT_EQ(found.times.lastWrite, oldTime);

    ASSERT_TRUE(files().setAttributes(at("a.txt"), attribute::readOnly).ok());
    ASSERT_TRUE(opened->lookUp("a.txt", found));
    EXPECT_TRUE(found.isReadOnly());

    ASSERT_TRUE(files().removeFile(at("b.txt")).ok());
    EXPECT_FALSE(opened->lookUp("b.txt", found));
    ASSERT_TRUE(files().createDirectory(at("b.txt"), DirectoryAccess::usual).ok());
    ASSERT_TRUE(opened->lookUp("b.txt", found));
    EXPECT_TRUE(found.isDirectory());
}

TEST_P(UnreadableContract, DirectoryFailsWithAccessDenied) {
    system().makeDirectory(at("ferme"));
    system().makeUnreadable(at("ferme"));
    EXPECT_EQ(openCode(at("ferme")), error_number::accessDenied);
    EXPECT_TRUE(entry(at("ferme")).isDirectory());
}

TEST_P(UnreadableContract, FileIsListedAndCannotBeReadOrCopied) {
    make("secret", "abc");
    make("copie", "old");
    system().makeUnreadable(at("secret"));
    EXPECT_THAT(listed(directory()), ElementsAre("copie", "secret"));
    std::string bytes;
    EXPECT_EQ(files().readWhole(at("secret"), 100, bytes).code(), error_number::accessDenied);
    EXPECT_EQ(copy(at("secret"), at("copie")), error_number::accessDenied);
    EXPECT_TRUE(holds(at("copie"), "old"));
    EXPECT_THAT(system().names(directory()), ElementsAre("copie", "secret"));
}

TEST_P(SpecialContract, IsNeverListedNorOpened) {
    make("a.txt", "");
    system().makeSpecial(at("tube"));
    EXPECT_THAT(listed(directory()), ElementsAre("a.txt"));
    EXPECT_THAT(listed(directory(), Wanted::files), ElementsAre("a.txt"));
    std::string bytes;
    EXPECT_FALSE(files().readWhole(at("tube"), 100, bytes).ok());
    EXPECT_NE(copy(at("tube"), at("copie")), 0U);
    EXPECT_FALSE(exists(at("copie")));
}

}  // namespace
}  // namespace coffrelune
