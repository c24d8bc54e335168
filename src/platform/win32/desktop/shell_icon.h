#pragma once

#include <string>

namespace coffrelune {

/// The name under which a picture of the shell's own list travels in the core ("shell:12").
std::string shellIconName(int index);

/// An icon handle (HICON) of the picture that `name` names, in the shell's small size; the caller
/// destroys it. Null when the name is no such name or the shell has no such picture.
void* shellIcon(const std::string& name);

}  // namespace coffrelune
