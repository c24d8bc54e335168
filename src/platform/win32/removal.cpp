#include "platform/win32/removal.h"

#include <windows.h>

#include <string>
#include <vector>

#include "platform/own_names.h"
#include "platform/win32/entry_query.h"
#include "platform/win32/temporary_file.h"
#include "platform/win32/unique_handle.h"
#include "platform/win32/wide_text.h"

namespace coffrelune {
namespace {

// Not in every compiler's headers; the values are part of the system's interface:
// https://learn.microsoft.com/windows/win32/api/winbase/ns-winbase-file_disposition_info_ex
constexpr auto dispositionExtended = static_cast<FILE_INFO_BY_HANDLE_CLASS>(21);
constexpr DWORD deleteNow = 1 | 2;  // the name goes at once, also when somebody reads the file

/// Errors that say that the system or the volume does not know a call.
bool isUnknownCall(std::uint32_t error) {
    return error == ERROR_INVALID_PARAMETER || error == ERROR_NOT_SUPPORTED ||
           error == ERROR_INVALID_FUNCTION || error == ERROR_CALL_NOT_IMPLEMENTED ||
           error == ERROR_INVALID_LEVEL;
}

std::uint32_t removeOpen(void* handle) {
    DWORD flags = deleteNow;
    if (SetFileInformationByHandle(handle, dispositionExtended, &flags, sizeof flags) != 0) {
        return 0;
    }
    const DWORD error = GetLastError();
    if (!isUnknownCall(error)) return error;
    FILE_DISPOSITION_INFO disposition{};
    disposition.DeleteFile = TRUE;
    return SetFileInformationByHandle(handle, FileDispositionInfo, &disposition,
                                      sizeof disposition) != 0
               ? 0
               : GetLastError();
}

/// An entry that was looked at by its path, opened for its removal. 5 when it is of another kind by
/// now: it is left to whoever put it there.
std::uint32_t openSame(const NativePath& path, const FileEntry& seen, UniqueHandle& handle) {
    handle = openShared(path.text, DELETE | FILE_READ_ATTRIBUTES,
                        FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT);
    if (!handle.valid()) return GetLastError();
    FileEntry opened;
    const std::uint32_t error = queryOpenEntry(handle.get(), opened);
    if (error != 0) return error;
    const bool same =
        opened.isDirectory() == seen.isDirectory() && opened.isLink() == seen.isLink();
    return same ? 0 : ERROR_ACCESS_DENIED;
}

/// 145 unless nothing but own files is in the directory; those are gone then.
std::uint32_t removeOwnFiles(const NativePath& directory) {
    Listing listing;
    std::vector<NativePath> own;
    const std::uint32_t error = listing.open(directory, L"*");
    if (error != 0) return error;
    for (FileEntry entry; listing.next(entry);) {
        if (entry.name == "." || entry.name == "..") continue;
        if (entry.isDirectory() || !ownFileKind(entry.name)) return ERROR_DIR_NOT_EMPTY;
        own.push_back(directory.child(wide(entry.name)));
    }
    if (listing.error() != 0) return listing.error();
    if (listing.leftSomethingOut()) return ERROR_DIR_NOT_EMPTY;
    for (const NativePath& path : own) {
        if (removeUnlessWritten(path) != 0) return ERROR_DIR_NOT_EMPTY;
    }
    return 0;
}

}  // namespace

std::uint32_t removeFileAt(const NativePath& path) {
    FileEntry entry;
    std::uint32_t error = queryEntry(path, entry);
    if (error != 0) return error;
    if (entry.isDirectory() ? !entry.isLink() : entry.isReadOnly()) return ERROR_ACCESS_DENIED;
    UniqueHandle handle;
    error = openSame(path, entry, handle);
    return error == 0 ? removeOpen(handle.get()) : error;
}

std::uint32_t removeDirectoryAt(const NativePath& path) {
    FileEntry entry;
    std::uint32_t error = queryEntry(path, entry);
    if (error != 0) return error;
    if (!entry.isDirectory() || (entry.isLink() && !path.isRoot())) return ERROR_DIRECTORY;
    if (path.isRoot()) return ERROR_ACCESS_DENIED;
    UniqueHandle handle;
    error = openSame(path, entry, handle);
    if (error != 0) return error;
    error = removeOpen(handle.get());
    if (error == ERROR_ACCESS_DENIED && entry.isReadOnly() &&
        SetFileAttributesW(path.text.c_str(), FILE_ATTRIBUTE_DIRECTORY) != 0) {
        // The mark protects nothing in a directory; it says that it has an icon of its own.
        error = removeOpen(handle.get());
    }
    if (error != ERROR_DIR_NOT_EMPTY) return error;
    handle.reset();  // not every system lists what is open for its removal
    error = removeOwnFiles(path);
    if (error == 0) error = openSame(path, entry, handle);
    return error == 0 ? removeOpen(handle.get()) : error;
}

}  // namespace coffrelune
