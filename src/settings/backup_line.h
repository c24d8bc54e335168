#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace coffrelune {

/// One line of a configuration: what is saved, and where to.
struct BackupLine {
    std::string source;
    std::string destination;
    std::int16_t selected = 0;  // 0 or 1

    /// Both paths are there: the line can be run.
    bool filled() const { return !source.empty() && !destination.empty(); }
    /// Something of it is there.
    bool used() const { return !source.empty() || !destination.empty(); }
};

/// Which sub-directories of a line's source are left out, as stored. A settings file may hold any
/// other number, which leaves none out and is none of the choices that are offered.
enum class ExclusionMode : std::int32_t { none = 0, all = 1, listed = 2 };

/// What a line does with the sub-directories of its source.
struct ExclusionList {
    ExclusionMode mode = ExclusionMode::none;
    std::vector<std::string> directories;  // relative to the line's source, in stored order

    bool operator==(const ExclusionList&) const = default;
};

}  // namespace coffrelune
