#include "platform/win32/win32_batch.h"

#include <windows.h>

#include <utility>

#include "platform/win32/entry_query.h"

namespace coffrelune {
namespace {

/// Errors that may not come again when what waits has got its names: the files that are replaced
/// keep their room until then, and those that are written stay open.
bool mayComeFromWaiting(std::uint32_t error) {
    return error == ERROR_DISK_FULL || error == ERROR_HANDLE_DISK_FULL ||
           error == ERROR_TOO_MANY_OPEN_FILES || error == ERROR_NO_SYSTEM_RESOURCES;
}

bool isSame(const FileEntry& one, const FileEntry& other) {
    return one.id == other.id && one.size == other.size && one.attributes == other.attributes &&
           one.times.lastWrite == other.times.lastWrite;
}

/// Of the volume, when a flush of it is enough for files in that place; else null.
VolumeFlush* wholeFlush(const Win32Place& place) {
    const bool isOnOneVolume = place.hold != nullptr && !place.hold->root.hasEntered();
    return isOnOneVolume && place.hold->flush->isWhole() ? place.hold->flush.get() : nullptr;
}

}  // namespace

Status Win32Batch::add(const CopyRequest& request, std::uint64_t& ticket) {
    if (beside_.isDone()) nameFlushed();
    if (isDue()) handOver();
    if (stopped_) return Status::failure(error_number::requestAborted, request.sourcePath);
    auto one = std::make_unique<Waiting>();
    Status status = write(request, *one);
    const bool isAlone = waiting_.empty() && flushing_.empty();
    if (!isAlone && mayComeFromWaiting(status.code())) {
        commitAll();
        if (stopped_) return status;
        one = std::make_unique<Waiting>();
        status = write(request, *one);
    }
    if (!status.ok()) return status;
    if (waiting_.empty()) waitingSince_ = GetTickCount64();
    waitingBytes_ += one->copy.size;
    ticket = one->ticket = ++last_;
    waiting_.push_back(std::move(one));
    return status;
}

bool Win32Batch::isDue() const {
    return !waiting_.empty() &&
           (waiting_.size() >= limits_.files || waitingBytes_ >= limits_.bytes ||
            GetTickCount64() - waitingSince_ >= limits_.milliseconds);
}

Status Win32Batch::write(const CopyRequest& request, Waiting& one) {
    one.path = request.targetPath;
    Win32Place from;
    Status status = places_.reach(request.sourcePath, from);
    if (status.ok()) status = places_.reachToWrite(request.targetPath, one.place);
    if (!status.ok()) return status;
    HeldWriteGuard guard(one.place, Durability::nextFlush);
    CopyTerms terms;
    terms.listed = &request.entry;
    terms.isNew = request.isNew;
    terms.writable = request.writable;
    terms.allTimes = request.allTimes;
    terms.observer = request.observer;
    terms.stamps = &stamps_;
    return copier_.write({request.sourcePath, request.targetPath, from.path, one.place.path, guard},
                         terms, one.copy);
}

Status Win32Batch::finish() {
    commitAll();
    stopped_ = false;
    const std::uint32_t error = flushNames();
    return error == 0 ? Status() : Status::failure(error, root_);
}

void Win32Batch::commitAll() {
    handOver();
    nameFlushed();
}

/// What waits is flushed while the caller goes on.
void Win32Batch::handOver() {
    nameFlushed();
    flushing_ = std::exchange(waiting_, {});
    waitingBytes_ = 0;
    if (flushing_.empty() || stopped_) return;
    for (const auto& one : flushing_) one->volume = wholeFlush(one->place);
    beside_.start([this] { makeSafe(flushing_); });
}

/// Waits for the flush and gives names to what it has made safe.
void Win32Batch::nameFlushed() {
    beside_.wait([this] { events_.waiting(); });
    tellLostFlushes();
    Group group = std::exchange(flushing_, {});
    while (!group.empty()) {
        const std::uint64_t ticket = group.front()->ticket;
        const Status status = giveName(*group.front());
        group.pop_front();  // its file is closed, or removed, before anybody hears of it
        stopped_ = stopped_ || (!status.ok() && afterFailure_ == AfterFailure::stop);
        events_.committed(ticket, status);
    }
}

/// A flush that fails loses, and tells once, what any file of the volume had been given by then:
/// also those that are still written, which their own flush will find clean.
void Win32Batch::tellLostFlushes() {
    std::map<VolumeFlush*, std::uint32_t> lost;
    for (const auto& one : flushing_) {
        if (one->volume != nullptr && one->error != 0) lost.emplace(one->volume, one->error);
    }
    if (lost.empty()) return;
    for (const auto& one : waiting_) {
        const auto found = lost.find(wholeFlush(one->place));
        if (found != lost.end()) one->error = found->second;
    }
}

void Win32Batch::makeSafe(Group& group) {
    std::map<VolumeFlush*, std::uint32_t> volumes;
    for (const auto& one : group) {
        if (!one->copy.file.holdsData() || one->error != 0) continue;
        if (one->volume == nullptr) {
            one->error = flushed(one->copy.file.handle());
            continue;
        }
        const auto [known, isFirst] = volumes.try_emplace(one->volume);
        if (isFirst) known->second = one->volume->flushData();
        one->error = known->second;
    }
}

Status Win32Batch::giveName(Waiting& one) {
    if (stopped_) return Status::failure(error_number::requestAborted, one.path);
    std::uint32_t error = one.error;
    if (error == 0) error = one.place.checkWay();
    if (error == 0) error = takeName(one);
    if (error != 0) return failureAt(error, one.place.path, one.path);
    places_.forget(one.place.path.name());
    HeldWriteGuard guard(one.place, Durability::nextFlush);
    const std::uint32_t late = one.copy.file.holdsData() ? guard.named(one.copy.file.handle()) : 0;
    if (lateError_ == 0) lateError_ = late;
    if (one.place.hold != nullptr) named_.emplace(one.place.hold->flush.get(), one.place.hold);
    return {};
}

/// 0 or a system error.
std::uint32_t Win32Batch::takeName(Waiting& one) {
    bool replaces = false;
    if (one.copy.old) {
        std::optional<FileEntry> now;
        const std::uint32_t error = checkReplaceable(one.place.path, {}, now);
        if (error != 0) return error;
        if (now && !isSame(*now, *one.copy.old)) return ERROR_SHARING_VIOLATION;
        replaces = now.has_value();
    }
    return one.copy.file.takeName(one.place.path, replaces);
}

/// 0 or a system error.
std::uint32_t Win32Batch::flushNames() {
    std::uint32_t error = std::exchange(lateError_, 0);
    const auto volumes = std::exchange(named_, {});
    if (volumes.empty()) return error;
    const auto flushAll = [&] {
        for (const auto& [flush, hold] : volumes) {
            const std::uint32_t failure = flush->flush();
            if (error == 0) error = failure;
        }
    };
    beside_.start(flushAll);
    beside_.wait([this] { events_.waiting(); });
    return error;
}

}  // namespace coffrelune
