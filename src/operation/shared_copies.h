#pragma once

#include <string>
#include <vector>

#include "settings/system_mod.h"

namespace coffrelune {

/// A text for the user for every two lines whose copies lie in the same place, though they are
/// copies of different sources, when the operation takes in one of them: two cards with a
/// directory DCIM each, saved to one disk. The lines are run as they are, what bears one name
/// in both is kept once.
std::vector<std::string> sharedCopies(const SystemMod& system);

}  // namespace coffrelune
