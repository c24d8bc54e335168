// Every call of the disk fails once, in each of several runs: nothing may be damaged, nothing may
// be missed in silence, and nothing may be deleted that the other tree still has.
#include <map>
#include <optional>

#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

enum class Scenario { newTree, overwrite, readOnly, excess };

const std::uint64_t oldTime = fileTimeAt(2023, 1, 1);
const std::uint64_t newTime = fileTimeAt(2024, 1, 1) + 1234567;

/// Paths below the source and the copy, and the two contents that a file may have.
const std::vector<std::string> files = {"a", "b", "Sub\\c", "Sub\\Deep\\d", "Z\\e"};

std::string newContent(const std::string& path) {
    return "new content of " + path;
}
std::string oldContent(const std::string& path) {
    return "old " + path;
}

void prepare(MemoryDisk& disk, Scenario scenario) {
    disk.directory("H:\\Coffrelune");  // for the settings
    for (const std::string& path : files) {
        disk.file("C:\\Docs\\" + path, newContent(path), newTime,
                  path == "b" ? attribute::readOnly : attribute::normal);
        if (scenario == Scenario::newTree) continue;
        disk.file("F:\\Docs\\" + path, oldContent(path), oldTime,
                  scenario == Scenario::readOnly ? attribute::readOnly : attribute::normal);
    }
    disk.file("F:\\Docs\\Sub\\kept", "of the user", oldTime);
    if (scenario == Scenario::overwrite) disk.leftover("F:\\Docs\\Sub");
    if (scenario != Scenario::excess) return;
    disk.file("F:\\Docs\\Gone\\g", "gone", oldTime);
    disk.file("F:\\Docs\\A", "spelled otherwise", oldTime);
    disk.remove("F:\\Docs\\Z");
    disk.file("F:\\Docs\\Z", "a directory by now", oldTime);
}

/// Everything about the source, as text.
std::string stateOf(const MemoryDisk& disk) {
    std::string state;
    for (const std::string& path : disk.list("C:\\")) {
        state += path + '|' + disk.content(path).value_or("directory") + '|' +
                 std::to_string(disk.lastWrite(path)) + '|' +
                 std::to_string(disk.attributes(path)) + '\n';
    }
    return state;
}

void configure(EngineBench& bench, bool continueOnError, Scenario scenario) {
    bench.system.options.ContinueOnError = continueOnError ? -1 : 0;
    bench.system.options.DelReadOnly = -1;
    bench.system.options.SynchroCopie = scenario == Scenario::excess ? -1 : 0;
}

std::vector<std::string> missingCopies(const MemoryDisk& disk) {
    std::vector<std::string> missing;
    for (const std::string& path : files) {
        if (disk.content("F:\\Docs\\" + path) != newContent(path)) missing.push_back(path);
    }
    return missing;
}

/// A file under a final name is whole: the old content with the old time or the new with the new.
void expectNothingDamaged(const MemoryDisk& disk, Scenario scenario) {
    for (const std::string& path : files) {
        const std::string copy = "F:\\Docs\\" + path;
        const auto content = disk.content(copy);
        const bool mayLack =
            scenario == Scenario::newTree || (scenario == Scenario::excess && path == "Z\\e");
        if (!content) {
            EXPECT_TRUE(mayLack) << copy << " is gone";
            continue;
        }
        const bool isNew = *content == newContent(path);
        EXPECT_TRUE(isNew || (scenario != Scenario::newTree && *content == oldContent(path)))
            << copy << " holds " << *content;
        EXPECT_EQ(disk.lastWrite(copy), isNew ? newTime : oldTime) << copy;
    }
    if (scenario == Scenario::excess) return;
    EXPECT_EQ(disk.content("F:\\Docs\\Sub\\kept"), "of the user");
    EXPECT_EQ(disk.lastWrite("F:\\Docs\\Sub\\kept"), oldTime);
}

/// A restore of a copy that lacks something takes nothing from the original.
void expectRestoreDeletesNothing(EngineBench& bench) {
    bench.startAgain();
    bench.system.options.SynchroCopie = -1;
    bench.system.options.ContinueOnError = -1;
    bench.restore("C:\\Docs", "F:\\");
    for (const std::string& path : files) {
        EXPECT_TRUE(bench.disk().exists("C:\\Docs\\" + path)) << path << " was deleted";
    }
    EXPECT_EQ(bench.statistics.filesRemoved, 0);
}

/// The next run, undisturbed, on the same disk: brings what is missing.
void expectNextRunHeals(EngineBench& bench) {
    bench.startAgain();
    const std::size_t missing = missingCopies(bench.disk()).size();
    EXPECT_TRUE(bench.run("C:\\Docs", "F:\\"));
    EXPECT_EQ(bench.statistics.tallies[0].files, missing);
    EXPECT_EQ(bench.statistics.errorCount, 0);
    EXPECT_TRUE(missingCopies(bench.disk()).empty());
    EXPECT_TRUE(bench.certificate("F:\\Docs").complete);
}

