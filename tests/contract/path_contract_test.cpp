#include <algorithm>

#include "contract/contract_fixture.h"

namespace coffrelune {
namespace {

using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class PathContract : public Contract {
  protected:
    // A file of this name can be made, found, listed, copied and removed.
    void expectUsable(const std::string& name) {
        make("source", "abc", oldTime);
        ASSERT_EQ(copy(at("source"), at(name)), 0U) << name;
        EXPECT_THAT(listed(directory()), Contains(name));
        EXPECT_EQ(entry(at(name)).name, name);
        FileEntry found;
        EXPECT_TRUE(open(directory())->lookUp(name, found)) << name;
        ASSERT_EQ(copy(at(name), at("retour")), 0U) << name;
        EXPECT_TRUE(holds(at("retour"), "abc"));
        EXPECT_TRUE(holds(at(name), "abc"));
        EXPECT_TRUE(files().removeFile(at(name)).ok()) << name;
        EXPECT_FALSE(exists(at(name))) << name;
    }
};

class DeepPathContract : public Contract {};
class DriveContract : public Contract {};

INSTANTIATE_TEST_SUITE_P(On, PathContract, testing::ValuesIn(contractSystems()), contractName);
INSTANTIATE_TEST_SUITE_P(On, DeepPathContract, testing::ValuesIn(contractSystems(Capability::deep)),
                         contractName);
INSTANTIATE_TEST_SUITE_P(On, DriveContract, testing::ValuesIn(contractSystems()), contractName);

TEST_P(PathContract, TakesNamesOfEveryKind) {
    expectUsable("avec des blancs.txt");
    expectUsable("été à Noël œuvre €.txt");
    expectUsable("日本語 🌒");
    expectUsable("x;y=z[1]{2}'&%~#@!$.tar.gz");
    expectUsable("-rf");
    expectUsable(std::string(255, 'x'));
}

TEST_P(PathContract, ReachesFilesBeyondTheShortPathsOfOldPrograms) {
    std::string deep = directory();
    for (int level = 0; level < 8; ++level) {
        deep += "\\" + std::string(100, 'n');
        ASSERT_EQ(files().createDirectory(deep, DirectoryAccess::usual).code(), 0U) << level;
    }
    make("a.txt", "abc", oldTime);
    ASSERT_EQ(copy(at("a.txt"), deep + "\\b.txt"), 0U);
    EXPECT_THAT(listed(deep), ElementsAre("b.txt"));
    EXPECT_EQ(identity(files().resolve(deep + "\\b.txt")), identity(deep + "\\b.txt"));
    ASSERT_EQ(copy(deep + "\\b.txt", at("retour.txt")), 0U);
    EXPECT_TRUE(holds(at("retour.txt"), "abc"));
    ASSERT_TRUE(files().removeFile(deep + "\\b.txt").ok());
    EXPECT_THAT(listed(deep), IsEmpty());
}

TEST_P(DeepPathContract, ReachesFilesBeyondFourThousandBytes) {
    std::string deep = directory();
    for (int level = 0; level < 45; ++level) {
        deep += "\\" + std::string(100, 'n');
        ASSERT_EQ(files().createDirectory(deep, DirectoryAccess::usual).code(), 0U) << level;
    }
    ASSERT_GT(deep.size(), 4096U);
    make("a.txt", "abc", oldTime);
    ASSERT_EQ(copy(at("a.txt"), deep + "\\b.txt"), 0U);
    EXPECT_THAT(listed(deep), ElementsAre("b.txt"));
    EXPECT_EQ(entry(deep + "\\b.txt").times.lastWrite, oldTime);
    ASSERT_EQ(copy(deep + "\\b.txt", at("retour.txt")), 0U);
    EXPECT_TRUE(holds(at("retour.txt"), "abc"));
    ASSERT_TRUE(files().setAttributes(deep + "\\b.txt", attribute::readOnly).ok());
    EXPECT_TRUE(entry(deep + "\\b.txt").isReadOnly());
    ASSERT_TRUE(files().setAttributes(deep + "\\b.txt", attribute::normal).ok());
    ASSERT_TRUE(files().removeFile(deep + "\\b.txt").ok());
    EXPECT_FALSE(exists(deep + "\\b.txt"));
}

TEST_P(PathContract, IdentityIsThatOfTheFileWhateverThePath) {
    system().makeDirectory(at("Sous"));
    make("Sous\\a.txt", "abc");
    make("Sous\\b.txt", "abc");
    system().makeLink(at("lien"), "Sous");
    const FileId id = identity(at("Sous\\a.txt"));
    EXPECT_TRUE(id.known());
    EXPECT_EQ(identity(at("lien\\a.txt")), id);
    EXPECT_EQ(identity(system().otherSpelling(at("Sous\\a.txt"))), id);
    EXPECT_NE(identity(at("Sous\\b.txt")), id);
    EXPECT_NE(identity(at("Sous")), id);
    EXPECT_EQ(identity(at("lien")), identity(at("Sous\\")));
    EXPECT_NE(identity(system().drive()), identity(system().secondDrive()));
    FileId ignored;
    EXPECT_THAT(files().identify(at("absent"), ignored).code(), AnyOf(2U, 3U));
}

TEST_P(PathContract, ResolveGivesOneTextForOnePlace) {
    system().makeDirectory(at("Sous"));
    make("Sous\\a.txt", "abc");
    system().makeLink(at("lien"), "Sous");
    const std::string place = files().resolve(at("Sous\\a.txt"));
    EXPECT_EQ(files().resolve(at("lien\\a.txt")), place);
    EXPECT_EQ(files().resolve(system().otherSpelling(at("lien\\a.txt"))), place);
    EXPECT_EQ(files().resolve(at("lien\\")), files().resolve(at("Sous")));
    EXPECT_NE(files().resolve(at("Sous")), files().resolve(directory()));
    EXPECT_NE(files().resolve(system().drive()), files().resolve(system().secondDrive()));
}

TEST_P(PathContract, ResolveGivesAPathThatLeadsToTheSamePlace) {
    make("a.txt", "abc");
    EXPECT_EQ(identity(files().resolve(at("a.txt"))), identity(at("a.txt")));
    EXPECT_EQ(files().resolve(files().resolve(at("a.txt"))), files().resolve(at("a.txt")));
    EXPECT_EQ(identity(files().resolve(system().drive())), identity(system().drive()));
}

TEST_P(PathContract, ResolveKeepsWhatDoesNotExistYet) {
    system().makeDirectory(at("Sous"));
    system().makeLink(at("lien"), "Sous");
    EXPECT_EQ(files().resolve(at("lien\\absent\\plus bas")),
              files().resolve(at("Sous")) + "\\absent\\plus bas");
    EXPECT_EQ(files().resolve(at("absent\\")), files().resolve(directory()) + "\\absent");
}

TEST_P(DriveContract, RootsAreTheDrivesThatArePresentInOrder) {
    const std::vector<std::string> roots = system().drives().roots();
    EXPECT_THAT(roots, Contains(system().drive()));
    EXPECT_THAT(roots, Contains(system().secondDrive()));
    EXPECT_THAT(roots, Not(Contains(system().absentDrive())));
    EXPECT_TRUE(std::is_sorted(roots.begin(), roots.end()));
}

TEST_P(DriveContract, RootIsFoundWithAndWithoutItsBackslash) {
    EXPECT_TRUE(entry(system().drive()).isDirectory());
    const std::string bare = system().drive().substr(0, 2);
    EXPECT_TRUE(entry(bare).isDirectory());
    EXPECT_EQ(identity(bare), identity(system().drive()));
    EXPECT_THAT(listed(bare), ElementsAre("travail"));
}

TEST_P(DriveContract, AbsentDriveFailsEveryCall) {
    const std::string root = system().absentDrive();
    const auto gone = AnyOf(error_number::pathNotFound, error_number::deviceDoesNotExist);
    make("a.txt", "abc");
    FileEntry ignored;
    std::string bytes;
    EXPECT_THAT(openCode(root), gone);
    EXPECT_THAT(openCode(root + "Sous"), gone);
    EXPECT_THAT(files().lookUp(root, LinkRule::refuse, ignored).code(), gone);
    EXPECT_THAT(files().lookUp(root + "x", LinkRule::refuse, ignored).code(), gone);
    EXPECT_THAT(files().createDirectory(root + "Sous", DirectoryAccess::usual).code(), gone);
    EXPECT_THAT(copy(at("a.txt"), root + "a.txt"), gone);
    EXPECT_THAT(copy(root + "a.txt", at("b.txt")), gone);
    EXPECT_THAT(files().removeFile(root + "a.txt").code(), gone);
    EXPECT_THAT(files().readWhole(root + "a.txt", 10, bytes).code(), gone);
    EXPECT_THAT(files().writeWhole(root + "a.txt", "abc", Durability::now).code(), gone);
    EXPECT_THAT(system().names(directory()), ElementsAre("a.txt"));
}

TEST_P(DriveContract, PathOfTheCoreStaysAsItIsWhereTypedPathsEnter) {
    for (const std::string& path :
         {at("a.txt"), system().drive(), std::string("\\\\nas\\photos\\x")}) {
        EXPECT_EQ(system().drives().fromNative(path), path);
        EXPECT_EQ(system().drives().fromWindow(path), path);
    }
}

TEST_P(DriveContract, TextThatIsNoAbsolutePathStaysAsItIsWhereAWindowTakesIt) {
    for (const char* text : {"", "x", "hello world", "Docs/x", ".."}) {
        EXPECT_EQ(system().drives().fromWindow(text), text);
    }
}

}  // namespace
}  // namespace coffrelune
