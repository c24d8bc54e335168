#pragma once

#include <sys/types.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/posix/unique_fd.h"

namespace coffrelune {

/// How a path below a hold is walked.
enum class Descent {
    kernel,  // in one call, or in steps where the system or a sandbox does not know that call
    steps,   // one call a component
};

/// A directory that was taken hold of. What lies below it is reached from its descriptor.
struct Hold {
    std::string core;    // as it was asked for
    std::string native;  // the path by which it was opened
    UniqueFd directory;  // readable
    dev_t device = 0;
    bool counted = true;  // its volume counts the names of a directory, so that none tells its end
    Descent descent = Descent::kernel;
};

/// Opens `path`, which is below the hold and has no "..", without passing a link: ELOOP. The last
/// component may be a link only where `flags` say O_PATH and O_NOFOLLOW. 0 or an errno value.
int openBelow(const Hold& hold, const std::string& path, int flags, UniqueFd& fd);

/// The living holds of one file service.
class HoldList {
  public:
    void add(std::shared_ptr<const Hold> hold) { holds_.push_back(std::move(hold)); }
    void remove(const Hold& hold);

    /// The hold that a native path without ".." is reached from; null when it is below none.
    std::shared_ptr<const Hold> innermost(const std::string& native) const;

  private:
    std::vector<std::shared_ptr<const Hold>> holds_;
};

}  // namespace coffrelune
