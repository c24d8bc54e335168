#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace coffrelune {

enum class OperationKind : std::int16_t { backup = 0, restore = 1, comparison = 2 };

inline constexpr std::array<OperationKind, 3> allKinds = {
    OperationKind::backup, OperationKind::restore, OperationKind::comparison};

/// What a kind is called.
struct KindWords {
    const char* letter;  // of its tab and of its error list
    const char* key;     // within the keys of its results
    const char* word;
    const char* title;
};

inline constexpr std::array<KindWords, 3> kindTable = {{
    {"S", "Save", "sauvegarde", "Sauvegarde"},
    {"R", "Rest", "restauration", "Restauration"},
    {"C", "Comp", "comparaison", "Comparaison"},
}};

constexpr const KindWords& wordsOf(OperationKind kind) {
    return kindTable[static_cast<std::size_t>(kind)];
}

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
