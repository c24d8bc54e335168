#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "settings/system_mod.h"

namespace coffrelune {

/// One counted error: a Windows error number and the path that it concerns.
struct CopyError {
    std::uint32_t number = 0;
    std::string path;
    int line = 0;  // index of the backup line
};

/// What one line of the run really did.
struct LineTally {
    std::uint64_t files = 0;        // copied
    std::uint64_t bytes = 0;        // of those files
    std::uint64_t filesToCopy = 0;  // found by the analysis, like the next
    std::uint64_t bytesToCopy = 0;
    bool sourceMissing = false;
};

/// The record of one operation, shared by the engine and the operation window: reset by the
/// launcher before the operation and read by it afterwards.
struct RunStatistics {
    bool analysisPass = false;  // count and list only; false: act
    bool deletionWalk = false;  // the walk looks for excess files
    bool askBeforeReplacing = true;
    bool copyGranted = false;
    bool interruptionRequested = false;

    /// Nobody is there to ask: replacements are granted, messages go to the journal.
    bool unattended = false;
    /// Existing files are kept without a question, whatever the line's source is.
    bool keepExisting = false;
    bool copyPassStarted = false;

    // Byte totals are 32-bit floats: beyond 16 MiB a small file may leave them unchanged, which
    // only a percentage ever shows, and the settings and the texts on screen rely on their look.
    float totalBytes = 0;
    float bytesDone = 0;
    float bytesAtBaseline = 0;
    std::int32_t baselineTime = 0;  // whole seconds since midnight

    std::int32_t directoriesRead = 0;
    std::int32_t directoriesCreated = 0;
    std::int32_t filesToCopy = 0;
    std::int32_t filesDeleted = 0;
    std::int32_t errorCount = 0;

    bool lastCopySucceeded = true;
    std::uint32_t lastErrorNumber = 0;  // of the failure that stopped the run; 0: the user did
    std::string sharingPath;            // directory concerned by error 32 or 33

    std::string windowsDirectory;
    std::string lineSourceRoot;   // with a trailing backslash
    ExclusionList exclusions;     // of the current line; in the deletion walk that of the last line
    ExclusionList ownExclusions;  // of the current line, in the deletion walk only

    int currentLine = 0;
    std::vector<LineTally> tallies;  // by line index
    std::vector<CopyError> errors;   // in the order in which they happened

    LineTally& currentTally() { return tallies[static_cast<std::size_t>(currentLine)]; }
};

}  // namespace coffrelune
