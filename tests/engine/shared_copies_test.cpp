#include "engine/shared_copies.h"

#include <gmock/gmock.h>

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

FileEntry entry(const std::string& name, std::uint64_t number, std::uint64_t date) {
    FileEntry made;
    made.name = name;
    made.id = {1, number};
    made.times.lastWrite = date;
    return made;
}

class Listing final : public Directory {
  public:
    explicit Listing(std::vector<FileEntry> entries) : entries_(std::move(entries)) {}
    bool next(FileEntry& entry) override {
        if (next_ == entries_.size()) return false;
        entry = entries_[next_++];
        return true;
    }
    const Status& status() const override { return status_; }
    std::vector<FileEntry> takeDirectories() override { return {}; }
    bool lookUp(const std::string&, FileEntry&) override { return false; }

  private:
    std::vector<FileEntry> entries_;
    std::size_t next_ = 0;
    Status status_;
};

/// Those that share an entry, of originals in the order in which they are read, each with what its
/// name leads to. `current`: the one that is up to date with it.
std::vector<std::string> sharers(std::vector<FileEntry> listed, const std::vector<FileEntry>& found,
                                 const std::string& current = {}) {
    ListedEntries entries;
    Listing listing(std::move(listed));
    EXPECT_TRUE(entries.add(listing).ok());
    for (const FileEntry& copy : found) entries.lead(copy.name, copy, copy.name == current);
    const Sharers sharers{entries.sharers()};
    std::vector<std::string> names;
    for (const FileEntry& copy : found) {
        if (sharers.contains(copy.name)) names.push_back(copy.name);
    }
    return names;
}

TEST(ListedEntries, AreSharedByAllButTheFirstThatLeadToTheirNumber) {
    EXPECT_THAT(sharers({entry("E", 7, 1)}, {entry("e.", 7, 1), entry("E", 7, 1)}),
                ElementsAre("E"));
}

TEST(ListedEntries, AreNotSharedByHardLinksOrFilesThatOnlyLookAlike) {
    const std::vector<FileEntry> links = {entry("a", 7, 1), entry("b", 7, 1)};
    EXPECT_THAT(sharers(links, links), IsEmpty());
    const std::vector<FileEntry> alike = {entry("a", 7, 1), entry("b", 8, 1)};
    EXPECT_THAT(sharers(alike, alike), IsEmpty());
}

TEST(ListedEntries, AreSharedByTheFirstThatLooksSoWhereNumbersAreMadeUp) {
    EXPECT_THAT(sharers({entry("Ե", 7, 1)}, {entry("Ե", 7, 1), entry("ե", 8, 1)}),
                ElementsAre("ե"));
    EXPECT_THAT(sharers({entry("E", 7, 1)}, {entry("e.", 8, 1), entry("E", 7, 1)}),
                ElementsAre("E"));
    EXPECT_THAT(sharers({entry("E~1", 7, 1)}, {entry("ե", 8, 1), entry("Ե", 9, 1)}),
                ElementsAre("Ե"));
}

TEST(ListedEntries, BelongToTheirNamesWhereSeveralLookAlike) {
    EXPECT_THAT(sharers({entry("Ա", 7, 1), entry("B", 8, 1)},
                        {entry("ա", 9, 1), entry("Ա", 7, 1), entry("B", 8, 1)}),
                ElementsAre("ա"));
}

TEST(ListedEntries, BelongToTheOriginalThatIsUpToDateWithThem) {
    EXPECT_THAT(sharers({entry("Ե", 7, 1)}, {entry("ե", 8, 1), entry("Ե", 7, 1)}, "Ե"),
                ElementsAre("ե"));
    EXPECT_THAT(sharers({entry("E", 7, 1)}, {entry("e.", 7, 1), entry("E", 7, 1)}, "E"),
                ElementsAre("e."));
    EXPECT_THAT(sharers({entry("Ե", 7, 1)}, {entry("Ե", 7, 1), entry("ե", 8, 1)}, "ե"),
                ElementsAre("Ե"));
}

TEST(ListedEntries, BearTheNameOfTheirOwnerWhereNamesAreShownAsTheyWereGiven) {
    EXPECT_THAT(sharers({entry("Ե", 7, 1)}, {entry("ե", 8, 1), entry("Ե", 7, 1)}),
                ElementsAre("ե"));
    EXPECT_THAT(sharers({entry("É", 7, 1)}, {entry("e\u0301", 8, 1), entry("É", 7, 1)}),
                ElementsAre("É"));
}

TEST(ListedEntries, LeaveOneThatIsShownUnderAnotherNameItsCopy) {
    EXPECT_THAT(sharers({entry("E", 7, 1), entry("B", 8, 2)}, {entry("e", 9, 1), entry("B", 8, 2)}),
                IsEmpty());
}

TEST(ListedEntries, AreNobodysWhoLeadsToWhatIsNotListed) {
    EXPECT_THAT(sharers({entry("E", 7, 1)}, {entry("E", 7, 1), entry("e", 8, 3)}),
                ElementsAre("e"));
}

