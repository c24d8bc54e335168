#pragma once

#include <optional>
#include <string>

#include "engine/line_trees.h"

namespace coffrelune {

/// True when the run deletes excess files. Who keeps existing files wants none of them deleted, and
/// without the settings nobody knows what the lines leave out.
bool mayDeleteExcess(RunState& run);

/// Why nothing may be deleted from the tree that a line writes.
struct Objection {
    std::string reason;  // for the user, with what can be done about it
    std::uint32_t number = error_number::invalidData;
    std::string path;  // what the reason speaks of
    /// The user may know better: LineTrees::accept() then takes the objection away.
    bool acceptable = false;
};

/// A backup deletes from the copy unless something speaks against it: the original is half
/// restored, is itself an unfinished copy, lies on another volume than the certificate says, or
/// lacks a mount point that the certificate has seen; or the copy is that of another pair, too, or
/// is what the original is a copy of.
/// A restore deletes from the user's own files only when a complete certificate of this very pair
/// says that the copy holds all of them. Asked before the run changes anything: what it is about to
/// change itself speaks against nothing.
std::optional<Objection> objectionTo(FileService& files, const LineTrees& trees);

}  // namespace coffrelune
