// Every call of the disk fails once, in each of three runs: nothing may be damaged, and nothing may
// be missed in silence.
#include <map>
#include <optional>

#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

enum class Scenario { newTree, overwrite, readOnly };

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
    for (const std::string& path : files) {
        disk.file("C:\\Docs\\" + path, newContent(path), newTime,
                  path == "b" ? attribute::readOnly : attribute::normal);
        if (scenario == Scenario::newTree) continue;
        disk.file("F:\\Docs\\" + path, oldContent(path), oldTime,
                  scenario == Scenario::readOnly ? attribute::readOnly : attribute::normal);
    }
    disk.file("F:\\Docs\\Sub\\kept", "of the user", oldTime);
    if (scenario == Scenario::overwrite) disk.leftover("F:\\Docs\\Sub");
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

void configure(EngineBench& bench, bool continueOnError) {
    bench.system.options.ContinueOnError = continueOnError ? -1 : 0;
    bench.system.options.DelReadOnly = -1;
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
        if (!content) {
            EXPECT_EQ(scenario, Scenario::newTree) << copy << " is gone";
            continue;
        }
        const bool isNew = *content == newContent(path);
        EXPECT_TRUE(isNew || (scenario != Scenario::newTree && *content == oldContent(path)))
            << copy << " holds " << *content;
        EXPECT_EQ(disk.lastWrite(copy), isNew ? newTime : oldTime) << copy;
    }
    EXPECT_EQ(disk.content("F:\\Docs\\Sub\\kept"), "of the user");
    EXPECT_EQ(disk.lastWrite("F:\\Docs\\Sub\\kept"), oldTime);
}

/// The next run, undisturbed, on the same disk: brings what is missing.
void expectNextRunHeals(EngineBench& bench) {
    bench.faulty.restart();
    RunStatistics statistics;
    statistics.tallies.resize(1);
    statistics.askBeforeReplacing = false;
    const std::size_t missing = missingCopies(bench.disk()).size();
    CopieMod engine(bench.system, statistics, bench.window);
    const LineRoots roots = lineRoots("C:\\Docs", "F:\\", Layout::normal);
    engine.walkLine(roots, true);
    EXPECT_EQ(statistics.totalBytes > 0, missing > 0);
    engine.walkLine(roots, false);
    EXPECT_EQ(statistics.tallies[0].files, missing);
    EXPECT_EQ(statistics.errorCount, 0);
    EXPECT_TRUE(missingCopies(bench.disk()).empty());
}

using Sweep = std::tuple<Scenario, std::uint32_t, bool>;

/// Fails one call of a run; false when the run has no call of that number.
bool failOne(std::uint64_t number, const Sweep& sweep) {
    const auto [scenario, code, continueOnError] = sweep;
    EngineBench bench;
    configure(bench, continueOnError);
    prepare(bench.disk(), scenario);
    const std::string source = stateOf(bench.disk());
    bench.faulty.failCall(number, code);
    bench.run("C:\\Docs", "F:\\");
    if (bench.faulty.failureCount() == 0) return false;

    SCOPED_TRACE(std::to_string(number) + ": " + bench.faulty.calls()[number - 1]);
    EXPECT_EQ(stateOf(bench.disk()), source) << "the source has changed";
    expectNothingDamaged(bench.disk(), scenario);
    if (!missingCopies(bench.disk()).empty()) {
        EXPECT_TRUE(bench.statistics.errorCount > 0 || bench.statistics.interruptionRequested)
            << "missed in silence";
    }
    expectNextRunHeals(bench);
    return true;
}

class FaultSweep : public testing::TestWithParam<Sweep> {};

TEST_P(FaultSweep, DamagesNothingAndMissesNothingInSilence) {
    std::uint64_t number = 1;
    while (failOne(number, GetParam())) ++number;
    // The last call that could fail was far beyond the first listing.
    EXPECT_GT(number, 30U);
}

TEST_P(FaultSweep, CompletesUndisturbed) {
    const auto [scenario, code, continueOnError] = GetParam();
    EngineBench bench;
    configure(bench, continueOnError);
    prepare(bench.disk(), scenario);
    bench.run("C:\\Docs", "F:\\");
    EXPECT_TRUE(missingCopies(bench.disk()).empty());
    EXPECT_EQ(bench.statistics.errorCount, 0);
    expectNothingDamaged(bench.disk(), scenario);
}

std::string sweepName(const testing::TestParamInfo<Sweep>& info) {
    const char* const names[] = {"NewTree", "Overwrite", "ReadOnly"};
    return std::string(names[static_cast<int>(std::get<0>(info.param))]) + "With" +
           std::to_string(std::get<1>(info.param)) +
           (std::get<2>(info.param) ? "GoingOn" : "Stopping");
}

INSTANTIATE_TEST_SUITE_P(
    EveryCall, FaultSweep,
    testing::Combine(testing::Values(Scenario::newTree, Scenario::overwrite, Scenario::readOnly),
                     testing::Values(error_number::accessDenied, error_number::ioDevice),
                     testing::Bool()),
    sweepName);

}  // namespace
}  // namespace coffrelune
