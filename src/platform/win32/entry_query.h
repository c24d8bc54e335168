#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "platform/file_entry.h"
#include "platform/win32/native_path.h"

namespace coffrelune {

/// A directory's entries in the order of the system, with all that an entry needs, so that nothing
/// is asked file by file. Identities are not given.
///
/// On NTFS a file with several names may show the size and time that it had when it was last opened
/// by the name that is listed: that is the price of not opening what has not changed.
class Listing {
  public:
    Listing() = default;
    Listing(const Listing&) = delete;
    Listing& operator=(const Listing&) = delete;
    ~Listing() { close(); }

    /// Starts with what fits `pattern` in the directory. 0 or a system error; a directory without
    /// any entry opens successfully.
    std::uint32_t open(const NativePath& directory, const wchar_t* pattern);

    /// The next entry and true; false at the end or after a failure, which error() then tells. "."
    /// and ".." are among the entries.
    bool next(FileEntry& entry);

    std::uint32_t error() const { return error_; }
    /// Something was met that is neither file, directory nor link.
    bool leftSomethingOut() const { return leftSomethingOut_; }
    void close();

  private:
    void* find_ = nullptr;
    NativePath directory_;
    FileEntry first_;
    bool hasFirst_ = false;
    bool leftSomethingOut_ = false;
    std::uint32_t error_ = 0;
};

/// The entry itself, a link when it is one, named as it was asked for. 0 or a system error. Works
/// for a file that others hold open without sharing.
std::uint32_t queryEntry(const NativePath& path, FileEntry& entry);

/// The same of what a link leads to; its identity is given for a link alone.
std::uint32_t queryTarget(const NativePath& path, FileEntry& entry);

/// Identity of what the path leads to. 0 or a system error.
std::uint32_t queryIdentity(const NativePath& path, FileId& id);

/// All of an open file but its name and its identity. 0 or a system error.
std::uint32_t queryOpenState(void* handle, FileEntry& entry);

/// All of an open file but its name. 0 or a system error.
std::uint32_t queryOpenFile(void* handle, FileEntry& entry);

/// The same of what was opened without following a link: it may be one.
std::uint32_t queryOpenEntry(void* handle, FileEntry& entry);

/// 1921 for a directory link that leads to a directory on the way to itself, or of which nobody can
/// tell where it leads: to walk it might never end. 0 or a system error for others.
std::uint32_t checkLeadsAway(const NativePath& link);

/// True for what the word and the reparse tag of a listing show to be no file with a content:
/// sockets, the FIFOs and devices of the Linux that lives beside Windows, and the stand-ins under
/// which programs of the store are started. To open one fails, or waits for ever.
bool isSpecial(std::uint32_t attributes, std::uint32_t tag);

/// True for the record of a mounted folder, a directory that shows the top of a volume; a junction
/// to another directory is none. The record is REPARSE_DATA_BUFFER:
/// https://learn.microsoft.com/windows-hardware/drivers/ddi/ntifs/ns-ntifs-_reparse_data_buffer
bool leadsToVolume(std::span<const std::byte> record);

/// A failed Status with a system error about `path`. What the system calls 2 is 3 when the
/// directory that should hold it is missing as well.
Status failureAt(std::uint32_t error, const NativePath& path, const std::string& core);

}  // namespace coffrelune
