#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "engine/folded_names.h"
#include "platform/file_service.h"

namespace coffrelune {

/// True when a look-up in a copy tells that there is none of this name: a name that the volume
/// cannot hold has no copy there.
bool cannotBeThere(const Status& looked);

/// Whose copy an entry of a copy is. A volume that takes two names for one has kept one of the two
/// originals, and may list it under the name of the other: brought back by that name, it would take
/// the place of a file that is nowhere else. Directories end with a backslash.
class RestoredNames {
  public:
    explicit RestoredNames(FileService& files) : files_(files) {}

    /// Empty when there is none; a failure when nobody can tell.
    struct Owner {
        std::string path;
        Status failure;

        bool isNone() const { return path.empty() && failure.ok(); }
    };

    /// Another original whose copy may be what the directory `copy` lists as `entry`.
    Owner otherOwner(const std::string& copy, const std::string& originals, const FileEntry& entry);
    /// The same of the directories on the way to `copy`, from the `root`-th character of its path.
    Owner otherOwnerAbove(const std::string& copy, const std::string& originals, std::size_t root);

  private:
    // Of a directory that may hold a million entries: in order once they are all there.
    using Numbers = std::vector<std::pair<std::uint64_t, std::uint64_t>>;
    // An original that the copy finds by its name and lists under another.
    struct Hidden {
        std::string name;
        FileEntry copy;
        bool numbered = false;  // the copy lists what bears its number
    };

    Status gather(const std::string& copy, const std::string& originals);
    Status listCopy(const std::string& copy, HashSet& names, Numbers& numbers);
    static bool mayBeOne(const Hidden& hidden, const FileEntry& entry);

    FileService& files_;
    using Places =
        std::pair<std::string, std::string>;  // a directory of the copy, and its original
    Places gathered_;                         // that `hidden_` tells of
    Status failure_;                          // to gather them
    std::vector<Hidden> hidden_;
    std::map<Places, Owner> above_;  // what was found
};

}  // namespace coffrelune
