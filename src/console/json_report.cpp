#include "console/json_report.h"

#include <nlohmann/json.hpp>

#include "operation/line_texts.h"
#include "operation/results.h"
#include "operation/run_report.h"

namespace coffrelune::console {
namespace {

using Json = nlohmann::ordered_json;

const char* outcomeName(RunEnd end, const RunStatistics& statistics) {
    switch (exitStatus(end, statistics)) {
        case ExitStatus::interrupted:
            return "interrupted";
        case ExitStatus::errors:
            return "errors";
        default:
            return end == RunEnd::nothing ? "nothing" : "clean";
    }
}

std::string dump(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace);
}

Json asJson(const CopyError& error) {
    return {{"number", error.number}, {"path", error.path}};
}

// `copied` chooses between what the run copied and what a comparison found to copy.
Json lineReport(const SystemMod& system, const RunStatistics& statistics, int line, bool copied) {
    const LineTally& tally = statistics.tallies[static_cast<std::size_t>(line)];
    Json report;
    report["line"] = line + 1;
    const LineTexts texts = lineTexts(system, line);
    report["source"] = texts.source;
    report["destination"] = texts.destination;
    report["sourceMissing"] = tally.sourceMissing;
    report["files"] = copied ? tally.files : tally.filesToCopy;
    report["bytes"] = copied ? tally.bytes : tally.bytesToCopy;
    report["errors"] = Json::array();
    for (const CopyError& error : statistics.errors) {
        if (error.line == line) report["errors"].push_back(asJson(error));
    }
    return report;
}

// Everything that the three kinds have in common, in reading order.
Json runReport(const SystemMod& system, const RunStatistics& statistics) {
    const bool copied = system.operationKind != OperationKind::comparison;
    Json report;
    report["kind"] = wordsOf(system.operationKind).word;
    report["configuration"] = system.configurationName;
    report["lines"] = Json::array();
    std::uint64_t files = 0;
    std::uint64_t bytes = 0;
    for (int line = 0; line <= system.maximumIndex; ++line) {
        if (system.lineAt(line).selected == 0 || !system.lineAt(line).filled()) continue;
        report["lines"].push_back(lineReport(system, statistics, line, copied));
        files += report["lines"].back()["files"].get<std::uint64_t>();
        bytes += report["lines"].back()["bytes"].get<std::uint64_t>();
    }
    report["files"] = files;
    report["bytes"] = bytes;
    report["errors"] = Json::array();
    for (const CopyError& error : statistics.errors) report["errors"].push_back(asJson(error));
    report["duration"] = system.duration;
    return report;
}

}  // namespace

std::string runAsJson(const SystemMod& system, const RunStatistics& statistics, RunEnd end) {
    Json report = runReport(system, statistics);
    report["deleted"] = statistics.filesRemoved;
    report["kept"] = statistics.keptReasons;
    report["dates"] = statistics.dateReasons;
    report["outcome"] = outcomeName(end, statistics);
    return dump(report);
}

namespace {

Json comparisonReport(const SystemMod& system, OperationHost& host, const RunStatistics& statistics,
                      RunEnd end) {
    Json report = runReport(system, statistics);
    report["direction"] = system.comparisonReversed ? "destination" : "source";
    report["summary"] = host.comparisonSummary().caption();
    report["list"] = Json::array();
    for (std::size_t i = 0; i < host.comparisonList().lineCount(); ++i) {
        report["list"].push_back(std::string(host.comparisonList().line(i)));
    }
    const std::string outcome = outcomeName(end, statistics);
    const bool differences = outcome == "errors" && statistics.errors.empty();
    report["outcome"] = differences ? "differences" : outcome;
    return report;
}

}  // namespace

std::string comparisonAsJson(const SystemMod& system, OperationHost& host,
                             const RunStatistics& statistics, RunEnd end) {
    return dump(comparisonReport(system, host, statistics, end));
}

std::string verificationAsJson(const SystemMod& system, OperationHost& host,
                               const RunStatistics& statistics, RunEnd end) {
    Json report = comparisonReport(system, host, statistics, end);
    report["kind"] = "verification";
    std::uint64_t files = 0;
    std::uint64_t bytes = 0;
    for (const LineTally& tally : statistics.tallies) {
        files += tally.files;
        bytes += tally.bytes;
    }
    report["filesRead"] = files;
    report["bytesRead"] = bytes;
    return dump(report);
}

std::string progressAsJson(const RunProgress& progress) {
    Json line;
    line["progress"] = nullptr;
    if (progress.percent >= 0) line["progress"] = progress.percent;
    line["phase"] = progress.phase;
    line["detail"] = progress.detail;
    line["remainingTime"] = progress.remainingTime;
    line["rate"] = progress.rate;
    return line.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string journalAsJson(const SystemMod& system, const TextLog& lines) {
    Json report;
    report["kind"] = wordsOf(system.operationKind).word;
    report["configuration"] = system.configurationName;
    report["lines"] = Json::array();
    for (std::size_t i = 0; i < lines.lineCount(); ++i) {
        report["lines"].push_back(std::string(lines.line(i)));
    }
    return dump(report);
}

std::string resultsAsJson(const SystemMod& system, std::optional<int> alertDays) {
    Json report;
    report["configuration"] = system.configurationName;
    for (const OperationKind kind : allKinds) {
        const LastResult& result = system.lastResults[static_cast<std::size_t>(kind)];
        report[wordsOf(kind).word] = {
            {"clean", {{"date", result.cleanDate}, {"duration", result.cleanDuration}}},
            {"problems",
             {{"date", result.errorDate},
              {"duration", result.errorDuration},
              {"count", result.errorCount}}}};
    }
    const BackupAge age = ageOfBackup(system, alertDays.value_or(0));
    report["lastGoodBackup"] = age.date;
    report["daysSince"] = nullptr;
    if (!age.date.empty()) report["daysSince"] = age.days;
    if (alertDays) report["alert"] = age.tooOld;
    return dump(report);
}

}  // namespace coffrelune::console