using Sweep = std::tuple<Scenario, std::uint32_t, bool>;

/// Fails one call of a run; false when the run has no call of that number.
bool failOne(std::uint64_t number, const Sweep& sweep, bool thenRestore) {
    const auto [scenario, code, continueOnError] = sweep;
    EngineBench bench;
    configure(bench, continueOnError, scenario);
    prepare(bench.disk(), scenario);
    const std::string source = stateOf(bench.disk());
    bench.faulty.failCall(number, code);
    const bool settled = bench.run("C:\\Docs", "F:\\");
    if (bench.faulty.failureCount() == 0) return false;

    SCOPED_TRACE(std::to_string(number) + ": " + bench.faulty.calls()[number - 1]);
    EXPECT_EQ(stateOf(bench.disk()), source) << "the source has changed";
    expectNothingDamaged(bench.disk(), scenario);
    if (!missingCopies(bench.disk()).empty()) {
        EXPECT_FALSE(settled);
        EXPECT_TRUE(bench.statistics.errorCount > 0 || bench.control.interruptionRequested)
            << "missed in silence";
        for (const auto& [name, certificate] : bench.certificates("F:\\Docs")) {
            EXPECT_FALSE(certificate.complete) << "says more than it holds";
        }
    }
    if (thenRestore) {
        expectRestoreDeletesNothing(bench);
    } else {
        expectNextRunHeals(bench);
    }
    return true;
}

class FaultSweep : public testing::TestWithParam<Sweep> {};

TEST_P(FaultSweep, DamagesNothingAndMissesNothingInSilence) {
    std::uint64_t number = 1;
    while (failOne(number, GetParam(), false)) ++number;
    // The last call that could fail was far beyond the first listing.
    EXPECT_GT(number, 60U);
}

TEST_P(FaultSweep, LeavesNoCopyByWhichARestoreWouldDelete) {
    std::uint64_t number = 1;
    while (failOne(number, GetParam(), true)) ++number;
    EXPECT_GT(number, 60U);
}

TEST_P(FaultSweep, CompletesUndisturbed) {
    const auto [scenario, code, continueOnError] = GetParam();
    EngineBench bench;
    configure(bench, continueOnError, scenario);
    prepare(bench.disk(), scenario);
    EXPECT_TRUE(bench.run("C:\\Docs", "F:\\"));
    EXPECT_TRUE(missingCopies(bench.disk()).empty());
    EXPECT_EQ(bench.statistics.errorCount, 0);
    EXPECT_EQ(bench.statistics.filesRemoved, scenario == Scenario::excess ? 4 : 0);
    expectNothingDamaged(bench.disk(), scenario);
    for (const char* call :
         {"hold", "claim", "flush", "ownFiles", "matchDirectory", "writeWhole"}) {
        EXPECT_THAT(bench.faulty.calls(), testing::Contains(testing::StartsWith(call)));
    }
}

std::string nameOf(std::uint32_t code, bool continueOnError) {
    return "With" + std::to_string(code) + (continueOnError ? "GoingOn" : "Stopping");
}

std::string sweepName(const testing::TestParamInfo<Sweep>& info) {
    const char* const names[] = {"NewTree", "Overwrite", "ReadOnly", "Excess"};
    return names[static_cast<int>(std::get<0>(info.param))] +
           nameOf(std::get<1>(info.param), std::get<2>(info.param));
}

INSTANTIATE_TEST_SUITE_P(EveryCall, FaultSweep,
                         testing::Combine(testing::Values(Scenario::newTree, Scenario::overwrite,
                                                          Scenario::readOnly, Scenario::excess),
                                          testing::Values(error_number::accessDenied,
                                                          error_number::ioDevice),
                                          testing::Bool()),
                         sweepName);

// ---- a deletion on volumes that spell names in two ways

// F: folds case and lists the copies under other names than the originals have.
bool failOneFolded(std::uint64_t number, std::uint32_t code) {
    EngineBench bench;
    bench.disk().volume("F:\\").foldsCase = true;
    prepare(bench.disk(), Scenario::newTree);
    for (const char* name : {"PLAN", "AUTRE", "DIX"}) {
        bench.disk().file(std::string("F:\\Docs\\") + name, "a copy", oldTime);
    }
    for (const char* name : {"Plan", "Autre", "Dix"}) {
        bench.disk().file(std::string("C:\\Docs\\") + name, "an original", oldTime);
    }
    configure(bench, true, Scenario::excess);
    bench.faulty.failCall(number, code);
    bench.run("C:\\Docs", "F:\\");
    if (bench.faulty.failureCount() == 0) return false;
    SCOPED_TRACE(std::to_string(number) + ": " + bench.faulty.calls()[number - 1]);
    for (const std::string& line : bench.window.journal) {
        EXPECT_TRUE(!line.starts_with("Effacé : ") || line == "Effacé : F:\\Docs\\Sub\\kept")
            << line;
    }
    return true;
}

