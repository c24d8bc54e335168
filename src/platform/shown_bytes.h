#pragma once

#include <string>

namespace coffrelune {

/// For what takes valid UTF-8 alone, a toolkit or a screen reader, while a file name may hold any
/// bytes: a byte that is no UTF-8 becomes a character of a private-use plane (U+10DC00 plus its
/// value) that no file name is likely to hold, and no other character changes.
std::string shownBytes(const std::string& text);

/// The bytes again, of a text that comes back from there.
std::string rawBytes(const std::string& shown);

}  // namespace coffrelune
