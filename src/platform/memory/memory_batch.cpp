#include "platform/memory/memory_batch.h"

#include <algorithm>
#include <utility>

#include "platform/memory/memory_files.h"

namespace coffrelune {
namespace {

/// False for what has been removed, or lies below a directory that has been.
bool isThere(const MemoryVolume& volume, MemoryNode::Pointer node) {
    while (node != nullptr && node != volume.top) node = node->parent();
    return node != nullptr;
}

}  // namespace

MemoryBatch::~MemoryBatch() {
    for (const Waiting& one : waiting_) files_.drop(one.copy);
}

Status MemoryBatch::add(const CopyRequest& request, std::uint64_t& ticket) {
    if (waiting_.size() >= files_.batchSize_) commit();
    files_.record("copyFile", request.sourcePath, request.targetPath);
    if (stopped_) return Status::failure(error_number::requestAborted, request.sourcePath);
    MemoryCopy copy;
    Status status = write(request, copy);
    if (status.code() == error_number::diskFull && !waiting_.empty()) {
        // The files that are replaced keep their room until then.
        commit();
        if (!stopped_) status = write(request, copy);
    }
    if (!status.ok()) return status;
    ticket = ++last_;
    waiting_.push_back({ticket, request.isNew, std::move(copy)});
    return status;
}

Status MemoryBatch::write(const CopyRequest& request, MemoryCopy& copy) {
    copy = {request.sourcePath, request.targetPath};
    Status status = files_.begin(copy, LinkRule::refuse, request.isNew);
    if (status.ok()) status = files_.fill(copy, request.observer);
    if (!status.ok()) return status;
    MemoryNode& made = *copy.temporary;
    if (request.writable) made.attributes &= ~attribute::readOnly;
    if (made.attributes == 0) made.attributes = attribute::normal;
    const std::uint64_t written = made.times.lastWrite;
    if (request.allTimes) made.times = request.entry.times;
    made.times.lastWrite = written;
    if (written == copy.times.lastWrite) return status;
    const bool keeps = copy.destination.volume->keepsTimes;
    kept_ = std::max(kept_, keeps ? KeptTimes::rounded : KeptTimes::lost);
    return status;
}

Status MemoryBatch::finish() {
    commit();
    stopped_ = false;
    for (const MemoryVolume* volume : std::exchange(named_, {})) {
        if (volume->flushError != 0) return Status::failure(volume->flushError, root_);
    }
    return {};
}

void MemoryBatch::commit() {
    for (const Waiting& one : std::exchange(waiting_, {})) {
        const Status status = commitOne(one);
        if (!status.ok()) {
            files_.drop(one.copy);
            stopped_ = stopped_ || afterFailure_ == AfterFailure::stop;
        }
        events_.committed(one.ticket, status);
    }
}

Status MemoryBatch::commitOne(const Waiting& one) {
    if (stopped_) return Status::failure(error_number::requestAborted, one.copy.to);
    const MemoryVolume& volume = *one.copy.destination.volume;
    if (volume.flushError != 0) return Status::failure(volume.flushError, one.copy.to);
    Status status = checkName(one);
    if (!status.ok()) return status;
    files_.giveName(one.copy);
    named_.insert(&volume);
    return status;
}

Status MemoryBatch::checkName(const Waiting& one) const {
    const MemoryPlace& to = one.copy.destination;
    if (!to.volume->present) {
        return Status::failure(error_number::deviceDoesNotExist, one.copy.to);
    }
    if (!isThere(*to.volume, to.parent)) {
        return Status::failure(error_number::pathNotFound, one.copy.to);
    }
    MemoryPlace now = to;
    now.node = to.parent->find(files_.disk_.key(*to.volume, to.name));
    if (now.node != nullptr && (one.isNew || to.node == nullptr)) {
        return Status::failure(error_number::alreadyExists, one.copy.to);
    }
    Status status = MemoryFiles::checkReplaceable(one.copy.to, now);
    if (!status.ok() || now.node == nullptr) return status;
    const bool same = now.node == to.node && now.node->times == one.copy.old &&
                      now.node->size() == one.copy.oldSize;
    return same ? status : Status::failure(error_number::sharingViolation, one.copy.to);
}

}  // namespace coffrelune
