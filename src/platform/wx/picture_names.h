#pragma once

#include <string>

namespace coffrelune {

/// What a reader says for a picture; empty for one that only decorates.
std::string spokenPicture(const std::string& image);

}  // namespace coffrelune
