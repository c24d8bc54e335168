#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/copy_batch.h"
#include "platform/directory.h"
#include "platform/file_entry.h"
#include "platform/held_tree.h"
#include "platform/status.h"
#include "platform/walk_ahead.h"

namespace coffrelune {

/// Who may enter a directory that is made.
enum class DirectoryAccess {
    usual,      // as the system does it for every program
    ownerOnly,  // nobody else, until matchDirectory() says otherwise
};

/// When a file that is written whole is safe from a power loss.
enum class Durability {
    now,        // when the call returns
    nextFlush,  // whole from now on, safe after the next flush of its volume
};

/// The disk. Paths are the core's own: `X:\dir\name` and `\\server\share\dir`, UTF-8 (a name that
/// is no valid UTF-8 travels as its raw bytes). A trailing backslash changes nothing. Nothing is
/// thrown; every failure is a Status with a Windows error number.
class FileService {
  public:
    virtual ~FileService() = default;

    /// Takes hold of a directory, links followed on the way to it. As long as the hold lives, every
    /// path that is `root` or continues its text is reached from that very directory, whatever
    /// bears its name by now, and no link below it is passed on the way (1921), in reading, writing
    /// or deleting, but for those that openDirectory() entered while the hold lived. What the last
    /// component may be stays with each function. Of nested holds the innermost counts. The volume
    /// cannot be taken away under the hold without the calls failing. 2, 3 or 55 when there is no
    /// such directory, 267 when it is none.
    virtual Status hold(const std::string& root, std::unique_ptr<HeldTree>& held) = 0;

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
    virtual Status createDirectory(const std::string& path, DirectoryAccess access) = 0;

    /// Gives the directory `target` the rights, the attributes and the times of `source` and, when
    /// the program may give files away, its owner; both are directories and no links (the root of a
    /// hold may be one). Nothing where the volume knows no such rights, or where rights come from
    /// where a directory lies.
    virtual Status matchDirectory(const std::string& source, const std::string& target) = 0;

    /// Removes an empty directory; 145 when something is in it (the program's own files do not
    /// count and go with it), 267 for anything else, a link included.
    virtual Status removeDirectory(const std::string& path) = 0;

    /// Copies one file over `destination`, which is complete or untouched whatever happens: the
    /// data goes to a temporary file beside it, takes the source's last-write time as it was before
    /// the reading, its attributes and, when the program may give files away, its owner, and only
    /// then, when the disk has it, takes the final name. A source that ends before the size it had
    /// when it was opened fails with 38. An existing read-only destination, or a directory there,
    /// fails with 5. `sourceLinks` says whether a link is copied as a link (refuse) or its target's
    /// content is (follow). `observer` may be null: a copy without notifications.
    virtual Status copyFile(const std::string& source, const std::string& destination,
                            LinkRule sourceLinks, CopyObserver* observer) = 0;

    /// A batch of copies into the tree `root`. `events` outlives it.
    virtual std::unique_ptr<CopyBatch> startBatch(const std::string& root,
                                                  AfterFailure afterFailure,
                                                  CopyEvents& events) = 0;

    /// A walk of one pass that only looks. It ends before something is written.
    virtual std::unique_ptr<WalkAhead> startWalk() = 0;

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

    /// The names of the program's own files in a directory that are no temporaries: marks and
    /// certificates (names.h), in any order.
    virtual Status ownFiles(const std::string& directory, std::vector<std::string>& names) = 0;

    /// Reads a whole file of at most `limit` bytes (223 when it may be read but is larger).
    virtual Status readWhole(const std::string& path, std::uint64_t limit, std::string& bytes) = 0;

    /// Replaces a file's content, or creates it, atomically: at any moment the old or the new
    /// content is there, never a part. Follows a link (but not below a hold), keeps the file's
    /// permissions.
    virtual Status writeWhole(const std::string& path, const std::string& bytes,
                              Durability durability) = 0;
};

}  // namespace coffrelune
