#pragma once

#include <cstdint>
#include <string>

#include "platform/directory.h"
#include "platform/file_entry.h"
#include "platform/status.h"

namespace coffrelune {

/// Told how far the copy of one file has come.
class CopyObserver {
  public:
    virtual ~CopyObserver() = default;

    /// Called after each chunk of at most 16 MiB and once at the end, on the calling thread.
    /// `transferred`: bytes of this file so far.
    virtual void chunkFinished(std::uint64_t transferred) = 0;
};

/// Told what becomes of the files of a batch, on the thread that calls the batch, during its calls.
class CopyEvents {
  public:
    virtual ~CopyEvents() = default;

    /// The copy with this ticket bears its name and its bytes are on the disk; or it failed, and
    /// what bore its name is untouched. In the order of the tickets, one call each.
    virtual void committed(std::uint64_t ticket, const Status& status) = 0;

    /// Called a few times a second while the batch waits for the disk.
    virtual void waiting() = 0;
};

/// What happens to the files that were added after one whose commit fails.
enum class AfterFailure {
    goOn,
    stop,  // they are not committed either (1235)
};

/// What volumes have made of the last-write times of files.
enum class KeptTimes {
    exactly,
    rounded,  // the copy bears the next time that the volume holds
    lost,     // the copy bears another time
};

/// One file that is to be copied, under the same name into another directory.
struct CopyRequest {
    Directory& source;  // open, of the service that made the batch, like the next
    Directory& target;
    const FileEntry& entry;         // of the original, as `source` gave it
    const std::string& sourcePath;  // of the two files
    const std::string& targetPath;
    bool isNew = false;                // the caller has found nothing under the name
    bool writable = false;             // the copy is not read-only, whatever the original is
    bool allTimes = false;             // takes all the times of `entry`, not the last write alone
    CopyObserver* observer = nullptr;  // may be null
};

/// Copies files that get their final names together, once the disk has all their bytes: to wait for
/// the disk costs a thousand files as much as one, and a power loss at any moment leaves each file
/// whole or as it was. Destroying it gives up what is not committed.
class CopyBatch {
  public:
    virtual ~CopyBatch() = default;

    /// Copies one file, as FileService::copyFile says, but for its name, which it gets before the
    /// end of finish(). A failure of reading, of writing or for want of space is returned; nothing
    /// of that file is left then and it has no ticket. It may also come later, in committed().
    /// Tickets ascend. The files of one `target` come one after the other, those of no other
    /// between them. A link is copied as a link. What has taken the name of a new file meanwhile
    /// stays, and so does what has changed under the name of another (183 and 32, in committed()).
    /// 1235 after abandonCopies().
    virtual Status add(const CopyRequest& request, std::uint64_t& ticket) = 0;

    /// Waits until everything that was added is committed, the names included; committed() has been
    /// called for all of it. A failure concerns the names of files that were told as committed. The
    /// batch may be used again. Works after abandonCopies(), too: what was copied is not lost.
    virtual Status finish() = 0;

    /// The worst that has become of the time of a file that was added.
    virtual KeptTimes keptTimes() const = 0;
};

}  // namespace coffrelune
