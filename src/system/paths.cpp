#include "system/paths.h"

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
    if (path.size() != 3 || path.substr(1) != ":\\") return false;
    return (path[0] >= 'A' && path[0] <= 'Z') || (path[0] >= 'a' && path[0] <= 'z');
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

}  // namespace coffrelune
