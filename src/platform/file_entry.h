#pragma once

#include <cstdint>
#include <string>

namespace coffrelune {

/// Attribute bits, with the values of Windows.
/// https://learn.microsoft.com/windows/win32/fileio/file-attribute-constants
namespace attribute {
inline constexpr std::uint32_t readOnly = 1;
inline constexpr std::uint32_t hidden = 2;
inline constexpr std::uint32_t directory = 16;
inline constexpr std::uint32_t normal = 128;  // alone: none of the others
inline constexpr std::uint32_t link = 1024;   // a symbolic link or a junction (reparse point)
}  // namespace attribute

/// The three times of an entry, each in units of 100 ns since 1601-01-01 UTC. 0 as "not known".
struct FileTimes {
    std::uint64_t creation = 0;
    std::uint64_t lastAccess = 0;
    std::uint64_t lastWrite = 0;

    bool operator==(const FileTimes&) const = default;
};

/// What tells two names of one file apart from two files: equal exactly when both paths lead to
/// the same file or directory. All zero when the system does not tell.
struct FileId {
    std::uint64_t volume = 0;
    std::uint64_t file = 0;

    bool known() const { return volume != 0 || file != 0; }
    bool operator==(const FileId&) const = default;
};

/// What keeps everybody from changing a file, or the entries of a directory, whatever its rights.
enum class Lock {
    none,
    immutable,
    additionsOnly,
};

/// One entry of a directory, as a listing or a look-up gives it.
struct FileEntry {
    std::string name;  // last component only, in the core's form
    std::uint32_t attributes = 0;
    std::uint64_t size = 0;  // bytes; for a link the length of its text
    FileTimes times;
    FileId id;                  // may be unknown where a listing does not give it
    std::uint32_t failure = 0;  // why it is listed by its name alone, size and times unknown
    bool mountPoint = false;  // a directory that shows another volume, or another place of this one

    Lock lock = Lock::none;

    bool isDirectory() const { return (attributes & attribute::directory) != 0; }
    bool isUnreadable() const { return failure != 0; }
    bool isReadOnly() const { return (attributes & attribute::readOnly) != 0; }
    bool isLink() const { return (attributes & attribute::link) != 0; }
};

}  // namespace coffrelune
