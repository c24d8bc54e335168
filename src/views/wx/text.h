#pragma once

#include <wx/gdicmn.h>
#include <wx/string.h>

#include <string>

class wxWindow;

namespace coffrelune {

/// Text as the toolkit wants it, and back. Bytes that are no UTF-8 (a file name may hold any) pass
/// as characters of their own: see shownBytes().
wxString toWx(const std::string& text);
std::string fromWx(const wxString& text);

/// Puts a text where other programs can paste it from.
void copyToClipboard(const wxString& text);

/// A caption without the mark of its mnemonic, for those who hear it instead of seeing it.
wxString spoken(const std::string& caption);

/// A size in density-independent pixels that suits the usual text, in the pixels that suit the
/// widget's: a user's larger text asks for more room.
wxSize sizeForText(const wxWindow& widget, wxSize size);

}  // namespace coffrelune
