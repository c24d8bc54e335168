#include "platform/win32/win32_files.h"

#include <windows.h>

#include "platform/win32/entry_query.h"
#include "platform/win32/whole_file.h"
#include "platform/win32/win32_directory.h"

namespace coffrelune {
namespace {

constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Runs a step that gives a system error on the native form of a path.
template <typename Step>
Status at(const std::string& path, Step step) {
    NativePath native;
    Status status = toNative(path, native);
    if (!status.ok()) return status;
    const std::uint32_t error = step(native);
    return error == 0 ? Status() : failureAt(error, native, path);
}

std::uint32_t lastErrorUnless(BOOL done) {
    return done != 0 ? 0 : GetLastError();
}

std::uint32_t checkEnterable(const NativePath& path, LinkRule links) {
    FileEntry entry;
    const std::uint32_t error = queryEntry(path, entry);
    if (error != 0) return error;
    if (!entry.isDirectory()) return ERROR_DIRECTORY;
    // The root of a drive may bear the mark of the place where its volume is mounted.
    if (!entry.isLink() || path.isRoot() || links == LinkRule::follow) return 0;
    return links == LinkRule::refuse ? ERROR_DIRECTORY : checkLeadsAway(path);
}

}  // namespace

Status Win32Files::openDirectory(const std::string& path, LinkRule links, Wanted wanted,
                                 std::unique_ptr<Directory>& directory) {
    return at(path, [&](const NativePath& native) {
        std::uint32_t error = checkEnterable(native, links);
        if (error != 0) return error;
        auto opened = std::make_unique<Win32Directory>(native, path, wanted, watch());
        error = opened->open();
        if (error == 0) directory = std::move(opened);
        return error;
    });
}

std::shared_ptr<KnownEntries> Win32Files::watch() {
    std::erase_if(watched_, [](const auto& known) { return known.expired(); });
    auto known = std::make_shared<KnownEntries>();
    watched_.push_back(known);
    return known;
}

void Win32Files::forget(const std::string& path) {
    NativePath native;
    if (watched_.empty() || !toNative(path, native).ok()) return;
    for (const std::weak_ptr<KnownEntries>& one : watched_) {
        if (const auto known = one.lock()) known->forget(native.name());
    }
}

Status Win32Files::lookUp(const std::string& path, LinkRule links, FileEntry& entry) {
    return at(path, [&](const NativePath& native) {
        return links == LinkRule::follow ? queryTarget(native, entry) : queryEntry(native, entry);
    });
}

Status Win32Files::identify(const std::string& path, FileId& id) {
    return at(path, [&](const NativePath& native) { return queryIdentity(native, id); });
}

std::string Win32Files::resolve(const std::string& path) {
    return resolvedPath(path);
}

Status Win32Files::createDirectory(const std::string& path) {
    forget(path);
    return at(path, [&](const NativePath& native) {
        return lastErrorUnless(CreateDirectoryW(native.text.c_str(), nullptr));
    });
}

Status Win32Files::copyFile(const std::string& source, const std::string& destination,
                            LinkRule sourceLinks, CopyObserver* observer) {
    forget(destination);
    return copier_.copy(source, destination, sourceLinks, observer);
}

Status Win32Files::setAttributes(const std::string& path, std::uint32_t attributes) {
    forget(path);
    return at(path, [&](const NativePath& native) {
        return lastErrorUnless(
            SetFileAttributesW(native.text.c_str(), settableAttributes(attributes)));
    });
}

Status Win32Files::setTimes(const std::string& path, const FileTimes& times) {
    forget(path);
    return at(path, [&](const NativePath& native) -> std::uint32_t {
        const UniqueHandle file(CreateFileW(
            native.text.c_str(), FILE_WRITE_ATTRIBUTES, shareAll, nullptr, OPEN_EXISTING,
            FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
        return file.valid() ? stampFile(file.get(), times, 0) : GetLastError();
    });
}

Status Win32Files::removeFile(const std::string& path) {
    forget(path);
    return at(path, [&](const NativePath& native) -> std::uint32_t {
        FileEntry entry;
        const std::uint32_t error = queryEntry(native, entry);
        if (error != 0) return error;
        if (entry.isDirectory() && entry.isLink()) {
            return lastErrorUnless(RemoveDirectoryW(native.text.c_str()));
        }
        if (entry.isDirectory() || entry.isReadOnly()) return ERROR_ACCESS_DENIED;
        return lastErrorUnless(DeleteFileW(native.text.c_str()));
    });
}

Status Win32Files::removeLeftovers(const std::string& directory) {
    return at(directory, [&](const NativePath& native) {
        const std::uint32_t error = checkEnterable(native, LinkRule::follow);
        return error == 0 ? removeTemporaries(native) : error;
    });
}

Status Win32Files::readWhole(const std::string& path, std::uint64_t limit, std::string& bytes) {
    return at(path, [&](const NativePath& native) { return readWholeFile(native, limit, bytes); });
}

Status Win32Files::writeWhole(const std::string& path, const std::string& bytes) {
    forget(path);
    return at(path, [&](const NativePath& native) { return writeWholeFile(native, bytes); });
}

}  // namespace coffrelune
