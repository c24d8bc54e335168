#include "platform/characters.h"

#include <algorithm>
#include <array>

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

namespace {

// Bytes 0x80 to 0x9F; the others are the character of the same number.
constexpr std::array<char32_t, 32> upperControls = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

// The byte for a character, or -1.
int byteFor(char32_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<int>(c);
    const auto* found = std::find(upperControls.begin(), upperControls.end(), c);
    if (found == upperControls.end()) return -1;
    return 0x80 + static_cast<int>(found - upperControls.begin());
}

}  // namespace

bool Windows1252::encode(const std::string& utf8, std::string& bytes) const {
    bool complete = true;
    bytes.clear();
    bytes.reserve(utf8.size());
    for (std::size_t position = 0; position < utf8.size();) {
        const int byte = byteFor(utf8::next(utf8, position));
        complete = complete && byte >= 0;
        bytes.push_back(byte >= 0 ? static_cast<char>(byte) : '?');
    }
    return complete;
}

std::string Windows1252::decode(const std::string& bytes) const {
    // Nearly every line is ASCII, which the code page shares with UTF-8.
    if (std::none_of(bytes.begin(), bytes.end(), [](char c) { return (c & 0x80) != 0; })) {
        return bytes;
    }
    std::string text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        utf8::append(text, byte >= 0x80 && byte < 0xA0 ? upperControls[byte - 0x80U] : byte);
    }
    return text;
}

}  // namespace coffrelune
