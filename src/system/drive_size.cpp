#include "system/drive_size.h"

#include <array>

namespace coffrelune {
namespace {

// The groups are parted by blanks whatever the locale says: they belong to the layout of the list.
std::string grouped(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3;) {
        at -= 3;
        digits.insert(at, " ");
    }
    return digits;
}

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
