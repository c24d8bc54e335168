#include "platform/memory/memory_files.h"

#include <algorithm>

#include "platform/memory/memory_directory.h"

namespace coffrelune {
namespace {

constexpr std::size_t longestName = 255;  // bytes

const char* const writingCalls[] = {"createDirectory", "matchDirectory",  "removeDirectory",
                                    "copyFile",        "setAttributes",   "setTimes",
                                    "removeFile",      "removeLeftovers", "writeWhole"};

std::string nameOf(const std::string& call) {
    return call.substr(0, call.find(' '));
}

// What a path asks for, however the disk spells it.
std::string lastName(const std::string& path) {
    const MemoryPath parts = splitMemoryPath(path);
    return parts.components.empty() ? std::string() : parts.components.back();
}

}  // namespace

void MemoryFiles::record(const char* name, const std::string& path, const std::string& more) {
    std::string call = std::string(name) + ' ' + path;
    if (!more.empty()) call += ' ' + more;
    calls_.push_back(std::move(call));
}

std::vector<std::string> MemoryFiles::calls(const std::string& name) const {
    std::vector<std::string> chosen;
    std::copy_if(calls_.begin(), calls_.end(), std::back_inserter(chosen),
                 [&](const std::string& call) { return nameOf(call) == name; });
    return chosen;
}

std::vector<std::string> MemoryFiles::writes() const {
    std::vector<std::string> chosen;
    std::copy_if(
        calls_.begin(), calls_.end(), std::back_inserter(chosen), [](const std::string& call) {
            return std::count(std::begin(writingCalls), std::end(writingCalls), nameOf(call)) > 0;
        });
    return chosen;
}

void MemoryFiles::setCopyCost(std::int64_t millisecondsPerFile, std::uint64_t bytesPerMillisecond) {
    millisecondsPerFile_ = millisecondsPerFile;
    bytesPerMillisecond_ = bytesPerMillisecond;
    unpaidBytes_ = 0;
}

// From the innermost hold that holds the path.
Status MemoryFiles::locate(const std::string& path, LinkRule links, MemoryPlace& place) const {
    return disk_.locate(path, links, place, holds_.holding(path));
}

// Something that bears the path.
Status MemoryFiles::existing(const std::string& path, LinkRule links, MemoryPlace& place) const {
    Status status = locate(path, links, place);
    if (status.ok() && !place.node) status = Status::failure(error_number::fileNotFound, path);
    return status;
}

// The same, to be changed.
Status MemoryFiles::changeable(const std::string& path, LinkRule links, MemoryPlace& place) const {
    Status status = existing(path, links, place);
    if (!status.ok()) return status;
    if (place.volume->writeProtected) return Status::failure(error_number::writeProtect, path);
    if (place.node->writeError != 0) return Status::failure(place.node->writeError, path);
    return {};
}

// A name that a file may be written under, taken by another file or not.
Status MemoryFiles::prepareDestination(const std::string& path, LinkRule links,
                                       MemoryPlace& place) const {
    Status status = locate(path, links, place);
    if (status.ok()) status = checkName(path, place);
    return status.ok() ? checkReplaceable(path, place) : status;
}

Status MemoryFiles::checkName(const std::string& path, const MemoryPlace& place) {
    if (place.volume->writeProtected) return Status::failure(error_number::writeProtect, path);
    if (place.parent->writeError != 0) return Status::failure(place.parent->writeError, path);
    if (place.name.size() > longestName) return Status::failure(error_number::nameTooLong, path);
    return {};
}

// A file, or nothing, may take the place of what is there.
Status MemoryFiles::checkReplaceable(const std::string& path, const MemoryPlace& place) {
    if (place.node == nullptr) return {};
    if (place.node->isDirectory() || place.node->isReadOnly()) {
        return Status::failure(error_number::accessDenied, path);
    }
    return place.node->writeError == 0 ? Status() : Status::failure(place.node->writeError, path);
}

Status MemoryFiles::openDirectory(const std::string& path, LinkRule links, Wanted wanted,
                                  std::unique_ptr<Directory>& directory) {
    record("openDirectory", path);
    MemoryPlace place;
    Status status = locate(path, links, place);
    if (!status.ok()) return status;
    if (!place.node) return Status::failure(error_number::pathNotFound, path);
    if (!place.node->isDirectory()) return Status::failure(error_number::notADirectory, path);
    if (wanted != Wanted::nothing && place.node->readError != 0) {
        return Status::failure(place.node->readError, path);
    }
    if (MemoryHold* hold = place.link == nullptr ? nullptr : holds_.holding(path)) {
        hold->entered.insert(place.link);
    }
    directory = std::make_unique<MemoryDirectory>(disk_, place, path, wanted, calls_);
    return {};
}

Status MemoryFiles::lookUp(const std::string& path, LinkRule links, FileEntry& entry) {
    record("lookUp", path);
    MemoryPlace place;
    Status status = existing(path, links, place);
    if (status.ok()) entry = place.volume->shown(*place.node, lastName(path));
    return status;
}

Status MemoryFiles::identify(const std::string& path, FileId& id) {
    record("identify", path);
    MemoryPlace place;
    Status status = existing(path, LinkRule::follow, place);
    if (status.ok()) id = place.volume->shown(*place.node, lastName(path)).id;
    return status;
}

std::string MemoryFiles::resolve(const std::string& path) {
    record("resolve", path);
    MemoryPlace place;
    const Status status = locate(path, LinkRule::follow, place);
    return status.code() == error_number::cannotResolveName ? path : place.resolved;
}

Status MemoryFiles::setAttributes(const std::string& path, std::uint32_t attributes) {
    record("setAttributes", path, std::to_string(attributes));
    MemoryPlace place;
    Status status = changeable(path, LinkRule::refuse, place);
    if (!status.ok()) return status;
    constexpr std::uint32_t kind = attribute::directory | attribute::link;
    const std::uint32_t kept = place.node->attributes & kind;
    const std::uint32_t wanted = (attributes & ~(kind | attribute::normal)) | kept;
    place.node->attributes = wanted == 0 ? attribute::normal : wanted;
    return {};
}

Status MemoryFiles::setTimes(const std::string& path, const FileTimes& times) {
    record("setTimes", path);
    MemoryPlace place;
    Status status = changeable(path, LinkRule::refuse, place);
    if (!status.ok()) return status;
    place.node->times = times;
    place.node->times.lastWrite = place.volume->heldTime(times.lastWrite, clock_.fileTime());
    return status;
}

Status MemoryFiles::removeFile(const std::string& path) {
    record("removeFile", path);
    MemoryPlace place;
    Status status = existing(path, LinkRule::refuse, place);
    if (!status.ok()) return status;
    // Removing asks of the name what replacing asks.
    status = prepareDestination(path, LinkRule::refuse, place);
    if (status.ok()) place.parent->remove(disk_.key(*place.volume, place.name));
    return status;
}

Status MemoryFiles::readWhole(const std::string& path, std::uint64_t limit, std::string& bytes) {
    record("readWhole", path);
    MemoryPlace place;
    Status status = existing(path, LinkRule::follow, place);
    if (!status.ok()) return status;
    if (place.node->isDirectory()) return Status::failure(error_number::accessDenied, path);
    if (place.node->readError != 0) return Status::failure(place.node->readError, path);
    if (place.node->size() > limit) return Status::failure(error_number::fileTooLarge, path);
    bytes = place.node->content + std::string(place.node->hole, '\0');
    bytes.resize(place.node->readableSize());
    return {};
}

Status MemoryFiles::writeWhole(const std::string& path, const std::string& bytes,
                               Durability durability) {
    record("writeWhole", path, durability == Durability::now ? "" : "nextFlush");
    MemoryPlace place;
    Status status = prepareDestination(path, LinkRule::follow, place);
    if (!status.ok()) return status;
    if (leavesHold(path, place)) {
        return Status::failure(error_number::cannotResolveName, path);
    }
    MemoryVolume& volume = *place.volume;
    // The old content keeps its room until the new one stands complete.
    if (volume.capacity && volume.usedBytes() + bytes.size() > *volume.capacity) {
        return Status::failure(error_number::diskFull, path);
    }
    const std::uint32_t attributes = place.node ? place.node->attributes : attribute::normal;
    const std::string temporary = disk_.newTemporaryName();
    auto node = disk_.newNode(volume, temporary, attributes);
    node->content = bytes;
    const std::uint64_t now = clock_.fileTime();
    node->times = {place.node ? place.node->times.creation : now, now, now};
    place.parent->add(disk_.key(*place.volume, temporary), std::move(node));
    place.parent->rename(disk_.key(*place.volume, temporary), disk_.key(*place.volume, place.name),
                         place.name);
    return {};
}

}  // namespace coffrelune
