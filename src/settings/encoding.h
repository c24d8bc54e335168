#pragma once

#include <string>
#include <string_view>

namespace coffrelune {

/// What cannot stand inside the value of one line.
inline constexpr std::string_view lineBreakers("\r\n\0", 3);

/// Writes each of `characters` (ASCII) as the private-use character U+F000 plus its number, as
/// network clients do for characters that a name may not hold. A text that already has one of these
/// private-use characters gets U+F01B (the private-use "escape") before it, so that
/// unescapeCharacters gives back every text exactly.
std::string escapeCharacters(std::string_view text, std::string_view characters);
std::string unescapeCharacters(std::string_view text, std::string_view characters);

/// A value that begins and ends with the same quote (double or single, two characters or more)
/// between one more pair of double quotes; any other as it is. Reading strips one such pair, so a
/// value written without it would lose its own: `"C:\a b" "D:\c"` would come back as
/// `C:\a b" "D:\c`. For free text that is not stored with QuoteValue, as the parameters of the
/// program to run are.
std::string protectQuotes(const std::string& value);

}  // namespace coffrelune

/// UTF-16 LE as bytes. Any UTF-8 text, and any bytes that are none, come back from encode and
/// decode as they were: a byte that is no UTF-8 is a lone surrogate in between (see
/// platform/characters.h).
namespace coffrelune::utf16le {

/// False for an odd count of bytes and when there is a NUL character.
bool isText(std::string_view bytes);

std::string encode(std::string_view text);

/// `bytes` of an even count.
std::string decode(std::string_view bytes);

}  // namespace coffrelune::utf16le
