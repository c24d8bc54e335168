#pragma once

#include <cstdint>
#include <string>

#include "engine/progress.h"

namespace coffrelune {

/// The small file operations of a copy: the copy itself with its second attempt, attributes and
/// times of the copy, directories with all their levels.
class FileCopier {
  public:
    FileCopier(SystemMod& system, Progress& progress);

    /// Copies one file, then gives the copy its attributes and times as the options say. After a
    /// first failure the destination is made writable and the copy tried once more; after a second
    /// one nothing of the destination is touched any more. `links`: what a source that is a link
    /// means.
    Status copy(const FileEntry& entry, const std::string& source, const std::string& destination,
                LinkRule links);

    /// Creates every missing level of a directory path, the last one with `access`. `created` tells
    /// whether the last one was made now. The outcome is that of opening the directory; where that
    /// failed, the reason for which it could not be made.
    Status createPath(const std::string& path, DirectoryAccess access, bool& created);

    /// Always with the read-only bit cleared. The outcome is ignored: the copy that follows, or the
    /// next run, meets what is really there.
    void setAttributes(const std::string& path, std::uint32_t attributes);

  private:
    Status copyOnce(const std::string& source, const std::string& destination, LinkRule links);

    SystemMod& system_;
    Progress& progress_;
};

}  // namespace coffrelune
