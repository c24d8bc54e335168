#include "system/casing.h"

#include <algorithm>
#include <iterator>

#include "system/casing_tables.h"

namespace coffrelune {
namespace {

template <typename Table>
char32_t mapped(const Table& table, char32_t character) {
    const auto* after = std::upper_bound(
        table.begin(), table.end(), character,
        [](char32_t wanted, const CaseRange& range) { return wanted < range.first; });
    if (after == table.begin()) return character;
    const CaseRange& range = *std::prev(after);
    const bool inside = character <= range.last && (character - range.first) % range.step == 0;
    if (!inside) return character;
    return static_cast<char32_t>(static_cast<std::int32_t>(character) + range.delta);
}

}  // namespace

char32_t lowerCase(char32_t character) {
    return mapped(lowerMappings, character);
}

char32_t upperCase(char32_t character) {
    return mapped(upperMappings, character);
}

}  // namespace coffrelune
