#pragma once

#include "operation/operation.h"
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

}  // namespace coffrelune
