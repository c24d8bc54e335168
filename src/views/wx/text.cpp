#include "views/wx/text.h"

#include <wx/clipbrd.h>
#include <wx/control.h>

#include <algorithm>

#include "platform/characters.h"

namespace coffrelune {

wxString toWx(const std::string& text) {
    wxString converted = wxString::FromUTF8(text.data(), text.size());
    if (!converted.empty() || text.empty()) return converted;
    const std::string shown = shownBytes(text);
    return wxString::FromUTF8(shown.data(), shown.size());
}

std::string fromWx(const wxString& text) {
    const wxScopedCharBuffer bytes = text.utf8_str();
    return rawBytes({bytes.data(), bytes.length()});
}

void copyToClipboard(const wxString& text) {
    // Where another program holds the clipboard, the user presses again.
    if (!wxTheClipboard->Open()) return;
    wxTheClipboard->SetData(new wxTextDataObject(text));
    wxTheClipboard->Close();
}

wxString spoken(const std::string& caption) {
    return wxControl::RemoveMnemonics(toWx(caption));
}

wxSize sizeForText(const wxWindow& widget, wxSize size) {
    constexpr int usualHeight = 17;  // of a line, in density-independent pixels
    const int usual = widget.FromDIP(usualHeight);
    const int height = std::max(widget.GetCharHeight(), usual);
    const wxSize pixels = widget.FromDIP(size);
    return {pixels.x * height / usual, pixels.y * height / usual};
}

}  // namespace coffrelune
