#pragma once

#include <string>

namespace coffrelune {

/// The path in a text that another program offers by drag and drop or through the clipboard: one
/// line end after it and one pair of quotes (" or ') round it are taken off. Of addresses
/// "file:///tmp/a%20b" of this machine, the path of the first one, as the system writes it
/// ("/tmp/a b"). Any other address stays as it is.
std::string pathOfDroppedText(const std::string& text);

}  // namespace coffrelune
