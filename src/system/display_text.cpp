#include "system/display_text.h"

#include "platform/utf8.h"

namespace coffrelune {

std::string visibleControls(std::string_view text) {
    constexpr char32_t pictures = 0x2400;  // U+2400 to U+241F, in the order of the controls
    constexpr char32_t deletePicture = 0x2421;
    std::string visible;
    visible.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20) {
            utf8::append(visible, pictures + byte);
        } else if (byte == 0x7F) {
            utf8::append(visible, deletePicture);
        } else {
            visible.push_back(c);
        }
    }
    return visible;
}

}  // namespace coffrelune
