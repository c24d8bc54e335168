#include <algorithm>

#include "platform/memory/memory_files.h"

namespace coffrelune {

// One copy from its first look to its final name.
struct MemoryFiles::Copy {
    std::string from;
    std::string to;
    MemoryNode::Pointer source;
    MemoryPlace destination;
    std::string temporaryName;
    std::uint64_t size = 0;  // when it was opened
    std::uint32_t attributes = 0;
    FileTimes times;  // as they were before the reading
};

// What the copy reads. A link that the destination cannot hold stands for its target, when that is
// a file.
Status MemoryFiles::openSource(const Copy& copy, LinkRule links, MemoryPlace& source) const {
    Status status = existing(copy.from, links, source);
    if (!status.ok()) return status;
    if (source.node->isLink() && !copy.destination.volume->holdsLinks) {
        status = existing(copy.from, LinkRule::follow, source);
        if (!status.ok() || source.node->isDirectory()) {
            return Status::failure(error_number::notSupported, copy.from);
        }
    }
    if (source.node->isDirectory()) return Status::failure(error_number::accessDenied, copy.from);
    if (source.node->readError != 0) return Status::failure(source.node->readError, copy.from);
    return {};
}

void MemoryFiles::spend(std::uint64_t bytes) {
    if (bytesPerMillisecond_ == 0) return;
    unpaidBytes_ += bytes;
    clock_.advance(static_cast<std::int64_t>(unpaidBytes_ / bytesPerMillisecond_));
    unpaidBytes_ %= bytesPerMillisecond_;
}

Status MemoryFiles::nextChunk(const Copy& copy, MemoryNode& temporary, std::uint64_t bytes) {
    const MemoryVolume& volume = *copy.destination.volume;
    if (!volume.present) return Status::failure(error_number::deviceDoesNotExist, copy.to);
    if (copy.source->readError != 0) return Status::failure(copy.source->readError, copy.from);
    if (volume.capacity && volume.usedBytes() + bytes > *volume.capacity) {
        return Status::failure(error_number::diskFull, copy.to);
    }
    const std::string& content = copy.source->content;
    const std::uint64_t start = std::min<std::uint64_t>(temporary.size(), content.size());
    const std::uint64_t held = std::min<std::uint64_t>(bytes, content.size() - start);
    temporary.content.append(content, start, held);
    temporary.hole += bytes - held;
    spend(bytes);
    return {};
}

Status MemoryFiles::transfer(const Copy& copy, MemoryNode& temporary, CopyObserver* observer) {
    do {
        const std::uint64_t done = temporary.size();
        const std::uint64_t left = std::max(copy.source->readableSize(), done) - done;
        Status status = nextChunk(copy, temporary, std::min(left, chunkSize_));
        if (!status.ok()) return status;
        if (copyHook) copyHook({copy.from, copy.to, temporary.size(), copy.source->size()});
        if (observer != nullptr) observer->chunkFinished(temporary.size());
        if (abandoned_) return Status::failure(error_number::requestAborted, copy.from);
    } while (temporary.size() < copy.source->readableSize());
    if (temporary.size() < copy.size) return Status::failure(error_number::handleEof, copy.from);
    return {};
}

Status MemoryFiles::finish(const Copy& copy, const MemoryNode::Pointer& temporary) {
    // The hook may have changed what stands under the final name.
    MemoryPlace place;
    Status status = prepareDestination(copy.to, LinkRule::refuse, place);
    if (!status.ok()) return status;
    clock_.advance(millisecondsPerFile_);
    const std::uint64_t now = clock_.fileTime();
    temporary->attributes = copy.attributes;
    temporary->times = {now, now, copy.times.lastWrite};
    if (temporary->isLink()) temporary->times = copy.times;
    const MemoryPlace& to = copy.destination;
    to.parent->rename(disk_.key(*to.volume, copy.temporaryName), disk_.key(*to.volume, to.name),
                      to.name);
    return {};
}

Status MemoryFiles::copyFile(const std::string& source, const std::string& destination,
                             LinkRule sourceLinks, CopyObserver* observer) {
    record("copyFile", source, destination);
    if (abandoned_) return Status::failure(error_number::requestAborted, source);
    Copy copy{source, destination, nullptr, {}, disk_.newTemporaryName(), 0, 0, {}};
    MemoryPlace from;
    Status status = existing(source, sourceLinks, from);
    if (status.ok()) status = prepareDestination(destination, LinkRule::refuse, copy.destination);
    if (status.ok()) status = openSource(copy, sourceLinks, from);
    if (!status.ok()) return status;
    copy.source = from.node;
    if (copy.source == copy.destination.node) {
        return Status::failure(error_number::sharingViolation, destination);
    }
    copy.size = copy.source->size();
    copy.attributes = copy.source->attributes;
    copy.times = copy.source->times;

    const MemoryNode::Pointer parent = copy.destination.parent;
    const auto temporary =
        disk_.newNode(*copy.destination.volume, copy.temporaryName, attribute::normal);
    parent->add(disk_.key(*copy.destination.volume, copy.temporaryName), temporary);
    running_.insert(copy.temporaryName);
    status = transfer(copy, *temporary, observer);
    if (status.ok()) status = finish(copy, temporary);
    if (!status.ok()) parent->remove(disk_.key(*copy.destination.volume, copy.temporaryName));
    running_.erase(copy.temporaryName);
    return status;
}

}  // namespace coffrelune
