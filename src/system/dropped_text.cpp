#include "system/dropped_text.h"

#include <string_view>

#include "system/text.h"

namespace coffrelune {
namespace {

constexpr std::string_view fileScheme = "file://";

std::string_view withoutLineEnd(std::string_view text) {
    if (!text.ends_with('\n')) return text;
    text.remove_suffix(1);
    if (text.ends_with('\r')) text.remove_suffix(1);
    return text;
}

std::string_view withoutQuotes(std::string_view text) {
    if (text.size() < 2 || text.front() != text.back()) return text;
    if (text.front() != '"' && text.front() != '\'') return text;
    return text.substr(1, text.size() - 2);
}

int hexDigit(char c) {
    constexpr std::string_view digits = "0123456789abcdef";
    const char small = c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
    const std::size_t value = digits.find(small);
    return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

std::string percentDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool coded = text[i] == '%' && i + 2 < text.size();
        const int high = coded ? hexDigit(text[i + 1]) : -1;
        const int low = coded ? hexDigit(text[i + 2]) : -1;
        if (high < 0 || low < 0) {
            decoded += text[i];  // some programs leave a percent sign as it is
        } else {
            decoded += static_cast<char>(high * 16 + low);
            i += 2;
        }
    }
    return decoded;
}

/// Empty when the address is of another machine or holds no path.
std::string pathOfAddress(std::string_view address) {
    // An address holds no line end: what follows one is the next address.
    address = address.substr(0, address.find_first_of("\r\n"));
    const std::string_view rest = address.substr(fileScheme.size());
    const std::size_t slash = rest.find('/');
    if (slash == std::string_view::npos) return {};
    const std::string_view host = rest.substr(0, slash);
    if (!host.empty() && !equalIgnoringCase(host, "localhost")) return {};
    std::string path = percentDecoded(rest.substr(slash));
    // No system has a NUL in a path.
    return path.find('\0') == std::string::npos ? path : std::string();
}

}  // namespace

std::string pathOfDroppedText(const std::string& text) {
    const std::string_view bare = withoutQuotes(withoutLineEnd(text));
    if (equalIgnoringCase(bare.substr(0, fileScheme.size()), fileScheme)) {
        std::string path = pathOfAddress(bare);
        if (!path.empty()) return path;
    }
    return std::string(bare);
}

}  // namespace coffrelune
