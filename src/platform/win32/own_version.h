#pragma once

#include <cstdint>

namespace coffrelune {

/// systemLevel() of the running system; 0 when it does not tell its version. Windows tells one
/// that it knows the program's manifest to name, which is enough to tell old systems from new ones.
std::int16_t ownSystemLevel();

}  // namespace coffrelune
