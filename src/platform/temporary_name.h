#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace coffrelune {

/// True for the names that unfinished copies bear on every system: ".~coffrelune-", 16 lower-case
/// hexadecimal digits, ".tmp", and nothing else. A medium that goes from one system to another is
/// cleared by both.
bool isTemporaryName(std::string_view name);

/// The name of that kind that holds `number`.
std::string temporaryName(std::uint64_t number);

}  // namespace coffrelune
