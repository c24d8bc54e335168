#include "contract/contract_fixture.h"

namespace coffrelune {
namespace {

using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;

class ChangeContract : public Contract {};
class LinkChangeContract : public Contract {};

INSTANTIATE_TEST_SUITE_P(On, ChangeContract, testing::ValuesIn(contractSystems()), contractName);
INSTANTIATE_TEST_SUITE_P(On, LinkChangeContract,
                         testing::ValuesIn(contractSystems(Capability::links)), contractName);

TEST_P(ChangeContract, SetTimesIsExactToTheUnit) {
    make("a.txt", "abc", oldTime);
    ASSERT_TRUE(files().setTimes(at("a.txt"), {newTime + 4, newTime + 3, newTime + 2}).ok());
    const FileTimes times = entry(at("a.txt")).times;
    EXPECT_EQ(times.lastWrite, newTime + 2);
    EXPECT_EQ(times.lastAccess, newTime + 3);
    EXPECT_TRUE(holds(at("a.txt"), "abc"));
}

TEST_P(ChangeContract, SetTimesReachesBeforeNineteenSeventyAndFarAhead) {
    make("a.txt", "");
    const std::uint64_t before1970 = 100'000'000'000'000'007;  // in 1917
    // 2100, beyond a 32-bit count of seconds
    const std::uint64_t farAhead = 157'469'184'000'000'009;
    for (const std::uint64_t time : {before1970, farAhead}) {
        ASSERT_TRUE(files().setTimes(at("a.txt"), {time, time, time}).ok());
        EXPECT_EQ(entry(at("a.txt")).times.lastWrite, time);
    }
}

TEST_P(ChangeContract, SetTimesWorksOnADirectoryAndFailsForWhatIsNotThere) {
    system().makeDirectory(at("Sous"));
    ASSERT_TRUE(files().setTimes(at("Sous"), {oldTime, oldTime, oldTime}).ok());
    EXPECT_EQ(entry(at("Sous")).times.lastWrite, oldTime);
    EXPECT_EQ(files().setTimes(at("absent"), {oldTime, oldTime, oldTime}).code(), 2U);
}

TEST_P(ChangeContract, SetAttributesTurnsReadOnlyOnAndOff) {
    make("a.txt", "abc", oldTime);
    ASSERT_TRUE(files().setAttributes(at("a.txt"), attribute::readOnly).ok());
    EXPECT_EQ(commonAttributes(entry(at("a.txt"))), attribute::readOnly);
    ASSERT_TRUE(files().setAttributes(at("a.txt"), attribute::normal).ok());
    EXPECT_EQ(commonAttributes(entry(at("a.txt"))), attribute::normal);
    EXPECT_EQ(entry(at("a.txt")).times.lastWrite, oldTime);
    EXPECT_EQ(files().setAttributes(at("absent"), attribute::normal).code(), 2U);
}

TEST_P(LinkChangeContract, TimesAndAttributesOfALinkNeverTouchItsTarget) {
    make("cible", "abc", oldTime);
    system().makeLink(at("lien"), "cible");
    ASSERT_TRUE(files().setTimes(at("lien"), {newTime, newTime, newTime}).ok());
    // Not every system gives a link attributes of its own.
    (void)files().setAttributes(at("lien"), attribute::readOnly);
    EXPECT_EQ(entry(at("cible")).times.lastWrite, oldTime);
    EXPECT_EQ(commonAttributes(entry(at("cible"))), attribute::normal);
    EXPECT_EQ(entry(at("lien")).times.lastWrite, newTime);
    EXPECT_TRUE(entry(at("lien")).isLink());
}

TEST_P(ChangeContract, CreatesOneDirectoryLevel) {
    ASSERT_TRUE(files().createDirectory(at("Sous"), DirectoryAccess::usual).ok());
    EXPECT_TRUE(entry(at("Sous")).isDirectory());
    ASSERT_TRUE(files().createDirectory(at("Sous\\Plus bas\\"), DirectoryAccess::usual).ok());
    EXPECT_THAT(system().names(at("Sous")), ElementsAre("Plus bas"));
}

TEST_P(ChangeContract, DirectoryOfItsOwnerAloneIsOneLikeAnyOtherForItsOwner) {
    constexpr DirectoryAccess ownerOnly = DirectoryAccess::ownerOnly;
    ASSERT_TRUE(files().createDirectory(at("Sous"), ownerOnly).ok());
    ASSERT_TRUE(files().createDirectory(at("Sous\\Plus bas"), ownerOnly).ok());
    make("a.txt", "abc");
    EXPECT_EQ(copy(at("a.txt"), at("Sous\\a.txt")), 0U);
    EXPECT_THAT(listed(at("Sous")), ElementsAre("Plus bas", "a.txt"));
    EXPECT_TRUE(files().matchDirectory(directory(), at("Sous")).ok());
    EXPECT_TRUE(entry(at("Sous")).isDirectory());
    EXPECT_EQ(files().createDirectory(at("Sous"), ownerOnly).code(), error_number::alreadyExists);
    EXPECT_EQ(files().createDirectory(at("a.txt"), ownerOnly).code(), error_number::alreadyExists);
}

TEST_P(ChangeContract, CreateDirectoryFailsWhenTheNameIsTaken) {
    make("a.txt", "abc");
    system().makeDirectory(at("Sous"));
    EXPECT_EQ(files().createDirectory(at("Sous"), DirectoryAccess::usual).code(),
              error_number::alreadyExists);
    EXPECT_EQ(files().createDirectory(at("a.txt"), DirectoryAccess::usual).code(),
              error_number::alreadyExists);
    EXPECT_TRUE(holds(at("a.txt"), "abc"));
    EXPECT_FALSE(files().createDirectory(system().drive(), DirectoryAccess::usual).ok());
}

TEST_P(ChangeContract, CreateDirectoryFailsWithoutItsParent) {
    make("a.txt", "abc");
    EXPECT_EQ(files().createDirectory(at("absent\\Sous"), DirectoryAccess::usual).code(),
              error_number::pathNotFound);
    EXPECT_THAT(files().createDirectory(at("a.txt\\Sous"), DirectoryAccess::usual).code(),
                AnyOf(error_number::pathNotFound, error_number::notADirectory));
    EXPECT_THAT(system().names(directory()), ElementsAre("a.txt"));
}

TEST_P(ChangeContract, RemovesAFile) {
    make("a.txt", "abc");
    EXPECT_TRUE(files().removeFile(at("a.txt")).ok());
    EXPECT_THAT(system().names(directory()), IsEmpty());
    EXPECT_EQ(files().removeFile(at("a.txt")).code(), error_number::fileNotFound);
}

TEST_P(ChangeContract, NeverRemovesAReadOnlyFileOrADirectory) {
    make("a.txt", "abc");
    system().makeDirectory(at("Sous"));
    ASSERT_TRUE(files().setAttributes(at("a.txt"), attribute::readOnly).ok());
    EXPECT_EQ(files().removeFile(at("a.txt")).code(), error_number::accessDenied);
    EXPECT_EQ(files().removeFile(at("Sous")).code(), error_number::accessDenied);
    EXPECT_THAT(system().names(directory()), ElementsAre("Sous", "a.txt"));
}

TEST_P(LinkChangeContract, RemovesALinkAndNotItsTarget) {
    make("cible", "abc");
    system().makeDirectory(at("Sous"));
    make("Sous\\a.txt", "abc");
    system().makeLink(at("lien"), "cible");
    system().makeLink(at("lien 2"), "Sous");
    EXPECT_TRUE(files().removeFile(at("lien")).ok());
    EXPECT_TRUE(files().removeFile(at("lien 2")).ok());
    EXPECT_THAT(system().names(directory()), ElementsAre("Sous", "cible"));
    EXPECT_THAT(system().names(at("Sous")), ElementsAre("a.txt"));
}

TEST_P(ChangeContract, ReadsAWholeFileUpToItsLimit) {
    const std::string content = patternOf(1000);
    make("a.bin", content);
    std::string bytes = "something else";
    ASSERT_TRUE(files().readWhole(at("a.bin"), 1000, bytes).ok());
    EXPECT_EQ(bytes, content);
    EXPECT_EQ(files().readWhole(at("a.bin"), 999, bytes).code(), error_number::fileTooLarge);
    EXPECT_EQ(files().readWhole(at("absent"), 1000, bytes).code(), error_number::fileNotFound);
    EXPECT_FALSE(files().readWhole(directory(), 1000, bytes).ok());
    make("vide", "");
    ASSERT_TRUE(files().readWhole(at("vide"), 0, bytes).ok());
    EXPECT_EQ(bytes, "");
}

TEST_P(ChangeContract, WritesAWholeFileNewOrOverAnother) {
    for (const Durability durability : {Durability::now, Durability::nextFlush}) {
        ASSERT_TRUE(files().writeWhole(at("a.ini"), "first, and longer", durability).ok());
        EXPECT_TRUE(holds(at("a.ini"), "first, and longer"));
        ASSERT_TRUE(files().writeWhole(at("a.ini"), "second", durability).ok());
        EXPECT_TRUE(holds(at("a.ini"), "second"));
        EXPECT_EQ(commonAttributes(entry(at("a.ini"))), attribute::normal);
        EXPECT_THAT(system().names(directory()), ElementsAre("a.ini"));
        ASSERT_TRUE(files().removeFile(at("a.ini")).ok());
    }
}

TEST_P(LinkChangeContract, CreateDirectoryFailsForALinkThatBearsTheName) {
    system().makeLink(at("lien"), "absent");
    EXPECT_EQ(files().createDirectory(at("lien"), DirectoryAccess::usual).code(),
              error_number::alreadyExists);
    EXPECT_THAT(system().names(directory()), ElementsAre("lien"));
}

TEST_P(LinkChangeContract, WriteWholeFollowsALink) {
    make("cible.ini", "old");
    system().makeLink(at("lien.ini"), "cible.ini");
    ASSERT_TRUE(files().writeWhole(at("lien.ini"), "new", Durability::now).ok());
    EXPECT_TRUE(holds(at("cible.ini"), "new"));
    EXPECT_TRUE(entry(at("lien.ini")).isLink());
    EXPECT_THAT(system().names(directory()), ElementsAre("cible.ini", "lien.ini"));
}

TEST_P(ChangeContract, WriteWholeFailsWithoutItsDirectoryAndOnADirectory) {
    EXPECT_EQ(files().writeWhole(at("absent\\a.ini"), "abc", Durability::now).code(),
              error_number::pathNotFound);
    system().makeDirectory(at("Sous"));
    EXPECT_FALSE(files().writeWhole(at("Sous"), "abc", Durability::now).ok());
    EXPECT_THAT(system().names(directory()), ElementsAre("Sous"));
}

}  // namespace
}  // namespace coffrelune
