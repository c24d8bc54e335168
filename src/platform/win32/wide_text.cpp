#include "platform/win32/wide_text.h"

#include <windows.h>

#include <string_view>

#include "platform/characters.h"

namespace coffrelune {
namespace {

bool isHigh(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLow(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// A surrogate in three bytes at `position`; 0 when there is none.
wchar_t surrogateAt(std::string_view text, std::size_t position) {
    if (position + 3 > text.size() || text[position] != '\xED') return 0;
    const auto second = static_cast<unsigned char>(text[position + 1]);
    const auto third = static_cast<unsigned char>(text[position + 2]);
    if (second < 0xA0 || second > 0xBF || third < 0x80 || third > 0xBF) return 0;
    return static_cast<wchar_t>(0xD000 | ((second & 0x3F) << 6) | (third & 0x3F));
}

void appendSurrogate(std::string& text, char32_t unit) {
    text.push_back('\xED');
    text.push_back(static_cast<char>(0x80 | ((unit >> 6) & 0x3F)));
    text.push_back(static_cast<char>(0x80 | (unit & 0x3F)));
}

}  // namespace

std::wstring wide(std::string_view text) {
    std::wstring result;
    result.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        if (const wchar_t surrogate = surrogateAt(text, position); surrogate != 0) {
            result.push_back(surrogate);
            position += 3;
            continue;
        }
        const char32_t c = utf8::next(text, position);
        if (c < 0x10000) {
            result.push_back(static_cast<wchar_t>(c));
        } else {
            result.push_back(static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10)));
            result.push_back(static_cast<wchar_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
        }
    }
    return result;
}

std::string narrow(std::wstring_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        const bool isPair = isHigh(unit) && i + 1 < text.size() && isLow(text[i + 1]);
        if (isPair) {
            utf8::append(result, 0x10000 + ((unit - 0xD800) << 10) + (text[++i] - 0xDC00U));
        } else if (isHigh(unit) || isLow(unit)) {
            appendSurrogate(result, unit);
        } else {
            utf8::append(result, unit);
        }
    }
    return result;
}

namespace {

/// False when the page does not hold all of it; `bytes` is then of no use.
bool convert(unsigned codePage, std::wstring_view text, std::string& bytes) {
    bytes.clear();
    if (text.empty()) return true;
    const auto length = static_cast<int>(text.size());
    BOOL replaced = FALSE;
    const int size = WideCharToMultiByte(codePage, WC_NO_BEST_FIT_CHARS, text.data(), length,
                                         nullptr, 0, "?", &replaced);
    if (size <= 0 || replaced != 0) return false;
    bytes.resize(static_cast<std::size_t>(size));
    return WideCharToMultiByte(codePage, WC_NO_BEST_FIT_CHARS, text.data(), length, bytes.data(),
                               size, "?", &replaced) == size &&
           replaced == 0;
}

bool isLowSurrogate(wchar_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

}  // namespace

AnsiCodePage::AnsiCodePage() : codePage_(GetACP()) {}

bool AnsiCodePage::encode(const std::string& utf8, std::string& bytes) const {
    // A user may have made UTF-8 the page of all programs: there is nothing to convert then.
    if (codePage_ == CP_UTF8) {
        bytes = utf8;
        return true;
    }
    const std::wstring text = wide(utf8);
    if (convert(codePage_, text, bytes)) return true;
    // One by one: some versions of the system put two "?" for one character.
    std::string whole;
    bool complete = true;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = i + 1 < text.size() && isLowSurrogate(text[i + 1]) ? 2 : 1;
        const bool held = convert(codePage_, std::wstring_view(text).substr(i, length), bytes);
        whole += held ? bytes : "?";
        complete = complete && held;
        i += length;
    }
    bytes = whole;
    return complete;
}

std::string AnsiCodePage::decode(const std::string& bytes) const {
    if (codePage_ == CP_UTF8 || bytes.empty()) return bytes;
    const auto length = static_cast<int>(bytes.size());
    const int size = MultiByteToWideChar(codePage_, 0, bytes.data(), length, nullptr, 0);
    std::wstring text(static_cast<std::size_t>(size > 0 ? size : 0), L'\0');
    MultiByteToWideChar(codePage_, 0, bytes.data(), length, text.data(), size);
    return narrow(text);
}

}  // namespace coffrelune
