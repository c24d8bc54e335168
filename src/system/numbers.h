#pragma once

#include <cstdint>
#include <string>

#include "platform/services.h"

namespace coffrelune {

/// Formats a number >= 0 with a fixed count of decimals (0 to 2), rounded half away from zero, with
/// the locale's decimal separator ("1,50").
std::string formatFixed(double value, int decimals, const Locale& locale);

/// A whole number in groups of three digits ("### ### ##0"), with the locale's group separator.
std::string formatGrouped(double value, const Locale& locale);

}  // namespace coffrelune
