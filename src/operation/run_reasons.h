#pragma once

#include <string>
#include <vector>

#include "operation/lance_operation.h"

namespace coffrelune {

/// Why a run that the user has started did not do all that a look at the window promises: sources
/// and destinations that are not there, lines that are filled and not ticked, a stop and its cause,
/// nothing to copy. Texts for the user, one line each.
std::vector<std::string> runReasons(const SystemMod& system, const RunStatistics& statistics,
                                    const RunControl& control, RunEnd end);

}  // namespace coffrelune
