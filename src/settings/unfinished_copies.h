#pragma once

#include <string>
#include <vector>

#include "settings/system_mod.h"

namespace coffrelune {

/// The trees that a run has left incomplete: copies that a backup began to write, and originals of
/// which a restore deleted what it was about to bring back, when the run was stopped, killed, or
/// could not copy every file. Nothing may be deleted on the other side because such a tree does not
/// hold it: it may be the only one left. Kept under "Position" as "CopieIncomplete1", 2, 3...
/// without gaps: a tree keeps its mark whatever configuration and line it belongs to.
class UnfinishedCopies {
  public:
    /// `system` is not owned.
    explicit UnfinishedCopies(SystemMod& system) : system_(system) {}

    /// `copy`: what a line writes, in the core's form; its case does not matter.
    bool hold(const std::string& copy) const;
    /// Not more than once. A mark that cannot be stored is not worth stopping a backup for.
    void add(const std::string& copy);
    void remove(const std::string& copy);
    /// The same copy is found at `to` from now on: a disk that has another letter.
    void follow(const std::string& from, const std::string& to);

  private:
    std::vector<std::string> marked() const;

    SystemMod& system_;
};

}  // namespace coffrelune
