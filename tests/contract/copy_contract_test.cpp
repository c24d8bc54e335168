#include <functional>

#include "contract/contract_fixture.h"
#include "platform/names.h"

namespace coffrelune {
namespace {

using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t largestChunk = std::size_t{16} << 20;
constexpr std::size_t severalChunks = largestChunk + (std::size_t{4} << 20) + 12345;

class CopyContract : public Contract {};
class LinkCopyContract : public Contract {};
class FullVolumeContract : public Contract {};

INSTANTIATE_TEST_SUITE_P(On, CopyContract, testing::ValuesIn(contractSystems()), contractName);
INSTANTIATE_TEST_SUITE_P(On, LinkCopyContract,
                         testing::ValuesIn(contractSystems(Capability::links)), contractName);
INSTANTIATE_TEST_SUITE_P(On, FullVolumeContract,
                         testing::ValuesIn(contractSystems(Capability::small)), contractName);

// Keeps what it is told and lets a test act at the first notification.
class Witness final : public CopyObserver {
  public:
    explicit Witness(std::function<void()> atFirst = {}) : atFirst_(std::move(atFirst)) {}

    void chunkFinished(std::uint64_t transferred) override {
        readings.push_back(transferred);
        if (readings.size() == 1 && atFirst_) atFirst_();
    }

    std::vector<std::uint64_t> readings;

