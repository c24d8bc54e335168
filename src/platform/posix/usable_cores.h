#pragma once

#include <cstddef>

namespace coffrelune {

/// How many cores this process may use at once: those of the machine that it was not barred from.
std::size_t usableCores();

}  // namespace coffrelune
