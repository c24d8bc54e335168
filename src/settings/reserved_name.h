#pragma once

#include <string_view>

namespace coffrelune {

/// True of the section of the global settings, whatever its case and the blanks around it: no
/// configuration may bear this name, or choosing or erasing it would work on those settings.
bool isReserved(std::string_view name);

}  // namespace coffrelune
