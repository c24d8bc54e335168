#pragma once

#include <optional>
#include <string>

#include "operation/lance_operation.h"
#include "views/terminal/terminal_windows.h"

namespace coffrelune::console {

// Results as one JSON object each. A file name may hold bytes that are no UTF-8, which JSON cannot:
// they become U+FFFD.

/// A backup or a restore: kind, configuration, lines (source, destination, files, bytes, errors),
/// totals, duration "hh:nn:ss" and outcome ("clean", "nothing", "errors", "interrupted").
std::string runAsJson(const SystemMod& system, const RunStatistics& statistics, RunEnd end);

/// A comparison: as above, files and bytes being what would be copied, with the list of the files
/// and its summary; outcome "clean", "differences", "errors" or "interrupted".
std::string comparisonAsJson(const SystemMod& system, OperationHost& host,
                             const RunStatistics& statistics, RunEnd end);

/// A verification: as a comparison, files being those that differ, with filesRead and bytesRead.
std::string verificationAsJson(const SystemMod& system, OperationHost& host,
                               const RunStatistics& statistics, RunEnd end);

/// One line: progress (percent, or null while nobody knows), phase, detail, remainingTime, rate.
std::string progressAsJson(const RunProgress& progress);

/// The lines of an error list, with kind and configuration.
std::string journalAsJson(const SystemMod& system, const TextLog& lines);

/// The last clean run and the last run with problems of each kind; dates as stored.
/// With `alertDays` also whether the last good backup is older.
std::string resultsAsJson(const SystemMod& system, std::optional<int> alertDays);

}  // namespace coffrelune::console
