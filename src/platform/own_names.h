#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace coffrelune {

/// The files that the program keeps among those of its user: ".~coffrelune-", 16 lower-case
/// hexadecimal digits and an ending that tells the kind. No listing gives them, so none is ever
/// copied, counted or deleted as an excess file. The names are the same on every system: a medium
/// that goes from one to another speaks to both.
enum class OwnFile {
    temporary,    // ".tmp": an unfinished copy
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

}  // namespace coffrelune
