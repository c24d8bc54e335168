#pragma once

namespace coffrelune {

/// Unicode's simple mappings for Latin, Greek and Cyrillic; any other character is returned as it
/// is. Our own tables, because the C library's depend on the locale that a process happens to have,
/// and a configuration's name must be the same section under cron and on a desktop.
char32_t lowerCase(char32_t character);
char32_t upperCase(char32_t character);

}  // namespace coffrelune
