#include "settings/escape.h"

#include "platform/utf8.h"
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
