#include "platform/posix/copy_target.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/names.h"
#include "platform/posix/extra_attributes.h"
#include "platform/posix/native_path.h"
#include "platform/posix/rights.h"

namespace coffrelune {

CopyTarget::CopyTarget(UniqueFd directory, dev_t device, Place place)
    : place_(std::move(place)), device_(device) {
    holder_.opened = std::move(directory);
    holder_.directory = holder_.opened.get();
    holder_.held = place_.hold != nullptr;
}

void CopyTarget::stage(NewDirectories& ours, std::uint64_t number) {
    staged_ = StagedDirectory::beside(holder_.directory, place_, ours, number);
    if (staged_ == nullptr) return;
    stage_.directory = staged_->fd();
    stage_.held = holder_.held;
}

bool CopyTarget::takePlace() {
    return staged_ != nullptr && !spoiled_ && !staged_->inPlace() && staged_->takePlace() == 0;
}

void CopyTarget::discard(const std::string& name) {
    const bool gone = unlinkat(directory(), name.c_str(), 0) == 0 || errno == ENOENT;
    // Under a name of our own, a later run removes it.
    if (!gone && !isTemporaryName(name)) spoiled_ = true;
}

const Holder& CopyTarget::namer() const {
    return staged_ != nullptr && staged_->inPlace() ? stage_ : holder_;
}

int CopyTarget::bar(TreeLocks& locks) {
    if (staged_ != nullptr) {  // open for reading, and without access lists
        (void)claim_.take(locks, staged_->fd(), TreeUse::write);
        return 0;
    }
    UniqueFd readable;
    const int error = changeIn(
        maker(), [&] { return openEntry(directory(), ".", O_RDONLY | O_DIRECTORY, readable); });
    // Where it cannot be barred, leftovers might be taken away too early: an error, and no loss.
    if (error != 0) return error == EMFILE || error == ENFILE ? error : 0;
    (void)claim_.take(locks, readable.get(), TreeUse::write);
    handsDown_ = handsDownAccessList(readable.get());
    return 0;
}

int CopyTarget::create(const char* name, const struct stat& original, mode_t mask, UniqueFd& fd,
                       NewFile& made) {
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW;
    const bool own =
        usual_ != Usual::nothing && ownerOf(original) == Owner{last_.user, last_.group};
    const mode_t mode = own ? original.st_mode & 0777 : S_IRUSR | S_IWUSR;
    const int error = changeIn(maker(), [&] {
        fd.reset(openat(directory(), name, flags | O_CLOEXEC, mode));
        return fd.valid() ? 0 : errno;
    });
    if (error != 0) return error;
    made = last_;
    made.mode = mode & ~mask;
    made.inherits = handsDown_;
    const bool known = usual_ == Usual::mode && (!own || mode == seen_);
    if (known || (usual_ == Usual::owner && !own)) return 0;
    struct stat information {};
    if (fstat(fd.get(), &information) != 0) return errno;
    made = {information.st_uid, information.st_gid, information.st_mode, information.st_dev,
            handsDown_};
    if (own) usual_ = (made.mode & 07777) == (mode & ~mask) ? Usual::mode : Usual::odd;
    if (own) seen_ = mode;
    if (usual_ == Usual::nothing) usual_ = Usual::owner;
    last_ = made;
    return 0;
}

int CopyTarget::checkOld(const Holder& holder, const char* name, struct statx& old) const {
    const int error =
        changeIn(holder, [&] { return statEntry(holder.directory, name, false, old); });
    return error != 0 ? error : mayReplace(old);
}

int mayReplace(const struct statx& old) {
    if (S_ISLNK(old.stx_mode)) return 0;
    if (lockOf(old) != Lock::none) return EPERM;  // known before a byte is written
    return S_ISREG(old.stx_mode) && (old.stx_mode & S_IWUSR) != 0 ? 0 : EACCES;
}

std::size_t CopyTargets::count() {
    std::erase_if(targets_, [](const auto& target) { return target.expired(); });
    return targets_.size();
}

bool CopyTargets::contains(int fd) const {
    struct stat asked {};
    if (fstat(fd, &asked) != 0) return true;  // nobody can tell
    return std::any_of(targets_.begin(), targets_.end(), [&](const auto& known) {
        const std::shared_ptr<CopyTarget> target = known.lock();
        struct stat information {};
        return target != nullptr && fstat(target->directory(), &information) == 0 &&
               information.st_ino == asked.st_ino && information.st_dev == asked.st_dev;
    });
}

}  // namespace coffrelune
