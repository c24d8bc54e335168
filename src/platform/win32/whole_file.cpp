#include "platform/win32/whole_file.h"

#include <windows.h>

#include <optional>

#include "platform/win32/access_rights.h"
#include "platform/win32/data_copier.h"
#include "platform/win32/entry_query.h"
#include "platform/win32/temporary_file.h"

namespace coffrelune {
namespace {

constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// What a link leads to in the end; 0 and the path itself when it is none.
std::uint32_t followLink(NativePath& path) {
    FileEntry entry;
    if (queryEntry(path, entry) != 0 || !entry.isLink()) return 0;
    const UniqueHandle file(CreateFileW(path.text.c_str(), FILE_READ_ATTRIBUTES, shareAll, nullptr,
                                        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!file.valid()) return GetLastError();
    const std::wstring target = finalPath(file.get());
    if (target.empty()) return ERROR_CANT_RESOLVE_FILENAME;
    return toNative(toCore(target), path).code();
}

}  // namespace

std::uint32_t readWholeFile(const NativePath& path, std::uint64_t limit, std::string& bytes) {
    bytes.clear();
    const UniqueHandle file(CreateFileW(path.text.c_str(), GENERIC_READ, shareAll, nullptr,
                                        OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
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

std::uint32_t writeWholeFile(const NativePath& path, const std::string& bytes) {
    NativePath target = path;
    std::uint32_t error = followLink(target);
    std::optional<FileEntry> old;
    if (error == 0) error = checkReplaceable(target, {}, old);
    TemporaryFile file;
    if (error == 0) error = file.create(target.holder(), encryptionOf(old));
    if (error == 0 && old) keepAccessRights(target, file.path());
    if (error == 0) error = writeAll(file.handle(), bytes.data(), bytes.size());
    if (error == 0 && old) error = file.stamp({old->times.creation, 0, 0}, old->attributes);
    if (error == 0 && FlushFileBuffers(file.handle()) == 0) error = GetLastError();
    if (error == 0) error = file.commit(target);
    // The new name too; should this fail, the old content is still whole under it.
    if (error == 0) FlushFileBuffers(file.handle());
    return error;
}

}  // namespace coffrelune
