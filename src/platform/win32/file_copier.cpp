#include "platform/win32/file_copier.h"

#include <windows.h>
#include <winioctl.h>

#include <cstddef>
#include <string_view>

#include "platform/win32/entry_query.h"
#include "platform/win32/file_changes.h"

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

/// True when the volume of an open file says that it has no named streams. The open file is asked:
/// to list them by its path opens it again. "No" may also mean that the volume does not tell.
bool hasContentAlone(void* file) {
    alignas(FILE_STREAM_INFO) std::byte list[512];
    if (GetFileInformationByHandleEx(file, FileStreamInfo, list, sizeof list) == 0) return false;
    const auto& first = *reinterpret_cast<const FILE_STREAM_INFO*>(list);
    const std::wstring_view name(first.StreamName, first.StreamNameLength / sizeof(wchar_t));
    return first.NextEntryOffset == 0 && name == L"::$DATA";
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

/// False when what was opened is not the file that a listing gave, or has changed since.
bool looksLike(const FileEntry& opened, const FileEntry& listed) {
    return opened.size == listed.size && opened.times.lastWrite == listed.times.lastWrite;
}

/// What a copy of `original` is stamped with.
FileTimes timesFor(const CopyTerms& terms, const FileEntry& original) {
    return terms.allTimes ? original.times : FileTimes{0, 0, original.times.lastWrite};
}

std::uint32_t attributesFor(const CopyTerms& terms, const FileEntry& original) {
    const std::uint32_t attributes =
        terms.writable ? original.attributes & ~attribute::readOnly : original.attributes;
    return settableAttributes(attributes);
}

}  // namespace

Status Win32FileCopier::copy(const CopyPair& pair, const CopyTerms& terms) {
    WrittenCopy copy;
    Status status = write(pair, terms, copy);
    if (!status.ok()) return status;
    std::uint32_t error = copy.file.holdsData() ? pair.guard.dataWritten(copy.file.handle()) : 0;
    if (error == 0) error = copy.file.commit(pair.to, pair.guard);
    return error == 0 ? status : failureAt(error, pair.to, pair.destination);
}

Status Win32FileCopier::write(const CopyPair& pair, const CopyTerms& terms, WrittenCopy& copy) {
    if (abandoned_.load(std::memory_order_relaxed)) {
        return Status::failure(error_number::requestAborted, pair.source);
    }
    FileEntry entry;
    const bool isKnown = terms.listed != nullptr;
    const std::uint32_t error = isKnown ? 0 : queryEntry(pair.from, entry);
    if (error != 0) return failureAt(error, pair.from, pair.source);
    if (isKnown) entry = *terms.listed;
    if (entry.isDirectory()) return Status::failure(error_number::accessDenied, pair.source);
    if (entry.isLink() && terms.sourceLinks == LinkRule::refuse) {
        return writeLink(pair, terms, entry, copy);
    }
    return writeContent(pair, terms, nullptr, copy);
}

/// `link`: whose times the copy gets; null for the source's own.
Status Win32FileCopier::writeContent(const CopyPair& pair, const CopyTerms& terms,
                                     const FileEntry* link, WrittenCopy& copy) {
    const UniqueHandle input = openForReading(pair.from.text);
    if (!input.valid()) return failureAt(GetLastError(), pair.from, pair.source);
    // Taken before the reading: a source that changes meanwhile keeps a later time than its copy
    // and is copied again by the next run.
    FileEntry before;
    std::uint32_t error =
        terms.isNew ? queryOpenState(input.get(), before) : queryOpenFile(input.get(), before);
    if (error != 0) return failureAt(error, pair.from, pair.source);
    if (link != nullptr) {
        before.times = link->times;
    } else if (terms.listed != nullptr && !looksLike(before, *terms.listed)) {
        // Something else bears the name by now, a link perhaps.
        CopyTerms again = terms;
        again.listed = nullptr;
        return write(pair, again, copy);
    }
    error = fill(pair, terms, input.get(), before, copy);
    return error == 0 ? Status() : failureAt(error, pair.to, pair.destination);
}

/// 0 or a system error.
std::uint32_t Win32FileCopier::fill(const CopyPair& pair, const CopyTerms& terms, void* input,
                                    const FileEntry& before, WrittenCopy& copy) {
    std::uint32_t error = 0;
    if (!terms.isNew) error = checkReplaceable(pair.to, before.id, copy.old);
    const std::uint32_t encryption = encryptionOf(before) | encryptionOf(copy.old);
    TemporaryFile& output = copy.file;
    if (error == 0) error = output.create(pair.to.holder(), encryption);
    // While there is nothing in it: nobody reads what the old file would have kept from him.
    if (error == 0 && isKept(copy.old)) keepAccessRights(pair.to, output.path());
    bool sparse = false;
    if (error == 0) error = prepare(before, encryption, output, sparse);
    if (error == 0) {
        error = data_.copy(input, before.size, output.handle(), sparse, terms.observer);
    }
    if (error == 0 && !hasContentAlone(input)) error = copyStreams(pair, output);
    copy.size = before.size;
    if (error != 0) return error;
    TimeStamps alone;
    TimeStamps& stamps = terms.stamps != nullptr ? *terms.stamps : alone;
    return output.stamp(stamps.fitting(output.handle(), timesFor(terms, before)),
                        attributesFor(terms, before));
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

Status Win32FileCopier::writeLink(const CopyPair& pair, const CopyTerms& terms,
                                  const FileEntry& link, WrittenCopy& copy) {
    std::uint32_t error = 0;
    if (!terms.isNew) error = checkReplaceable(pair.to, {}, copy.old);
    if (error != 0) return failureAt(error, pair.to, pair.destination);
    const NativePath made = temporaryPath(pair.to.holder());
    if (CopyFileExW(pair.from.text.c_str(), made.text.c_str(), nullptr, nullptr, nullptr,
                    COPY_FILE_COPY_SYMLINK | COPY_FILE_FAIL_IF_EXISTS) == 0) {
        error = GetLastError();
        // The content with the link's own time: so the next run finds it up to date.
        if (saysNoLinks(error)) return writeContent(pair, terms, &link, copy);
        return failureAt(error, pair.to, pair.destination);
    }
    error = copy.file.adopt(made);
    const std::uint32_t attributes = terms.writable ? attributesFor(terms, link) : 0;
    if (error == 0) error = copy.file.stamp(timesFor(terms, link), attributes);
    if (error != 0) return failureAt(error, pair.to, pair.destination);
    if (terms.observer != nullptr) terms.observer->chunkFinished(link.size);
    return {};
}

}  // namespace coffrelune