  private:
    std::function<void()> atFirst_;
};

TEST_P(CopyContract, TakesContentTimeAndAttributes) {
    const std::string content = patternOf(100'000);
    make("a.bin", content, oldTime);
    ASSERT_TRUE(files().setAttributes(at("a.bin"), attribute::readOnly).ok());
    ASSERT_EQ(copy(at("a.bin"), at("b.bin")), 0U);
    EXPECT_TRUE(holds(at("b.bin"), content));
    EXPECT_EQ(entry(at("b.bin")).times.lastWrite, oldTime);
    EXPECT_EQ(commonAttributes(entry(at("b.bin"))), attribute::readOnly);
    EXPECT_EQ(entry(at("b.bin")).size, content.size());
    EXPECT_EQ(entry(at("a.bin")).times.lastWrite, oldTime);
    EXPECT_THAT(system().names(directory()), ElementsAre("a.bin", "b.bin"));
}

TEST_P(CopyContract, CopiesAnEmptyFile) {
    make("vide", "", oldTime);
    ASSERT_EQ(copy(at("vide"), at("copie")), 0U);
    EXPECT_TRUE(holds(at("copie"), ""));
    EXPECT_EQ(entry(at("copie")).times.lastWrite, oldTime);
}

TEST_P(CopyContract, CopiesToAnotherDrive) {
    const std::string content = patternOf(300'000);
    make("a.bin", content, oldTime);
    const std::string there = system().secondDrive() + "a.bin";
    ASSERT_EQ(copy(at("a.bin"), there), 0U);
    EXPECT_TRUE(holds(there, content));
    EXPECT_EQ(entry(there).times.lastWrite, oldTime);
    ASSERT_EQ(copy(there, at("retour.bin")), 0U);
    EXPECT_TRUE(holds(at("retour.bin"), content));
}

TEST_P(CopyContract, KeepsLongRunsOfZeroBytes) {
    const std::string content = patternOf(5000) + std::string(std::size_t{1} << 20, '\0') + "end" +
                                std::string(70'000, '\0');
    make("trous", content);
    ASSERT_EQ(copy(at("trous"), at("copie")), 0U);
    EXPECT_TRUE(holds(at("copie"), content));
}

TEST_P(CopyContract, ReplacesAnExistingFileOfAnySize) {
    make("a.txt", "new", newTime);
    make("b.txt", "a much longer old content", oldTime);
    ASSERT_EQ(copy(at("a.txt"), at("b.txt")), 0U);
    EXPECT_TRUE(holds(at("b.txt"), "new"));
    EXPECT_EQ(entry(at("b.txt")).times.lastWrite, newTime);
}

TEST_P(CopyContract, LeavesTheOldFileInPlaceUntilTheNewOneIsComplete) {
    make("grand", patternOf(severalChunks), newTime);
    make("copie", "old", oldTime);
    std::string meanwhile;
    std::vector<std::string> listing;
    Witness witness([&] {
        EXPECT_TRUE(files().readWhole(at("copie"), 100, meanwhile).ok());
        EXPECT_TRUE(files().removeLeftovers(directory()).ok());
        listing = listed(directory());
    });
    ASSERT_EQ(copy(at("grand"), at("copie"), LinkRule::refuse, &witness), 0U);
    EXPECT_EQ(meanwhile, "old");
    EXPECT_THAT(listing, ElementsAre("copie", "grand"));
    EXPECT_TRUE(holds(at("copie"), patternOf(severalChunks)));
}

TEST_P(CopyContract, RefusesAReadOnlyDestinationUntilItIsMadeNormal) {
    make("a.txt", "new", newTime);
    make("b.txt", "old", oldTime);
    ASSERT_TRUE(files().setAttributes(at("b.txt"), attribute::readOnly).ok());
    EXPECT_EQ(copy(at("a.txt"), at("b.txt")), error_number::accessDenied);
    EXPECT_TRUE(holds(at("b.txt"), "old"));
    EXPECT_EQ(entry(at("b.txt")).times.lastWrite, oldTime);
    EXPECT_THAT(system().names(directory()), ElementsAre("a.txt", "b.txt"));

    ASSERT_TRUE(files().setAttributes(at("b.txt"), attribute::normal).ok());
    EXPECT_EQ(copy(at("a.txt"), at("b.txt")), 0U);
    EXPECT_TRUE(holds(at("b.txt"), "new"));
}

TEST_P(CopyContract, RefusesADirectoryAsDestinationAndAsSource) {
    make("a.txt", "new");
    system().makeDirectory(at("Sous"));
    EXPECT_EQ(copy(at("a.txt"), at("Sous")), error_number::accessDenied);
    EXPECT_TRUE(entry(at("Sous")).isDirectory());
    EXPECT_NE(copy(at("Sous"), at("b.txt")), 0U);
    EXPECT_THAT(system().names(directory()), ElementsAre("Sous", "a.txt"));
}

TEST_P(CopyContract, FailsForAMissingSource) {
    make("b.txt", "old", oldTime);
    EXPECT_EQ(copy(at("absent"), at("b.txt")), error_number::fileNotFound);
    EXPECT_EQ(copy(at("absent"), at("c.txt")), error_number::fileNotFound);
    EXPECT_TRUE(holds(at("b.txt"), "old"));
    EXPECT_THAT(system().names(directory()), ElementsAre("b.txt"));
}

TEST_P(CopyContract, FailsForAMissingDestinationDirectory) {
    make("a.txt", "abc");
    EXPECT_EQ(copy(at("a.txt"), at("absent\\a.txt")), error_number::pathNotFound);
    EXPECT_THAT(system().names(directory()), ElementsAre("a.txt"));
}

TEST_P(CopyContract, FailsForADestinationNameThatIsTooLong) {
    make("a.txt", "abc");
    EXPECT_EQ(copy(at("a.txt"), at(std::string(256, 'x'))), error_number::nameTooLong);
    EXPECT_THAT(system().names(directory()), ElementsAre("a.txt"));
}

TEST_P(CopyContract, TellsTheObserverAtLeastEverySixteenMebibytesAndAtTheEnd) {
    make("grand", patternOf(severalChunks));
    Witness witness;
    ASSERT_EQ(copy(at("grand"), at("copie"), LinkRule::refuse, &witness), 0U);
    ASSERT_GE(witness.readings.size(), 2U);
    std::uint64_t before = 0;
    for (const std::uint64_t reading : witness.readings) {
        EXPECT_GE(reading, before);
        EXPECT_LE(reading - before, largestChunk);
        before = reading;
    }
    EXPECT_EQ(before, severalChunks);
    EXPECT_TRUE(holds(at("copie"), patternOf(severalChunks)));
}

TEST_P(CopyContract, TellsTheObserverTheSizeOfASmallAndOfAnEmptyFile) {
    make("petit", "abc");
    make("vide", "");
    Witness small;
    Witness empty;
    ASSERT_EQ(copy(at("petit"), at("un"), LinkRule::refuse, &small), 0U);
    ASSERT_EQ(copy(at("vide"), at("deux"), LinkRule::refuse, &empty), 0U);
    ASSERT_FALSE(small.readings.empty());
    EXPECT_EQ(small.readings.back(), 3U);
    ASSERT_FALSE(empty.readings.empty());
    EXPECT_EQ(empty.readings.back(), 0U);
}

TEST_P(CopyContract, AbandonLeavesTheOldFileAndRefusesLaterCopies) {
    make("grand", patternOf(severalChunks), newTime);
    make("petit", "abc", newTime);
    make("copie", "old", oldTime);
    Witness witness([&] { files().abandonCopies(); });
    EXPECT_EQ(copy(at("grand"), at("copie"), LinkRule::refuse, &witness),
              error_number::requestAborted);
    EXPECT_TRUE(holds(at("copie"), "old"));
    EXPECT_EQ(entry(at("copie")).times.lastWrite, oldTime);
    EXPECT_EQ(copy(at("petit"), at("autre")), error_number::requestAborted);
    EXPECT_THAT(system().names(directory()), ElementsAre("copie", "grand", "petit"));
}

TEST_P(CopyContract, OntoItselfChangesNothing) {
    const std::string content = patternOf(50'000);
    make("a.bin", content, oldTime);
    // Whether it is told as a failure is the system's affair.
    (void)copy(at("a.bin"), at("a.bin"));
    (void)copy(at("a.bin"), system().otherSpelling(at("a.bin")));
    EXPECT_TRUE(holds(at("a.bin"), content));
    EXPECT_EQ(entry(at("a.bin")).times.lastWrite, oldTime);
    EXPECT_THAT(system().names(directory()), ElementsAre("a.bin"));
}

TEST_P(CopyContract, GivesTheTimeThatASourceHadBeforeItChanged) {
    make("grand", patternOf(severalChunks), oldTime);
    Witness witness([&] {
        EXPECT_TRUE(files().setTimes(at("grand"), {newTime, newTime, newTime}).ok());
    });
    ASSERT_EQ(copy(at("grand"), at("copie"), LinkRule::refuse, &witness), 0U);
    EXPECT_EQ(entry(at("copie")).times.lastWrite, oldTime);
}

TEST_P(CopyContract, LeavesTheOldFileWhenTheSourceEndsBeforeItsTime) {
    make("grand", patternOf(severalChunks));
    make("copie", "old", newTime);
    bool cut = false;
    Witness witness([&] { cut = system().cutShort(at("grand"), largestChunk / 2); });
    const std::uint32_t code = copy(at("grand"), at("copie"), LinkRule::refuse, &witness);
    EXPECT_THAT(system().names(directory()), ElementsAre("copie", "grand"));
    if (!cut) {
        // The system keeps a file as it is while it is copied.
        EXPECT_EQ(code, 0U);
        EXPECT_TRUE(holds(at("copie"), patternOf(severalChunks)));
        return;
    }
    EXPECT_EQ(code, error_number::handleEof);
    EXPECT_TRUE(holds(at("copie"), "old"));
    EXPECT_EQ(entry(at("copie")).times.lastWrite, newTime);
}

TEST_P(LinkCopyContract, CopiesALinkAsALinkWithItsOwnTime) {
    make("cible", "content", oldTime);
    system().makeLink(at("lien"), "cible");
    system().makeLink(at("nulle part"), "absent");
    ASSERT_TRUE(files().setTimes(at("lien"), {newTime, newTime, newTime}).ok());
    ASSERT_EQ(copy(at("lien"), at("copie"), LinkRule::refuse), 0U);
    ASSERT_EQ(copy(at("nulle part"), at("copie 2"), LinkRule::refuse), 0U);
    EXPECT_TRUE(entry(at("copie")).isLink());
    EXPECT_EQ(entry(at("copie")).size, 5U);
    EXPECT_EQ(entry(at("copie")).times.lastWrite, newTime);
    EXPECT_EQ(identity(at("copie")), identity(at("cible")));
    EXPECT_TRUE(entry(at("copie 2")).isLink());
    EXPECT_EQ(entry(at("cible")).times.lastWrite, oldTime);
}

TEST_P(LinkCopyContract, CopiesTheContentBehindALinkWhenAskedTo) {
    make("cible", "content", oldTime);
    system().makeLink(at("lien"), "cible");
    ASSERT_EQ(copy(at("lien"), at("copie"), LinkRule::follow), 0U);
    EXPECT_FALSE(entry(at("copie")).isLink());
    EXPECT_TRUE(holds(at("copie"), "content"));
    EXPECT_EQ(entry(at("copie")).times.lastWrite, oldTime);
}

TEST_P(LinkCopyContract, ReplacesALinkAndNeverWritesThroughIt) {
    make("ailleurs", "precious", oldTime);
    make("a.txt", "new", newTime);
    system().makeLink(at("b.txt"), "ailleurs");
    ASSERT_EQ(copy(at("a.txt"), at("b.txt")), 0U);
    EXPECT_TRUE(holds(at("ailleurs"), "precious"));
    EXPECT_FALSE(entry(at("b.txt")).isLink());
    EXPECT_TRUE(holds(at("b.txt"), "new"));
}

TEST_P(CopyContract, LeftoversAreHiddenAndRemoved) {
    make("a.txt", "abc", oldTime);
    system().killCopyInto(directory());
    EXPECT_THAT(listed(directory()), ElementsAre("a.txt"));
    EXPECT_THAT(listed(directory(), Wanted::files), ElementsAre("a.txt"));
    EXPECT_TRUE(files().removeLeftovers(directory()).ok());
    EXPECT_THAT(system().names(directory()), ElementsAre("a.txt"));
    EXPECT_TRUE(holds(at("a.txt"), "abc"));
    EXPECT_TRUE(files().removeLeftovers(directory()).ok());
}

TEST_P(CopyContract, LeftDirectoriesOfUnfinishedCopiesAreHiddenAndRemoved) {
    make("a.txt", "abc", oldTime);
    const std::string left = at(ownFileName(OwnFile::temporary, 7));
    system().makeDirectory(left);
    system().makeFile(left + "\\b.txt", "half", oldTime);
    EXPECT_THAT(listed(directory()), ElementsAre("a.txt"));
    EXPECT_THAT(listed(directory(), Wanted::directories), IsEmpty());
    EXPECT_TRUE(files().removeLeftovers(directory()).ok());
    EXPECT_THAT(system().names(directory()), ElementsAre("a.txt"));
}

TEST_P(CopyContract, ADirectoryWithDirectoriesIsNoLeftover) {
    const std::string name = ownFileName(OwnFile::temporary, 7);
    system().makeDirectory(at(name));
    system().makeFile(at(name) + "\\a.txt", "abc", oldTime);
    system().makeDirectory(at(name) + "\\sous");
    EXPECT_TRUE(files().removeLeftovers(directory()).ok());
    EXPECT_THAT(system().names(directory()), ElementsAre(name));
    EXPECT_TRUE(holds(at(name) + "\\a.txt", "abc"));
}

TEST_P(CopyContract, ADirectoryIsRemovedWithTheUnfinishedOnesInIt) {
    system().makeDirectory(at("vieux"));
    const std::string left = at("vieux\\" + ownFileName(OwnFile::temporary, 7));
    system().makeDirectory(left);
    system().makeFile(left + "\\b.txt", "half", oldTime);
    EXPECT_TRUE(files().removeDirectory(at("vieux")).ok());
    EXPECT_THAT(system().names(directory()), IsEmpty());
}

TEST_P(CopyContract, RemovingLeftoversOfAMissingDirectoryFails) {
    EXPECT_THAT(files().removeLeftovers(at("absent")).code(), AnyOf(2U, 3U));
}

TEST_P(FullVolumeContract, CopyLeavesTheOldFileAndNothingElse) {
    const std::string tooLarge = system().secondDrive() + "grand";
    system().makeFile(tooLarge, patternOf(system().capacity() + 1), newTime);
    make("copie", "old", oldTime);
    EXPECT_EQ(copy(tooLarge, at("copie")), error_number::diskFull);
    EXPECT_EQ(copy(tooLarge, at("autre")), error_number::diskFull);
    EXPECT_TRUE(holds(at("copie"), "old"));
    EXPECT_EQ(entry(at("copie")).times.lastWrite, oldTime);
    EXPECT_THAT(system().names(directory()), ElementsAre("copie"));

    // The room is free again.
    make("petit", patternOf(100'000));
    EXPECT_EQ(copy(at("petit"), at("copie")), 0U);
}

TEST_P(FullVolumeContract, WriteWholeLeavesTheOldContentAndNothingElse) {
    make("reglages", "old", oldTime);
    EXPECT_EQ(files()
                  .writeWhole(at("reglages"), patternOf(system().capacity() + 1), Durability::now)
                  .code(),
              error_number::diskFull);
    EXPECT_TRUE(holds(at("reglages"), "old"));
    EXPECT_THAT(system().names(directory()), ElementsAre("reglages"));
}

}  // namespace
}  // namespace coffrelune
