#include "contract/contract_fixture.h"
#include "platform/names.h"

namespace coffrelune {
namespace {

using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class OwnFileContract : public Contract {
  protected:
    std::vector<std::string> ownFiles(const std::string& path) {
        std::vector<std::string> names;
        EXPECT_EQ(files().ownFiles(path, names).code(), 0U) << path;
        return names;
    }

    std::uint32_t removeDirectory(const std::string& path) {
        return files().removeDirectory(path).code();
    }

    const std::string temporary = ownFileName(OwnFile::temporary, 1);
    const std::string certificate = ownFileName(OwnFile::certificate, 2);
    const std::string mark = ownFileName(OwnFile::restoreMark, 3);
    const std::string lock = ownFileName(OwnFile::lock, 4);
};

class LinkRemovalContract : public OwnFileContract {};

INSTANTIATE_TEST_SUITE_P(On, OwnFileContract, testing::ValuesIn(contractSystems()), contractName);
INSTANTIATE_TEST_SUITE_P(On, LinkRemovalContract,
                         testing::ValuesIn(contractSystems(Capability::treeLinks)), contractName);

TEST_P(OwnFileContract, IsNeverListed) {
    for (const std::string& name : {temporary, certificate, mark, lock}) make(name, "own");
    make("a.txt", "abc");
    system().makeDirectory(at("Sous"));
    EXPECT_THAT(listed(directory()), ElementsAre("Sous", "a.txt"));
    EXPECT_THAT(listed(directory(), Wanted::files), ElementsAre("a.txt"));
    EXPECT_THAT(listed(directory(), Wanted::directories), ElementsAre("Sous"));
}

TEST_P(OwnFileContract, IsToldByNameUnlessItIsATemporary) {
    for (const std::string& name : {temporary, certificate, mark}) make(name, "own");
    make("a.txt", "abc");
    make(".~coffrelune-photos.copie", "of the user");
    EXPECT_THAT(ownFiles(directory()), UnorderedElementsAre(certificate, mark));
}

TEST_P(OwnFileContract, IsToldOfNoDirectoryThatIsEmptyOrNotThere) {
    EXPECT_THAT(ownFiles(directory()), IsEmpty());
    std::vector<std::string> names;
    EXPECT_THAT(files().ownFiles(at("absent"), names).code(), AnyOf(2U, 3U));
    EXPECT_THAT(files().ownFiles(system().absentDrive(), names).code(), AnyOf(2U, 3U, 55U));
}

TEST_P(OwnFileContract, IsADirectoryOnlyWhereItIsUnfinished) {
    system().makeDirectory(at(certificate));
    system().makeDirectory(at(mark));
    system().makeDirectory(at(temporary));
    EXPECT_THAT(listed(directory()), UnorderedElementsAre(certificate, mark));
    EXPECT_THAT(ownFiles(directory()), IsEmpty());
    EXPECT_TRUE(files().removeLeftovers(directory()).ok());
    EXPECT_EQ(removeDirectory(directory()), error_number::directoryNotEmpty);
    EXPECT_THAT(system().names(directory()), UnorderedElementsAre(certificate, mark));
}

TEST_P(OwnFileContract, OutlivesTheLeftovers) {
    for (const std::string& name : {temporary, certificate, mark}) make(name, "own");
    EXPECT_TRUE(files().removeLeftovers(directory()).ok());
    EXPECT_THAT(system().names(directory()), UnorderedElementsAre(certificate, mark));
}

TEST_P(OwnFileContract, IsWrittenReadAndRemovedAsAnyOther) {
    for (const Durability durability : {Durability::now, Durability::nextFlush}) {
        ASSERT_EQ(files().writeWhole(at(certificate), "open", durability).code(), 0U);
        ASSERT_EQ(files().writeWhole(at(certificate), "complete", durability).code(), 0U);
        EXPECT_THAT(system().names(directory()), ElementsAre(certificate));
        std::string bytes;
        EXPECT_TRUE(files().readWhole(at(certificate), 100, bytes).ok());
        EXPECT_EQ(bytes, "complete");
        EXPECT_TRUE(files().removeFile(at(certificate)).ok());
        EXPECT_THAT(system().names(directory()), IsEmpty());
    }
}

TEST_P(OwnFileContract, GoesWithItsDirectory) {
    system().makeDirectory(at("Sous"));
    for (const std::string& name : {temporary, certificate, mark}) make("Sous\\" + name, "own");
    EXPECT_EQ(removeDirectory(at("Sous")), 0U);
    EXPECT_THAT(system().names(directory()), IsEmpty());
}

TEST_P(OwnFileContract, StaysWithADirectoryThatHoldsMore) {
    system().makeDirectory(at("Sous"));
    make("Sous\\" + certificate, "own");
    make("Sous\\a.txt", "precious");
    EXPECT_EQ(removeDirectory(at("Sous")), error_number::directoryNotEmpty);
    EXPECT_THAT(system().names(at("Sous")), UnorderedElementsAre(certificate, "a.txt"));
    EXPECT_TRUE(holds(at("Sous\\a.txt"), "precious"));
}

TEST_P(OwnFileContract, RemovingADirectoryTakesOneThatIsEmpty) {
    system().makeDirectory(at("Sous"));
    system().makeDirectory(at("Sous\\Plus bas"));
    EXPECT_EQ(removeDirectory(at("Sous")), error_number::directoryNotEmpty);
    EXPECT_EQ(removeDirectory(at("Sous\\Plus bas\\")), 0U);
    EXPECT_EQ(removeDirectory(at("Sous")), 0U);
    EXPECT_THAT(system().names(directory()), IsEmpty());
}

TEST_P(OwnFileContract, RemovingADirectoryTakesNothingElse) {
    make("a.txt", "abc");
    EXPECT_EQ(removeDirectory(at("a.txt")), error_number::notADirectory);
    EXPECT_THAT(removeDirectory(at("absent")), AnyOf(2U, 3U));
    EXPECT_THAT(removeDirectory(at("absent\\Sous")), AnyOf(2U, 3U));
    EXPECT_THAT(system().names(directory()), ElementsAre("a.txt"));
}

TEST_P(LinkRemovalContract, LeavesALinkAndWhatItLeadsTo) {
    system().makeDirectory(at("cible"));
    system().makeLink(at("lien"), "cible");
    EXPECT_EQ(removeDirectory(at("lien")), error_number::notADirectory);
    EXPECT_THAT(system().names(directory()), ElementsAre("cible", "lien"));
}

}  // namespace
}  // namespace coffrelune
