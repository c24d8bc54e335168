#pragma once

#include <string>
#include <string_view>

namespace coffrelune {

/// A path of the core in its plainest spelling: "/" as "\", one "\" where there are several, "."
/// and ".." resolved by the text alone, without the prefix `\\?\`. ".." never leaves the drive or
/// share. One "\" at the end stays, and so do the blanks of every name. A text that is neither
/// "X:", "X:\..." nor "\\server..." is no path of the core and stays as it is.
std::string inPlainSpelling(std::string_view text);

}  // namespace coffrelune
