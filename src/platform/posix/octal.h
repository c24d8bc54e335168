#pragma once

#include <string>
#include <string_view>

namespace coffrelune {

/// A text as one word of a line: the blank, what comes before it among the characters, and the
/// backslash are written as "\ooo".
std::string escapeOctal(std::string_view text);

/// The way back. False when a backslash begins no such sequence; it then stands for itself.
bool unescapeOctal(std::string_view text, std::string& result);

}  // namespace coffrelune
