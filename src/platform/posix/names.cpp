#include "platform/posix/names.h"

namespace coffrelune {
namespace {

constexpr std::string_view backslash = "\xEF\x81\x9C";  // U+F05C
constexpr std::string_view colon = "\xEF\x80\xBA";      // U+F03A
constexpr std::string_view escape = "\xEF\x83\xBF";     // U+F0FF

bool isPrivate(std::string_view text) {
    return text.starts_with(backslash) || text.starts_with(colon) || text.starts_with(escape);
}

}  // namespace

std::string toCoreName(std::string_view native) {
    std::string core;
    core.reserve(native.size());
    for (std::size_t i = 0; i < native.size(); ++i) {
        if (native[i] == '\\') {
            core += backslash;
        } else if (native[i] == ':') {
            core += colon;
        } else {
            if (isPrivate(native.substr(i))) core += escape;
            core += native[i];
        }
    }
    return core;
}

std::string toNativeName(std::string_view core) {
    std::string native;
    native.reserve(core.size());
    for (std::size_t i = 0; i < core.size();) {
        const std::string_view rest = core.substr(i);
        if (rest.starts_with(escape) && isPrivate(rest.substr(escape.size()))) {
            native += rest.substr(escape.size(), escape.size());
            i += 2 * escape.size();
        } else if (rest.starts_with(backslash) || rest.starts_with(colon)) {
            native += rest.starts_with(backslash) ? '\\' : ':';
            i += backslash.size();
        } else {
            native += core[i++];
        }
    }
    return native;
}

}  // namespace coffrelune
