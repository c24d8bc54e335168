#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/file_entry.h"
#include "platform/win32/native_path.h"
#include "platform/win32/unique_handle.h"

namespace coffrelune {

/// Asked while a file is written under a temporary name, and when it is to get its own.
class WriteGuard {
  public:
    virtual ~WriteGuard() = default;

    /// The file, or a stream of it, has all its bytes. 0 or a system error.
    virtual std::uint32_t dataWritten(void*) { return 0; }
    /// The temporary is in the directory that was meant, or a system error.
    virtual std::uint32_t mayGetItsName() { return 0; }
    /// 0 or a system error, about a file that bears its name whatever this gives.
    virtual std::uint32_t named(void*) { return 0; }
};

/// A file that has not got its name yet. It is open for as long as this object holds it, so that
/// another process that clears leftovers keeps away, and removed unless it was committed.
class TemporaryFile {
  public:
    TemporaryFile() = default;
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    /// Creates it in a directory. `attributes`: what only the creation can give (encrypted). 0 or a
    /// system error.
    std::uint32_t create(const NativePath& directory, std::uint32_t attributes = 0);

    /// Takes over what was made under a temporary name of create()'s kind. 0 or a system error.
    std::uint32_t adopt(const NativePath& path);

    void* handle() const { return file_.get(); }
    /// False for a link, which has nothing that can be flushed.
    bool holdsData() const { return holdsData_; }
    const NativePath& path() const { return path_; }

    /// Gives it attributes and times; a time of 0 stays as it is. 0 or a system error.
    std::uint32_t stamp(const FileTimes& times, std::uint32_t attributes);

    /// Gives it its name, over what bears that name, in one step. 0 or a system error.
    std::uint32_t commit(const NativePath& destination, WriteGuard& guard);

    /// The same without a question. `replaces`: false to leave what bears the name (183).
    std::uint32_t takeName(const NativePath& destination, bool replaces);

  private:
    UniqueHandle file_;
    NativePath path_;  // empty: nothing to remove
    bool holdsData_ = false;
};

/// A new temporary path in a directory.
NativePath temporaryPath(const NativePath& directory);

/// Attributes that a caller may set, with 128 for none of them.
std::uint32_t settableAttributes(std::uint32_t attributes);

/// Times and attributes of an open file; 0 leaves one of them as it is. 0 or a system error.
std::uint32_t stampFile(void* handle, const FileTimes& times, std::uint32_t attributes);

/// Success when a copy may take the place of what is there: nothing, or a file or a link that can
/// be written. 5 for a directory or a read-only file, 32 for one in use or the `source` itself.
/// `old`: what will be replaced, with its identity; nothing when there is nothing.
std::uint32_t checkReplaceable(const NativePath& destination, const FileId& source,
                               std::optional<FileEntry>& old);

/// True for a file whose rights and whose encryption the one that takes its place keeps. Of a link
/// nothing is kept but its place: what else it shows is its target's.
bool isKept(const std::optional<FileEntry>& old);

/// What a file that takes the place of `entry` must be created with, to be as hard to read.
std::uint32_t encryptionOf(const std::optional<FileEntry>& entry);

/// Removes one of the program's own files, read-only or not. 32 when a process holds it open.
std::uint32_t removeUnlessWritten(const NativePath& path);

/// Removes the temporaries in a directory, files and directories of them, that no running process
/// writes. 0 or a system error.
std::uint32_t removeTemporaries(const NativePath& directory);

/// Adds the names of marks and certificates in a directory. 0 or a system error.
std::uint32_t listOwnFiles(const NativePath& directory, std::vector<std::string>& names);

}  // namespace coffrelune
