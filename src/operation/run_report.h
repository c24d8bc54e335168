#pragma once

#include "operation/lance_operation.h"

namespace coffrelune {

/// How the process ends, for whoever started it from a script.
enum class ExitStatus {
    clean = 0,        // done without error, or nothing to do
    errors = 1,       // finished with errors, or a source was not there
    wrongUse = 2,     // wrong use or settings
    interrupted = 3,  // interrupted, or refused
};

ExitStatus exitStatus(RunEnd end, const RunStatistics& statistics);

/// True when the settings can be read and hold the current configuration; otherwise says why not,
/// with the names that there are: a mistyped name must not pass for a backup.
bool settingsUsable(SystemMod& system);

/// An unattended backup of the current configuration, as "/Auto" starts it: refused without usable
/// settings, its errors are named afterwards.
ExitStatus runUnattended(SystemMod& system, OperationLauncher& launcher);

/// Says why files were kept that might be excess files, then names every error of the run, and
/// every line whose source was not there.
void reportErrors(const SystemMod& system, const RunStatistics& statistics);

/// Names every line whose source was not there.
void reportMissingSources(const SystemMod& system, const RunStatistics& statistics);

}  // namespace coffrelune
