#pragma once

#include <string>
#include <string_view>

namespace coffrelune {

/// UTF-8 to the UTF-16 of the system's calls. A byte that is no UTF-8 becomes a lone surrogate (see
/// platform/utf8.h).
std::wstring wide(std::string_view text);

/// The way back. A name of the system may hold lone surrogates: each is given three bytes as if it
/// were a character, so that every name comes back from wide() as it was.
std::string narrow(std::wstring_view text);

}  // namespace coffrelune