TEST(FoldedFaultSweep, DeletesNoCopyForItsSpelling) {
    for (const std::uint32_t code : {error_number::accessDenied, error_number::ioDevice}) {
        std::uint64_t number = 1;
        while (failOneFolded(number, code)) ++number;
        EXPECT_GT(number, 60U);
    }
}

// ---- a restore

// The original has lost a file and a directory, and has files that the copy does not have: one made
// after the backup, one that the backup left out, one below a mount point.
void prepareRestore(EngineBench& bench) {
    prepare(bench.disk(), Scenario::newTree);
    bench.disk().file("C:\\Docs\\Tmp\\t", "left out");
    bench.disk().directory("C:\\Docs\\Mnt");
    bench.disk().setMountPoint("C:\\Docs\\Mnt");
    bench.exclusions = {ExclusionMode::listed, {"\\Tmp"}};
    bench.system.options.SynchroCopie = -1;
    ASSERT_TRUE(bench.run("C:\\Docs", "F:\\"));
    bench.exclusions = {};
    bench.disk().setMountPoint("C:\\Docs\\Mnt", false);
    bench.disk().file("C:\\Docs\\Mnt\\m", "behind the mount");
    bench.disk().file("C:\\Docs\\later", "made later");
    bench.disk().remove("C:\\Docs\\Sub");
    bench.disk().remove("C:\\Docs\\a");
    bench.startAgain();
}

void expectRestoreKeeps(EngineBench& bench, const std::vector<std::string>& before) {
    for (const std::string& path : files) {
        EXPECT_TRUE(bench.disk().exists("F:\\Docs\\" + path)) << path << " left the copy";
        const std::string original = "C:\\Docs\\" + path;
        if (std::count(before.begin(), before.end(), original) == 0) continue;
        EXPECT_EQ(bench.disk().content(original), newContent(path));
    }
    EXPECT_EQ(bench.disk().content("C:\\Docs\\Tmp\\t"), "left out");
    EXPECT_EQ(bench.disk().content("C:\\Docs\\Mnt\\m"), "behind the mount");
}

// A backup after a restore that changed something and did not bring everything back must not take
// the missing files for deleted ones.
bool failOneRestore(std::uint64_t number, std::uint32_t code, bool continueOnError) {
    EngineBench bench;
    prepareRestore(bench);
    bench.system.options.ContinueOnError = continueOnError ? -1 : 0;
    const std::vector<std::string> before = bench.list("C:\\");
    bench.faulty.failCall(number, code);
    bench.restore("C:\\Docs", "F:\\");
    if (bench.faulty.failureCount() == 0) return false;
    SCOPED_TRACE(std::to_string(number) + ": " + bench.faulty.calls()[number - 1]);
    expectRestoreKeeps(bench, before);
    if (bench.list("C:\\") == before) return true;
    bench.startAgain();
    bench.system.options.ContinueOnError = -1;
    bench.run("C:\\Docs", "F:\\");
    expectRestoreKeeps(bench, before);
    return true;
}

using RestoreSweep = std::tuple<std::uint32_t, bool>;

class RestoreFaultSweep : public testing::TestWithParam<RestoreSweep> {};

TEST_P(RestoreFaultSweep, LosesNothingThatEitherTreeStillHas) {
    const auto [code, continueOnError] = GetParam();
    std::uint64_t number = 1;
    while (failOneRestore(number, code, continueOnError)) ++number;
    EXPECT_GT(number, 100U);
}

TEST(UndisturbedRestore, BringsEverythingBackAndDeletesWhatCameLater) {
    EngineBench bench;
    prepareRestore(bench);
    EXPECT_TRUE(bench.restore("C:\\Docs", "F:\\"));
    expectRestoreKeeps(bench, bench.list("C:\\"));
    for (const std::string& path : files) EXPECT_TRUE(bench.disk().exists("C:\\Docs\\" + path));
    EXPECT_FALSE(bench.disk().exists("C:\\Docs\\later"));
    EXPECT_EQ(bench.statistics.filesRemoved, 1);
    EXPECT_EQ(bench.statistics.errorCount, 0);
    EXPECT_EQ(bench.restoreMarks("C:\\Docs"), 0U);
}

std::string restoreSweepName(const testing::TestParamInfo<RestoreSweep>& info) {
    return nameOf(std::get<0>(info.param), std::get<1>(info.param));
}

INSTANTIATE_TEST_SUITE_P(EveryCall, RestoreFaultSweep,
                         testing::Combine(testing::Values(error_number::accessDenied,
                                                          error_number::ioDevice),
                                          testing::Bool()),
                         restoreSweepName);

}  // namespace
}  // namespace coffrelune
