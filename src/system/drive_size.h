#pragma once

#include <cstdint>
#include <string>

#include "platform/services.h"

namespace coffrelune {

/// The size of a drive in at most three digits and a unit: "0 octet", "976 Ko", "14,9 Go". Every
/// digit left out is cut off, never rounded, so that no drive seems larger than it is. The unit
/// changes at 1000 of the smaller one while it stays a power of 1024: "999 Ko" comes right before
/// "0,97 Mo".
std::string driveSizeText(std::uint64_t bytes, const Locale& locale);

}  // namespace coffrelune
