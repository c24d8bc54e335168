#include "platform/win32/win32_files.h"

#include <windows.h>

#include "platform/win32/entry_query.h"
#include "platform/win32/file_changes.h"
#include "platform/win32/win32_batch.h"
#include "platform/win32/win32_directory.h"
#include "platform/win32/win32_walk.h"

namespace coffrelune {
namespace {

std::uint32_t lastErrorUnless(BOOL done) {
    return done != 0 ? 0 : GetLastError();
}

/// `entry`: what is there.
std::uint32_t checkEnterable(const Win32Place& place, LinkRule links, FileEntry& entry) {
    const std::uint32_t error = queryEntry(place.path, entry);
    if (error != 0) return error;
    if (!entry.isDirectory()) return ERROR_DIRECTORY;
    // The root of a drive may bear the mark of the place where its volume is mounted.
    if (place.path.isRoot() || place.isHeldRoot()) entry.attributes &= ~attribute::link;
    if (!entry.isLink() || links == LinkRule::follow) return 0;
    return links == LinkRule::refuse ? ERROR_DIRECTORY : checkLeadsAway(place.path);
}

/// A directory whose own files are wanted.
std::uint32_t checkOwner(const Win32Place& place) {
    FileEntry entry;
    const std::uint32_t error = checkEnterable(place, LinkRule::follow, entry);
    return error == 0 ? place.checkWhole() : error;
}

}  // namespace

/// Runs a step that gives a system error at the place that a path means.
template <typename Step>
Status Win32Files::at(const std::string& path, Step step) const {
    Win32Place place;
    Status status = places_.reach(path, place);
    if (!status.ok()) return status;
    const std::uint32_t error = step(place);
    return error == 0 ? status : failureAt(error, place.path, path);
}

/// The same for a step that changes what is there.
template <typename Step>
Status Win32Files::writeAt(const std::string& path, Step step) {
    Win32Place place;
    Status status = places_.reachToWrite(path, place);
    if (!status.ok()) return status;
    const std::uint32_t error = step(place);
    return error == 0 ? status : failureAt(error, place.path, path);
}

Status Win32Files::hold(const std::string& root, std::unique_ptr<HeldTree>& held) {
    return places_.holds().take(root, held);
}

Status Win32Files::openDirectory(const std::string& path, LinkRule links, Wanted wanted,
                                 std::unique_ptr<Directory>& directory) {
    return at(path, [&](const Win32Place& place) {
        FileEntry entry;
        const bool isPlain = place.hold != nullptr && links != LinkRule::follow &&
                             place.hold->root.opensPlain(place.path);
        std::uint32_t error = isPlain ? 0 : checkEnterable(place, links, entry);
        if (error == 0 && place.hold != nullptr && entry.isLink()) {
            error = queryIdentity(place.path, entry.id);
            if (error == 0) place.hold->root.enter(place.path, entry.id);
        }
        if (error == 0) error = place.checkWhole();
        if (error != 0) return error;
        const std::shared_ptr<HeldRoot> root(place.hold, place.hold ? &place.hold->root : nullptr);
        auto opened =
            std::make_unique<Win32Directory>(place.path, path, wanted, places_.watch(), root);
        error = opened->open();
        if (error == 0) directory = std::move(opened);
        return error;
    });
}

Status Win32Files::lookUp(const std::string& path, LinkRule links, FileEntry& entry) {
    return at(path, [&](const Win32Place& place) {
        return links == LinkRule::follow ? queryTarget(place.path, entry)
                                         : queryEntry(place.path, entry);
    });
}

Status Win32Files::identify(const std::string& path, FileId& id) {
    return at(path, [&](const Win32Place& place) { return queryIdentity(place.path, id); });
}

std::string Win32Files::resolve(const std::string& path) {
    Win32Place place;
    const bool held = places_.holds().locate(path, place).ok() && place.hold != nullptr;
    return resolvedPath(held ? toCore(place.path.text) : path);
}

// What is made has the rights that the directory around it hands down, whoever may enter.
Status Win32Files::createDirectory(const std::string& path, DirectoryAccess) {
    return writeAt(path, [](const Win32Place& place) {
        return lastErrorUnless(CreateDirectoryW(place.path.text.c_str(), nullptr));
    });
}

// Rights come from where a directory lies: those of the source would not hold there.
Status Win32Files::matchDirectory(const std::string& source, const std::string& target) {
    Status status = checkDirectory(source);
    return status.ok() ? checkDirectory(target) : status;
}

Status Win32Files::checkDirectory(const std::string& path) const {
    return at(path, [](const Win32Place& place) {
        FileEntry entry;
        return checkEnterable(place, LinkRule::refuse, entry);
    });
}

Status Win32Files::removeDirectory(const std::string& path) {
    return writeAt(path, [](const Win32Place& place) {
        if (place.hold != nullptr) place.hold->root.letGo(place.path);
        return removeDirectoryAt(place.path);
    });
}

Status Win32Files::copyFile(const std::string& source, const std::string& destination,
                            LinkRule sourceLinks, CopyObserver* observer) {
    Win32Place from;
    Win32Place to;
    Status status = places_.reach(source, from);
    if (status.ok()) status = places_.reachToWrite(destination, to);
    if (!status.ok()) return status;
    HeldWriteGuard guard(to, Durability::now);
    CopyTerms terms;
    terms.sourceLinks = sourceLinks;
    terms.observer = observer;
    return copier_.copy({source, destination, from.path, to.path, guard}, terms);
}

std::unique_ptr<CopyBatch> Win32Files::startBatch(const std::string& root,
                                                  AfterFailure afterFailure, CopyEvents& events) {
    return std::make_unique<Win32Batch>(places_, copier_, root, afterFailure, events);
}

std::unique_ptr<WalkAhead> Win32Files::startWalk() {
    return std::make_unique<Win32Walk>(*this, places_);
}

Status Win32Files::setAttributes(const std::string& path, std::uint32_t attributes) {
    return writeAt(path, [&](const Win32Place& place) {
        return lastErrorUnless(
            SetFileAttributesW(place.path.text.c_str(), settableAttributes(attributes)));
    });
}

Status Win32Files::setTimes(const std::string& path, const FileTimes& times) {
    return writeAt(path, [&](const Win32Place& place) -> std::uint32_t {
        const UniqueHandle file =
            openShared(place.path.text, FILE_WRITE_ATTRIBUTES,
                       FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT);
        return file.valid() ? stampFile(file.get(), times, 0) : GetLastError();
    });
}

Status Win32Files::removeFile(const std::string& path) {
    return writeAt(path, [](const Win32Place& place) {
        if (place.hold != nullptr) place.hold->root.letGo(place.path);
        return removeFileAt(place.path);
    });
}

Status Win32Files::removeLeftovers(const std::string& directory) {
    return at(directory, [](const Win32Place& place) {
        const std::uint32_t error = checkOwner(place);
        return error == 0 ? removeTemporaries(place.path) : error;
    });
}

Status Win32Files::ownFiles(const std::string& directory, std::vector<std::string>& names) {
    names.clear();
    return at(directory, [&](const Win32Place& place) {
        const std::uint32_t error = checkOwner(place);
        return error == 0 ? listOwnFiles(place.path, names) : error;
    });
}

Status Win32Files::readWhole(const std::string& path, std::uint64_t limit, std::string& bytes) {
    return at(path,
              [&](const Win32Place& place) { return readWholeFile(place.path, limit, bytes); });
}

Status Win32Files::writeWhole(const std::string& path, const std::string& bytes,
                              Durability durability) {
    return writeAt(path, [&](const Win32Place& place) {
        NativePath target = place.path;
        std::uint32_t error = followLink(target);
        if (error == 0 && place.hold != nullptr && target.text != place.path.text) {
            error = ERROR_CANT_RESOLVE_FILENAME;
        }
        if (error != 0) return error;
        // Outside every hold nobody flushes the volume later.
        const Durability promised = place.hold == nullptr ? Durability::now : durability;
        HeldWriteGuard guard(place, durability);
        return writeWholeFile(target, bytes, promised, guard);
    });
}

}  // namespace coffrelune
