#include "console/json_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "platform/memory/memory_platform.h"

namespace coffrelune::console {
namespace {

using nlohmann::json;

class JsonReport : public testing::Test {
  protected:
    JsonReport() {
        system.configurationName = "Été";
        system.duration = "00:01:23";
        system.lines[0].source = R"(C:\Docs)";
        system.lines[0].destination = R"(F:\Save)";
        system.lines[2].source = R"(D:\Photos)";
        system.lines[2].destination = R"(G:\Save)";
        system.lines[0].selected = 1;
        system.lines[2].selected = 1;
        statistics.tallies.resize(6);
        statistics.tallies[0].files = 2;
        statistics.tallies[0].bytes = 8;
        statistics.tallies[2].files = 1;
        statistics.tallies[2].bytes = 5'000'000'000;
        statistics.tallies[2].sourceMissing = true;
    }
    json report(RunEnd end) { return json::parse(runAsJson(system, statistics, end)); }

    MemoryPlatform memory;
    Platform platform = memory.platform();
    SystemMod system{platform, {"", R"(C:\Coffrelune)", 3, 5}};
    SharedHost host;
    RunStatistics statistics;
};

TEST_F(JsonReport, TellsTheWholeRun) {
    statistics.errors = {{5, R"(D:\Photos\c.jpg)", 2}};
    statistics.errorCount = 1;
    EXPECT_EQ(report(RunEnd::finished), json::parse(R"JSON({
        "kind": "sauvegarde", "configuration": "Été", "duration": "00:01:23",
        "files": 3, "bytes": 5000000008, "outcome": "errors", "deleted": 0, "kept": [], "dates": [],
        "errors": [{"number": 5, "path": "D:\\Photos\\c.jpg"}],
        "lines": [
          {"line": 1, "source": "C:\\Docs", "destination": "F:\\Save", "sourceMissing": false,
           "files": 2, "bytes": 8, "errors": []},
          {"line": 3, "source": "D:\\Photos", "destination": "G:\\Save", "sourceMissing": true,
           "files": 1, "bytes": 5000000000,
           "errors": [{"number": 5, "path": "D:\\Photos\\c.jpg"}]}]})JSON"));
}

TEST_F(JsonReport, LeavesOutTheLinesThatTookNoPart) {
    system.lines[0].selected = 0;
    system.lines[2].destination.clear();
    const json empty = report(RunEnd::nothing);
    EXPECT_TRUE(empty["lines"].empty());
    EXPECT_EQ(empty["files"], 0);
    EXPECT_EQ(empty["bytes"], 0);
}

TEST_F(JsonReport, NamesTheKind) {
    system.operationKind = OperationKind::restore;
    EXPECT_EQ(report(RunEnd::nothing)["kind"], "restauration");
}

TEST_F(JsonReport, OfAComparisonTellsWhatWouldBeCopied) {
    system.operationKind = OperationKind::comparison;
    statistics.tallies[2].sourceMissing = false;
    statistics.tallies[0].filesToCopy = 3;
    statistics.tallies[0].bytesToCopy = 1500;
    statistics.errorCount = 3;
    host.comparisonList().append("***** Sauvegarde n°1");
    host.comparisonSummary().setCaption("3 fichier(s) à copier");
    const json found = json::parse(comparisonAsJson(system, host, statistics, RunEnd::finished));
    EXPECT_EQ(found["kind"], "comparaison");
    EXPECT_EQ(found["files"], 3);
    EXPECT_EQ(found["bytes"], 1500);
    EXPECT_EQ(found["direction"], "source");
    EXPECT_EQ(found["summary"], "3 fichier(s) à copier");
    EXPECT_EQ(found["list"], json::parse(R"(["***** Sauvegarde n°1"])"));
    EXPECT_EQ(found["outcome"], "differences");
}

TEST_F(JsonReport, OfAJournalHoldsItsLines) {
    TextLog lines;
    lines.append("un\r\ndeux");
    const json journal = json::parse(journalAsJson(system, lines));
    EXPECT_EQ(journal["configuration"], "Été");
    EXPECT_EQ(journal["lines"], json::parse(R"(["un", "deux"])"));
}

TEST_F(JsonReport, OfTheResultsHoldsBothRunsOfEachKind) {
    system.lastResult(OperationKind::restore) = {"03/02/2025 04:05:06", "00:00:01",
                                                 "04/02/2025 04:05:06", "00:00:02", 7};
    const json results = json::parse(resultsAsJson(system, {}));
    EXPECT_EQ(results["restauration"], json::parse(R"({
        "clean": {"date": "03/02/2025 04:05:06", "duration": "00:00:01"},
        "problems": {"date": "04/02/2025 04:05:06", "duration": "00:00:02", "count": 7}})"));
    EXPECT_EQ(results["sauvegarde"]["clean"]["date"], "");
}

TEST_F(JsonReport, NamesTheOutcome) {
    statistics.tallies[2].sourceMissing = false;
    EXPECT_EQ(report(RunEnd::finished)["outcome"], "clean");
    EXPECT_EQ(report(RunEnd::nothing)["outcome"], "nothing");
    EXPECT_EQ(report(RunEnd::interrupted)["outcome"], "interrupted");
    EXPECT_EQ(report(RunEnd::cancelled)["outcome"], "interrupted");
    statistics.errorCount = 1;
    EXPECT_EQ(report(RunEnd::nothing)["outcome"], "errors");
    EXPECT_EQ(report(RunEnd::interrupted)["outcome"], "interrupted");
}

TEST_F(JsonReport, StaysValidWhateverAFileIsCalled) {
    statistics.errors = {{5, "C:\\Docs\\\xFF\"\n.txt", 0}};
    EXPECT_EQ(report(RunEnd::finished)["errors"][0]["path"], "C:\\Docs\\\uFFFD\"\n.txt");
}

}  // namespace
}  // namespace coffrelune::console
