#pragma once

#include <string>
#include <string_view>

namespace coffrelune {

/// One component of a native path in the core's form: "\" becomes U+F05C and ":" becomes U+F03A,
/// every other byte stays. A name that bears one of these two characters itself (files written by
/// other systems may) gets U+F0FF before it, so that no two names share one form.
std::string toCoreName(std::string_view native);

/// The way back; a name that came from a file always leads to that file again.
std::string toNativeName(std::string_view core);

}  // namespace coffrelune
