#include "platform/posix/posix_batch.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/names.h"
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

mode_t processMask() {
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

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

/// What another name may mend.
bool isNameProblem(int error) {
    return error == EEXIST || error == EINVAL || error == ENOENT || error == EILSEQ ||
           error == ENAMETOOLONG;
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
      writer_(abandoned),
      mask_(processMask()),
      token_(randomNumber()),
      mostTargets_(mostTargets()),
      stops_(afterFailure == AfterFailure::stop),
      thread_(afterFailure) {}

PosixBatch::~PosixBatch() {
    for (const WaitingCopy& copy : group_) {
        copy.target->discard(copy.temporary);
    }
}

Status PosixBatch::add(const CopyRequest& request, std::uint64_t& ticket) {
    tellDone();
    if (group_.empty()) makeRoom();  // also within one directory, which may have a million files
    if (abandoned_.load(std::memory_order_relaxed)) {
        return systemFailure(ECANCELED, request.sourcePath);
    }
    WaitingCopy waiting;
    int error = tryCopy(request, waiting);
    if (givesRoom(error) && ticket_ > 0) {
        Status finished = finish();
        if (!finished.ok()) return finished;
        if (failed_ && stops_) return systemFailure(ECANCELED, request.sourcePath);
        error = tryCopy(request, waiting);
    }
    if (error != 0) return systemFailure(error, request.sourcePath);
    ticket = waiting.ticket = ++ticket_;
    const auto now = std::chrono::steady_clock::now();
    if (group_.empty()) groupStart_ = now;
    group_.push_back(std::move(waiting));
    groupBytes_ += request.entry.size;
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
    if (many && request.isNew && directory.isStillEmpty()) target->stage(made_, token_++);
    target->bar(locks_);
    if (!thread_.knows(target->device())) {
        FlushPoint point;
        point.device = target->device();
        const int opened = openFlushPoint(*target, point.fd);
        if (opened != 0) return opened;
        thread_.addVolume(std::move(point));
    }
    target_ = std::move(target);
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
        if (idle) break;
        events_.waiting();
    }
}

/// Leaves nothing behind when it fails.
int PosixBatch::tryCopy(const CopyRequest& request, WaitingCopy& waiting) {
    int error = targetOf(request);
    if (error != 0) return error;
    waiting = {};
    waiting.begun = thread_.failedFlushes();
    waiting.target = target_;
    waiting.name = toNativeName(request.entry.name);
    error = copy(request, waiting);
    if (error != 0 && !waiting.temporary.empty()) {
        target_->discard(waiting.temporary);
    }
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
    UniqueFd input;
    struct stat before {};
    if (!directory.takeOpened(waiting.name, input, before)) {
        const int error = openOriginal(source, waiting.name.c_str(), input, before);
        if (error != 0) return error;
    }
    if (!S_ISREG(before.st_mode)) return EOPNOTSUPP;
    return write(input.get(), before, request, waiting);
}

int PosixBatch::openOriginal(int source, const char* name, UniqueFd& input, struct stat& before) {
    constexpr int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW;
    int error = openEntry(source, name, flags | quiet_, input);
    if (error == EPERM && quiet_ != 0) {
        quiet_ = 0;  // only the owner may read without leaving a trace
        error = openEntry(source, name, flags, input);
    }
    if (error != 0) return error;
    return fstat(input.get(), &before) == 0 ? 0 : errno;
}

/// Makes a file or a link: under its own name where that shows it to nobody yet. A name that is
/// taken there by another original, or refused, is told when the copy would get it.
template <typename Make>
int PosixBatch::make(WaitingCopy& waiting, Make make) {
    int error = EEXIST;
    std::string name = waiting.name;
    if (target_->givesNames()) error = make(name.c_str());
    // Twice: by the rarest of chances, one of these is taken as well.
    const auto isAnswered = [&] { return !waiting.temporary.empty() || !isNameProblem(error); };
    for (int attempt = 0; attempt < 2 && !isAnswered(); ++attempt) {
        name = ownFileName(OwnFile::temporary, token_++);
        error = make(name.c_str());
    }
    if (error == 0) waiting.temporary = std::move(name);
    return error;
}

int PosixBatch::write(int input, struct stat before, const CopyRequest& request,
                      WaitingCopy& waiting) {
    if (request.writable) before.st_mode |= S_IWUSR;
    UniqueFd output;
    NewFile made;
    int error = make(waiting, [&](const char* name) {
        const int failure = target_->create(name, before, mask_, output, made);
        if (output.valid()) waiting.temporary = name;
        return failure;
    });
    if (error == 0) error = writer_.write(input, before, output.get(), made, request.observer);
    if (error == 0) waiting.stamp = writer_.stamp();
    // A late write error may show at the closing.
    if (output.valid() && close(output.release()) != 0 && error == 0 && errno != EINTR) {
        error = errno;
    }
    return error;
}

int PosixBatch::copyLink(int source, const CopyRequest& request, WaitingCopy& waiting) {
    struct stat link {};
    std::string text;
    if (fstatat(source, waiting.name.c_str(), &link, AT_SYMLINK_NOFOLLOW) != 0) return errno;
    int error = readLink(source, waiting.name.c_str(), text);
    if (error != 0) return error;
    const int directory = target_->directory();
    error = make(waiting, [&](const char* name) {
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
    struct stat before {};
    const char* name = waiting.name.c_str();
    // Looked at before it is opened: to open a device may already do something to it.
    if (fstatat(source, name, &before, 0) != 0 || !S_ISREG(before.st_mode)) return EOPNOTSUPP;
    UniqueFd input;
    const int error = openEntry(source, name, O_RDONLY | O_NONBLOCK | O_NOCTTY, input);
    if (error != 0) return error;
    if (fstat(input.get(), &before) != 0) return errno;
    if (!S_ISREG(before.st_mode)) return EOPNOTSUPP;
    before.st_mtim = link.st_mtim;
    return write(input.get(), before, request, waiting);
}

void PosixBatch::handOver(bool last) {
    if (group_.empty() && !last) return;
    for (const WaitingCopy& copy : group_) copy.target->seal();
    thread_.commit(std::exchange(group_, {}), last);
    groupBytes_ = 0;
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
    while (!thread_.wait()) {
        tellDone();
        events_.waiting();
    }
    tellDone();
    ++changes_;
    const int error = thread_.takeFlushError();
    return error == 0 ? Status() : systemFailure(error, {});
}

}  // namespace coffrelune
