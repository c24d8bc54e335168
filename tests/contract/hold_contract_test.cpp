#include "contract/contract_fixture.h"
#include "platform/names.h"

namespace coffrelune {
namespace {

using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t linkRefused = error_number::cannotResolveName;

class HoldContract : public Contract {
  protected:
    std::unique_ptr<HeldTree> hold(const std::string& path) {
        std::unique_ptr<HeldTree> held;
        EXPECT_EQ(files().hold(path, held).code(), 0U) << path;
        return held;
    }

    std::uint32_t holdCode(const std::string& path) {
        std::unique_ptr<HeldTree> held;
        return files().hold(path, held).code();
    }

    std::string read(const std::string& path) {
        std::string bytes;
        const Status status = files().readWhole(path, 1000, bytes);
        return status.ok() ? bytes : "error " + std::to_string(status.code());
    }

    std::uint32_t createCode(const std::string& path) {
        return files().createDirectory(path, DirectoryAccess::usual).code();
    }

    std::uint32_t writeCode(const std::string& path) {
        return files().writeWhole(path, "written", Durability::now).code();
    }

    std::uint32_t ownFilesCode(const std::string& path) {
        std::vector<std::string> names;
        return files().ownFiles(path, names).code();
    }

    /// "arbre" with a file, a directory and a file in it.
    void makeTree(const std::string& content) {
        system().makeDirectory(at("arbre"));
        system().makeDirectory(at("arbre\\Sous"));
        make("arbre\\a.txt", content);
        make("arbre\\Sous\\b.txt", content);
    }

    /// "arbre" is called "emporte" from here on, and another tree bears its name. False where the
    /// system keeps the name of what is held.
    bool replaceTree() {
        if (!system().rename(at("arbre"), at("emporte"))) return false;
        makeTree("decoy");
        return true;
    }

    void expectDecoyUntouched() {
        EXPECT_THAT(system().names(at("arbre")), ElementsAre("Sous", "a.txt"));
        EXPECT_THAT(system().names(at("arbre\\Sous")), ElementsAre("b.txt"));
        EXPECT_TRUE(holds(at("arbre\\a.txt"), "decoy"));
        EXPECT_TRUE(holds(at("arbre\\Sous\\b.txt"), "decoy"));
    }
};

class TreeLinkContract : public HoldContract {
  protected:
    void SetUp() override {
        HoldContract::SetUp();
        if (IsSkipped()) return;
        makeTree("content");
        system().makeDirectory(at("arbre\\cible"));
        system().makeDirectory(at("arbre\\cible\\Sous"));
        make("arbre\\cible\\a.txt", "precious");
        system().makeLink(at("arbre\\lien"), "cible");
        ASSERT_TRUE(exists(at("arbre\\lien\\a.txt")));
    }

