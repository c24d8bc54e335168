#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/posix/copy_writer.h"
#include "platform/posix/hold.h"
#include "platform/posix/place.h"
#include "platform/posix/staged_directory.h"

namespace coffrelune {

/// A directory that files are copied into. It stays open, and barred to other processes that clear
/// leftovers, until the last of them has its name. One that is empty may be filled beside its place
/// (StagedDirectory): its first files have their names there, and it gets its own with theirs.
class CopyTarget {
  public:
    /// `directory`: open, O_PATH will do; lies on `device`.
    CopyTarget(UniqueFd directory, dev_t device, Place place);

    /// Where files are made.
    int directory() const { return maker().directory; }
    const Holder& maker() const { return staged_ != nullptr ? stage_ : holder_; }
    const Place& place() const { return place_; }
    dev_t device() const { return device_; }

    /// From here on its files are made beside it, where that can be; before bar(), for a directory
    /// that is empty. `number` makes the name.
    void stage(NewDirectories& ours, std::uint64_t number);
    /// Whether the next file is to be made under its own name.
    bool givesNames() const { return staged_ != nullptr && !sealed_; }
    /// What comes after this has to wait for its name as in any other directory: what was made so
    /// far is being flushed.
    void seal() { sealed_ = true; }

    /// Takes away what was made under `name`. One that stays under a file's own name must never get
    /// its place with the others.
    void discard(const std::string& name);

    /// On the thread that commits: all the files that were made before seal() bear their names, in
    /// one step, when this is true. Otherwise each of them still needs it.
    bool takePlace();
    /// The same thread: where files get their names.
    const Holder& namer() const;

    /// On the thread that uses `locks`, like the destruction of this object. 0, or an errno value
    /// when there are too many open files to do it.
    int bar(TreeLocks& locks);

    /// Creates the file that becomes the copy of `original`, with the mode of its original from the
    /// start where that shows it to nobody else. `mask`: of the process (umask). 0 or an errno
    /// value.
    int create(const char* name, const struct stat& original, mode_t mask, UniqueFd& fd,
               NewFile& made);

    /// Looks at what `name` is, and says whether a copy may replace it. 0 or an errno value, ENOENT
    /// when nothing bears it.
    int checkOld(const Holder& holder, const char* name, struct statx& old) const;

  private:
    /// What is known of the files that are created here.
    enum class Usual {
        nothing,
        owner,  // who owns them
        mode,   // that their mode is what was asked for, less the mask
        odd,    // that it is something else
    };

    Place place_;
    Holder holder_;  // the directory itself; its name is empty
    Holder stage_;   // what stands for it until it is full
    std::unique_ptr<StagedDirectory> staged_;
    bool sealed_ = false;
    bool spoiled_ = false;  // something half made could not be taken away
    dev_t device_;
    TreeClaim claim_;
    bool handsDown_ = false;  // an access list to what is made in it
    Usual usual_ = Usual::nothing;
    mode_t seen_ = 0;  // that was asked for when `usual_` was found out: others may fare otherwise
    NewFile last_;
};

/// Success when a copy may take the place of something: of files and links, never of anything else
/// or of a read-only file. 0 or an errno value.
int mayReplace(const struct statx& old);

/// The directories that the batches of one file service have open.
class CopyTargets {
  public:
    void add(const std::shared_ptr<CopyTarget>& target) { targets_.push_back(target); }

    /// How many there are now.
    std::size_t count();

    /// Whether copies wait in the directory that `fd` has open.
    bool contains(int fd) const;

  private:
    std::vector<std::weak_ptr<CopyTarget>> targets_;
};

}  // namespace coffrelune
