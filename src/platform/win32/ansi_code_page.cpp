#include "platform/win32/ansi_code_page.h"

#include <windows.h>

#include <string_view>

#include "platform/win32/wide_text.h"

namespace coffrelune {
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
