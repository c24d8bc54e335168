#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

/// Characters of ASCII, whatever the locale of the process.
namespace coffrelune::ascii {

/// Of narrow or wide text.
template <typename Char>
constexpr bool isLetter(Char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

constexpr char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// -1 when it is none.
constexpr int hexDigit(char c) {
    if (isDigit(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

/// Characters that every code page holds and every screen shows, at least one.
constexpr bool isShownText(std::string_view text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

}  // namespace coffrelune::ascii

namespace coffrelune::utf8 {

/// A byte that is no valid UTF-8 is read as this plus its value (0xDC80 to 0xDCFF), a lone
/// surrogate that no valid text contains: so raw file names survive a passage through UTF-16.
inline constexpr char32_t rawByte = 0xDC00;

/// Reads one character at `position` and moves on. `position` must be inside `text`.
inline char32_t next(std::string_view text, std::size_t& position) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(position);
    if (lead < 0x80) return text[position++] & 0x7F;
    const int extra = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    const char32_t smallest = extra == 3 ? 0x10000 : extra == 2 ? 0x800 : 0x80;
    char32_t value = lead & (extra == 3 ? 0x07U : extra == 2 ? 0x0FU : 0x1FU);
    bool valid =
        lead >= 0xC2 && lead <= 0xF4 && position + static_cast<std::size_t>(extra) < text.size();
    for (int i = 1; valid && i <= extra; ++i) {
        const unsigned char follow = byte(position + static_cast<std::size_t>(i));
        valid = (follow & 0xC0) == 0x80;
        value = (value << 6) | (follow & 0x3FU);
    }
    valid = valid && value >= smallest && value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
    if (!valid) {
        ++position;
        return rawByte + lead;
    }
    position += static_cast<std::size_t>(extra) + 1;
    return value;
}

/// Appends one character; a raw byte (see above) is appended as the byte it was.
inline void append(std::string& text, char32_t c) {
    const auto put = [&](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (c >= rawByte + 0x80 && c <= rawByte + 0xFF) {
        put(c - rawByte);
    } else if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | (c >> 6));
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | (c >> 12));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | (c >> 18));
        put(0x80 | ((c >> 12) & 0x3F));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

}  // namespace coffrelune::utf8

namespace coffrelune {

/// For what takes valid UTF-8 alone, a toolkit or a screen reader, while a file name may hold any
/// bytes: a byte that is no UTF-8 becomes a character of a private-use plane (U+10DC00 plus its
/// value) that no file name is likely to hold, and no other character changes.
std::string shownBytes(const std::string& text);

/// The bytes again, of a text that comes back from there.
std::string rawBytes(const std::string& shown);

/// The user's ANSI code page, met only in the settings file and the error lists.
class AnsiCodec {
  public:
    virtual ~AnsiCodec() = default;

    /// UTF-8 to the code page, with "?" for what it cannot hold. Returns false when there was such
    /// a character; `bytes` is complete all the same.
    virtual bool encode(const std::string& utf8, std::string& bytes) const = 0;

    /// Any bytes to UTF-8; never fails.
    virtual std::string decode(const std::string& bytes) const = 0;

    /// Editors of this system write UTF-8 without a mark: a file that can be read so was.
    virtual bool editorsWriteUtf8() const { return false; }
};

/// The code page of western European Windows, used as the ANSI code page on Linux.
/// https://encoding.spec.whatwg.org/index-windows-1252.txt (the five bytes that the code page
/// leaves free are the C1 controls of the same number, as Windows decodes them).
class Windows1252 final : public AnsiCodec {
  public:
    bool encode(const std::string& utf8, std::string& bytes) const override;
    std::string decode(const std::string& bytes) const override;
    bool editorsWriteUtf8() const override { return true; }
};

}  // namespace coffrelune
