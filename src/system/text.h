#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace coffrelune {

/// Lower and upper case by Unicode's simple mappings for Latin, Greek and Cyrillic; any other
/// character stays as it is. Our own tables, because the C library's depend on the locale that a
/// process happens to have, and a configuration's name must be the same section under cron and on a
/// desktop.
char32_t lowerCase(char32_t character);
char32_t upperCase(char32_t character);
std::string lowerCase(std::string_view text);
std::string upperCase(std::string_view text);

/// The text in lower case with its first character in upper case ("tRAVAIL" gives "Travail"). A
/// leading blank is that first character.
std::string ProperCase(std::string_view text);

/// Empty stays empty; otherwise the text between double quotes, so that blanks at its ends survive
/// the settings file.
std::string QuoteValue(std::string_view text);

/// The text without one pair of equal quotes (double or single) round it.
std::string_view withoutQuotes(std::string_view text);

/// In UTF-8; a byte that is none counts as one.
std::size_t characterCount(std::string_view text);
std::string firstCharacters(std::string text, std::size_t count);

/// Without blanks (U+0020) at both ends.
std::string trimBlanks(std::string_view text);

std::vector<std::string> splitText(std::string_view text, char separator);

/// The leading decimal number of a text: blanks skipped, optional sign; 0 when there is none,
/// clamped to 32 bits.
std::int32_t leadingNumber(std::string_view text);

/// True when the texts differ at most in case.
bool equalIgnoringCase(std::string_view a, std::string_view b);

/// The text with its control characters (a file name may hold a line end) as the pictures that
/// Unicode has for them, so that one name is always one line, and with ":" where a name of the file
/// system bears it (U+F03A in a path). Everything else stays as it is.
std::string visibleControls(std::string_view text);

}  // namespace coffrelune
