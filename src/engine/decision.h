#pragma once

#include <cstdint>
#include <string_view>

#include "platform/file_entry.h"

namespace coffrelune {

/// The options that decide whether a file is copied.
struct DecisionOptions {
    bool compare = true;       // false: every file is copied, nothing is compared
    bool newerOnly = false;    // a newer file on the destination is kept
    bool forgiveHour = false;  // one hour of summer time is no difference (with newerOnly only)
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

/// -1 when the source is earlier, 0 when equal, 1 when later; exact to 100 ns. With `forgiveHour`,
/// a source exactly one clock hour later is taken back by that hour first: volumes that store local
/// time shift by it twice a year.
int compareDates(std::uint64_t source, std::uint64_t destination, bool forgiveHour);

}  // namespace coffrelune
