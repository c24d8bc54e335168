#include "platform/posix/posix_directory.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <utility>

#include "platform/names.h"
#include "platform/posix/errors.h"
#include "platform/posix/file_times.h"
#include "platform/posix/hold.h"
#include "platform/posix/native_path.h"

namespace coffrelune {
namespace {

// A walk keeps a directory open on each level, and a process may open about a thousand files. In a
// tree deeper than this, listings are read to their end and closed at once.
constexpr int manyOpen = 128;

bool isAbsence(int error) {
    return error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG || error == EINVAL ||
           error == EILSEQ;
}

}  // namespace

PosixDirectory::PosixDirectory(UniqueFd fd, const struct statx& information, Place place,
                               Wanted wanted, const Surroundings& around)
    : place_(std::move(place)),
      wanted_(wanted),
      around_(around),
      device_(deviceOf(information)),
      rights_{{information.stx_uid, information.stx_gid}, information.stx_mode},
      lastWrite_(toFileTime(information.stx_mtime.tv_sec, information.stx_mtime.tv_nsec)) {
    FileEntry self;
    if (tellsMountPoints(information) && fillEntry(information, {}, self)) self_ = std::move(self);
    ++around_.openCount;
    fd_ = fd.get();
    const bool isBare = wanted_ == Wanted::directories && hasNoSubdirectory(information);
    if (wanted_ == Wanted::nothing || isBare) {
        path_ = std::move(fd);
    } else {
        listing_.emplace(std::move(fd));
    }
    if (around_.openCount > manyOpen) readAheadAndClose();
}

/// Most directories hold files alone: to look for directories among them costs as much as to list
/// them all.
bool PosixDirectory::hasNoSubdirectory(const struct statx& information) const {
    constexpr std::uint32_t ownNames = 2;  // in its parent, and "."
    const Hold* hold = place_.hold.get();
    return hold != nullptr && hold->countsSubdirectories && hold->device == device_ &&
           information.stx_nlink == ownNames;
}

PosixDirectory::~PosixDirectory() {
    close();
}

void PosixDirectory::close() {
    if (isOpen()) --around_.openCount;
    fd_ = -1;
    listing_.reset();
    path_.reset();
    target_.reset();
}

void PosixDirectory::readAheadAndClose() {
    readAhead(SIZE_MAX);
    close();
}

void PosixDirectory::readAhead(std::size_t most) {
    constexpr std::size_t usual = 64;
    ahead_.reserve(std::min(most, usual));
    while (ahead_.size() < most) {
        if (read(ahead_.emplace_back())) continue;
        ahead_.pop_back();
        return;
    }
}

void PosixDirectory::lookAhead(const PosixDirectory& listing) {
    known_.reserve(listing.ahead_.size());
    for (const FileEntry& file : listing.ahead_) {
        Known known;
        known.error = emptyAt_.has_value() ? ENOENT : ask(file.name, known.entry);
        if (known.error == ENOENT) (void)isStillEmpty();
        knownNames_ += file.name;
        known.nameEnd = knownNames_.size();
        known_.push_back(std::move(known));
    }
}

bool PosixDirectory::next(FileEntry& entry) {
    if (nextAhead_ == ahead_.size()) return isOpen() && read(entry);
    entry = std::move(ahead_[nextAhead_++]);
    return true;
}

bool PosixDirectory::read(FileEntry& entry) {
    while (listing_.has_value()) {
        const dirent64* found = listing_->next();
        if (found == nullptr) {
            if (listing_->error() != 0) status_ = systemFailure(listing_->error(), place_.core);
            return false;
        }
        const std::string_view name = found->d_name;
        const bool isDirectory = found->d_type == DT_DIR;
        if (isDirectory && wanted_ == Wanted::files) directories_.emplace_back(name);
        if (!wantsKind(found->d_type)) continue;
        if (!describe(fd_, found->d_name, found->d_type, entry)) continue;
        if (wanted_ == Wanted::directories && !entry.isDirectory()) continue;
        if (wanted_ != Wanted::files || !entry.isDirectory()) return true;
        directories_.emplace_back(name);  // of a file system that lists names alone
    }
    return false;
}

/// False when the kind alone tells that the entry is not wanted, so that nothing more is asked.
bool PosixDirectory::wantsKind(unsigned char kind) const {
    switch (kind) {
        case DT_DIR:
            return wanted_ != Wanted::files;
        case DT_REG:
        case DT_LNK:
            return wanted_ != Wanted::directories;
        case DT_UNKNOWN:
            return true;
        default:
            return false;
    }
}

/// False for what is gone again, and for what does not exist for the core.
bool PosixDirectory::describe(int directory, const char* name, unsigned char kind,
                              FileEntry& entry) {
    struct statx information {};
    const int error = lookAt(directory, name, kind, information);
    if (error == ENOENT) return false;
    if (error != 0) {
        // What bars the look at an entry bars its copy as well: it is listed, so that the copy
        // fails by its name instead of passing unnoticed.
        information = {};
        const mode_t mode = kind == DT_UNKNOWN ? S_IFREG : DTTOIF(kind);
        information.stx_mode = static_cast<std::uint16_t>(mode | S_IWUSR);
    }
    entry.name = toCoreName(name);
    if (!fill(information, entry.name, entry)) return false;
    if (error != 0) {
        entry.mountPoint = false;
        entry.times = {};
        entry.id = {};
        entry.failure = windowsError(error);
    }
    return !isOwnEntry(name, entry.isDirectory()) && !isPseudoMount(entry);
}

/// A file that is to be copied is opened anyway: to look at it then costs a call less.
int PosixDirectory::lookAt(int directory, const char* name, unsigned char kind,
                           struct statx& information) {
    opened_.fd.reset();
    if (expectsCopy_ && kind == DT_REG && openNext(directory, name) == 0) {
        information = opened_.information;
        return 0;
    }
    opened_.fd.reset();
    return statEntry(directory, name, false, information);
}

int PosixDirectory::openNext(int directory, const char* name) {
    constexpr int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_NOATIME;
    const int error = openEntry(directory, name, flags, opened_.fd);
    if (error != 0) {
        expectsCopy_ = false;  // whoever copies it meets the same obstacle, and tells it
        return error;
    }
    opened_.name = name;
    return statEntry(opened_.fd.get(), "", false, opened_.information);
}

bool PosixDirectory::takeOpened(const std::string& name, UniqueFd& fd, struct stat& information) {
    if (!opened_.fd.valid() || opened_.name != name) return false;
    fd = std::move(opened_.fd);
    information = statOf(opened_.information);
    return true;
}

bool PosixDirectory::takeLooked(const std::string& name, struct statx& information) {
    const bool known = !looked_.empty() && looked_ == name;
    if (known) information = lookedAt_;
    looked_.clear();
    return known;
}

/// Everything but the name.
bool PosixDirectory::fill(const struct statx& information, std::string_view name,
                          FileEntry& entry) const {
    if (!fillEntry(information, name, entry)) return false;
    if (entry.isDirectory() && !tellsMountPoints(information)) {
        entry.mountPoint = entry.id.volume != device_;
    }
    return true;
}

bool PosixDirectory::isPseudoMount(const FileEntry& entry) const {
    return entry.isDirectory() && entry.id.volume != device_ &&
           around_.pseudoDevices->contains(entry.id.volume);
}

bool PosixDirectory::hasRightsOf(const Directory& original) const {
    const auto* other = dynamic_cast<const PosixDirectory*>(&original);
    return other != nullptr && rights_ == other->rights_ && lastWrite_ == other->lastWrite_;
}

std::vector<FileEntry> PosixDirectory::takeDirectories() {
    std::vector<FileEntry> found;
    UniqueFd again;
    int fd = -1;
    const int error = reach(again, fd);
    if (error != 0) status_ = failureAt(error, place_);
    for (const std::string& name : directories_) {
        FileEntry entry;
        if (error == 0 && describe(fd, name.c_str(), DT_DIR, entry))
            found.push_back(std::move(entry));
    }
    directories_.clear();
    return found;
}

bool PosixDirectory::hasMore(std::size_t count) const {
    const std::size_t listed = ahead_.size() - nextAhead_;
    return listed + (listing_ ? listing_->entriesAhead() : 0) >= count;
}

int PosixDirectory::reach(UniqueFd& again, int& fd) const {
    fd = fd_;
    if (isOpen()) return 0;
    const int error = openPlace(place_, O_PATH | O_DIRECTORY, again);
    fd = again.get();
    return error;
}

int PosixDirectory::shareTarget(std::shared_ptr<CopyTarget>& target) {
    if (target_ == nullptr) {
        UniqueFd fd = std::move(path_);  // from here on the target owns it
        if (!fd.valid()) {
            const int error = isOpen() ? openEntry(fd_, ".", O_PATH | O_DIRECTORY, fd)
                                       : openPlace(place_, O_PATH | O_DIRECTORY, fd);
            if (error != 0) return error;
        }
        target_ = std::make_shared<CopyTarget>(std::move(fd), device_, place_);
    }
    target = target_;
    return 0;
}

/// Where nothing is, nothing need be asked for.
bool PosixDirectory::isStillEmpty() {
    if (!askedEmpty_ && isEmpty()) emptyAt_ = around_.changes;
    askedEmpty_ = true;
    return emptyAt_ == around_.changes;
}

bool PosixDirectory::isEmpty() const {
    UniqueFd fd;
    if (!isOpen() || openEntry(fd_, ".", O_RDONLY | O_DIRECTORY, fd) != 0) return false;
    Listing listing(std::move(fd));
    return listing.next() == nullptr && listing.error() == 0;
}

bool PosixDirectory::lookUp(const std::string& name, FileEntry& entry) {
    if (name.empty() || name.find_first_of(std::string_view("\\/\0", 3)) != std::string::npos) {
        return false;
    }
    if (Known* known = recall(name)) {
        if (known->error == 0) {
            std::swap(known->entry.name, entry.name);  // its room is used again
            entry = std::move(known->entry);
            entry.name = name;
        }
        return answer(known->error);
    }
    if (emptyAt_.has_value() && isStillEmpty()) return false;
    const int error = ask(name, entry);
    if (error == 0) entry.name = name;
    if (error == ENOENT && wanted_ == Wanted::nothing) (void)isStillEmpty();
    return answer(error);
}

/// True when the name was found. Only a certain absence leaves the status alone.
bool PosixDirectory::answer(int error) {
    if (error != 0 && !isAbsence(error)) status_ = systemFailure(error, place_.core);
    return error == 0;
}

/// 0 or an errno value; ENOENT also for what does not exist for the core. The name is left to the
/// caller.
int PosixDirectory::ask(const std::string& name, FileEntry& found) {
    UniqueFd again;
    int fd = -1;
    const int error = reach(again, fd);
    if (error != 0) {
        status_ = failureAt(error, place_);
        return ENOENT;
    }
    struct statx information {};
    const int looked = isSameInBoth(name)
                           ? statEntry(fd, name.c_str(), false, information)
                           : statEntry(fd, toNativeName(name).c_str(), false, information);
    if (looked != 0) return looked;
    if (wanted_ == Wanted::nothing) {  // what is found may be about to be replaced
        looked_ = name;
        lookedAt_ = information;
    }
    return fill(information, name, found) ? 0 : ENOENT;
}

/// What lookAhead() has found out. Names that the walk leaves out are passed.
PosixDirectory::Known* PosixDirectory::recall(const std::string& name) {
    std::size_t begin = nextKnown_ == 0 ? 0 : known_[nextKnown_ - 1].nameEnd;
    for (std::size_t i = nextKnown_; i < known_.size(); ++i) {
        const std::size_t end = known_[i].nameEnd;
        if (std::string_view(knownNames_).substr(begin, end - begin) == name) {
            nextKnown_ = i + 1;
            return &known_[i];
        }
        begin = end;
    }
    return nullptr;
}

}  // namespace coffrelune
