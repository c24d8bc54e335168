#include "platform/win32/whole_file.h"

#include <windows.h>

#include <optional>

#include "platform/win32/access_rights.h"
#include "platform/win32/data_copier.h"
#include "platform/win32/entry_query.h"
#include "platform/win32/temporary_file.h"

namespace coffrelune {
std::uint32_t followLink(NativePath& path) {
    FileEntry entry;
    if (queryEntry(path, entry) != 0 || !entry.isLink()) return 0;
    const UniqueHandle file =
        openShared(path.text, FILE_READ_ATTRIBUTES, FILE_FLAG_BACKUP_SEMANTICS);
    if (!file.valid()) return GetLastError();
    const std::wstring target = finalPath(file.get());
    if (target.empty()) return ERROR_CANT_RESOLVE_FILENAME;
    return toNative(toCore(target), path).code();
}

std::uint32_t readWholeFile(const NativePath& path, std::uint64_t limit, std::string& bytes) {
    bytes.clear();
    const UniqueHandle file = openShared(path.text, GENERIC_READ, FILE_FLAG_SEQUENTIAL_SCAN);
    if (!file.valid()) return GetLastError();
    LARGE_INTEGER size;
    if (GetFileSizeEx(file.get(), &size) == 0) return GetLastError();
    const auto length = static_cast<std::uint64_t>(size.QuadPart);
    // After the opening: "too large" also says that the file may be read.
    if (length > limit) return ERROR_FILE_TOO_LARGE;
    bytes.resize(length);
    std::uint64_t read = 0;
    const std::uint32_t error = readUpTo(file.get(), bytes.data(), length, read);
    bytes.resize(error == 0 ? read : 0);
    return error;
}

std::uint32_t writeWholeFile(const NativePath& target, const std::string& bytes,
                             Durability durability, WriteGuard& guard) {
    std::optional<FileEntry> old;
    std::uint32_t error = checkReplaceable(target, {}, old);
    TemporaryFile file;
    if (error == 0) error = file.create(target.holder(), encryptionOf(old));
    if (error == 0 && old) keepAccessRights(target, file.path());
    if (error == 0) error = writeAll(file.handle(), bytes.data(), bytes.size());
    if (error == 0 && old) error = file.stamp({old->times.creation, 0, 0}, old->attributes);
    const bool now = durability == Durability::now;
    if (error == 0 && !now) error = guard.dataWritten(file.handle());
    if (error == 0 && now && FlushFileBuffers(file.handle()) == 0) error = GetLastError();
    if (error == 0) error = file.commit(target, guard);
    // The new name too; should this fail, the old content is still whole under it.
    if (error == 0 && now) FlushFileBuffers(file.handle());
    return error;
}

}  // namespace coffrelune
