#include "system/text.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "platform/characters.h"
#include "system/casing_tables.h"

namespace coffrelune {
namespace {

template <typename Table>
char32_t mapped(const Table& table, char32_t character) {
    const auto* after = std::upper_bound(
        table.begin(), table.end(), character,
        [](char32_t wanted, const CaseRange& range) { return wanted < range.first; });
    if (after == table.begin()) return character;
    const CaseRange& range = *std::prev(after);
    const bool inside = character <= range.last && (character - range.first) % range.step == 0;
    if (!inside) return character;
    return static_cast<char32_t>(static_cast<std::int32_t>(character) + range.delta);
}

using Mapping = char32_t (*)(char32_t);

std::string mapEach(std::string_view text, Mapping mapping) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        utf8::append(result, mapping(utf8::next(text, position)));
    }
    return result;
}

}  // namespace

char32_t lowerCase(char32_t character) {
    // Nearly every character that is asked for is one of these.
    if (character < 0x80) return ascii::lower(static_cast<char>(character)) & 0x7F;
    return mapped(lowerMappings, character);
}

char32_t upperCase(char32_t character) {
    return mapped(upperMappings, character);
}

std::string lowerCase(std::string_view text) {
    return mapEach(text, lowerCase);
}

std::string upperCase(std::string_view text) {
    return mapEach(text, upperCase);
}

std::string ProperCase(std::string_view text) {
    if (text.empty()) return {};
    std::size_t position = 0;
    const char32_t first = utf8::next(text, position);
    std::string result;
    // By way of lower case, so that a name that went through here once comes out the same again.
    utf8::append(result, upperCase(lowerCase(first)));
    return result + lowerCase(text.substr(position));
}

std::string QuoteValue(std::string_view text) {
    if (text.empty()) return {};
    return '"' + std::string(text) + '"';
}

std::string_view withoutQuotes(std::string_view text) {
    const bool quoted = text.size() >= 2 && text.front() == text.back() &&
                        (text.front() == '"' || text.front() == '\'');
    return quoted ? text.substr(1, text.size() - 2) : text;
}

std::size_t characterCount(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t position = 0; position < text.size(); ++count) utf8::next(text, position);
    return count;
}

std::string firstCharacters(std::string text, std::size_t count) {
    std::size_t position = 0;
    for (std::size_t i = 0; i < count && position < text.size(); ++i) utf8::next(text, position);
    text.resize(position);
    return text;
}

std::string trimBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::vector<std::string> splitText(std::string_view text, char separator) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (true) {
        const std::size_t end = text.find(separator, start);
        parts.emplace_back(text.substr(start, end - start));
        if (end == std::string_view::npos) return parts;
        start = end + 1;
    }
}

std::int32_t leadingNumber(std::string_view text) {
    std::size_t position = text.find_first_not_of(" \t");
    if (position == std::string_view::npos) return 0;
    const bool negative = text[position] == '-';
    if (negative || text[position] == '+') ++position;
    constexpr std::int64_t beyond = std::int64_t{1} << 32;
    std::int64_t value = 0;
    for (; position < text.size() && text[position] >= '0' && text[position] <= '9'; ++position) {
        value = std::min(value * 10 + (text[position] - '0'), beyond);
    }
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(negative ? -value : value, Limits::min(), Limits::max()));
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    std::size_t inA = 0;
    std::size_t inB = 0;
    while (inA < a.size() && inB < b.size()) {
        if (lowerCase(utf8::next(a, inA)) != lowerCase(utf8::next(b, inB))) return false;
    }
    return inA == a.size() && inB == b.size();
}

std::string visibleControls(std::string_view text) {
    constexpr char32_t pictures = 0x2400;  // U+2400 to U+241F, in the order of the controls
    constexpr char32_t deletePicture = 0x2421;
    constexpr std::string_view colonInName = "\xEF\x80\xBA";
    constexpr std::string_view escape = "\xEF\x83\xBF";  // before a character that is meant itself
    std::string visible;
    visible.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const auto byte = static_cast<unsigned char>(c);
        if (c == colonInName[0] && text.substr(i).starts_with(colonInName) &&
            !text.substr(0, i).ends_with(escape)) {
            visible.push_back(':');
            i += colonInName.size() - 1;
            continue;
        }
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
