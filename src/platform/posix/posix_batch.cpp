#include "platform/posix/posix_batch.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

#include "platform/posix/errors.h"
#include "platform/posix/native_path.h"
#include "platform/posix/rights.h"
#include "platform/posix/temporary_file.h"

namespace coffrelune {
namespace {

// What a flush costs is shared by a group.
constexpr std::size_t groupFiles = 1000;
constexpr std::uint64_t groupBytes = 256U << 20;
constexpr std::chrono::seconds groupAge{1};

// A disk that is slower than the copying takes what has come meanwhile with one flush: the more may
// wait for it, the fewer flushes there are. A kilobyte each, and what a kill can cost.
constexpr std::size_t manyWaiting = 8 * groupFiles;

// A directory that is made beside its place takes a dozen calls, and saves one for each file.
constexpr std::size_t worthStaging = 16;

// The next directory is the worker's as well when it will soon be through.
constexpr std::size_t fewLent = 32;

// What pays is to make two files at once, not to write two at once, which may scatter both.
constexpr off_t worthLending = 64 << 10;

/// Each of them keeps up to four descriptors, of which the program may have few.
std::size_t mostTargets() {
    constexpr std::size_t fewest = 4;
    constexpr std::size_t most = 128;
    rlimit files{};
    if (getrlimit(RLIMIT_NOFILE, &files) != 0) return fewest;
    return std::clamp<std::size_t>(files.rlim_cur / 16, fewest, most);
}

/// What waits holds blocks and descriptors, which it gives back once it is finished.
bool givesRoom(int error) {
    return error == ENOSPC || error == EDQUOT || error == EMFILE || error == ENFILE;
}

/// Each of its files is open while it waits.
std::size_t mostLent() {
    constexpr std::size_t most = 128;
    rlimit files{};
    return getrlimit(RLIMIT_NOFILE, &files) == 0 ? std::min<std::size_t>(files.rlim_cur / 8, most)
                                                 : 0;
}

/// To flush takes a directory that is open for reading. One that may be written to need not let
/// anybody read it; the root of its tree, on the same volume, stands in for it then.
int openFlushPoint(const CopyTarget& target, UniqueFd& fd) {
    constexpr int flags = O_RDONLY | O_DIRECTORY;
    const int error = openEntry(target.directory(), ".", flags, fd);
    const Hold* hold = target.place().hold.get();
    if (error != EACCES || hold == nullptr || hold->device != target.device()) return error;
    return openEntry(hold->directory.get(), ".", flags, fd);
}

}  // namespace

PosixBatch::PosixBatch(AfterFailure afterFailure, CopyEvents& events, TreeLocks& locks,
                       CopyTargets& targets, NewDirectories& made,
                       const std::atomic<bool>& abandoned, std::atomic<std::uint64_t>& changes)
    : events_(events),
      locks_(locks),
      targets_(targets),
      made_(made),
      abandoned_(abandoned),
      changes_(changes),
      token_(randomNumber()),
      maker_(abandoned, token_),
      mostTargets_(mostTargets()),
      stops_(afterFailure == AfterFailure::stop),
      thread_(afterFailure),
      worker_(maker_, mostLent(), [this] { events_.waiting(); }) {}

PosixBatch::~PosixBatch() {
    worker_.stop();
    for (const WaitingCopy& copy : group_) {
        if (!copy.temporary.empty()) copy.target->discard(copy.temporary);
    }
}

KeptTimes PosixBatch::keptTimes() const {
    if (thread_.losesTimes()) return KeptTimes::lost;
    return std::max(maker_.keptTimes(), worker_.keptTimes());
}

Status PosixBatch::add(const CopyRequest& request, std::uint64_t& ticket) {
    tellDone();
    if (group_.empty()) makeRoom();  // also within one directory, which may have a million files
    if (abandoned_.load(std::memory_order_relaxed)) {
        return systemFailure(ECANCELED, request.sourcePath);
    }
    WaitingCopy waiting;
    // What failed before it is told before it.
    bool failedBefore = stops_ && worker_.hasFailed() && takeBack(true);
    int error = failedBefore ? ECANCELED : tryCopy(request, waiting);
    failedBefore = failedBefore || (error != 0 && takeBack(true));
    if (ticket_ > 0 && (failedBefore || givesRoom(error))) {
        Status finished = finish();
        if (!finished.ok()) return finished;
        if (failed_ && stops_) return systemFailure(ECANCELED, request.sourcePath);
        if (givesRoom(error)) error = tryCopy(request, waiting);
    }
    if (error != 0) return systemFailure(error, request.sourcePath);
    ticket = waiting.ticket = ++ticket_;
    const auto now = std::chrono::steady_clock::now();
    if (group_.empty()) groupStart_ = now;
    group_.push_back(std::move(waiting));
    groupBytes_ += request.entry.size;
    if (lent_) lend(request);
    const bool full = group_.size() >= groupFiles || groupBytes_ >= groupBytes;
    if (full || now - groupStart_ >= groupAge) handOver(false);
    return {};
}

/// The directory that is written to, opened for as long as its files wait.
int PosixBatch::targetOf(const CopyRequest& request) {
    // Every open directory of this service is one of its own.
    auto& directory = static_cast<PosixDirectory&>(request.target);
    std::shared_ptr<CopyTarget> target;
    const int error = directory.shareTarget(target);
    if (error != 0 || target == target_) return error;
    targets_.add(target);
    makeRoom();
    const bool many = static_cast<PosixDirectory&>(request.source).hasMore(worthStaging);
    const bool isNew = many && request.isNew && directory.isStillEmpty();
    if (isNew) target->stage(made_, token_++);
    const int barred = target->bar(locks_);
    if (barred != 0) return barred;
    if (!thread_.knows(target->device())) {
        FlushPoint point;
        point.device = target->device();
        const int opened = openFlushPoint(*target, point.fd);
        if (opened != 0) return opened;
        thread_.addVolume(std::move(point));
    }
    target_ = std::move(target);
    lends_ = isNew && worker_.waiting() < fewLent && worker_.start();
    return 0;
}

/// Waits until few enough directories and files wait for the disk.
void PosixBatch::makeRoom() {
    const auto tooMany = [&] {
        return targets_.count() > mostTargets_ || thread_.waiting() > manyWaiting;
    };
    if (!tooMany()) return;
    handOver(false);
    while (tooMany()) {
        const bool idle = thread_.wait();
        tellDone();
        if (idle && places_.empty()) break;
        events_.waiting();
        if (!idle) continue;
        (void)takeBack(true);  // the worker is behind
        handOver(false);
    }
}

void PosixBatch::waitForDisk() {
    while (!thread_.wait()) {
        tellDone();
        events_.waiting();
    }
    tellDone();
}

/// Leaves nothing behind when it fails.
int PosixBatch::tryCopy(const CopyRequest& request, WaitingCopy& waiting) {
    int error = targetOf(request);
    if (error != 0) return error;
    waiting = {};
    lent_.reset();
    waiting.begun = thread_.failedFlushes();
    waiting.target = target_;
    waiting.name = toNativeName(request.entry.name);
    error = copy(request, waiting);
    if (error != 0 && !waiting.temporary.empty()) target_->discard(waiting.temporary);
    return error;
}

/// What the caller has just looked up need not be asked for again.
int PosixBatch::lookAtOld(const CopyRequest& request, const std::string& name,
                          struct statx& old) const {
    auto& target = static_cast<PosixDirectory&>(request.target);
    if (target.takeLooked(request.entry.name, old)) return mayReplace(old);
    return target_->checkOld(target_->maker(), name.c_str(), old);
}

int PosixBatch::copy(const CopyRequest& request, WaitingCopy& waiting) {
    if (!request.isNew) {
        struct statx old {};
        const int error = lookAtOld(request, waiting.name, old);
        const FileId id{deviceOf(old), old.stx_ino};
        if (error == 0 && id == request.entry.id) return ETXTBSY;  // onto itself
        if (error == 0) waiting.old.emplace(old);
        if (error != 0 && error != ENOENT) return error;
    }
    auto& source = static_cast<PosixDirectory&>(request.source);
    UniqueFd again;
    int directory = -1;
    const int error = source.reach(again, directory);
    if (error != 0) return error;
    return request.entry.isLink() ? copyLink(directory, request, waiting)
                                  : copyFile(source, directory, request, waiting);
}

// What is known of the original is taken before the reading: one that changes meanwhile keeps a
// later time than its copy and is copied again by the next run.
int PosixBatch::copyFile(PosixDirectory& directory, int source, const CopyRequest& request,
                         WaitingCopy& waiting) {
    OpenOriginal original;
    if (!directory.takeOpened(waiting.name, original.fd, original.before)) {
        const int error = openOriginal(source, waiting.name.c_str(), original);
        if (error != 0) return error;
    }
    if (!S_ISREG(original.before.st_mode)) return EOPNOTSUPP;
    original.writable = request.writable;
    if (lends_ && request.isNew && original.before.st_size <= worthLending) {
        lent_ = std::move(original);
        return 0;
    }
    keepToItself();
    return maker_.copy(original, waiting, request.observer);
}

/// One thread at a time makes files in a directory.
void PosixBatch::keepToItself() {
    if (lends_) worker_.wait();
    lends_ = false;
}

int PosixBatch::openOriginal(int source, const char* name, OpenOriginal& original) {
    constexpr int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW;
    int error = openEntry(source, name, flags | quiet_, original.fd);
    if (error == EPERM && quiet_ != 0) {
        quiet_ = 0;  // only the owner may read without leaving a trace
        error = openEntry(source, name, flags, original.fd);
    }
    if (error != 0) return error;
    return fstat(original.fd.get(), &original.before) == 0 ? 0 : errno;
}

int PosixBatch::copyLink(int source, const CopyRequest& request, WaitingCopy& waiting) {
    keepToItself();
    struct stat link {};
    std::string text;
    if (fstatat(source, waiting.name.c_str(), &link, AT_SYMLINK_NOFOLLOW) != 0) return errno;
    int error = readLink(source, waiting.name.c_str(), text);
    if (error != 0) return error;
    const int directory = target_->directory();
    error = maker_.make(waiting, [&](const char* name) {
        return changeIn(target_->maker(),
                        [&] { return symlinkat(text.c_str(), directory, name) == 0 ? 0 : errno; });
    });
    if (isLinkRefusalAt(error, directory)) return copyLinkTarget(source, request, link, waiting);
    if (error != 0) return error;
    const char* name = waiting.temporary.c_str();
    // Where a link cannot be stamped, what it leads to would be changed.
    const bool changeable = changesLinks(*target_);
    if (changeable) error = giveAway(directory, name, ownerOf(link));
    if (changeable && error == 0) {
        error = stamp({directory, name}, link.st_atim, link.st_mtim, timeStepAt(directory));
    }
    if (error == 0 && request.observer != nullptr) request.observer->chunkFinished(text.size());
    return error;
}

/// Asked once for each volume.
bool PosixBatch::changesLinks(const CopyTarget& target) {
    const auto [known, isFirst] = changesLinks_.try_emplace(target.device(), true);
    if (isFirst) known->second = keepsLinkTimes(target.directory());
    return known->second;
}

/// For a volume that holds no links: what the link leads to, when that is a file, under the time of
/// the link, which decides the next run.
int PosixBatch::copyLinkTarget(int source, const CopyRequest& request, const struct stat& link,
                               WaitingCopy& waiting) {
    OpenOriginal original;
    struct stat& before = original.before;
    const char* name = waiting.name.c_str();
    // Looked at before it is opened: to open a device may already do something to it.
    if (fstatat(source, name, &before, 0) != 0 || !S_ISREG(before.st_mode)) return EOPNOTSUPP;
    const int error = openEntry(source, name, O_RDONLY | O_NONBLOCK | O_NOCTTY, original.fd);
    if (error != 0) return error;
    if (fstat(original.fd.get(), &before) != 0) return errno;
    if (!S_ISREG(before.st_mode)) return EOPNOTSUPP;
    original.writable = request.writable;
    before.st_mtim = link.st_mtim;
    return maker_.copy(original, waiting, request.observer);
}

/// The file that was added last goes to the worker, which tells nobody how far it is.
void PosixBatch::lend(const CopyRequest& request) {
    WaitingCopy& place = group_.back();
    CopyWorker::Job job{*std::exchange(lent_, {}), std::exchange(place, {})};
    place.target = job.copy.target;
    worker_.add(std::move(job));
    places_.push_back(group_.size() - 1);
    if (request.observer != nullptr) request.observer->chunkFinished(request.entry.size);
}

/// What the worker has copied takes its place among the others; `all`: when nothing is left there.
/// True when something could not be copied, which is told when its turn comes.
bool PosixBatch::takeBack(bool all) {
    if (all) worker_.wait();
    std::vector<CopyWorker::Job> jobs = worker_.takeDone();
    const auto isFailed = [](const CopyWorker::Job& job) { return job.copy.error != 0; };
    if (!all && std::any_of(jobs.begin(), jobs.end(), isFailed)) {
        worker_.wait();
        std::ranges::move(worker_.takeDone(), std::back_inserter(jobs));
    }
    bool failed = false;
    for (CopyWorker::Job& job : jobs) {
        group_[places_.front()] = std::move(job.copy);
        const int error = group_[places_.front()].error;
        if (error != 0 && error != ECANCELED) copyAgain(job.original);
        failed = failed || group_[places_.front()].error != 0;
        places_.pop_front();
    }
    return failed;
}

/// The first of `places_`, which the worker could not copy; nothing is left there to be copied.
void PosixBatch::copyAgain(OpenOriginal& original) {
    const int error = group_[places_.front()].error;
    if (givesRoom(error)) {
        give(beginOfDirectory(places_.front()), false);
        waitForDisk();
    }
    WaitingCopy& copy = group_[places_.front()];
    const int fd = original.fd.get();
    // It may have changed while it waited.
    if (fstat(fd, &original.before) == 0 && lseek(fd, 0, SEEK_SET) == 0) {
        copy.error = maker_.copy(original, copy, nullptr);
    }
}

/// Where the files of the same directory begin in the group.
std::size_t PosixBatch::beginOfDirectory(std::size_t place) const {
    const auto& target = group_[place].target;
    while (place > 0 && group_[place - 1].target == target) --place;
    return place;
}

/// Gives the first ones of the group away, whole directories: the first of them that is flushed
/// shows all that was made in a directory beside its place.
void PosixBatch::give(std::size_t count, bool last) {
    if (count == 0 && !last) return;
    const auto end = group_.begin() + static_cast<std::ptrdiff_t>(count);
    std::vector<WaitingCopy> given(std::make_move_iterator(group_.begin()),
                                   std::make_move_iterator(end));
    group_.erase(group_.begin(), end);
    for (std::size_t& place : places_) place -= count;
    groupBytes_ = 0;
    groupStart_ = std::chrono::steady_clock::now();
    for (const WaitingCopy& copy : given) copy.target->seal();
    thread_.commit(std::move(given), last);
}

void PosixBatch::handOver(bool last) {
    (void)takeBack(last || group_.size() >= 2 * groupFiles);
    give(places_.empty() ? group_.size() : beginOfDirectory(places_.front()), last);
}

void PosixBatch::tellDone() {
    for (const WaitingCopy& copy : thread_.takeDone()) {
        failed_ = failed_ || copy.error != 0;
        const std::string& directory = copy.target->place().core;
        events_.committed(
            copy.ticket,
            copy.error == 0 ? Status() : systemFailure(copy.error, directory + "\\" + copy.name));
    }
}

Status PosixBatch::finish() {
    target_.reset();
    handOver(true);
    waitForDisk();
    ++changes_;
    const int error = thread_.takeFlushError();
    return error == 0 ? Status() : systemFailure(error, {});
}

}  // namespace coffrelune
