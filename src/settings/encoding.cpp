#include "settings/encoding.h"

#include "platform/characters.h"
#include "system/text.h"

namespace coffrelune {
namespace {

constexpr char32_t privateUse = 0xF000;
constexpr char32_t escape = privateUse + 0x1B;

bool isOneOf(char32_t character, std::string_view characters) {
    return character < 0x80 &&
           characters.find(static_cast<char>(character)) != std::string_view::npos;
}

// A private-use character that unescaping would take for something else.
bool hasMeaning(char32_t character, std::string_view characters) {
    return character == escape ||
           (character >= privateUse && isOneOf(character - privateUse, characters));
}

}  // namespace

std::string escapeCharacters(std::string_view text, std::string_view characters) {
    std::string result;
    for (std::size_t position = 0; position < text.size();) {
        const char32_t character = utf8::next(text, position);
        if (hasMeaning(character, characters)) utf8::append(result, escape);
        utf8::append(result, isOneOf(character, characters) ? privateUse + character : character);
    }
    return result;
}

std::string unescapeCharacters(std::string_view text, std::string_view characters) {
    std::string result;
    for (std::size_t position = 0; position < text.size();) {
        char32_t character = utf8::next(text, position);
        std::size_t after = position;
        const char32_t following = position < text.size() ? utf8::next(text, after) : 0;
        if (character == escape && hasMeaning(following, characters)) {
            character = following;
            position = after;
        } else if (character != escape && hasMeaning(character, characters)) {
            character -= privateUse;
        }
        utf8::append(result, character);
    }
    return result;
}

std::string protectQuotes(const std::string& value) {
    return withoutQuotes(value).size() < value.size() ? QuoteValue(value) : value;
}

}  // namespace coffrelune

namespace coffrelune::utf16le {
namespace {

constexpr char32_t highSurrogate = 0xD800;
constexpr char32_t lowSurrogate = 0xDC00;

char32_t unitAt(std::string_view bytes, std::size_t position) {
    const auto low = static_cast<unsigned char>(bytes[position]);
    const auto high = static_cast<unsigned char>(bytes[position + 1]);
    return low | static_cast<char32_t>(high) << 8;
}

void appendUnit(std::string& bytes, char32_t unit) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>(unit >> 8));
}

bool isHigh(char32_t unit) {
    return (unit & 0xFC00) == highSurrogate;
}
bool isLow(char32_t unit) {
    return (unit & 0xFC00) == lowSurrogate;
}

}  // namespace

bool isText(std::string_view bytes) {
    if (bytes.size() % 2 != 0) return false;
    for (std::size_t position = 0; position < bytes.size(); position += 2) {
        if (unitAt(bytes, position) == 0) return false;
    }
    return true;
}

std::string encode(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size() * 2);
    for (std::size_t position = 0; position < text.size();) {
        const char32_t character = utf8::next(text, position);
        if (character >= 0x10000) {
            appendUnit(bytes, highSurrogate + ((character - 0x10000) >> 10));
            appendUnit(bytes, lowSurrogate + ((character - 0x10000) & 0x3FF));
        } else {
            appendUnit(bytes, character);
        }
    }
    return bytes;
}

std::string decode(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t position = 0; position + 1 < bytes.size();) {
        char32_t character = unitAt(bytes, position);
        position += 2;
        if (isHigh(character) && position + 1 < bytes.size() && isLow(unitAt(bytes, position))) {
            character = 0x10000 + ((character - highSurrogate) << 10) +
                        (unitAt(bytes, position) - lowSurrogate);
            position += 2;
        }
        utf8::append(text, character);
    }
    return text;
}

}  // namespace coffrelune::utf16le
