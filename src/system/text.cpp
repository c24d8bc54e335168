#include "system/text.h"

#include <algorithm>
#include <limits>

#include "platform/utf8.h"
#include "system/casing.h"

namespace coffrelune {
namespace {

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

}  // namespace coffrelune