    void expectTargetUntouched() {
        EXPECT_THAT(system().names(at("arbre\\cible")), ElementsAre("Sous", "a.txt"));
        EXPECT_THAT(system().names(at("arbre\\cible\\Sous")), IsEmpty());
        EXPECT_TRUE(holds(at("arbre\\cible\\a.txt"), "precious"));
        EXPECT_EQ(entry(at("arbre\\cible\\a.txt")).times.lastWrite, oldTime);
    }
};

class TreeRightsContract : public TreeLinkContract {};
class FileLinkHoldContract : public HoldContract {};

INSTANTIATE_TEST_SUITE_P(On, HoldContract, testing::ValuesIn(contractSystems()), contractName);
INSTANTIATE_TEST_SUITE_P(On, TreeLinkContract,
                         testing::ValuesIn(contractSystems(Capability::treeLinks)), contractName);
INSTANTIATE_TEST_SUITE_P(On, TreeRightsContract,
                         testing::ValuesIn(contractSystems(Capability::rights)), contractName);
INSTANTIATE_TEST_SUITE_P(On, FileLinkHoldContract,
                         testing::ValuesIn(contractSystems(Capability::links)), contractName);

TEST_P(HoldContract, IsTakenOfADirectoryAndOfADrive) {
    makeTree("content");
    const auto tree = hold(at("arbre\\"));
    const auto drive = hold(system().drive());
    EXPECT_EQ(read(at("arbre\\a.txt")), "content");
    EXPECT_THAT(listed(at("arbre")), ElementsAre("Sous", "a.txt"));
    EXPECT_THAT(listed(system().drive()), ElementsAre("travail"));
}

TEST_P(HoldContract, FailsWhereThereIsNoDirectory) {
    make("a.txt", "abc");
    EXPECT_THAT(holdCode(at("absent")), AnyOf(2U, 3U));
    EXPECT_THAT(holdCode(at("absent\\Sous")), AnyOf(2U, 3U));
    EXPECT_EQ(holdCode(at("a.txt")), error_number::notADirectory);
    EXPECT_THAT(holdCode(system().absentDrive()), AnyOf(2U, 3U, 55U));
}

TEST_P(HoldContract, ReadsTheHeldDirectoryWhateverBearsItsName) {
    makeTree("content");
    const FileId identityOfTheFile = identity(at("arbre\\a.txt"));
    const auto held = hold(at("arbre"));
    // Where the system keeps the name, the tree is the held one anyway.
    (void)replaceTree();
    EXPECT_EQ(read(at("arbre\\a.txt")), "content");
    EXPECT_EQ(read(at("arbre\\Sous\\b.txt")), "content");
    EXPECT_EQ(entry(at("arbre\\a.txt")).size, 7U);
    EXPECT_EQ(identity(at("arbre\\a.txt")), identityOfTheFile);
    EXPECT_THAT(listed(at("arbre")), ElementsAre("Sous", "a.txt"));
    FileEntry found;
    ASSERT_TRUE(open(at("arbre\\Sous"))->lookUp("b.txt", found));
    EXPECT_EQ(found.size, 7U);
    EXPECT_EQ(copy(at("arbre\\a.txt"), at("copie")), 0U);
    EXPECT_TRUE(holds(at("copie"), "content"));
}

TEST_P(HoldContract, WritesIntoTheHeldDirectoryWhateverBearsItsName) {
    makeTree("content");
    make("neuf.txt", "new");
    const auto held = hold(at("arbre"));
    const bool replaced = replaceTree();
    const std::string tree = replaced ? at("emporte") : at("arbre");
    EXPECT_EQ(copy(at("neuf.txt"), at("arbre\\a.txt")), 0U);
    EXPECT_TRUE(holds(tree + "\\a.txt", "new"));
    EXPECT_EQ(writeCode(at("arbre\\Sous\\c.txt")), 0U);
    EXPECT_TRUE(holds(tree + "\\Sous\\c.txt", "written"));
    EXPECT_EQ(createCode(at("arbre\\Neuf")), 0U);
    EXPECT_EQ(writeCode(at("arbre\\Neuf\\d.txt")), 0U);
    EXPECT_TRUE(holds(tree + "\\Neuf\\d.txt", "written"));
    EXPECT_TRUE(files().setTimes(at("arbre\\a.txt"), {newTime, newTime, newTime}).ok());
    EXPECT_EQ(entry(at("arbre\\a.txt")).times.lastWrite, newTime);
    EXPECT_TRUE(files().setAttributes(at("arbre\\a.txt"), attribute::readOnly).ok());
    EXPECT_EQ(files().removeFile(at("arbre\\a.txt")).code(), error_number::accessDenied);
    EXPECT_TRUE(files().setAttributes(at("arbre\\a.txt"), attribute::normal).ok());
    EXPECT_TRUE(files().matchDirectory(at("arbre"), at("arbre\\Sous")).ok());
    if (replaced) expectDecoyUntouched();
}

TEST_P(HoldContract, RemovesFromTheHeldDirectoryWhateverBearsItsName) {
    makeTree("content");
    system().makeDirectory(at("arbre\\Vide"));
    const auto held = hold(at("arbre"));
    const bool replaced = replaceTree();
    const std::string tree = replaced ? at("emporte") : at("arbre");
    system().killCopyInto(tree + "\\Sous");
    EXPECT_TRUE(files().removeLeftovers(at("arbre\\Sous")).ok());
    EXPECT_THAT(system().names(tree + "\\Sous"), ElementsAre("b.txt"));
    EXPECT_TRUE(files().removeFile(at("arbre\\Sous\\b.txt")).ok());
    EXPECT_TRUE(files().removeDirectory(at("arbre\\Sous")).ok());
    EXPECT_TRUE(files().removeDirectory(at("arbre\\Vide")).ok());
    EXPECT_TRUE(files().removeFile(at("arbre\\a.txt")).ok());
    EXPECT_THAT(system().names(tree), IsEmpty());
    if (replaced) expectDecoyUntouched();
}

TEST_P(HoldContract, FindsTheOwnFilesOfTheHeldDirectory) {
    makeTree("content");
    const std::string certificate = ownFileName(OwnFile::certificate, 1);
    make("arbre\\" + certificate, "pair");
    const auto held = hold(at("arbre"));
    (void)replaceTree();
    std::vector<std::string> names;
    EXPECT_TRUE(files().ownFiles(at("arbre"), names).ok());
    EXPECT_THAT(names, ElementsAre(certificate));
    EXPECT_EQ(read(at("arbre\\" + certificate)), "pair");
}

TEST_P(HoldContract, LeavesTheNameToOthersWhenItEnds) {
    makeTree("content");
    hold(at("arbre")).reset();
    ASSERT_TRUE(replaceTree());
    EXPECT_EQ(read(at("arbre\\a.txt")), "decoy");
    EXPECT_EQ(read(at("emporte\\a.txt")), "content");
}

TEST_P(HoldContract, EndsWithTheLastOfTwo) {
    makeTree("content");
    auto first = hold(at("arbre"));
    const auto second = hold(at("arbre"));
    first.reset();
    (void)replaceTree();
    EXPECT_EQ(read(at("arbre\\a.txt")), "content");
}

TEST_P(HoldContract, InnermostCounts) {
    makeTree("content");
    const auto outer = hold(at("arbre"));
    auto inner = hold(at("arbre\\Sous"));
    if (!system().rename(at("arbre\\Sous"), at("arbre\\emporte"))) {
        EXPECT_EQ(read(at("arbre\\Sous\\b.txt")), "content");
        return;
    }
    system().makeDirectory(at("arbre\\Sous"));
    make("arbre\\Sous\\b.txt", "decoy");
    EXPECT_EQ(read(at("arbre\\Sous\\b.txt")), "content");
    EXPECT_EQ(read(at("arbre\\a.txt")), "content");
    inner.reset();
    EXPECT_EQ(read(at("arbre\\Sous\\b.txt")), "decoy");
}

TEST_P(HoldContract, IsNotThatOfANameThatBeginsAlike) {
    makeTree("content");
    system().makeDirectory(at("arbre 2"));
    make("arbre 2\\a.txt", "neighbour");
    const auto held = hold(at("arbre"));
    EXPECT_EQ(read(at("arbre 2\\a.txt")), "neighbour");
    EXPECT_THAT(listed(at("arbre 2")), ElementsAre("a.txt"));
    EXPECT_EQ(writeCode(at("arbre 2\\b.txt")), 0U);
    EXPECT_TRUE(holds(at("arbre 2\\b.txt"), "written"));
}

TEST_P(HoldContract, FailsOnlyTheCallsForWhatIsNotThere) {
    makeTree("content");
    const auto held = hold(at("arbre"));
    FileEntry ignored;
    EXPECT_THAT(files().lookUp(at("arbre\\absent"), LinkRule::refuse, ignored).code(),
                AnyOf(2U, 3U));
    EXPECT_THAT(openCode(at("arbre\\absent")), AnyOf(2U, 3U));
    EXPECT_THAT(copy(at("arbre\\absent"), at("arbre\\b")), AnyOf(2U, 3U));
    EXPECT_EQ(copy(at("arbre\\a.txt"), at("arbre\\absent\\b")), error_number::pathNotFound);
    EXPECT_EQ(createCode(at("arbre\\absent\\b")), error_number::pathNotFound);
    EXPECT_EQ(createCode(at("arbre\\Sous")), error_number::alreadyExists);
    EXPECT_EQ(createCode(at("arbre")), error_number::alreadyExists);
    EXPECT_THAT(system().names(at("arbre")), ElementsAre("Sous", "a.txt"));
}

TEST_P(TreeLinkContract, MayHaveALinkForItsRoot) {
    const auto held = hold(at("arbre\\lien"));
    EXPECT_EQ(read(at("arbre\\lien\\a.txt")), "precious");
    EXPECT_THAT(listed(at("arbre\\lien")), ElementsAre("Sous", "a.txt"));
    EXPECT_EQ(createCode(at("arbre\\lien\\Neuf")), 0U);
    EXPECT_THAT(system().names(at("arbre\\cible")), ElementsAre("Neuf", "Sous", "a.txt"));
}

TEST_P(TreeLinkContract, IsNeverLeftForReading) {
    const auto held = hold(at("arbre"));
    FileEntry ignored;
    std::string bytes;
    EXPECT_EQ(openCode(at("arbre\\lien\\Sous")), linkRefused);
    EXPECT_EQ(openCode(at("arbre\\lien\\Sous"), LinkRule::follow), linkRefused);
    EXPECT_EQ(files().lookUp(at("arbre\\lien\\a.txt"), LinkRule::refuse, ignored).code(),
              linkRefused);
    EXPECT_EQ(files().readWhole(at("arbre\\lien\\a.txt"), 1000, bytes).code(), linkRefused);
    EXPECT_EQ(copy(at("arbre\\lien\\a.txt"), at("arbre\\copie")), linkRefused);
    EXPECT_EQ(copy(at("arbre\\lien\\a.txt"), at("arbre\\copie"), LinkRule::follow), linkRefused);
    EXPECT_EQ(ownFilesCode(at("arbre\\lien\\Sous")), linkRefused);
    EXPECT_THAT(system().names(at("arbre")), ElementsAre("Sous", "a.txt", "cible", "lien"));
}

TEST_P(TreeLinkContract, IsNeverLeftForWriting) {
    const auto held = hold(at("arbre"));
    EXPECT_EQ(copy(at("arbre\\a.txt"), at("arbre\\lien\\a.txt")), linkRefused);
    EXPECT_EQ(copy(at("arbre\\a.txt"), at("arbre\\lien\\b.txt")), linkRefused);
    EXPECT_EQ(createCode(at("arbre\\lien\\Neuf")), linkRefused);
    EXPECT_EQ(writeCode(at("arbre\\lien\\a.txt")), linkRefused);
    EXPECT_EQ(writeCode(at("arbre\\lien\\b.txt")), linkRefused);
    EXPECT_EQ(files().setTimes(at("arbre\\lien\\a.txt"), {newTime, newTime, newTime}).code(),
              linkRefused);
    EXPECT_EQ(files().setAttributes(at("arbre\\lien\\a.txt"), attribute::readOnly).code(),
              linkRefused);
    expectTargetUntouched();
    EXPECT_FALSE(entry(at("arbre\\cible\\a.txt")).isReadOnly());
}

TEST_P(TreeLinkContract, IsNeverLeftForRemoving) {
    const std::string leftover = ownFileName(OwnFile::temporary, 1);
    make("arbre\\cible\\Sous\\" + leftover, "half");
    const auto held = hold(at("arbre"));
    EXPECT_EQ(files().removeFile(at("arbre\\lien\\a.txt")).code(), linkRefused);
    EXPECT_EQ(files().removeDirectory(at("arbre\\lien\\Sous")).code(), linkRefused);
    EXPECT_EQ(files().removeLeftovers(at("arbre\\lien\\Sous")).code(), linkRefused);
    EXPECT_THAT(system().names(at("arbre\\cible\\Sous")), ElementsAre(leftover));
    EXPECT_TRUE(holds(at("arbre\\cible\\a.txt"), "precious"));
}

TEST_P(TreeLinkContract, IsNotLeftThroughItsOwnEntries) {
    const auto held = hold(at("arbre"));
    EXPECT_EQ(openCode(at("arbre\\lien")), error_number::notADirectory);
    EXPECT_TRUE(entry(at("arbre\\lien")).isLink());
    EXPECT_EQ(files().removeDirectory(at("arbre\\lien")).code(), error_number::notADirectory);
    EXPECT_EQ(createCode(at("arbre\\lien")), error_number::alreadyExists);
    expectTargetUntouched();
}

TEST_P(TreeLinkContract, IsLeftOnlyThroughALinkThatWasOpened) {
    const auto held = hold(at("arbre"));
    const auto opens = openCode(at("arbre\\lien"), LinkRule::enter);
    EXPECT_EQ(read(at("arbre\\lien\\a.txt")), opens == 0 ? "precious" : "error 1921");
}

TEST_P(TreeRightsContract, AreNotTakenFromBehindALinkNorGivenThere) {
    const auto held = hold(at("arbre"));
    EXPECT_EQ(files().matchDirectory(at("arbre\\lien\\Sous"), at("arbre\\Sous")).code(),
              linkRefused);
    EXPECT_EQ(files().matchDirectory(at("arbre\\Sous"), at("arbre\\lien\\Sous")).code(),
              linkRefused);
    EXPECT_EQ(files().matchDirectory(at("arbre\\lien"), at("arbre\\Sous")).code(),
              error_number::notADirectory);
    EXPECT_EQ(files().matchDirectory(at("arbre\\Sous"), at("arbre\\lien")).code(),
              error_number::notADirectory);
}

TEST_P(TreeRightsContract, AreMatchedBetweenDirectoriesAlone) {
    EXPECT_EQ(files().matchDirectory(at("arbre"), at("arbre\\Sous")).code(), 0U);
    EXPECT_THAT(files().matchDirectory(at("arbre\\absent"), at("arbre\\Sous")).code(),
                AnyOf(2U, 3U));
    EXPECT_THAT(files().matchDirectory(at("arbre\\Sous"), at("arbre\\absent")).code(),
                AnyOf(2U, 3U));
    EXPECT_EQ(files().matchDirectory(at("arbre\\a.txt"), at("arbre\\Sous")).code(),
              error_number::notADirectory);
    EXPECT_EQ(files().matchDirectory(at("arbre\\Sous"), at("arbre\\a.txt")).code(),
              error_number::notADirectory);
}

TEST_P(TreeRightsContract, OfTheRootMayBeThoseBehindALink) {
    const auto held = hold(at("arbre\\lien"));
    EXPECT_EQ(files().matchDirectory(at("arbre\\lien"), at("arbre\\Sous")).code(), 0U);
    EXPECT_EQ(files().matchDirectory(at("arbre\\Sous"), at("arbre\\lien")).code(), 0U);
}

TEST_P(FileLinkHoldContract, NeverWritesThroughALinkBelow) {
    makeTree("content");
    make("arbre\\cible.ini", "precious");
    system().makeLink(at("arbre\\lien.ini"), "cible.ini");
    const auto held = hold(at("arbre"));
    // Whether the link is refused or gives way to the file is the system's affair.
    (void)writeCode(at("arbre\\lien.ini"));
    EXPECT_TRUE(holds(at("arbre\\cible.ini"), "precious"));
    EXPECT_EQ(copy(at("arbre\\a.txt"), at("arbre\\lien.ini")), 0U);
    EXPECT_TRUE(holds(at("arbre\\cible.ini"), "precious"));
    EXPECT_TRUE(holds(at("arbre\\lien.ini"), "content"));
}

TEST_P(HoldContract, TriesOutWhatTheVolumeMakesOfTimesAndLeavesNothing) {
    makeTree("content");
    const auto held = hold(at("arbre"));
    TimeGrid grid{0};
    ASSERT_TRUE(held->measureTimes(grid).ok());
    EXPECT_EQ(grid.held(newTime), newTime) << "the step is " << grid.step;
    EXPECT_LT(grid.earliest, oldTime);
    EXPECT_GT(grid.latest, newTime);
    EXPECT_THAT(system().names(at("arbre")), ElementsAre("Sous", "a.txt"));
}

}  // namespace
}  // namespace coffrelune
