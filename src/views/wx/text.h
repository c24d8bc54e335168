#pragma once

#include <wx/string.h>

#include <string>

namespace coffrelune {

/// Text as the toolkit wants it, and back. Bytes that are no UTF-8 (a file name may hold any) pass
/// as characters of their own: see shownBytes().
wxString toWx(const std::string& text);
std::string fromWx(const wxString& text);

/// A caption without the mark of its mnemonic, for those who hear it instead of seeing it.
wxString spoken(const std::string& caption);

}  // namespace coffrelune
