#pragma once

#include <string>
#include <vector>

#include "settings/system_mod.h"

namespace coffrelune {

/// The trees that a run has left incomplete, because it was stopped, killed, or could not copy
/// every file: copies that a backup began to write, and originals that a restore began to bring
/// back. Nothing may be deleted on the other side because such a tree does not hold it: it may be
/// the only one left. Kept under "Position" as "CopieIncomplete1", 2, 3... and
/// "RestaurationIncomplete1"... without gaps: a tree keeps its mark whatever configuration and line
/// it belongs to.
class UnfinishedCopies {
  public:
    enum class Kind { copies, originals };

    /// `system` is not owned.
    explicit UnfinishedCopies(SystemMod& system, Kind kind = Kind::copies)
        : system_(system), kind_(kind) {}

    /// `tree`: what a line writes, in the core's form; its case does not matter.
    bool hold(const std::string& tree) const;
    /// Not more than once. The status tells whether the mark is stored.
    Status add(const std::string& tree);
    void remove(const std::string& tree);
    /// The same tree is found at `to` from now on: a disk that has another letter.
    void follow(const std::string& from, const std::string& to);

  private:
    std::string key(std::size_t number) const;
    std::vector<std::string> marked() const;

    SystemMod& system_;
    Kind kind_;
};

}  // namespace coffrelune
