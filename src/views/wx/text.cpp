#include "views/wx/text.h"

#include <wx/control.h>

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

wxString spoken(const std::string& caption) {
    return wxControl::RemoveMnemonics(toWx(caption));
}

}  // namespace coffrelune
