#include "contract/batch_fixture.h"
#include "platform/names.h"

namespace coffrelune {
namespace {

using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

class LinkBatchContract : public BatchContract {};

INSTANTIATE_TEST_SUITE_P(On, BatchContract, testing::ValuesIn(contractSystems()), contractName);
INSTANTIATE_TEST_SUITE_P(On, LinkBatchContract,
                         testing::ValuesIn(contractSystems(Capability::links)), contractName);

// As a first copy does: each name is looked up, found absent, and added.
TEST_P(BatchContract, EmptyDirectoryShowsWhatTheBatchHasNamedInIt) {
    constexpr int many = 30;
    const auto name = [](int i) { return "fichier " + std::to_string(i) + ".txt"; };
    for (int i = 0; i < many; ++i) original(name(i));
    start();
    FileEntry found;
    for (int i = 0; i < many; ++i) {
        EXPECT_FALSE(target().lookUp(name(i), found));
        EXPECT_EQ(add(name(i)), 0U);
    }
    finish();
    for (int i = 0; i < many; ++i) EXPECT_TRUE(target().lookUp(name(i), found)) << i;
    EXPECT_FALSE(target().lookUp(name(many), found));
    EXPECT_TRUE(target().status().ok());
}

TEST_P(BatchContract, TakesContentTimeAndAttributes) {
    const std::string holes = patternOf(5000) + std::string(std::size_t{1} << 20, '\0') + "end" +
                              std::string(70'000, '\0');
    const std::vector<std::pair<std::string, std::string>> contents = {
        {"a.bin", patternOf(100'000)},
        {"grand", patternOf(severalChunks)},
        {"trous", holes},
        {"verrou.txt", "locked"},
        {"vide", ""}};
    for (const auto& [name, content] : contents) original(name, content, newTime);
    ASSERT_TRUE(files().setAttributes(from("verrou.txt"), attribute::readOnly).ok());
    start();
    for (const auto& [name, content] : contents) EXPECT_EQ(add(name), 0U) << name;
    finish();
    EXPECT_THAT(told(), Each(Pair(testing::_, 0U)));
    for (const auto& [name, content] : contents) {
        EXPECT_TRUE(holds(to(name), content));
        EXPECT_EQ(entry(to(name)).times.lastWrite, newTime) << name;
        EXPECT_EQ(entry(to(name)).size, content.size()) << name;
        const bool locked = name == "verrou.txt";
        EXPECT_EQ(commonAttributes(entry(to(name))),
                  locked ? attribute::readOnly : attribute::normal)
            << name;
    }
    EXPECT_THAT(namesInTarget(), ElementsAre("a.bin", "grand", "trous", "verrou.txt", "vide"));
}

TEST_P(BatchContract, CopyOfAReadOnlyFileIsWritableWhenThatIsAskedFor) {
    original("verrou.txt");
    ASSERT_TRUE(files().setAttributes(from("verrou.txt"), attribute::readOnly).ok());
    start();
    EXPECT_EQ(add("verrou.txt", {.writable = true}), 0U);
    finish();
    EXPECT_EQ(commonAttributes(entry(to("verrou.txt"))), attribute::normal);
    EXPECT_EQ(commonAttributes(entry(from("verrou.txt"))), attribute::readOnly);
    EXPECT_EQ(entry(to("verrou.txt")).times.lastWrite, newTime);
}

TEST_P(BatchContract, TakesAllTheTimesWhenThatIsAskedFor) {
    original("a.txt");
    constexpr std::uint64_t accessTime = oldTime + 60'000'000'000;
    ASSERT_TRUE(files().setTimes(from("a.txt"), {oldTime, accessTime, newTime}).ok());
    start();
    const FileEntry before = seen("a.txt");
    EXPECT_EQ(before.times.lastAccess, accessTime);
    EXPECT_EQ(add(before, {.allTimes = true}, target(), "vers"), 0U);
    finish();
    EXPECT_EQ(entry(to("a.txt")).times.lastAccess, accessTime);
    EXPECT_EQ(entry(to("a.txt")).times.lastWrite, newTime);
}

TEST_P(BatchContract, FilesAppearWholeAndAreToldInTheirOrder) {
    std::vector<std::pair<std::string, std::uint32_t>> all;
    for (int i = 0; i < 40; ++i) {
        const std::string name = "fichier " + std::to_string(i);
        original(name, name + patternOf(1000));
        all.emplace_back(name, 0U);
    }
    start();
    for (const auto& [name, code] : all) {
        EXPECT_EQ(add(name), 0U);
        for (const std::string& present : namesInTarget()) {
            if (ownFileKind(present)) continue;
            EXPECT_TRUE(holds(to(present), present + patternOf(1000)));
        }
    }
    finish();
    EXPECT_EQ(told(), all);
    EXPECT_THAT(namesInTarget(), SizeIs(all.size()));
    for (const auto& [name, code] : all) EXPECT_TRUE(holds(to(name), name + patternOf(1000)));
}

TEST_P(BatchContract, ReplacesAndKeepsTheOldFileUntilTheNewOneIsCommitted) {
    original("a.txt", "new content");
    original("b.txt", "short");
    old("a.txt");
    old("b.txt", "a much longer old content");
    start();
    std::optional<std::string> meanwhile;
    AtFirstChunk observer([&] { meanwhile = system().content(to("a.txt")); });
    EXPECT_EQ(add("a.txt", {.isNew = false, .observer = &observer}), 0U);
    EXPECT_EQ(meanwhile, "old");
    EXPECT_THAT(system().content(to("a.txt")), AnyOf("old", "new content"));
    EXPECT_EQ(add("b.txt", {.isNew = false}), 0U);
    finish();
    EXPECT_THAT(told(), ElementsAre(Pair("a.txt", 0U), Pair("b.txt", 0U)));
    EXPECT_TRUE(holds(to("a.txt"), "new content"));
    EXPECT_TRUE(holds(to("b.txt"), "short"));
    EXPECT_EQ(entry(to("a.txt")).times.lastWrite, newTime);
    EXPECT_THAT(namesInTarget(), ElementsAre("a.txt", "b.txt"));
}

TEST_P(BatchContract, LeavesNothingUnfinishedWhenItIsDestroyed) {
    for (const char* name : {"a", "b", "c"}) original(name);
    old("b");
    start();
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(add("b", {.isNew = false}), 0U);
    EXPECT_EQ(add("c"), 0U);
    endBatch();
    for (const std::string& name : namesInTarget()) {
        EXPECT_FALSE(ownFileKind(name)) << name;
        EXPECT_THAT(system().content(to(name)), AnyOf("new", "old"));
    }
    EXPECT_THAT(namesInTarget(), Contains("b"));
}

TEST_P(BatchContract, CommitsWhatWasAddedBeforeItIsAbandoned) {
    for (const char* name : {"a", "b", "c", "d"}) original(name);
    old("c");
    start();
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(add("b"), 0U);
    AtFirstChunk observer([&] { files().abandonCopies(); });
    EXPECT_EQ(add("c", {.isNew = false, .observer = &observer}), error_number::requestAborted);
    EXPECT_EQ(add("d"), error_number::requestAborted);
    finish();
    EXPECT_THAT(told(), ElementsAre(Pair("a", 0U), Pair("b", 0U)));
    EXPECT_THAT(namesInTarget(), ElementsAre("a", "b", "c"));
    EXPECT_TRUE(holds(to("c"), "old"));
    EXPECT_TRUE(holds(to("b"), "new"));
}

TEST_P(BatchContract, LookUpInAnOpenDirectorySeesWhatIsFinished) {
    for (int i = 0; i < 20; ++i) {
        original("a " + std::to_string(i), "a longer content");
        old("a " + std::to_string(i));
    }
    original("neuf");
    start();
    FileEntry found;
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(target().lookUp("a " + std::to_string(i), found));
        EXPECT_EQ(found.size, 3U);
    }
    EXPECT_FALSE(target().lookUp("neuf", found));
    for (int i = 0; i < 20; ++i) EXPECT_EQ(add("a " + std::to_string(i), {.isNew = false}), 0U);
    EXPECT_EQ(add("neuf"), 0U);
    const auto later = open(at("vers"));  // while the files wait
    for (int i = 0; i < 20; ++i) EXPECT_TRUE(later->lookUp("a " + std::to_string(i), found));
    (void)later->lookUp("neuf", found);
    finish();
    for (Directory* directory : {&target(), later.get()}) {
        for (int i = 0; i < 20; ++i) {
            ASSERT_TRUE(directory->lookUp("a " + std::to_string(i), found));
            EXPECT_EQ(found.size, 16U);
            EXPECT_EQ(found.times.lastWrite, newTime);
        }
        EXPECT_TRUE(directory->lookUp("neuf", found));
    }
}

TEST_P(BatchContract, FillsDirectoriesThatTheirOwnerHasClosed) {
    original("a.txt");
    start();
    const FileEntry entry = seen("a.txt");
    for (const char* name : {"un", "deux", "trois"}) {
        system().makeDirectory(at(name));
        const auto opened = open(at(name));
        EXPECT_EQ(add(entry, {}, *opened, name), 0U);
    }
    source_.reset();
    EXPECT_TRUE(batch().finish().ok());
    for (const char* name : {"un", "deux", "trois"}) {
        EXPECT_THAT(system().names(at(name)), ElementsAre("a.txt"));
        EXPECT_TRUE(holds(at(std::string(name) + "\\a.txt"), "new"));
    }
}

TEST_P(BatchContract, MayBeUsedAgainAndNeedNotBeUsedAtAll) {
    original("a", "one");
    original("b", "two");
    start();
    finish();
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_EQ(add("a"), 0U);
    finish();
    EXPECT_THAT(told(), SizeIs(1));
    finish();
    EXPECT_EQ(add("b"), 0U);
    finish();
    original("a", "one again");
    EXPECT_EQ(add("a", {.isNew = false}), 0U);
    finish();
    EXPECT_THAT(told(), ElementsAre(Pair("a", 0U), Pair("b", 0U), Pair("a", 0U)));
    EXPECT_TRUE(holds(to("a"), "one again"));
    EXPECT_TRUE(holds(to("b"), "two"));
}

TEST_P(LinkBatchContract, CopiesALinkAsALinkAndReplacesOneWithoutWritingThroughIt) {
    original("cible", "content");
    original("a.txt");
    old("precieux", "precious");
    system().makeLink(from("lien"), "cible");
    system().makeLink(to("a.txt"), "precieux");
    ASSERT_TRUE(files().setTimes(from("lien"), {newTime, newTime, newTime}).ok());
    start();
    EXPECT_EQ(add("lien"), 0U);
    EXPECT_EQ(add("a.txt", {.isNew = false}), 0U);
    finish();
    EXPECT_THAT(told(), ElementsAre(Pair("lien", 0U), Pair("a.txt", 0U)));
    EXPECT_TRUE(entry(to("lien")).isLink());
    EXPECT_EQ(entry(to("lien")).size, 5U);
    EXPECT_EQ(entry(to("lien")).times.lastWrite, newTime);
    EXPECT_FALSE(entry(to("a.txt")).isLink());
    EXPECT_TRUE(holds(to("a.txt"), "new"));
    EXPECT_TRUE(holds(to("precieux"), "precious"));
}

TEST_P(BatchContract, TellsThatTheTimesHaveBeenKept) {
    original("a.txt");
    start();
    EXPECT_EQ(batch().keptTimes(), KeptTimes::exactly);
    EXPECT_EQ(add("a.txt"), 0U);
    finish();
    EXPECT_EQ(batch().keptTimes(), KeptTimes::exactly);
}

}  // namespace
}  // namespace coffrelune
