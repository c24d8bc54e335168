#include "contract/batch_fixture.h"

namespace coffrelune {
namespace {

using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::Pair;

class BatchConflictContract : public BatchContract {};
class FullBatchContract : public BatchContract {};

INSTANTIATE_TEST_SUITE_P(On, BatchConflictContract, testing::ValuesIn(contractSystems()),
                         contractName);
INSTANTIATE_TEST_SUITE_P(On, FullBatchContract,
                         testing::ValuesIn(contractSystems(Capability::small)), contractName);

TEST_P(BatchConflictContract, FileThatIsGoneFailsAtOnceAndTheOthersAreCopied) {
    for (const char* name : {"a", "b", "c"}) original(name);
    old("b");
    start();
    const FileEntry gone = seen("b");
    ASSERT_TRUE(system().rename(from("b"), at("ailleurs")));
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(add(gone, {.isNew = false}, target(), "vers"), error_number::fileNotFound);
    EXPECT_EQ(add("c"), 0U);
    finish();
    EXPECT_THAT(told(), ElementsAre(Pair("a", 0U), Pair("c", 0U)));
    EXPECT_TRUE(holds(to("b"), "old"));
    EXPECT_THAT(namesInTarget(), ElementsAre("a", "b", "c"));
}

TEST_P(BatchConflictContract, SourceThatEndsBeforeItsTimeLeavesTheOldFile) {
    original("grand", patternOf(severalChunks));
    old("grand");
    start();
    bool cut = false;
    AtFirstChunk observer([&] { cut = system().cutShort(from("grand"), largestChunk / 2); });
    const std::uint32_t code = add("grand", {.isNew = false, .observer = &observer});
    finish();
    EXPECT_THAT(namesInTarget(), ElementsAre("grand"));
    // A system may keep a file as it is while it is copied.
    EXPECT_EQ(code, cut ? error_number::handleEof : error_number::none);
    EXPECT_TRUE(holds(to("grand"), cut ? "old" : patternOf(severalChunks)));
}

TEST_P(BatchConflictContract, NameThatSomebodyTakesMeanwhileStaysHis) {
    for (const char* name : {"avant", "pendant", "reste"}) original(name);
    start();
    make("vers\\avant", "theirs", oldTime);
    EXPECT_EQ(add("avant"), 0U);
    AtFirstChunk observer([&] { make("vers\\pendant", "theirs", oldTime); });
    EXPECT_EQ(add("pendant", {.observer = &observer}), 0U);
    EXPECT_EQ(add("reste"), 0U);
    finish();
    EXPECT_THAT(told(),
                ElementsAre(Pair("avant", error_number::alreadyExists),
                            Pair("pendant", error_number::alreadyExists), Pair("reste", 0U)));
    EXPECT_TRUE(holds(to("avant"), "theirs"));
    EXPECT_TRUE(holds(to("pendant"), "theirs"));
    EXPECT_THAT(namesInTarget(), ElementsAre("avant", "pendant", "reste"));
}

TEST_P(BatchConflictContract, OldFileThatSomebodyChangesMeanwhileStaysHis) {
    original("a.txt");
    original("reste");
    old("a.txt");
    start();
    AtFirstChunk observer([&] { make("vers\\a.txt", "theirs, longer", oldTime + 70'000'000); });
    EXPECT_EQ(add("a.txt", {.isNew = false, .observer = &observer}), 0U);
    EXPECT_EQ(add("reste"), 0U);
    finish();
    EXPECT_THAT(told(),
                ElementsAre(Pair("a.txt", error_number::sharingViolation), Pair("reste", 0U)));
    EXPECT_TRUE(holds(to("a.txt"), "theirs, longer"));
    EXPECT_THAT(namesInTarget(), ElementsAre("a.txt", "reste"));
}

TEST_P(BatchConflictContract, OldFileThatIsGoneMeanwhileIsNoObstacle) {
    for (const char* name : {"avant", "pendant"}) {
        original(name);
        old(name);
    }
    start();
    ASSERT_TRUE(system().rename(to("avant"), at("ailleurs")));
    EXPECT_EQ(add("avant", {.isNew = false}), 0U);
    AtFirstChunk observer([&] { EXPECT_TRUE(system().rename(to("pendant"), at("loin"))); });
    EXPECT_EQ(add("pendant", {.isNew = false, .observer = &observer}), 0U);
    finish();
    EXPECT_THAT(told(), ElementsAre(Pair("avant", 0U), Pair("pendant", 0U)));
    EXPECT_TRUE(holds(to("avant"), "new"));
    EXPECT_TRUE(holds(to("pendant"), "new"));
    EXPECT_THAT(namesInTarget(), ElementsAre("avant", "pendant"));
}

TEST_P(BatchConflictContract, RefusesADirectoryAndAReadOnlyFileUnderTheName) {
    for (const char* name : {"Sous", "a", "neuf", "verrou"}) original(name);
    old("verrou");
    ASSERT_TRUE(files().setAttributes(to("verrou"), attribute::readOnly).ok());
    system().makeDirectory(to("Sous"));
    system().makeDirectory(to("neuf"));
    start();
    EXPECT_EQ(add("Sous", {.isNew = false}), error_number::accessDenied);
    EXPECT_EQ(add("verrou", {.isNew = false}), error_number::accessDenied);
    EXPECT_EQ(add("neuf"), 0U);
    EXPECT_EQ(add("a"), 0U);
    finish();
    EXPECT_THAT(
        told(),
        ElementsAre(Pair("neuf", AnyOf(error_number::accessDenied, error_number::alreadyExists)),
                    Pair("a", 0U)));
    EXPECT_TRUE(entry(to("Sous")).isDirectory());
    EXPECT_TRUE(entry(to("neuf")).isDirectory());
    EXPECT_TRUE(holds(to("verrou"), "old"));
    EXPECT_THAT(namesInTarget(), ElementsAre("Sous", "a", "neuf", "verrou"));
}

TEST_P(BatchConflictContract, GoesOnOrStopsAfterAFailure) {
    for (const char* name : {"a", "b", "c"}) original(name);
    for (const AfterFailure afterFailure : {AfterFailure::stop, AfterFailure::goOn}) {
        const bool stops = afterFailure == AfterFailure::stop;
        start(afterFailure);
        const std::size_t before = told().size();
        AtFirstChunk observer([&] { make("vers\\a", "theirs", oldTime); });
        EXPECT_EQ(add("a", {.observer = &observer}), 0U);
        // A batch that has seen the failure by now need not take any more.
        for (const char* name : {"b", "c"}) {
            EXPECT_THAT(add(name), AnyOf(0U, stops ? error_number::requestAborted : 0U));
        }
        finish();
        ASSERT_GT(told().size(), before);
        EXPECT_THAT(told()[before], Pair("a", error_number::alreadyExists));
        for (std::size_t i = before + 1; i < told().size(); ++i) {
            EXPECT_EQ(told()[i].second, stops ? error_number::requestAborted : 0U);
        }
        EXPECT_EQ(namesInTarget(), stops ? std::vector<std::string>{"a"}
                                         : (std::vector<std::string>{"a", "b", "c"}));
        EXPECT_TRUE(holds(to("a"), "theirs"));
    }
}

TEST_P(BatchConflictContract, CommitsAgainAfterItHasStopped) {
    original("a");
    original("b");
    old("a", "theirs");
    start(AfterFailure::stop);
    EXPECT_EQ(add("a"), 0U);
    finish();
    EXPECT_EQ(add("b"), 0U);
    finish();
    EXPECT_THAT(told(), ElementsAre(Pair("a", error_number::alreadyExists), Pair("b", 0U)));
}

TEST_P(BatchConflictContract, AnotherProcessThatClearsLeftoversTakesNoneOfWhatWaits) {
    for (const char* name : {"a", "b", "c"}) original(name);
    old("b");
    start();
    EXPECT_EQ(add("a"), 0U);
    AtFirstChunk observer([&] { EXPECT_EQ(system().clearLeftoversElsewhere(at("vers")), 0U); });
    EXPECT_EQ(add("b", {.isNew = false, .observer = &observer}), 0U);
    EXPECT_EQ(add("c"), 0U);
    EXPECT_EQ(system().clearLeftoversElsewhere(at("vers")), 0U);
    EXPECT_THAT(listed(at("vers")), Not(Contains(testing::StartsWith(".~"))));
    finish();
    EXPECT_THAT(told(), ElementsAre(Pair("a", 0U), Pair("b", 0U), Pair("c", 0U)));
    for (const char* name : {"a", "b", "c"}) EXPECT_TRUE(holds(to(name), "new"));
    EXPECT_THAT(namesInTarget(), ElementsAre("a", "b", "c"));
}

TEST_P(BatchConflictContract, ClearingLeftoversTakesNoneOfWhatWaits) {
    original("a");
    original("b");
    old("b");
    start();
    AtFirstChunk observer([&] { EXPECT_TRUE(files().removeLeftovers(at("vers")).ok()); });
    EXPECT_EQ(add("a", {.observer = &observer}), 0U);
    EXPECT_EQ(add("b", {.isNew = false}), 0U);
    EXPECT_TRUE(files().removeLeftovers(at("vers")).ok());
    finish();
    EXPECT_THAT(told(), ElementsAre(Pair("a", 0U), Pair("b", 0U)));
    for (const char* name : {"a", "b"}) EXPECT_TRUE(holds(to(name), "new"));
}

TEST_P(BatchConflictContract, LeftoversOfAnotherProcessGoOnceTheBatchHasEnded) {
    original("a");
    start();
    EXPECT_EQ(add("a"), 0U);
    finish();
    endBatch();
    system().killCopyInto(at("vers"));
    EXPECT_EQ(system().clearLeftoversElsewhere(at("vers")), 0U);
    EXPECT_THAT(namesInTarget(), ElementsAre("a"));
}

TEST_P(BatchConflictContract, OntoItselfChangesNothing) {
    const std::string content = patternOf(50'000);
    original("a.bin", content, oldTime);
    start();
    const auto same = open(at("de"));
    // Whether it is told as a failure is the system's affair.
    (void)add(seen("a.bin"), {.isNew = false}, *same, "de");
    EXPECT_TRUE(batch().finish().ok());
    EXPECT_TRUE(holds(from("a.bin"), content));
    EXPECT_EQ(entry(from("a.bin")).times.lastWrite, oldTime);
    EXPECT_THAT(system().names(at("de")), ElementsAre("a.bin"));
}

TEST_P(FullBatchContract, FileThatFindsNoRoomFailsAtOnceAndTheOthersAreCommitted) {
    readFrom(system().secondDrive());
    original("grand", patternOf(system().capacity() + 1));
    original("petit");
    old("grand");
    start();
    EXPECT_EQ(add("petit"), 0U);
    EXPECT_EQ(add("grand", {.isNew = false}), error_number::diskFull);
    finish();
    EXPECT_THAT(told(), ElementsAre(Pair("petit", 0U)));
    EXPECT_TRUE(holds(to("grand"), "old"));
    EXPECT_THAT(namesInTarget(), ElementsAre("grand", "petit"));
}

TEST_P(FullBatchContract, ReplacesFilesForWhichThereIsRoomOneByOne) {
    readFrom(system().secondDrive());
    const auto size = static_cast<std::size_t>(system().capacity() * 2 / 11);
    const std::vector<std::string> names = {"a", "b", "c", "d"};
    for (const std::string& name : names) {
        original(name, name + patternOf(size));
        old(name, "old" + patternOf(size));
    }
    start();
    for (const std::string& name : names) EXPECT_EQ(add(name, {.isNew = false}), 0U) << name;
    finish();
    for (const std::string& name : names) EXPECT_TRUE(holds(to(name), name + patternOf(size)));
    EXPECT_EQ(namesInTarget(), names);
}

}  // namespace
}  // namespace coffrelune
