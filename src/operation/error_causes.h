#pragma once

#include <cstdint>
#include <string>

namespace coffrelune {

/// Why a run was stopped, for the final message. Empty for 0: the user stopped it. `sharingPath` is
/// what a sharing or lock violation concerned.
std::string errorCause(std::uint32_t number, const std::string& sharingPath);

}  // namespace coffrelune
