#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/characters.h"

namespace coffrelune {

/// Begins with a drive: a letter and a colon. `text`: narrow or wide, as the system's paths are.
template <typename Text>
constexpr bool hasDriveLetter(const Text& text) {
    return text.size() >= 2 && text[1] == ':' && ascii::isLetter(text[0]);
}

/// The same for a whole path: nothing or a separator follows, "C:x" is none.
template <typename Text>
constexpr bool startsWithDrive(const Text& text) {
    return hasDriveLetter(text) && (text.size() == 2 || text[2] == '\\' || text[2] == '/');
}

/// A path of the core in its plainest spelling: "/" as "\", one "\" where there are several, "."
/// and ".." resolved by the text alone, without the prefix `\\?\`. ".." never leaves the drive or
/// share. One "\" at the end stays, and so do the blanks of every name. A text that is neither
/// "X:", "X:\..." nor "\\server..." is no path of the core and stays as it is.
std::string inPlainSpelling(std::string_view text);

/// The files that the program keeps among those of its user: ".~coffrelune-", 16 lower-case
/// hexadecimal digits and an ending that tells the kind. No listing gives them, so none is ever
/// copied, counted or deleted as an excess file. The names are the same on every system: a medium
/// that goes from one to another speaks to both.
enum class OwnFile {
    temporary,    // ".tmp": an unfinished copy, or a directory of them that has no place yet
    certificate,  // ".copie": in the root of a copy, what it is a copy of
    restoreMark,  // ".restauration": in the root of an original, while a restore is unfinished
    lock,         // ".verrou": a tree that a run writes to, where the system has no other lock
};

/// The kind that a name tells; nothing for the names of others.
std::optional<OwnFile> ownFileKind(std::string_view name);

/// The name of a kind that holds `number`.
std::string ownFileName(OwnFile kind, std::uint64_t number);

inline bool isTemporaryName(std::string_view name) {
    return ownFileKind(name) == OwnFile::temporary;
}

/// Whether an entry of that name is the program's own. A directory that bears the name of one of
/// the other kinds is its user's.
inline bool isOwnEntry(std::string_view name, bool isDirectory) {
    return isDirectory ? isTemporaryName(name) : ownFileKind(name).has_value();
}

}  // namespace coffrelune
