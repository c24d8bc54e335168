#include "platform/win32/file_copier.h"

#include <windows.h>
#include <winioctl.h>

#include "platform/win32/access_rights.h"
#include "platform/win32/entry_query.h"

namespace coffrelune {
namespace {

UniqueHandle openForReading(const std::wstring& path) {
    return openShared(path, GENERIC_READ, FILE_FLAG_SEQUENTIAL_SCAN);
}

/// Errors that say that links cannot be made there, or not by this user.
bool saysNoLinks(std::uint32_t error) {
    return error == ERROR_PRIVILEGE_NOT_HELD || error == ERROR_NOT_SUPPORTED ||
           error == ERROR_INVALID_FUNCTION || error == ERROR_INVALID_PARAMETER;
}

/// Errors that say that the volume of the source has no streams, or does not list them:
/// https://learn.microsoft.com/windows/win32/api/fileapi/nf-fileapi-findfirststreamw
bool saysNoStreams(std::uint32_t error) {
    return error == ERROR_INVALID_PARAMETER || error == ERROR_NOT_SUPPORTED ||
           error == ERROR_INVALID_FUNCTION || error == ERROR_CALL_NOT_IMPLEMENTED ||
           error == ERROR_INVALID_LEVEL;
}

/// False when the volume of an open file says that it knows no named streams. To create one there
/// fails with whatever its driver or its server makes of the name.
bool mayHoldStreams(void* file) {
    DWORD flags = 0;
    return GetVolumeInformationByHandleW(file, nullptr, 0, nullptr, nullptr, &flags, nullptr, 0) ==
               0 ||
           (flags & FILE_NAMED_STREAMS) != 0;
}

/// The temporary file as what its source is kept as. 0 or a system error.
std::uint32_t prepare(const FileEntry& source, std::uint32_t encryption, TemporaryFile& output,
                      bool& sparse) {
    if (encryption != 0) {
        FileEntry made;
        const std::uint32_t error = queryOpenFile(output.handle(), made);
        if (error != 0) return error;
        if ((made.attributes & FILE_ATTRIBUTE_ENCRYPTED) == 0) return ERROR_ENCRYPTION_FAILED;
    }
    DWORD unused = 0;
    sparse = (source.attributes & FILE_ATTRIBUTE_SPARSE_FILE) != 0 &&
             DeviceIoControl(output.handle(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &unused,
                             nullptr) != 0;
    return 0;
}

}  // namespace

Status Win32FileCopier::copy(const CopyPair& pair, LinkRule sourceLinks, CopyObserver* observer) {
    if (abandoned_.load(std::memory_order_relaxed)) {
        return Status::failure(error_number::requestAborted, pair.source);
    }
    FileEntry entry;
    const std::uint32_t error = queryEntry(pair.from, entry);
    if (error != 0) return failureAt(error, pair.from, pair.source);
    if (entry.isDirectory()) return Status::failure(error_number::accessDenied, pair.source);
    if (entry.isLink() && sourceLinks == LinkRule::refuse) return copyLink(pair, entry, observer);
    return copyContent(pair, nullptr, observer);
}

/// `times`: null for the source's own.
Status Win32FileCopier::copyContent(const CopyPair& pair, const FileTimes* times,
                                    CopyObserver* observer) {
    const UniqueHandle input = openForReading(pair.from.text);
    if (!input.valid()) return failureAt(GetLastError(), pair.from, pair.source);
    // Taken before the reading: a source that changes meanwhile keeps a later time than its copy
    // and is copied again by the next run.
    FileEntry before;
    std::uint32_t error = queryOpenFile(input.get(), before);
    if (error != 0) return failureAt(error, pair.from, pair.source);
    std::optional<FileEntry> old;
    error = checkReplaceable(pair.to, before.id, old);

    const std::uint32_t encryption = encryptionOf(before) | encryptionOf(old);
    TemporaryFile output;
    if (error == 0) error = output.create(pair.to.holder(), encryption);
    // While there is nothing in it: nobody reads what the old file would have kept from him.
    if (error == 0 && old) keepAccessRights(pair.to, output.path());
    bool sparse = false;
    if (error == 0) error = prepare(before, encryption, output, sparse);
    if (error == 0) {
        error = data_.copy(input.get(), before.size, output.handle(), sparse, observer);
    }
    if (error == 0) error = copyStreams(pair, output);
    if (error == 0) {
        const std::uint64_t lastWrite = (times != nullptr ? *times : before.times).lastWrite;
        error = output.stamp({0, 0, lastWrite}, before.attributes);
    }
    if (error == 0) error = pair.guard.dataWritten(output.handle());
    if (error == 0) error = output.commit(pair.to, pair.guard);
    return error == 0 ? Status() : failureAt(error, pair.to, pair.destination);
}

/// What a program attached to the file under a name of its own ("downloaded from there").
std::uint32_t Win32FileCopier::copyStreams(const CopyPair& pair, const TemporaryFile& output) {
    WIN32_FIND_STREAM_DATA stream;
    void* find = FindFirstStreamW(pair.from.text.c_str(), FindStreamInfoStandard, &stream, 0);
    if (find == INVALID_HANDLE_VALUE) {
        const DWORD error = GetLastError();
        return error == ERROR_HANDLE_EOF || saysNoStreams(error) ? 0 : error;
    }
    std::uint32_t error = 0;
    bool asked = false;
    for (bool more = true; more && error == 0;) {
        const std::wstring name = stream.cStreamName;
        if (name != L"::$DATA") {
            // The file is worth keeping without. Asked once, and for files that have some alone.
            if (!asked && !mayHoldStreams(output.handle())) break;
            asked = true;
            error = copyStream(pair.from.text + name, output.path().text + name,
                               static_cast<std::uint64_t>(stream.StreamSize.QuadPart), pair.guard);
        }
        more = FindNextStreamW(find, &stream) != 0;
        // The end of the list, unlike that of a stream that is shorter than it was.
        if (!more && error == 0 && GetLastError() != ERROR_HANDLE_EOF) error = GetLastError();
    }
    FindClose(find);
    return error;
}

std::uint32_t Win32FileCopier::copyStream(const std::wstring& source,
                                          const std::wstring& destination, std::uint64_t size,
                                          WriteGuard& guard) {
    // No more than the old file's rights had to grant for it to be replaced.
    constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const UniqueHandle output(CreateFileW(destination.c_str(), FILE_WRITE_DATA, shareAll, nullptr,
                                          CREATE_NEW, 0, nullptr));
    // Some servers say that they know streams and still take the name for a bad one.
    if (!output.valid() && GetLastError() == ERROR_INVALID_NAME) return 0;
    if (!output.valid()) return GetLastError();
    const UniqueHandle input = openForReading(source);
    if (!input.valid()) return GetLastError();
    const std::uint32_t error = data_.copy(input.get(), size, output.get(), false, nullptr);
    return error == 0 ? guard.dataWritten(output.get()) : error;
}

Status Win32FileCopier::copyLink(const CopyPair& pair, const FileEntry& link,
                                 CopyObserver* observer) {
    std::optional<FileEntry> old;
    std::uint32_t error = checkReplaceable(pair.to, {}, old);
    if (error != 0) return failureAt(error, pair.to, pair.destination);
    const NativePath made = temporaryPath(pair.to.holder());
    if (CopyFileExW(pair.from.text.c_str(), made.text.c_str(), nullptr, nullptr, nullptr,
                    COPY_FILE_COPY_SYMLINK | COPY_FILE_FAIL_IF_EXISTS) == 0) {
        error = GetLastError();
        // The content with the link's own time: so the next run finds it up to date.
        if (saysNoLinks(error)) return copyContent(pair, &link.times, observer);
        return failureAt(error, pair.to, pair.destination);
    }
    TemporaryFile output;
    error = output.adopt(made);
    if (error == 0) error = output.stamp({0, 0, link.times.lastWrite}, 0);
    if (error == 0) error = output.commit(pair.to, pair.guard);
    if (error != 0) return failureAt(error, pair.to, pair.destination);
    if (observer != nullptr) observer->chunkFinished(link.size);
    return {};
}

}  // namespace coffrelune
