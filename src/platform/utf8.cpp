#include "platform/utf8.h"

namespace coffrelune {
namespace {

constexpr char32_t shownBase = 0x10DC00;

// Only bytes from 0x80 on can be no UTF-8.
bool isByte(char32_t character, char32_t base) {
    return character >= base + 0x80 && character <= base + 0xFF;
}

std::string moved(const std::string& text, char32_t from, char32_t to) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const char32_t character = utf8::next(text, position);
        utf8::append(result, isByte(character, from) ? character - from + to : character);
    }
    return result;
}

}  // namespace

std::string shownBytes(const std::string& text) {
    return moved(text, utf8::rawByte, shownBase);
}

std::string rawBytes(const std::string& shown) {
    return moved(shown, shownBase, utf8::rawByte);
}

}  // namespace coffrelune
