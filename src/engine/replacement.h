#pragma once

#include <array>
#include <string>

#include "engine/run_display.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// What there is to know before `existing`, in `directory`, is replaced by `newer`.
Replacement describeReplacement(const SystemMod& system, const std::string& directory,
                                const FileEntry& existing, const FileEntry& newer);

}  // namespace coffrelune
