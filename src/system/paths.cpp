#include "system/paths.h"

#include <string_view>

#include "platform/characters.h"
#include "platform/names.h"
#include "system/text.h"

namespace coffrelune {

std::string withTrailingBackslash(std::string path) {
    if (path.empty() || path.back() != '\\') path += '\\';
    return path;
}

std::string withoutTrailingBackslash(std::string path) {
    if (!path.empty() && path.back() == '\\') path.pop_back();
    return path;
}

SplitPath splitPath(const std::string& path) {
    const std::string text = withoutTrailingBackslash(path);
    const std::size_t backslash = text.rfind('\\');
    if (backslash == std::string::npos) return {text, ""};
    return {text.substr(0, backslash + 1), text.substr(backslash + 1)};
}

std::string joinPath(const std::string& directory, std::string_view name) {
    // No match at the end gives npos, which wraps to a length of 0: a text of backslashes alone.
    std::string path = directory.substr(0, directory.find_last_not_of('\\') + 1);
    path += '\\';
    const std::size_t first = name.find_first_not_of('\\');
    if (first != std::string_view::npos) path.append(name.substr(first));
    return path;
}

bool isDriveRoot(std::string_view path) {
    return path.size() == 3 && hasDriveLetter(path) && path[2] == '\\';
}

std::string withoutExtension(const std::string& fileName) {
    return fileName.substr(0, fileName.rfind('.'));
}

std::string cleanFileName(std::string text, std::string_view replacement) {
    for (const char forbidden : std::string_view("<>|\\/*:?\"")) {
        for (std::size_t at = text.find(forbidden); at != std::string::npos;
             at = text.find(forbidden, at + replacement.size())) {
            text.replace(at, 1, replacement);
        }
    }
    return trimBlanks(text);
}

namespace {

constexpr std::string_view fileScheme = "file://";

std::string_view withoutLineEnd(std::string_view text) {
    if (!text.ends_with('\n')) return text;
    text.remove_suffix(1);
    if (text.ends_with('\r')) text.remove_suffix(1);
    return text;
}

std::string percentDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool coded = text[i] == '%' && i + 2 < text.size();
        const int high = coded ? ascii::hexDigit(text[i + 1]) : -1;
        const int low = coded ? ascii::hexDigit(text[i + 2]) : -1;
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
