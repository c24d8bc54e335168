#pragma once

#include <string>

#include "platform/services.h"

namespace coffrelune {

/// A byte count in words: "512 octets", "1,50 Ko", "999 Mo". The unit changes at 1000 of the
/// smaller one while the divisor stays 1024, so that no number on screen has four digits: 1000
/// bytes are "0,98 Ko". Rounded; the drive list has a rule of its own that truncates.
std::string sizeText(float bytes, const Locale& locale);

}  // namespace coffrelune
