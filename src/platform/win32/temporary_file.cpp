#include "platform/win32/temporary_file.h"

#include <windows.h>

#include <cstddef>
#include <cstring>
#include <vector>

#include "platform/names.h"
#include "platform/win32/entry_query.h"
#include "platform/win32/wide_text.h"

namespace coffrelune {
namespace {

constexpr const wchar_t* ownPattern = L".~coffrelune-*";

/// Names need to differ, not to be secret: CREATE_NEW refuses one that is taken.
std::uint64_t nextNumber() {
    LARGE_INTEGER ticks;
    QueryPerformanceCounter(&ticks);
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const std::uint64_t time = std::uint64_t{now.dwHighDateTime} << 32 | now.dwLowDateTime;
    constexpr std::uint64_t odd = 0x9E3779B97F4A7C15;
    return (time ^ (static_cast<std::uint64_t>(ticks.QuadPart) << 20) ^
            (std::uint64_t{GetCurrentProcessId()} << 44)) *
           odd;
}

// Not in every compiler's headers; the values are part of the system's interface.
constexpr auto renameExtended = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22);
constexpr DWORD replaceIfExists = 1;
constexpr DWORD posixSemantics = 2;

/// FILE_RENAME_INFO with the name behind it.
std::vector<std::byte> renameRecord(const std::wstring& name, DWORD flags) {
    const std::size_t length = name.size() * sizeof(wchar_t);
    std::vector<std::byte> record(sizeof(FILE_RENAME_INFO) + length);
    FILE_RENAME_INFO head{};
    std::memcpy(&head, &flags, sizeof flags);  // the flags share their place with the older BOOL
    head.FileNameLength = static_cast<DWORD>(length);
    std::memcpy(record.data(), &head, sizeof head);
    std::memcpy(record.data() + offsetof(FILE_RENAME_INFO, FileName), name.data(), length);
    return record;
}

bool rename(void* handle, FILE_INFO_BY_HANDLE_CLASS kind, const std::wstring& name, DWORD flags) {
    std::vector<std::byte> record = renameRecord(name, flags);
    return SetFileInformationByHandle(handle, kind, record.data(),
                                      static_cast<DWORD>(record.size())) != 0;
}

void removeEvenReadOnly(const std::wstring& path) {
    if (DeleteFileW(path.c_str()) != 0 || GetLastError() != ERROR_ACCESS_DENIED) return;
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    DeleteFileW(path.c_str());
}

}  // namespace

TemporaryFile::~TemporaryFile() {
    if (path_.text.empty()) return;
    file_.reset();
    removeEvenReadOnly(path_.text);
}

NativePath temporaryPath(const NativePath& directory) {
    return directory.child(wide(ownFileName(OwnFile::temporary, nextNumber())));
}

std::uint32_t TemporaryFile::create(const NativePath& directory, std::uint32_t attributes) {
    std::uint32_t error = ERROR_FILE_EXISTS;
    for (int attempt = 0; attempt < 100 && error == ERROR_FILE_EXISTS; ++attempt) {
        NativePath path = temporaryPath(directory);
        file_ = UniqueHandle(CreateFileW(path.text.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE,
                                         FILE_SHARE_READ, nullptr, CREATE_NEW,
                                         FILE_ATTRIBUTE_NORMAL | attributes, nullptr));
        error = file_.valid() ? 0 : GetLastError();
        holdsData_ = error == 0;
        if (holdsData_) path_ = std::move(path);
    }
    return error;
}

std::uint32_t TemporaryFile::adopt(const NativePath& path) {
    path_ = path;
    file_ = openShared(path.text, DELETE | FILE_WRITE_ATTRIBUTES, FILE_FLAG_OPEN_REPARSE_POINT);
    return file_.valid() ? 0 : GetLastError();
}

std::uint32_t TemporaryFile::stamp(const FileTimes& times, std::uint32_t attributes) {
    return stampFile(file_.get(), times, attributes);
}

std::uint32_t TemporaryFile::commit(const NativePath& destination, WriteGuard& guard) {
    std::uint32_t error = guard.mayGetItsName();
    if (error == 0) error = takeName(destination, true);
    return error == 0 && holdsData_ ? guard.named(file_.get()) : error;
}

std::uint32_t TemporaryFile::takeName(const NativePath& destination, bool replaces) {
    // The newer call also replaces a file that somebody reads; systems and volumes that do not know
    // it replace what nobody holds open. Either is one step for whoever looks.
    const bool done =
        (replaces &&
         rename(file_.get(), renameExtended, destination.text, replaceIfExists | posixSemantics)) ||
        rename(file_.get(), FileRenameInfo, destination.text, replaces ? TRUE : FALSE);
    if (!done) return GetLastError();
    path_ = {};
    return 0;
}

