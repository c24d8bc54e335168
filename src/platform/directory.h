#pragma once

#include <string>
#include <vector>

#include "platform/file_entry.h"
#include "platform/status.h"

namespace coffrelune {

/// What a call does when the last component of its path is a symbolic link or a junction.
enum class LinkRule {
    follow,  // the link's target is meant: for the root of a line, which the user chose
    refuse,  // the link itself is meant, or refused: for everything below a root
    enter,   // refuse, but for a directory link that the system takes for a part of the tree that
             // is read (Windows): its directory is meant, unless it leads back to where it stands
};

/// Which entries a listing gives. Leaving the others out spares the system a call per entry.
/// `nothing`: the directory is only wanted for look-ups, so it need not be readable.
enum class Wanted { everything, files, directories, nothing };

/// A directory opened for listing and for look-ups. Holds system resources until destroyed.
class Directory {
  public:
    virtual ~Directory() = default;

    /// Gives the next entry, in the order in which the system returns them, and true; false at the
    /// end or after a failure, which status() then tells. "." and ".." may be among the entries.
    /// Never given: the program's own files (names.h), sockets, FIFOs, devices, and the mount
    /// points of kernel pseudo file systems. A link is an entry of its own and no directory.
    virtual bool next(FileEntry& entry) = 0;

    /// Success unless the listing broke off, or a look-up failed for another reason than that
    /// nothing bears the name: its "no such entry" is then not to be trusted.
    virtual const Status& status() const = 0;

    /// What the directory itself was when it was opened, without its name; null where that is not
    /// told, so that it has to be looked up.
    virtual const FileEntry* self() const { return nullptr; }

    /// True when FileService::matchDirectory would have changed nothing, for certain, when both
    /// were opened.
    virtual bool hasRightsOf(const Directory& /*original*/) const { return false; }

    /// Whether the next file that next() gives is likely to be copied at once. A hint: it may then
    /// be opened instead of looked at.
    virtual void expectCopy(bool /*expected*/) {}

    /// The directories that were met while the files were listed (Wanted::files, to the end), each
    /// as a listing of directories gives it: nothing needs to be listed twice.
    virtual std::vector<FileEntry> takeDirectories() = 0;

    /// Looks `name` (one component) up in this directory without following a link. False when there
    /// is no such entry or it cannot be read. Sees every write that this service made before the
    /// call, but for the files of a batch that is not finished; what others write while the
    /// directory is open may be missed.
    virtual bool lookUp(const std::string& name, FileEntry& entry) = 0;
};

}  // namespace coffrelune
