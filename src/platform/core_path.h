#pragma once

#include <string>
#include <string_view>

#include "platform/ascii.h"

namespace coffrelune {

/// Begins with a drive: a letter and a colon.
constexpr bool hasDriveLetter(std::string_view text) {
    return text.size() >= 2 && text[1] == ':' && ascii::isLetter(text[0]);
}

/// A path of the core in its plainest spelling: "/" as "\", one "\" where there are several, "."
/// and ".." resolved by the text alone, without the prefix `\\?\`. ".." never leaves the drive or
/// share. One "\" at the end stays, and so do the blanks of every name. A text that is neither
/// "X:", "X:\..." nor "\\server..." is no path of the core and stays as it is.
std::string inPlainSpelling(std::string_view text);

}  // namespace coffrelune