std::uint32_t settableAttributes(std::uint32_t attributes) {
    constexpr DWORD settable = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                               FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                               FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
    const DWORD kept = attributes & settable;
    return kept == 0 ? FILE_ATTRIBUTE_NORMAL : kept;
}

std::uint32_t stampFile(void* handle, const FileTimes& times, std::uint32_t attributes) {
    FILE_BASIC_INFO basic{};  // a time or a word of zero stays as it is
    basic.CreationTime.QuadPart = static_cast<LONGLONG>(times.creation);
    basic.LastAccessTime.QuadPart = static_cast<LONGLONG>(times.lastAccess);
    basic.LastWriteTime.QuadPart = static_cast<LONGLONG>(times.lastWrite);
    basic.FileAttributes = attributes == 0 ? 0 : settableAttributes(attributes);
    return SetFileInformationByHandle(handle, FileBasicInfo, &basic, sizeof basic) != 0
               ? 0
               : GetLastError();
}

std::uint32_t checkReplaceable(const NativePath& destination, const FileId& source,
                               std::optional<FileEntry>& old) {
    FileEntry entry;
    const std::uint32_t error = queryEntry(destination, entry);
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_NO_MORE_FILES) return 0;
    if (error != 0) return error;
    if (entry.isDirectory() || entry.isReadOnly()) return ERROR_ACCESS_DENIED;
    // To write into it would be refused while another program holds it; to replace it behind that
    // program's back would leave the two with different files.
    const UniqueHandle probe =
        openShared(destination.text, DELETE | FILE_WRITE_DATA, FILE_FLAG_OPEN_REPARSE_POINT);
    if (!probe.valid()) return GetLastError();
    FileEntry opened;
    const std::uint32_t queried = queryOpenFile(probe.get(), opened);
    if (queried != 0) return queried;
    entry.id = opened.id;
    old = entry;
    return source.known() && entry.id == source ? ERROR_SHARING_VIOLATION : 0;
}

bool isKept(const std::optional<FileEntry>& old) {
    return old && !old->isLink();
}

std::uint32_t encryptionOf(const std::optional<FileEntry>& entry) {
    return isKept(entry) ? entry->attributes & FILE_ATTRIBUTE_ENCRYPTED : 0;
}

std::uint32_t removeUnlessWritten(const NativePath& path) {
    {
        // Whoever still writes it does not share the right to delete it.
        const UniqueHandle lock(CreateFileW(path.text.c_str(), DELETE, 0, nullptr, OPEN_EXISTING,
                                            FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
        if (!lock.valid()) return ERROR_SHARING_VIOLATION;
    }
    removeEvenReadOnly(path.text);
    const DWORD left = GetFileAttributesW(path.text.c_str());
    return left == INVALID_FILE_ATTRIBUTES ? 0 : ERROR_ACCESS_DENIED;
}

namespace {

/// A directory of unfinished copies: other systems make them. One with directories in it is none.
std::uint32_t removeStaged(const NativePath& directory) {
    Listing listing;
    std::vector<NativePath> files;
    const std::uint32_t error = listing.open(directory, L"*");
    if (error != 0) return error;
    for (FileEntry entry; listing.next(entry);) {
        if (entry.name == "." || entry.name == "..") continue;
        if (entry.isDirectory()) return 0;
        files.push_back(directory.child(wide(entry.name)));
    }
    if (listing.error() != 0 || listing.leftSomethingOut()) return listing.error();
    for (const NativePath& path : files) {
        const std::uint32_t removal = removeUnlessWritten(path);
        if (removal != 0) return removal;
    }
    return RemoveDirectoryW(directory.text.c_str()) != 0 ? 0 : GetLastError();
}

}  // namespace

std::uint32_t removeTemporaries(const NativePath& directory) {
    Listing listing;
    std::uint32_t failure = listing.open(directory, ownPattern);
    for (FileEntry entry; listing.next(entry);) {
        const bool isLink = entry.isDirectory() && entry.isLink();
        if (isLink || !isTemporaryName(entry.name)) continue;
        const NativePath path = directory.child(wide(entry.name));
        const std::uint32_t error =
            entry.isDirectory() ? removeStaged(path) : removeUnlessWritten(path);
        if (error != 0 && error != ERROR_SHARING_VIOLATION) failure = error;
    }
    return failure != 0 ? failure : listing.error();
}

std::uint32_t listOwnFiles(const NativePath& directory, std::vector<std::string>& names) {
    Listing listing;
    const std::uint32_t failure = listing.open(directory, ownPattern);
    for (FileEntry entry; listing.next(entry);) {
        const std::optional<OwnFile> kind = ownFileKind(entry.name);
        const bool tells = kind == OwnFile::certificate || kind == OwnFile::restoreMark;
        if (tells && !entry.isDirectory()) names.push_back(entry.name);
    }
    return failure != 0 ? failure : listing.error();
}

}  // namespace coffrelune
