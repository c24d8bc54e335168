#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix/hold.h"
#include "platform/posix/place.h"
#include "platform/posix/unique_fd.h"

namespace coffrelune {

/// The directories that one file service has made.
class NewDirectories {
  public:
    void add(const struct stat& directory);
    bool contains(const struct stat& directory);

  private:
    std::vector<std::pair<dev_t, ino_t>> all_;  // there may be a million
    bool sorted_ = true;
};

/// A directory beside an empty one that takes its place, in one step, once all that is in it is on
/// the disk: a name for the directory costs less than a second name for each of its files. Should
/// the program end before, it is a leftover like an unfinished copy.
class StagedDirectory {
  public:
    /// For the empty directory that `target` has open and `place` leads to; `number` makes its
    /// name. Null where it is none of `ours`, so that others may hold it by more than its name (a
    /// mount, a watch, a process in it); where this cannot be made, or would differ from the other
    /// in anything that a user sees. Files then go where they belong one by one.
    static std::unique_ptr<StagedDirectory> beside(int target, const Place& place,
                                                   NewDirectories& ours, std::uint64_t number);

    StagedDirectory(const StagedDirectory&) = delete;
    StagedDirectory& operator=(const StagedDirectory&) = delete;
    /// Takes it away unless it is in its place or holds something.
    ~StagedDirectory();

    int fd() const { return directory_.get(); }
    bool inPlace() const { return name_.empty(); }

    /// Puts it into the place of the other. 0 or an errno value: ESTALE or ENOTEMPTY when somebody
    /// has changed that one meanwhile or put something into it, which stays as it is.
    int takePlace();

  private:
    StagedDirectory() = default;

    UniqueFd parent_;
    UniqueFd directory_;    // open for reading
    std::string name_;      // native, in the parent; empty once it is in its place
    std::string place_;     // the native name that it takes
    struct stat other_ {};  // what bears that name
};

/// Removes a leftover of that kind, with the files and links in it, unless a running process fills
/// it. One with directories in it is no leftover and stays whole. 0 or an errno value.
int removeStaged(int parent, const char* name);

}  // namespace coffrelune
