#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

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

}  // namespace coffrelune
