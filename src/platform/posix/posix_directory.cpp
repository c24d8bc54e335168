#include "platform/posix/posix_directory.h"

#include <fcntl.h>

#include <cerrno>

#include "platform/own_names.h"
#include "platform/posix/errors.h"
#include "platform/posix/file_times.h"
#include "platform/posix/names.h"
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

PosixDirectory::PosixDirectory(UniqueFd fd, dev_t device, Place place, Wanted wanted,
                               const DriveTable& drives, int& openCount)
    : place_(std::move(place)),
      wanted_(wanted),
      drives_(drives),
      openCount_(openCount),
      device_(device) {
    ++openCount_;
    fd_ = fd.get();
    if (wanted_ == Wanted::nothing) {
        path_ = std::move(fd);
    } else {
        listing_.reset(fdopendir(fd_));
        if (listing_ == nullptr) {
            status_ = systemFailure(errno, place_.core);
            path_ = std::move(fd);
        } else {
            fd.release();
        }
    }
    if (openCount_ > manyOpen) readAheadAndClose();
}

PosixDirectory::~PosixDirectory() {
    close();
}

void PosixDirectory::close() {
    if (isOpen()) --openCount_;
    fd_ = -1;
    listing_.reset();
    path_.reset();
}

void PosixDirectory::readAheadAndClose() {
    FileEntry entry;
    while (read(entry)) ahead_.push_back(entry);
    close();
}

bool PosixDirectory::next(FileEntry& entry) {
    if (isOpen()) return read(entry);
    if (ahead_.empty()) return false;
    entry = std::move(ahead_.front());
    ahead_.pop_front();
    return true;
}

bool PosixDirectory::read(FileEntry& entry) {
    while (listing_ != nullptr) {
        errno = 0;
        const dirent* found = readdir(listing_.get());
        if (found == nullptr) {
            if (errno != 0) status_ = systemFailure(errno, place_.core);
            return false;
        }
        const std::string_view name = found->d_name;
        if (name == "." || name == ".." || !wantsKind(found->d_type)) continue;
        if (describe(*found, entry)) return true;
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

bool PosixDirectory::describe(const dirent& found, FileEntry& entry) const {
    struct statx information {};
    const int error = statEntry(fd_, found.d_name, false, information);
    if (error == ENOENT) return false;
    if (error != 0) {
        // What bars the look at an entry bars its copy as well: it is listed, so that the copy
        // fails by its name instead of passing unnoticed.
        information = {};
        const mode_t kind = found.d_type == DT_UNKNOWN ? S_IFREG : DTTOIF(found.d_type);
        information.stx_mode = static_cast<std::uint16_t>(kind | S_IWUSR);
    }
    if (!fill(information, toCoreName(found.d_name), entry)) return false;
    if (error != 0) {
        entry.mountPoint = false;
        entry.times = {};
        entry.id = {};
        entry.unreadable = true;
    }
    if (wanted_ == Wanted::files && entry.isDirectory()) return false;
    if (wanted_ == Wanted::directories && !entry.isDirectory()) return false;
    if (!entry.isDirectory() && ownFileKind(found.d_name).has_value()) return false;
    return !isPseudoMount(entry);
}

bool PosixDirectory::fill(const struct statx& information, std::string name,
                          FileEntry& entry) const {
    if (!fillEntry(information, std::move(name), entry)) return false;
    if (entry.isDirectory() && !tellsMountPoints(information)) {
        entry.mountPoint = entry.id.volume != device_;
    }
    return true;
}

bool PosixDirectory::isPseudoMount(const FileEntry& entry) const {
    return entry.isDirectory() && entry.id.volume != device_ && drives_.isPseudo(entry.id.volume);
}

bool PosixDirectory::lookUp(const std::string& name, FileEntry& entry) {
    if (name.empty() || name.find_first_of(std::string("\\/\0", 3)) != std::string::npos) {
        return false;
    }
    UniqueFd again;
    if (!isOpen()) {
        const int error = openPlace(place_, O_PATH | O_DIRECTORY, again);
        if (error != 0) {
            status_ = failureAt(error, place_);
            return false;
        }
    }
    struct statx information {};
    const int fd = isOpen() ? fd_ : again.get();
    const int error = statEntry(fd, toNativeName(name).c_str(), false, information);
    if (error != 0) {
        if (!isAbsence(error)) status_ = systemFailure(error, place_.core);
        return false;
    }
    return fill(information, name, entry);
}

}  // namespace coffrelune
