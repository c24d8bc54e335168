#pragma once

#include <dirent.h>

#include <cstddef>
#include <memory>

#include "platform/posix/unique_fd.h"

namespace coffrelune {

/// The names of an open directory, asked of the system itself: a DIR would ask again what is known
/// of its descriptor, three calls for each directory of a walk.
class Listing {
  public:
    /// `directory`: open for reading, at its start.
    explicit Listing(UniqueFd directory) : directory_(std::move(directory)) {}

    int fd() const { return directory_.get(); }

    /// The next name but "." and "..", valid until the next call; null at the end or after a
    /// failure.
    const dirent64* next();

    /// How many have been read and not given yet, about.
    std::size_t entriesAhead() const;

    /// What ended the listing: 0 or an errno value.
    int error() const { return error_; }

  private:
    void begin();
    bool fill();

    UniqueFd directory_;
    std::unique_ptr<char[]> block_;  // of one call
    std::size_t filled_ = 0;
    std::size_t position_ = 0;
    bool ended_ = false;
    int error_ = 0;
};

}  // namespace coffrelune
