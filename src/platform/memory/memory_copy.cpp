#include <algorithm>

#include "platform/memory/memory_batch.h"
#include "platform/memory/memory_files.h"

namespace coffrelune {

// What the copy reads. A link that the destination cannot hold stands for its target, when that is
// a file.
Status MemoryFiles::openSource(const MemoryCopy& copy, LinkRule links, MemoryPlace& source) const {
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

Status MemoryFiles::nextChunk(const MemoryCopy& copy, std::uint64_t bytes) {
    MemoryNode& temporary = *copy.temporary;
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

Status MemoryFiles::transfer(const MemoryCopy& copy, CopyObserver* observer) {
    const MemoryNode& temporary = *copy.temporary;
    do {
        const std::uint64_t done = temporary.size();
        const std::uint64_t left = std::max(copy.source->readableSize(), done) - done;
        Status status = nextChunk(copy, std::min(left, chunkSize_));
        if (!status.ok()) return status;
        if (copyHook) copyHook({copy.from, copy.to, temporary.size(), copy.source->size()});
        if (observer != nullptr) observer->chunkFinished(temporary.size());
        if (abandoned_) return Status::failure(error_number::requestAborted, copy.from);
    } while (temporary.size() < copy.source->readableSize());
    if (temporary.size() < copy.size) return Status::failure(error_number::handleEof, copy.from);
    return {};
}

// Looks at both ends. `isNew`: what may bear the name is looked at when the copy gets it.
Status MemoryFiles::begin(MemoryCopy& copy, LinkRule links, bool isNew) const {
    if (abandoned_) return Status::failure(error_number::requestAborted, copy.from);
    MemoryPlace from;
    MemoryPlace& to = copy.destination;
    Status status = existing(copy.from, links, from);
    if (status.ok()) status = locate(copy.to, LinkRule::refuse, to);
    if (status.ok()) status = checkName(copy.to, to);
    if (status.ok() && !isNew) status = checkReplaceable(copy.to, to);
    if (status.ok()) status = openSource(copy, links, from);
    if (!status.ok()) return status;
    copy.source = from.node;
    if (copy.source == to.node) return Status::failure(error_number::sharingViolation, copy.to);
    copy.size = copy.source->size();
    copy.attributes = copy.source->attributes;
    copy.times = copy.source->times;
    if (to.node != nullptr) {
        copy.old = to.node->times;
        copy.oldSize = to.node->size();
    }
    return status;
}

// Makes the temporary: whole and with all that it bears but its name, or not there.
Status MemoryFiles::fill(MemoryCopy& copy, CopyObserver* observer) {
    const MemoryPlace& to = copy.destination;
    const std::string name = disk_.newTemporaryName();
    copy.temporary = disk_.newNode(*to.volume, name, attribute::normal);
    copy.temporary->beingWritten = true;
    to.parent->add(disk_.key(*to.volume, name), copy.temporary);
    Status status = transfer(copy, observer);
    if (!status.ok()) {
        drop(copy);
        return status;
    }
    clock_.advance(millisecondsPerFile_);
    const std::uint64_t now = clock_.fileTime();
    copy.temporary->attributes = copy.attributes;
    copy.temporary->times = {now, now, to.volume->heldTime(copy.times.lastWrite, now)};
    if (copy.temporary->isLink()) copy.temporary->times = copy.times;
    return status;
}

void MemoryFiles::giveName(const MemoryCopy& copy) {
    const MemoryPlace& to = copy.destination;
    copy.temporary->beingWritten = false;
    to.parent->rename(disk_.key(*to.volume, copy.temporary->name()), disk_.key(*to.volume, to.name),
                      to.name);
}

void MemoryFiles::drop(const MemoryCopy& copy) {
    const MemoryPlace& to = copy.destination;
    to.parent->remove(disk_.key(*to.volume, copy.temporary->name()));
}

Status MemoryFiles::copyFile(const std::string& source, const std::string& destination,
                             LinkRule sourceLinks, CopyObserver* observer) {
    record("copyFile", source, destination);
    MemoryCopy copy{source, destination};
    Status status = begin(copy, sourceLinks, false);
    if (status.ok()) status = fill(copy, observer);
    if (!status.ok()) return status;
    // The hook may have changed what stands under the final name.
    MemoryPlace place;
    status = prepareDestination(destination, LinkRule::refuse, place);
    if (status.ok() && copy.destination.volume->flushError != 0) {
        status = Status::failure(copy.destination.volume->flushError, destination);
    }
    if (status.ok()) {
        giveName(copy);
    } else {
        drop(copy);
    }
    return status;
}

std::unique_ptr<CopyBatch> MemoryFiles::startBatch(const std::string& root,
                                                   AfterFailure afterFailure, CopyEvents& events) {
    return std::make_unique<MemoryBatch>(*this, root, afterFailure, events);
}

}  // namespace coffrelune
