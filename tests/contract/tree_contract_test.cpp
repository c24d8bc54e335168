#include "contract/contract_fixture.h"

namespace coffrelune {
namespace {

using testing::IsEmpty;
using testing::StartsWith;

constexpr std::uint32_t taken = error_number::lockViolation;

class TreeContract : public Contract {
  protected:
    void SetUp() override {
        Contract::SetUp();
        if (!IsSkipped()) system().makeDirectory(tree());
    }

    std::string tree() { return at("arbre"); }

    std::unique_ptr<HeldTree> hold(const std::string& path) {
        std::unique_ptr<HeldTree> held;
        EXPECT_EQ(files().hold(path, held).code(), 0U) << path;
        return held;
    }

    TreePlace placeOf(const std::string& path) { return hold(path)->place(); }

    std::uint32_t elsewhere(TreeUse use) { return system().claimElsewhere(tree(), use); }
};

class LinkPlaceContract : public TreeContract {};

INSTANTIATE_TEST_SUITE_P(On, TreeContract, testing::ValuesIn(contractSystems()), contractName);
INSTANTIATE_TEST_SUITE_P(On, LinkPlaceContract,
                         testing::ValuesIn(contractSystems(Capability::treeLinks)), contractName);

TEST_P(TreeContract, PlaceIsThatOfTheDirectoryHoweverItIsSpelled) {
    const TreePlace place = placeOf(tree());
    EXPECT_EQ(placeOf(system().otherSpelling(tree())), place);
    EXPECT_EQ(placeOf(tree() + "\\"), place);
    EXPECT_THAT(place.path, StartsWith("\\"));
}

TEST_P(TreeContract, PlaceContinuesThatOfTheDirectoryAbove) {
    const TreePlace above = placeOf(directory());
    const TreePlace place = placeOf(tree());
    EXPECT_EQ(place.volume, above.volume);
    EXPECT_EQ(place.path, above.path + "\\arbre");
    EXPECT_TRUE(place.self.empty() || place.self != above.self);
}

TEST_P(TreeContract, PlaceTellsADirectoryFromItsCopy) {
    system().makeDirectory(at("copie"));
    const TreePlace place = placeOf(tree());
    const TreePlace ofCopy = placeOf(at("copie"));
    EXPECT_NE(ofCopy, place);
    EXPECT_TRUE(place.self.empty() || place.self != ofCopy.self);
}

TEST_P(TreeContract, PlaceKnowsARenamedDirectoryAgain) {
    const TreePlace before = placeOf(tree());
    ASSERT_TRUE(system().rename(tree(), at("renomme")));
    const TreePlace after = placeOf(at("renomme"));
    EXPECT_EQ(after.volume, before.volume);
    EXPECT_EQ(after.self, before.self);
    EXPECT_EQ(after.path, placeOf(directory()).path + "\\renomme");
}

TEST_P(LinkPlaceContract, IsThatBehindALink) {
    system().makeLink(at("lien"), "arbre");
    EXPECT_EQ(placeOf(at("lien")), placeOf(tree()));
}

TEST_P(TreeContract, ClaimsOfTwoReadersAgree) {
    const auto held = hold(tree());
    ASSERT_TRUE(held->claim(TreeUse::read).ok());
    EXPECT_EQ(elsewhere(TreeUse::read), 0U);
}

TEST_P(TreeContract, ReaderKeepsAWriterOut) {
    auto held = hold(tree());
    ASSERT_TRUE(held->claim(TreeUse::read).ok());
    EXPECT_EQ(elsewhere(TreeUse::write), taken);
    held.reset();
    EXPECT_EQ(elsewhere(TreeUse::write), 0U);
}

TEST_P(TreeContract, WriterKeepsEverybodyOut) {
    auto held = hold(tree());
    ASSERT_TRUE(held->claim(TreeUse::write).ok());
    EXPECT_EQ(elsewhere(TreeUse::read), taken);
    EXPECT_EQ(elsewhere(TreeUse::write), taken);
    held.reset();
    EXPECT_EQ(elsewhere(TreeUse::read), 0U);
}

TEST_P(TreeContract, HoldWithoutAClaimKeepsNobodyOut) {
    const auto held = hold(tree());
    EXPECT_EQ(elsewhere(TreeUse::write), 0U);
}

TEST_P(TreeContract, ClaimsOfOneProcessAgreeAndLastAsLongAsOneDoes) {
    auto first = hold(tree());
    auto second = hold(tree());
    ASSERT_TRUE(first->claim(TreeUse::write).ok());
    EXPECT_TRUE(second->claim(TreeUse::write).ok());
    first.reset();
    EXPECT_EQ(elsewhere(TreeUse::read), taken);
    second.reset();
    EXPECT_EQ(elsewhere(TreeUse::write), 0U);
}

TEST_P(TreeContract, WriterOfOneProcessOutlivesItsReader) {
    const auto writer = hold(tree());
    auto reader = hold(tree());
    ASSERT_TRUE(writer->claim(TreeUse::write).ok());
    ASSERT_TRUE(reader->claim(TreeUse::read).ok());
    EXPECT_EQ(elsewhere(TreeUse::read), taken);
    reader.reset();
    EXPECT_EQ(elsewhere(TreeUse::read), taken);
}

TEST_P(TreeContract, ClaimMayBeAskedAgainForTheOtherUse) {
    const auto held = hold(tree());
    ASSERT_TRUE(held->claim(TreeUse::read).ok());
    ASSERT_TRUE(held->claim(TreeUse::write).ok());
    EXPECT_TRUE(held->claim(TreeUse::write).ok());
    EXPECT_EQ(elsewhere(TreeUse::read), taken);
    ASSERT_TRUE(held->claim(TreeUse::read).ok());
    EXPECT_EQ(elsewhere(TreeUse::write), taken);
}

TEST_P(TreeContract, ClaimsOfTwoTreesHaveNothingToDoWithEachOther) {
    system().makeDirectory(at("voisin"));
    const auto held = hold(at("voisin"));
    ASSERT_TRUE(held->claim(TreeUse::write).ok());
    EXPECT_EQ(elsewhere(TreeUse::write), 0U);
}

TEST_P(TreeContract, ClaimAddsNothingThatIsListed) {
    const auto held = hold(tree());
    ASSERT_TRUE(held->claim(TreeUse::write).ok());
    EXPECT_THAT(listed(tree()), IsEmpty());
    EXPECT_EQ(files().writeWhole(tree() + "\\a.txt", "abc", Durability::now).code(), 0U);
    EXPECT_EQ(files().removeFile(tree() + "\\a.txt").code(), 0U);
}

TEST_P(TreeContract, FlushSucceedsAfterWritingAndAgain) {
    make("source", patternOf(100'000));
    const auto held = hold(tree());
    EXPECT_TRUE(held->flush().ok());
    ASSERT_EQ(files().writeWhole(tree() + "\\a", "abc", Durability::nextFlush).code(), 0U);
    ASSERT_EQ(copy(at("source"), tree() + "\\b"), 0U);
    EXPECT_TRUE(held->flush().ok());
    EXPECT_TRUE(held->flush().ok());
    EXPECT_TRUE(holds(tree() + "\\a", "abc"));
    EXPECT_TRUE(holds(tree() + "\\b", patternOf(100'000)));
}

}  // namespace
}  // namespace coffrelune
