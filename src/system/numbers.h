#pragma once

#include <cstdint>
#include <string>

#include "platform/services.h"

namespace coffrelune {

/// Formats a number >= 0 with a fixed count of decimals (0 to 2), rounded half away from zero, with
/// the locale's decimal separator ("1,50").
std::string formatFixed(double value, int decimals, const Locale& locale);

/// A whole number in groups of three digits ("### ### ##0"), parted by blanks whatever the locale
/// says: they belong to the texts, and lists in a code page have to hold them.
std::string formatGrouped(double value);

/// The size of a drive in at most three digits and a unit: "0 octet", "976 Ko", "14,9 Go". Every
/// digit left out is cut off, never rounded, so that no drive seems larger than it is. The unit
/// changes at 1000 of the smaller one while it stays a power of 1024: "999 Ko" comes right before
/// "0,97 Mo".
std::string driveSizeText(std::uint64_t bytes, const Locale& locale);

}  // namespace coffrelune
