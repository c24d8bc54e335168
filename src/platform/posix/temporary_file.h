#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>

#include "platform/posix/unique_fd.h"

namespace coffrelune {

/// Differs from every other one.
std::uint64_t randomNumber();

/// A new name of an unfinished copy.
std::string makeTemporaryName();

/// A file that has not got its name yet. It is locked for as long as this object holds it, so that
/// another process that clears leftovers keeps away, and removed unless it was committed.
class TemporaryFile {
  public:
    TemporaryFile() = default;
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    /// Creates it in an open directory, which must outlive it. 0 or an errno value.
    int create(int directory, mode_t mode);

    int fd() const { return file_.get(); }
    int directory() const { return directory_; }

    /// As it was when it was created.
    const struct stat& information() const { return information_; }

    /// Closes it and gives it its name in the same directory, over what bears that name. 0 or an
    /// errno value: a late write error shows at the closing.
    int commit(const char* name);

  private:
    int tryCreate(mode_t mode);
    int rename(const char* name);

    UniqueFd file_;
    struct stat information_ {};
    std::string name_;  // empty: nothing to remove
    int directory_ = -1;
};

/// Removes one temporary, file, link or directory, unless a running process writes it. A file whose
/// lock cannot be tested stays. 0 or an errno value.
int removeTemporary(int directory, const char* name);

}  // namespace coffrelune
