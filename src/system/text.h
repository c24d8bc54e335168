#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace coffrelune {

/// Lower and upper case of a text by Unicode's simple mappings for Latin, Greek and Cyrillic, the
/// same on every system whatever its locale.
std::string lowerCase(std::string_view text);
std::string upperCase(std::string_view text);

/// The text in lower case with its first character in upper case ("tRAVAIL" gives "Travail"). A
/// leading blank is that first character.
std::string ProperCase(std::string_view text);

/// Empty stays empty; otherwise the text between double quotes, so that blanks at its ends survive
/// the settings file.
std::string QuoteValue(std::string_view text);

/// Without blanks (U+0020) at both ends.
std::string trimBlanks(std::string_view text);

std::vector<std::string> splitText(std::string_view text, char separator);

/// The leading decimal number of a text: blanks skipped, optional sign; 0 when there is none,
/// clamped to 32 bits.
std::int32_t leadingNumber(std::string_view text);

/// True when the texts differ at most in case.
bool equalIgnoringCase(std::string_view a, std::string_view b);

}  // namespace coffrelune
