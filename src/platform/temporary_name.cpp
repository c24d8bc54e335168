#include "platform/temporary_name.h"

#include <algorithm>

namespace coffrelune {
namespace {

constexpr std::string_view prefix = ".~coffrelune-";
constexpr std::string_view suffix = ".tmp";
constexpr std::string_view digits = "0123456789abcdef";
constexpr std::size_t digitCount = 16;

}  // namespace

bool isTemporaryName(std::string_view name) {
    if (name.size() != prefix.size() + digitCount + suffix.size()) return false;
    const std::string_view number = name.substr(prefix.size(), digitCount);
    return name.starts_with(prefix) && name.ends_with(suffix) &&
           std::all_of(number.begin(), number.end(),
                       [](char c) { return digits.find(c) != std::string_view::npos; });
}

std::string temporaryName(std::uint64_t number) {
    std::string text(digitCount, '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, number >>= 4) {
        *digit = digits[number & 15];
    }
    return std::string(prefix).append(text).append(suffix);
}

}  // namespace coffrelune
