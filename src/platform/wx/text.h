#pragma once

#include <wx/string.h>

#include <string>

namespace coffrelune {

/// Text as the toolkit wants it. Bytes that are no UTF-8 (a file name may hold any) are shown as
/// U+FFFD, so that nothing vanishes from the screen.
wxString toWx(const std::string& text);
std::string fromWx(const wxString& text);

/// A caption without the mark of its mnemonic, for those who hear it instead of seeing it.
wxString spoken(const std::string& caption);

}  // namespace coffrelune
