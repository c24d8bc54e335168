#include "platform/own_names.h"

#include <algorithm>
#include <array>

namespace coffrelune {
namespace {

constexpr std::string_view prefix = ".~coffrelune-";
constexpr std::string_view digits = "0123456789abcdef";
constexpr std::size_t digitCount = 16;
constexpr std::array<std::string_view, 4> endings = {".tmp", ".copie", ".restauration", ".verrou"};

}  // namespace

std::optional<OwnFile> ownFileKind(std::string_view name) {
    if (!name.starts_with(prefix) || name.size() < prefix.size() + digitCount) return {};
    const std::string_view number = name.substr(prefix.size(), digitCount);
    const bool isNumber = std::all_of(number.begin(), number.end(), [](char c) {
        return digits.find(c) != std::string_view::npos;
    });
    const auto* const ending =
        std::find(endings.begin(), endings.end(), name.substr(prefix.size() + digitCount));
    if (!isNumber || ending == endings.end()) return {};
    return static_cast<OwnFile>(ending - endings.begin());
}

std::string ownFileName(OwnFile kind, std::uint64_t number) {
    std::string text(digitCount, '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, number >>= 4) {
        *digit = digits[number & 15];
    }
    return std::string(prefix).append(text).append(endings[static_cast<std::size_t>(kind)]);
}

}  // namespace coffrelune
