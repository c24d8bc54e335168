#include "system/numbers.h"

#include <algorithm>
#include <cmath>

namespace coffrelune {
namespace {

// Beyond any byte count, and small enough for a whole number with two more digits.
constexpr double largest = 9e15;

std::uint64_t rounded(double value) {
    // Written so that "not a number" ends as 0 as well.
    if (!(value > 0)) return 0;
    return static_cast<std::uint64_t>(std::round(value));
}

}  // namespace

std::string formatFixed(double value, int decimals, const Locale& locale) {
    std::uint64_t scale = 1;
    for (int i = 0; i < std::clamp(decimals, 0, 2); ++i) scale *= 10;
    // The scaled sizes shown here are a count divided by a power of two, so the product is exact
    // and a half is a half.
    const std::uint64_t scaled = rounded(std::min(value, largest) * static_cast<double>(scale));
    std::string text = std::to_string(scaled / scale);
    if (scale == 1) return text;
    const std::string fraction = std::to_string(scale + scaled % scale);
    return text + locale.decimalSeparator() + fraction.substr(1);
}

std::string formatGrouped(double value, const Locale& locale) {
    const std::string digits = std::to_string(rounded(std::min(value, largest)));
    std::string text;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0) text += locale.groupSeparator();
        text += digits[i];
    }
    return text;
}

}  // namespace coffrelune
