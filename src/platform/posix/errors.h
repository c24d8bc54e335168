#pragma once

#include <cstdint>
#include <string>

#include "platform/status.h"

namespace coffrelune {

/// The Windows error number for an errno value; 0 for 0. ENOENT gives 2: who knows the path tells
/// 2 from 3 (see failureAt in place.h).
std::uint32_t windowsError(int error);

/// A failed Status for an errno value. `path` is in the core's form.
Status systemFailure(int error, const std::string& path);

}  // namespace coffrelune
