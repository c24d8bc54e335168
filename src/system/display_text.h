#pragma once

#include <string>
#include <string_view>

namespace coffrelune {

/// The text with its control characters (a file name may hold a line end) as the pictures that
/// Unicode has for them, so that one name is always one line. Everything else stays as it is.
std::string visibleControls(std::string_view text);

}  // namespace coffrelune
