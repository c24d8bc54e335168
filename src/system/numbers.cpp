#include "system/numbers.h"

#include <algorithm>
#include <array>
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

std::string grouped(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3;) {
        at -= 3;
        digits.insert(at, " ");
    }
    return digits;
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

std::string formatGrouped(double value) {
    return grouped(rounded(std::min(value, largest)));
}

namespace {

std::string inUnit(std::uint64_t bytes, int shift, const Locale& locale) {
    const std::uint64_t unit = std::uint64_t{1} << shift;
    const std::uint64_t whole = bytes >> shift;
    const std::uint64_t rest = bytes & (unit - 1);
    if (whole >= 100) return grouped(whole);
    const std::uint64_t scale = whole < 10 ? 100 : 10;
    // The rest is below 2^40, so the product stays exact.
    const std::string fraction = std::to_string(scale + rest * scale / unit).substr(1);
    return std::to_string(whole) + locale.decimalSeparator() + fraction;
}

}  // namespace

std::string driveSizeText(std::uint64_t bytes, const Locale& locale) {
    if (bytes < 1024) return std::to_string(bytes) + (bytes < 2 ? " octet" : " octets");
    constexpr std::array<const char*, 4> units = {" Ko", " Mo", " Go", " To"};
    int shift = 10;
    std::size_t unit = 0;
    while (unit + 1 < units.size() && bytes >= std::uint64_t{1000} << shift) {
        shift += 10;
        ++unit;
    }
    return inUnit(bytes, shift, locale) + units.at(unit);
}

}  // namespace coffrelune
