#include "platform/win32/entry_query.h"

#include <windows.h>
#include <winioctl.h>

#include <array>
#include <cstring>

#include "platform/win32/unique_handle.h"
#include "platform/win32/wide_text.h"

namespace coffrelune {
namespace {

std::uint64_t joined(DWORD high, DWORD low) {
    return std::uint64_t{high} << 32 | low;
}

std::uint64_t unitsOf(const FILETIME& time) {
    return joined(time.dwHighDateTime, time.dwLowDateTime);
}

/// Many files are reparse points without being links (deduplicated, compressed, kept in a cloud):
/// those are what they seem. A file system that does not tell the tag has links alone.
std::uint32_t attributesOf(DWORD attributes, DWORD tag) {
    const bool isLink = (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
                        (tag == 0 || IsReparseTagNameSurrogate(tag));
    return isLink ? attributes : attributes & ~DWORD{FILE_ATTRIBUTE_REPARSE_POINT};
}

std::uint32_t tagOf(const WIN32_FIND_DATAW& found) {
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 ? found.dwReserved0 : 0;
}

/// Where a directory shows the top of a volume. The record of its reparse point is in the driver's
/// headers alone: the tag, two lengths, then offset and length of the text that the system follows.
bool showsVolume(const NativePath& path, DWORD tag) {
    if (tag != IO_REPARSE_TAG_MOUNT_POINT) return false;
    const UniqueHandle point = openShared(
        path.text, FILE_READ_ATTRIBUTES, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT);
    std::array<std::byte, MAXIMUM_REPARSE_DATA_BUFFER_SIZE> record{};
    DWORD length = 0;
    return point.valid() &&
           DeviceIoControl(point.get(), FSCTL_GET_REPARSE_POINT, nullptr, 0, record.data(),
                           static_cast<DWORD>(record.size()), &length, nullptr) != 0 &&
           leadsToVolume({record.data(), length});
}

// The records of the system that tell of a file name these members alike.
template <typename Record>
void fill(const Record& record, DWORD tag, FileEntry& entry) {
    entry.attributes = attributesOf(record.dwFileAttributes, tag);
    entry.size = entry.isDirectory() ? 0 : joined(record.nFileSizeHigh, record.nFileSizeLow);
    entry.times = {unitsOf(record.ftCreationTime), unitsOf(record.ftLastAccessTime),
                   unitsOf(record.ftLastWriteTime)};
    entry.id = {};
    entry.failure = 0;
    entry.mountPoint = false;
}

/// False for what no listing gives.
bool take(const NativePath& directory, const WIN32_FIND_DATAW& found, FileEntry& entry) {
    if (isSpecial(found.dwFileAttributes, tagOf(found))) return false;
    fill(found, tagOf(found), entry);
    entry.name = narrow(found.cFileName);
    if (entry.isLink()) {
        entry.mountPoint = showsVolume(directory.child(found.cFileName), tagOf(found));
    }
    return true;
}

void* findFirst(const wchar_t* pattern, WIN32_FIND_DATAW& found) {
    return FindFirstFileExW(pattern, FindExInfoBasic, &found, FindExSearchNameMatch, nullptr,
                            FIND_FIRST_EX_LARGE_FETCH);
}

/// Asks the directory that holds the entry: the answer is there even for what may not be opened.
std::uint32_t queryByListing(const NativePath& path, FileEntry& entry) {
    if (path.isRoot() ||
        path.text.find_first_of(L"*?<>\"", path.rootLength) != std::wstring::npos) {
        return ERROR_INVALID_NAME;
    }
    WIN32_FIND_DATAW found;
    void* find = findFirst(path.text.c_str(), found);
    if (find == INVALID_HANDLE_VALUE) return GetLastError();
    FindClose(find);
    fill(found, tagOf(found), entry);
    entry.mountPoint = showsVolume(path, tagOf(found));
    return 0;
}

UniqueHandle openForAttributes(const NativePath& path) {
    return openShared(path.text, FILE_READ_ATTRIBUTES, FILE_FLAG_BACKUP_SEMANTICS);
}

FileId checkedIdentity(std::uint64_t volume, std::uint64_t file) {
    return file == 0 ? FileId{} : FileId{volume, file};
}

/// Of an open file; unknown where the number of the file is zero, as some servers say of every one.
/// Identities of 128 bits are folded; on NTFS the upper half is zero.
FileId identityOf(void* handle, const BY_HANDLE_FILE_INFORMATION& information) {
    FILE_ID_INFO id;
    if (GetFileInformationByHandleEx(handle, FileIdInfo, &id, sizeof id) == 0) {
        return checkedIdentity(information.dwVolumeSerialNumber,
                               joined(information.nFileIndexHigh, information.nFileIndexLow));
    }
    std::uint64_t half[2] = {0, 0};
    for (std::size_t i = 0; i < sizeof id.FileId.Identifier; ++i) {
        half[i / 8] |= std::uint64_t{id.FileId.Identifier[i]} << (i % 8 * 8);
    }
    constexpr std::uint64_t odd = 0x9E3779B97F4A7C15;
    return checkedIdentity(id.VolumeSerialNumber, half[0] ^ half[1] * odd);
}

/// All but the name and the identity. 0 or a system error.
std::uint32_t queryOpen(void* handle, BY_HANDLE_FILE_INFORMATION& information, FileEntry& entry) {
    if (GetFileInformationByHandle(handle, &information) == 0) return GetLastError();
    FILE_ATTRIBUTE_TAG_INFO mark{};
    if ((information.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
        GetFileInformationByHandleEx(handle, FileAttributeTagInfo, &mark, sizeof mark) == 0) {
        mark.ReparseTag = 0;
    }
    fill(information, mark.ReparseTag, entry);
    return 0;
}

bool isDirectory(const NativePath& path) {
    const DWORD attributes = GetFileAttributesW(path.text.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace

std::uint32_t Listing::open(const NativePath& directory, const wchar_t* pattern) {
    close();
    WIN32_FIND_DATAW found;
    void* find = findFirst(directory.child(pattern).text.c_str(), found);
    if (find == INVALID_HANDLE_VALUE) {
        const DWORD error = GetLastError();
        return error == ERROR_FILE_NOT_FOUND || error == ERROR_NO_MORE_FILES ? 0 : error;
    }
    find_ = find;
    directory_ = directory;
    hasFirst_ = take(directory_, found, first_);
    leftSomethingOut_ = !hasFirst_;
    return 0;
}

bool Listing::next(FileEntry& entry) {
    if (find_ == nullptr) return false;
    if (hasFirst_) {
        entry = std::move(first_);
        hasFirst_ = false;
        return true;
    }
    WIN32_FIND_DATAW found;
    while (FindNextFileW(find_, &found) != 0) {
        if (take(directory_, found, entry)) return true;
        leftSomethingOut_ = true;
    }
    const DWORD error = GetLastError();
    error_ = error == ERROR_NO_MORE_FILES ? 0 : error;
    close();
    return false;
}

void Listing::close() {
    if (find_ != nullptr) FindClose(find_);
    find_ = nullptr;
}

std::uint32_t queryEntry(const NativePath& path, FileEntry& entry) {
    entry.name = narrow(path.name());
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (GetFileAttributesExW(path.text.c_str(), GetFileExInfoStandard, &data) == 0) {
        const DWORD error = GetLastError();
        const bool shut = error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
        return shut && queryByListing(path, entry) == 0 ? 0 : error;
    }
    fill(data, 0, entry);
    // The tag alone tells whether this is a link, and the cheap call does not give it.
    if (entry.isLink() && !path.isRoot()) return queryByListing(path, entry);
    return 0;
}

std::uint32_t queryTarget(const NativePath& path, FileEntry& entry) {
    const std::uint32_t error = queryEntry(path, entry);
    if (error != 0 || !entry.isLink()) return error;
    const UniqueHandle handle = openForAttributes(path);
    return handle.valid() ? queryOpenFile(handle.get(), entry) : GetLastError();
}

std::uint32_t queryIdentity(const NativePath& path, FileId& id) {
    const UniqueHandle handle = openForAttributes(path);
    FileEntry entry;
    const std::uint32_t error =
        handle.valid() ? queryOpenFile(handle.get(), entry) : GetLastError();
    if (error == 0) id = entry.id;
    return error;
}

std::uint32_t queryOpenState(void* handle, FileEntry& entry) {
    BY_HANDLE_FILE_INFORMATION information;
    const std::uint32_t error = queryOpen(handle, information, entry);
    // What is open is the end of every link.
    entry.attributes &= ~attribute::link;
    return error;
}

std::uint32_t queryOpenFile(void* handle, FileEntry& entry) {
    const std::uint32_t error = queryOpenEntry(handle, entry);
    entry.attributes &= ~attribute::link;
    return error;
}

std::uint32_t queryOpenEntry(void* handle, FileEntry& entry) {
    BY_HANDLE_FILE_INFORMATION information;
    const std::uint32_t error = queryOpen(handle, information, entry);
    if (error == 0) entry.id = identityOf(handle, information);
    return error;
}

std::uint32_t checkLeadsAway(const NativePath& link) {
    FileId target;
    const std::uint32_t error = queryIdentity(link, target);
    if (error != 0) return error;
    // Without identities nothing would stop a walk that goes in a circle.
    if (!target.known()) return ERROR_CANT_RESOLVE_FILENAME;
    for (NativePath place = link; !place.isRoot();) {
        place = place.holder();
        FileId id;
        if (queryIdentity(place, id) == 0 && id == target) return ERROR_CANT_RESOLVE_FILENAME;
    }
    return 0;
}

bool isSpecial(std::uint32_t attributes, std::uint32_t tag) {
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return false;
    // Not in every compiler's headers; the values are part of the system's interface:
    // https://learn.microsoft.com/windows/win32/fileio/reparse-point-tags
    switch (tag) {
        case 0x8000001B:  // APPEXECLINK
        case 0x80000023:  // AF_UNIX
        case 0x80000024:  // LX_FIFO
        case 0x80000025:  // LX_CHR
        case 0x80000026:  // LX_BLK
            return true;
        default:
            return false;
    }
}

bool leadsToVolume(std::span<const std::byte> record) {
    struct Head {
        std::uint32_t tag;
        std::uint16_t dataLength;
        std::uint16_t reserved;
        std::uint16_t targetOffset;  // in bytes, from the end of this
        std::uint16_t targetLength;
        std::uint16_t shownOffset;
        std::uint16_t shownLength;
    } head{};
    if (record.size() < sizeof head) return false;
    std::memcpy(&head, record.data(), sizeof head);
    const auto texts = record.subspan(sizeof head);
    if (head.tag != IO_REPARSE_TAG_MOUNT_POINT ||
        texts.size() < std::size_t{head.targetOffset} + head.targetLength) {
        return false;
    }
    std::wstring target(head.targetLength / sizeof(wchar_t), L'\0');
    std::memcpy(target.data(), texts.data() + head.targetOffset, target.size() * sizeof(wchar_t));
    const std::size_t end = target.find(L'}');
    return target.starts_with(LR"(\??\Volume{)") && end != std::wstring::npos &&
           target.find_first_not_of(L'\\', end + 1) == std::wstring::npos;
}

Status failureAt(std::uint32_t error, const NativePath& path, const std::string& core) {
    const bool holderMissing =
        error == ERROR_FILE_NOT_FOUND && (path.isRoot() || !isDirectory(path.holder()));
    return Status::failure(holderMissing ? ERROR_PATH_NOT_FOUND : error, core);
}

}  // namespace coffrelune
