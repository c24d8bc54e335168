#pragma once

#include <string>

#include "settings/system_mod.h"

namespace coffrelune {

/// Path of the error list of one configuration and kind: "S_", "R_" or "C_", the name made fit for
/// a file name, ".err", in the directory of the settings file.
std::string errorListPath(const SystemMod& system, const std::string& configuration,
                          OperationKind kind);

}  // namespace coffrelune
