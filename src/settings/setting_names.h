#pragma once

#include <string>
#include <string_view>

#include "settings/system_mod.h"

namespace coffrelune {

/// The section of the settings that hold for every configuration.
inline constexpr const char* globalSection = "Position";

/// True of that section, whatever its case and the blanks around it: no configuration may bear this
/// name, or choosing or erasing it would work on those settings.
bool isReserved(std::string_view name);

/// Path of the error list of one configuration and kind: "S_", "R_" or "C_", the name made fit for
/// a file name, ".err", in the directory of the settings file.
std::string errorListPath(const SystemMod& system, const std::string& configuration,
                          OperationKind kind);

}  // namespace coffrelune
