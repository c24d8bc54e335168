#include "platform/wx/text.h"

#include <wx/control.h>

#include "platform/utf8.h"

namespace coffrelune {

wxString toWx(const std::string& text) {
    wxString converted = wxString::FromUTF8(text.data(), text.size());
    if (!converted.empty() || text.empty()) return converted;
    std::string repaired;
    for (std::size_t position = 0; position < text.size();) {
        constexpr char32_t replacement = 0xFFFD;
        const char32_t character = utf8::next(text, position);
        const bool raw = character >= utf8::rawByte && character <= utf8::rawByte + 0xFF;
        utf8::append(repaired, raw ? replacement : character);
    }
    return wxString::FromUTF8(repaired.data(), repaired.size());
}

std::string fromWx(const wxString& text) {
    const wxScopedCharBuffer bytes = text.utf8_str();
    return {bytes.data(), bytes.length()};
}

wxString spoken(const std::string& caption) {
    return wxControl::RemoveMnemonics(toWx(caption));
}

}  // namespace coffrelune
