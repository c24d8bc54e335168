#pragma once

#include <cstdint>
#include <memory>
#include <string>

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
    /// Never given: leftover temporaries of a copy, sockets, FIFOs, devices, and the mount points
    /// of kernel pseudo file systems. A link is an entry of its own and no directory.
    virtual bool next(FileEntry& entry) = 0;

    /// Success unless the listing broke off, or a look-up failed for another reason than that
    /// nothing bears the name: its "no such entry" is then not to be trusted.
    virtual const Status& status() const = 0;

    /// Looks `name` (one component) up in this directory without following a link. False when there
    /// is no such entry or it cannot be read. Sees every write that this service made before the
    /// call; what others write while the directory is open may be missed.
    virtual bool lookUp(const std::string& name, FileEntry& entry) = 0;
};

/// Told how far the copy of one file has come.
class CopyObserver {
  public:
    virtual ~CopyObserver() = default;

    /// Called after each chunk of at most 16 MiB and once at the end, on the calling thread.
    /// `transferred`: bytes of this file so far.
    virtual void chunkFinished(std::uint64_t transferred) = 0;
};

/// The disk. Paths are the core's own: `X:\dir\name` and `\\server\share\dir`, UTF-8 (a name that
/// is no valid UTF-8 travels as its raw bytes). A trailing backslash changes nothing. Nothing is
/// thrown; every failure is a Status with a Windows error number.
class FileService {
  public:
    virtual ~FileService() = default;

    /// Opens a directory. 2 or 3 when it does not exist, 267 when the path leads to something else
    /// (with LinkRule::refuse also to a link), 5 when it may not be read. An empty directory and an
    /// empty drive root open successfully.
    virtual Status openDirectory(const std::string& path, LinkRule links, Wanted wanted,
                                 std::unique_ptr<Directory>& directory) = 0;

    /// Looks one path up. 2 or 3 when nothing bears it. A drive root is found when its drive
    /// exists.
    virtual Status lookUp(const std::string& path, LinkRule links, FileEntry& entry) = 0;

    /// Identity of what the path leads to, links followed.
    virtual Status identify(const std::string& path, FileId& id) = 0;

    /// The path with every link resolved and in one spelling, so that two paths to one place are
    /// equal texts. The last components need not exist; they are then kept as they are.
    virtual std::string resolve(const std::string& path) = 0;

    /// Creates one directory level. 183 when the name is taken, by a directory or by a file.
    virtual Status createDirectory(const std::string& path) = 0;

    /// Copies one file over `destination`, which is complete or untouched whatever happens: the
    /// data goes to a temporary file beside it, takes the source's last-write time as it was before
    /// the reading and its attributes, and only then takes the final name. An existing read-only
    /// destination fails with 5. `sourceLinks` says whether a link is copied as a link (refuse) or
    /// its target's content is (follow). `observer` may be null: a copy without notifications.
    virtual Status copyFile(const std::string& source, const std::string& destination,
                            LinkRule sourceLinks, CopyObserver* observer) = 0;

    /// Makes the copy in progress, and every later one, end with 1235 at the next chunk, its old
    /// destination untouched. Async-signal-safe.
    virtual void abandonCopies() = 0;

    /// Sets the attribute word. Never touches what a link points to.
    virtual Status setAttributes(const std::string& path, std::uint32_t attributes) = 0;

    /// Sets the three times (a system without a settable creation time ignores that one). Rounded
    /// up to what the volume can hold. Never touches what a link points to.
    virtual Status setTimes(const std::string& path, const FileTimes& times) = 0;

    /// Removes one file or link; 5 for a directory or a read-only file.
    virtual Status removeFile(const std::string& path) = 0;

    /// Removes the temporaries that an interrupted copy left in the directory, except those that a
    /// running process still writes.
    virtual Status removeLeftovers(const std::string& directory) = 0;

    /// Reads a whole file of at most `limit` bytes (223 when it may be read but is larger).
    virtual Status readWhole(const std::string& path, std::uint64_t limit, std::string& bytes) = 0;

    /// Replaces a file's content, or creates it, atomically and durably: after a power loss the old
    /// or the new content is there, never a part. Follows a link, keeps the file's permissions.
    virtual Status writeWhole(const std::string& path, const std::string& bytes) = 0;
};

}  // namespace coffrelune
