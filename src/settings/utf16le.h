#pragma once

#include <string>
#include <string_view>

/// UTF-16 LE as bytes. Any UTF-8 text, and any bytes that are none, come back from encode and
/// decode as they were: a byte that is no UTF-8 is a lone surrogate in between (see
/// platform/utf8.h).
namespace coffrelune::utf16le {

/// False for an odd count of bytes and when there is a NUL character.
bool isText(std::string_view bytes);

std::string encode(std::string_view text);

/// `bytes` of an even count.
std::string decode(std::string_view bytes);

}  // namespace coffrelune::utf16le
