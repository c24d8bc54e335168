#pragma once

#include <string>
#include <vector>

#include "settings/system_mod.h"

namespace coffrelune {

/// The copies that a backup began to write and has not finished: it was stopped, killed, or could
/// not copy every file. What such a copy lacks may never have been copied at all, so nothing may be
/// deleted from the original because the copy does not hold it. Kept under "Position" as
/// "CopieIncomplete1", 2, 3... without gaps: a copy keeps its mark whatever configuration and line
/// it belongs to.
class UnfinishedCopies {
  public:
    /// `system` is not owned.
    explicit UnfinishedCopies(SystemMod& system) : system_(system) {}

    /// `copy`: what a line writes, in the core's form; its case does not matter.
    bool hold(const std::string& copy) const;
    /// Not more than once. A mark that cannot be stored is not worth stopping a backup for.
    void add(const std::string& copy);
    void remove(const std::string& copy);

  private:
    std::vector<std::string> marked() const;

    SystemMod& system_;
};

}  // namespace coffrelune
