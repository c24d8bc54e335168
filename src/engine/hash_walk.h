#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/copy_errors.h"
#include "engine/hash_list.h"
#include "engine/line_roots.h"

namespace coffrelune {

/// Reads the copies of lines, and nothing else, for a list of what they hold: brings the list up to
/// date, or holds the copies against it.
class HashWalk {
  public:
    /// `work` is the one that the run was asked for.
    HashWalk(RunState& run, CopyErrors& errors, HashWork& work);

    void walkLine(const RunLine& line);

  private:
    void walk(const std::string& directory, LinkRule links);
    void handle(const FileEntry& entry, const std::string& directory);
    void check(const FileEntry& entry, const std::string& path);
    void renew(const FileEntry& entry, const std::string& path);
    Status read(const FileEntry& entry, const std::string& path, std::string& hash);
    void tellDifference(const std::string& path, std::uint64_t size, std::string_view status);
    void tellMissing();
    void keepBelow(const std::string& directory);
    void keepKnown(const std::string& path);
    std::string below(const std::string& path) const { return path.substr(root_.size()); }
    static HashedFile describe(const FileEntry& entry, std::string hash);

    RunState& run_;
    CopyErrors& errors_;
    HashWork& work_;

    // Of the line in progress.
    int line_ = 0;
    std::string root_;    // with its backslash
    HashedCopy known_;    // what the list says
    HashedCopy current_;  // what has been met
};

}  // namespace coffrelune
