#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_entry.h"
#include "platform/time_grid.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// What the walk of a tree does not enter.
struct LeftOut {
    std::string windowsDirectory;
    std::string root;                  // of the walked tree, with a trailing backslash
    std::vector<ExclusionList> lists;  // each of them counts
};

/// True for the files of the system that are never counted, listed, copied or deleted, in any case.
bool isSystemFile(const std::string& name);

/// True when the directory parent + name must not be entered: the system's own directory, system
/// folders, and what the line leaves out. `parent` ends with a backslash. Every comparison is
/// exact: "RECYCLED" is walked though "Recycled" is not.
bool isExcludedDirectory(const std::string& parent, const std::string& name,
                         const LeftOut& leftOut);

/// The same for a deletion, in any case: the copy of a directory may spell its name in another one
/// than the original, and to keep a file too many does no harm.
bool isExcludedFromDeletion(const std::string& parent, const std::string& name,
                            const LeftOut& leftOut);

/// True when the last component names one of the folders that Windows redirects: their absence is
/// no news to the user.
bool isSpecialFolder(const std::string& path);

/// The options that decide whether a file is copied.
struct DecisionOptions {
    bool compare = true;       // false: every file is copied, nothing is compared
    bool newerOnly = false;    // a newer file on the destination is kept
    bool forgiveHour = false;  // one hour of summer time is no difference (with newerOnly only)
    /// The times that the volume of the copy holds, where the user accepts that it rounds them: a
    /// copy is up to date that bears the time of its original as it is held there, and its size.
    TimeGrid grid = {};
    bool sourceIsCopy = false;  // in a restore, and where excess files of a copy are looked for
};

/// What is to be done with a file, and the words that a comparison gives as the reason.
struct Decision {
    bool copy = false;
    bool isNew = false;       // no file or link bears the name on the destination
    std::string_view status;  // begins with a blank; "No" when the file is left alone
};

/// The one rule of every pass: copy, comparison and the search for excess files all use it.
/// `destination` is null when the destination has no such entry; a directory there counts as none.
Decision decide(const FileEntry& source, const FileEntry* destination,
                const DecisionOptions& options);

/// True when both bear one time, or the copy that of its original as its volume holds it.
bool haveSameTime(const FileEntry& source, const FileEntry& destination,
                  const DecisionOptions& options);

/// -1 when the source is earlier, 0 when equal, 1 when later; exact to 100 ns. With `forgiveHour`,
/// a source exactly one clock hour later is taken back by that hour first: volumes that store local
/// time shift by it twice a year.
int compareDates(std::uint64_t source, std::uint64_t destination, bool forgiveHour);

}  // namespace coffrelune
