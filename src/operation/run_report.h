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

/// True when the settings can be read, or are none yet; otherwise says why not.
bool settingsReadable(SystemMod& system);

/// True when the settings can be read and hold the current configuration; otherwise says why not,
/// with the names that there are: a mistyped name must not pass for a backup.
bool settingsUsable(SystemMod& system);

/// An unattended backup of the current configuration, as "/Auto" starts it: refused without usable
/// settings, its errors are named afterwards.
ExitStatus runUnattended(SystemMod& system, OperationLauncher& launcher);

/// Says that a run was stopped before it copied anything: its own message tells only that nothing
/// was copied. A stop with a cause has told that.
void reportInterruption(const SystemMod& system, const OperationLauncher& launcher, RunEnd end);

/// What the desktop tells of a run that nobody watched.
struct RunNotice {
    std::string title;
    std::string text;
};
RunNotice noticeOf(const SystemMod& system, ExitStatus status, const RunStatistics& statistics);

/// Unless "Notification" is 0.
bool wantsNotices(SystemMod& system);

/// Says why files were kept that might be excess files, then names every error of the run, and
/// every line whose source was not there.
void reportErrors(const SystemMod& system, const RunStatistics& statistics);

/// The folders that Windows has made for pictures, music and videos come and go: on a screen nobody
/// is told that one of them was not there.
enum class MissingSources { all, unexpected };

/// Names every line whose source was not there.
void reportMissingSources(const SystemMod& system, const RunStatistics& statistics,
                          MissingSources which);

}  // namespace coffrelune
