#pragma once

#include <string>

#include "engine/line_roots.h"
#include "platform/platform.h"

namespace coffrelune {

/// Keeps a line from harming itself: from writing over its own source, and from walking into its
/// own copy. Places are compared as the file system resolves them.
class LineGuard {
  public:
    explicit LineGuard(FileService& files) : files_(files) {}

    /// Called at the start of each line, and again once its target has been created.
    void watch(const LineRoots& roots);

    /// Why the line must not be run, for the user; empty when nothing speaks against it. Its copy
    /// would be its original itself or one of its ancestors: copying would write over the original,
    /// and deleting excess files would delete it (a copy inside the original is allowed, both
    /// ways). Or the copy would not lie strictly below the line's destination: in the destination
    /// itself or beside it are the files of others.
    std::string refusal(const LineRoots& roots) const;

    /// True when the directory `path`, listed as `entry`, is the line's own target.
    bool isTarget(const std::string& path, const FileEntry& entry) const;

  private:
    static bool copyHasNoPlace(const LineRoots& roots);
    bool anyAncestorIs(std::string path, const FileId& id);

    FileService& files_;
    FileId target_;
    std::string targetPath_;          // resolved
    bool copyHoldsOriginal_ = false;  // or is it
};

}  // namespace coffrelune