TEST(ListedEntries, AreTheirNamesThoughTheyChangeMeanwhile) {
    EXPECT_THAT(sharers({entry("A", 7, 1), entry("B", 8, 1)}, {entry("A", 7, 2), entry("B", 9, 3)}),
                IsEmpty());
}

// The walk copies no other of them.
TEST(ListedEntries, BelongToTheFirstOfThoseThatDifferInTheirCaseAlone) {
    for (const char* current : {"", "é"}) {
        EXPECT_THAT(sharers({entry("é", 7, 1)}, {entry("É", 7, 1), entry("é", 7, 1)}, current),
                    ElementsAre("é"));
        EXPECT_THAT(sharers({entry("é", 7, 1), entry("b", 8, 1)},
                            {entry("É", 9, 1), entry("é", 7, 1), entry("b", 8, 1)}, current),
                    ElementsAre("é"));
    }
}

TEST(ListedEntries, AreTwoWhereBothCasesAreListed) {
    EXPECT_THAT(sharers({entry("É", 7, 1), entry("é", 8, 1)},
                        {entry("É", 7, 1), entry("é", 8, 1), entry("é.", 9, 1)}),
                ElementsAre("é."));
}

TEST(ListedEntries, AreOpenToNobodyElseWhereTheyAreListedByTheirNamesAlone) {
    FileEntry damaged = entry("damaged", 0, 0);
    damaged.id = {};
    damaged.failure = error_number::ioDevice;
    ListedEntries entries;
    Listing listing({damaged, entry("a", 7, 1)});
    EXPECT_TRUE(entries.add(listing).ok());
    const Status failure = Status::failure(error_number::ioDevice, "C:\\copie\\x");
    EXPECT_FALSE(entries.leavesOpen("damaged", failure));
    EXPECT_TRUE(entries.leavesOpen("a", failure));
    for (const auto absent : {error_number::fileNotFound, error_number::invalidName}) {
        EXPECT_FALSE(entries.leavesOpen("a", Status::failure(absent, "C:\\copie\\a")));
    }
    entries.lead("DAMAGED", entry("DAMAGED", 9, 3), true);
    EXPECT_TRUE(Sharers{entries.sharers()}.contains("DAMAGED"));
}

TEST(Sharers, MayBeAllWhereNobodyCanTell) {
    Sharers sharers;
    EXPECT_FALSE(sharers.contains("a"));
    sharers.failure = Status::failure(error_number::ioDevice, "C:\\copie");
    EXPECT_TRUE(sharers.contains("a"));
}

TEST(FileLooks, AreDoubtfulWhereSomeAreAlikeAndSomeReplaced) {
    FileLooks looks;
    looks.note("a", entry("a", 1, 1), true);
    EXPECT_FALSE(looks.areDoubtful());
    looks.note("b", entry("b", 2, 2), false);
    EXPECT_FALSE(looks.areDoubtful());
    looks.note("c", entry("c", 3, 2), false);
    EXPECT_TRUE(looks.areDoubtful());
}

TEST(FileLooks, AreDoubtfulWhereOneThatMayBeShownByAnotherNameIsReplaced) {
    FileLooks looks;
    looks.note("été", entry("été", 1, 1), false);
    EXPECT_FALSE(looks.areDoubtful());
    looks.note("plan", entry("plan", 2, 2), true);
    EXPECT_FALSE(looks.areDoubtful());
    looks.note("été", entry("été", 3, 3), true);
    EXPECT_TRUE(looks.areDoubtful());
    looks.clear();
    EXPECT_FALSE(looks.areDoubtful());
}

TEST(Names, MayBeFoldedWhereTheyAreNotPlain) {
    for (const char* name : {"plan", "Plan B", "a.txt"}) EXPECT_FALSE(mayBeFolded(name)) << name;
    for (const char* name : {"été", "R.E.M.", "fin ", "PROGRA~1", "a:b"}) {
        EXPECT_TRUE(mayBeFolded(name)) << name;
    }
}

TEST(NewFiles, MayHaveMadeWhatHasTheirSizeAndADateThatAVolumeRounds) {
    constexpr std::uint64_t second = 10'000'000;
    NewFiles files;
    FileEntry original = entry("a", 1, 1001 * second);
    original.size = 5;
    FileEntry copy = original;
    EXPECT_FALSE(files.mayHaveMade(copy));
    files.note(original);
    for (const std::uint64_t date : {999U, 1000U, 1001U, 1002U, 1003U}) {
        copy.times.lastWrite = date * second;
        EXPECT_TRUE(files.mayHaveMade(copy)) << date;
    }
    copy.times.lastWrite = 1020 * second;
    EXPECT_FALSE(files.mayHaveMade(copy));
    copy.times.lastWrite = original.times.lastWrite;
    copy.size = 6;
    EXPECT_FALSE(files.mayHaveMade(copy));
    files.clear();
    EXPECT_FALSE(files.mayHaveMade(original));
}

}  // namespace
}  // namespace coffrelune
