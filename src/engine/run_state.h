#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/run_display.h"
#include "engine/run_record.h"
#include "platform/content_reader.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// The passes of a run over its lines, in this order. A comparison is an analysis alone.
enum class Pass {
    tree,      // makes the directories
    deletion,  // takes excess files out of the written tree
    analysis,  // counts and lists, changes nothing
    copy,
};

struct HashWork;

/// One counted error: a Windows error number and the path that it concerns.
struct CopyError {
    std::uint32_t number = 0;
    std::string path;
    int line = 0;  // index of the backup line
};

/// What one line of the run really did.
struct LineTally {
    std::uint64_t files = 0;        // copied, or read by a comparison of contents
    std::uint64_t bytes = 0;        // of those files
    std::uint64_t filesToCopy = 0;  // found by the analysis, like the next
    std::uint64_t bytesToCopy = 0;
    bool sourceMissing = false;
    bool destinationMissing = false;
    bool incomplete = false;  // something of it could not be read or written
};

/// How the run was asked for; nothing changes it.
struct RunSwitches {
    /// Nobody is there to ask: replacements are granted, messages go to the journal.
    bool unattended = false;
    /// Existing files are kept without a question, whatever the line's source is.
    bool keepExisting = false;
    /// The user says that the originals are the right ones: see LineTrees::accept.
    bool acceptOriginal = false;
    /// A comparison reads with this what the files hold, and their dates decide nothing.
    ContentReader* contents = nullptr;
    /// With `contents`: copies alone are read, for a list of what they hold.
    HashWork* hashes = nullptr;
    /// Told of every file; null when nobody wants to know.
    RunRecord* record = nullptr;
};

/// What bids the run to stop, or to ask; set by the user and by errors while it goes on.
struct RunControl {
    bool interruptionRequested = false;
    bool askBeforeReplacing = true;
    std::uint32_t lastErrorNumber = 0;  // of the failure that stopped the run; 0: the user did
    std::string sharingPath;            // directory concerned by error 32 or 33
};

/// The record of one operation, read by the launcher when it is over.
struct RunStatistics {
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
    std::int32_t filesDeleted = 0;  // as shown: those that the copy pass replaces count too
    std::int32_t filesRemoved = 0;  // really gone
    std::int32_t errorCount = 0;

    std::vector<LineTally> tallies;  // by line index
    std::vector<CopyError> errors;   // in the order in which they happened
    /// A tree kept its excess files though the user could say that all is well.
    bool originalInDoubt = false;
    std::vector<std::string> keptReasons;  // why trees kept their excess files, for the user
    /// Which volumes do not hold the times of files, and what to do about it.
    std::vector<std::string> dateReasons;
    bool roundsDates = false;  // one of them rounds the times, which the user may accept
};

/// Adds the exact size, rounded once: a size that is rounded first may move the total by more.
inline void addBytes(float& total, std::uint64_t size) {
    total = static_cast<float>(static_cast<double>(total) + static_cast<double>(size));
}

/// Everything that the parts of one run share.
struct RunState {
    SystemMod& system;
    RunDisplay& display;
    const RunSwitches& switches;
    RunControl& control;
    RunStatistics& statistics;

    FileService& files() const { return system.platform.files; }
    bool stopped() const { return control.interruptionRequested; }
    bool comparing() const { return system.operationKind == OperationKind::comparison; }
    bool verifying() const { return comparing() && switches.contents != nullptr; }
    bool keepsRecord() const { return switches.record != nullptr; }
    void record(const FileRecord& file) const {
        if (keepsRecord()) switches.record->add(file);
    }
    LineTally& tally(int line) const { return statistics.tallies[static_cast<std::size_t>(line)]; }
};

}  // namespace coffrelune
