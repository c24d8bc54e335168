#pragma once

#include "operation/lance_operation.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// Records the end of a run of the current kind: date, duration and, when it was not clean, the
/// error count, each under its own key of the current configuration.
void StoreResult(SystemMod& system, OperationHost& host, bool clean);

/// What the main window says of the last runs of one kind. A line that is empty is not shown, nor
/// are its picture and, for the problem line, the count and the link.
struct ResultSummary {
    std::string cleanLine;
    std::string problemLine;
    std::string countLine;
    std::string cleanToolTip;  // the duration of each run
    std::string problemToolTip;
    std::string linkText;  // opens the error list
};

/// A clean run after one with problems hides the latter. A stored date that is none counts as no
/// run, a negative count as 0; what is stored stays as it is.
ResultSummary summarize(const SystemMod& system, OperationKind kind);

/// Remembers that the run which has just ended was a backup that did all that it was asked for: one
/// that found nothing to copy too, which is no result to be shown.
void noteGoodBackup(SystemMod& system, const RunStatistics& statistics, RunEnd end);

/// How long ago the last good backup ended.
struct BackupAge {
    std::string date;  // "dd/mm/yyyy hh:nn:ss"; empty when there has been none
    std::int64_t days = 0;
    bool tooOld = false;
};

/// `days`: what is older, or not known, is too old.
BackupAge ageOfBackup(const SystemMod& system, int days);

/// What the user should know of it: empty when the last good backup is younger than `days`, or
/// the configuration has never run.
std::string staleBackup(const SystemMod& system, int days);

}  // namespace coffrelune
