#include "platform/memory/memory_path.h"

#include <cctype>

#include "platform/utf8.h"

namespace coffrelune {
namespace {

// Length of the root's text, without a backslash that ends it; 0 when the text is no full path.
std::size_t rootLength(const std::string& path) {
    if (path.size() >= 2 && path[1] == ':' && std::isalpha(static_cast<unsigned char>(path[0])) &&
        (path.size() == 2 || path[2] == '\\')) {
        return 2;
    }
    if (path.compare(0, 2, "\\\\") != 0) return 0;
    const std::size_t share = path.find('\\', 2);
    if (share == std::string::npos || share == 2 || share + 1 == path.size()) return 0;
    const std::size_t end = path.find('\\', share + 1);
    if (end == share + 1) return 0;
    return end == std::string::npos ? path.size() : end;
}

}  // namespace

MemoryPath splitMemoryPath(const std::string& path) {
    MemoryPath result;
    const std::size_t root = rootLength(path);
    if (root == 0) return result;
    result.root = path.substr(0, root);
    if (root == 2) {
        result.root[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(path[0])));
        result.root += '\\';
    }
    for (std::size_t start = root; start < path.size();) {
        const std::size_t end = std::min(path.find('\\', start), path.size());
        if (end > start) result.components.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    return result;
}

std::string foldCase(const std::string& name) {
    std::string folded;
    for (std::size_t position = 0; position < name.size();) {
        char32_t c = utf8::next(name, position);
        const bool latin = c >= 0xE0 && c <= 0xFE && c != 0xF7;
        if ((c >= 'a' && c <= 'z') || latin) c -= 0x20;
        utf8::append(folded, c);
    }
    return folded;
}

}  // namespace coffrelune
