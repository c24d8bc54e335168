#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/directory.h"
#include "platform/status.h"

namespace coffrelune {

class FileService;

/// Two directories whose files are compared: one that is listed, one for look-ups.
struct DirectoryPair {
    std::string source;
    LinkRule sourceLinks = LinkRule::enter;
    std::string target;
    LinkRule targetLinks = LinkRule::enter;

    bool operator==(const DirectoryPair&) const = default;
};

/// What became of the two, each as FileService::openDirectory says (Wanted::files,
/// Wanted::nothing).
struct OpenedPair {
    Status sourceStatus;
    Status targetStatus;
    std::unique_ptr<Directory> source;
    std::unique_ptr<Directory> target;
};

/// A walk over pairs of directories that only looks. What it will look at soon may be read before
/// it is asked for, and a directory that was listed is not looked at again before it is entered:
/// never to be used where something is written or deleted on the strength of it. The directories
/// that were met may be without identity.
class WalkAhead {
  public:
    virtual ~WalkAhead() = default;

    /// Pairs that are opened next, in this order, before those that were announced earlier. A hint:
    /// others may be opened as well, and these may not.
    virtual void announce(std::vector<DirectoryPair> pairs) = 0;

    virtual OpenedPair open(const DirectoryPair& pair) = 0;
};

/// A walk that opens what it is asked for, and nothing before.
class PlainWalk final : public WalkAhead {
  public:
    /// `files` outlives this.
    explicit PlainWalk(FileService& files) : files_(files) {}

    void announce(std::vector<DirectoryPair>) override {}
    OpenedPair open(const DirectoryPair& pair) override;

  private:
    FileService& files_;
};

}  // namespace coffrelune
