#include "platform/win32/file_changes.h"

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/names.h"
#include "platform/win32/data_copier.h"
#include "platform/win32/entry_query.h"
#include "platform/win32/temporary_file.h"
#include "platform/win32/unique_handle.h"
#include "platform/win32/wide_text.h"

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
    if (error == 0 && isKept(old)) keepAccessRights(target, file.path());
    if (error == 0) error = writeAll(file.handle(), bytes.data(), bytes.size());
    if (error == 0 && isKept(old)) error = file.stamp({old->times.creation, 0, 0}, old->attributes);
    const bool now = durability == Durability::now;
    if (error == 0 && !now) error = guard.dataWritten(file.handle());
    if (error == 0 && now && FlushFileBuffers(file.handle()) == 0) error = GetLastError();
    if (error == 0) error = file.commit(target, guard);
    // The new name too; should this fail, the old content is still whole under it.
    if (error == 0 && now) FlushFileBuffers(file.handle());
    return error;
}

namespace {

/// Without this request the system drops the mark that says which rights come from the directory,
/// and a later change there would no longer reach the file:
/// https://learn.microsoft.com/windows/win32/secauthz/security-descriptor-control
void keepInheritance(PSECURITY_DESCRIPTOR rights) {
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    if (GetSecurityDescriptorControl(rights, &control, &revision) == 0) return;
    if ((control & SE_DACL_AUTO_INHERITED) == 0) return;
    SetSecurityDescriptorControl(rights, SE_DACL_AUTO_INHERIT_REQ, SE_DACL_AUTO_INHERIT_REQ);
}

}  // namespace

void keepAccessRights(const NativePath& old, const NativePath& fresh) {
    DWORD size = 0;
    GetFileSecurityW(old.text.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    if (size == 0) return;
    std::vector<unsigned char> rights(size);
    if (GetFileSecurityW(old.text.c_str(), DACL_SECURITY_INFORMATION, rights.data(), size, &size) ==
        0) {
        return;
    }
    keepInheritance(rights.data());
    SetFileSecurityW(fresh.text.c_str(), DACL_SECURITY_INFORMATION, rights.data());
}

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
        if (!isOwnEntry(entry.name, entry.isDirectory())) return ERROR_DIR_NOT_EMPTY;
        if (!entry.isDirectory()) own.push_back(directory.child(wide(entry.name)));
    }
    if (listing.error() != 0) return listing.error();
    if (listing.leftSomethingOut()) return ERROR_DIR_NOT_EMPTY;
    for (const NativePath& path : own) {
        if (removeUnlessWritten(path) != 0) return ERROR_DIR_NOT_EMPTY;
    }
    return removeTemporaries(directory);  // the directories among them
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
