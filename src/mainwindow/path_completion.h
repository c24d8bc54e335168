#pragma once

#include <string>
#include <vector>

#include "platform/platform.h"

namespace coffrelune {

/// The directories that a path being typed may lead to, in the form in which it is typed: what
/// stands behind its last separator is the beginning of their names. The first of many.
std::vector<std::string> completions(Platform& platform, const std::string& typed);

}  // namespace coffrelune
