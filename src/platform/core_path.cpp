#include "platform/core_path.h"

#include <algorithm>
#include <vector>

namespace coffrelune {
namespace {

constexpr std::string_view separators = "\\/";
constexpr std::string_view verbatim = R"(\\?\)";
constexpr std::string_view verbatimShare = R"(\\?\UNC\)";

bool isSeparator(char c) {
    return c == '\\' || c == '/';
}

bool isDots(std::string_view name) {
    return name == "." || name == "..";
}

bool startsWithDrive(std::string_view text) {
    return hasDriveLetter(text) && (text.size() == 2 || isSeparator(text[2]));
}

/// Takes the next name off `rest`; empty at the end.
std::string_view takeName(std::string_view& rest) {
    rest.remove_prefix(std::min(rest.find_first_not_of(separators), rest.size()));
    const std::string_view name = rest.substr(0, rest.find_first_of(separators));
    rest.remove_prefix(name.size());
    return name;
}

/// Takes the drive or the share off `rest`; empty when it does not begin with one.
std::string takeVolume(std::string_view& rest) {
    std::string_view text = rest;
    const bool prefixed = text.starts_with(verbatimShare);
    if (prefixed) {
        text.remove_prefix(verbatimShare.size());
    } else if (text.starts_with(verbatim) && startsWithDrive(text.substr(verbatim.size()))) {
        text.remove_prefix(verbatim.size());
    }
    if (!prefixed && startsWithDrive(text)) {
        rest = text.substr(2);
        return std::string(text.substr(0, 2));
    }
    const bool marked = text.size() > 2 && isSeparator(text[0]) && isSeparator(text[1]);
    if (!prefixed && !marked) return {};
    if (!prefixed) text.remove_prefix(2);
    if (text.empty() || isSeparator(text[0])) return {};
    const std::string_view server = takeName(text);
    const std::string_view share = takeName(text);
    if (isDots(server) || isDots(share)) return {};
    rest = text;
    const std::string volume = std::string(R"(\\)").append(server);
    return share.empty() ? volume : (volume + '\\').append(share);
}

}  // namespace

std::string inPlainSpelling(std::string_view text) {
    std::string_view rest = text;
    std::string path = takeVolume(rest);
    if (path.empty()) return std::string(text);
    const bool isDrive = path.size() == 2;
    const bool hasRoot = !rest.empty();
    std::vector<std::string_view> names;
    for (std::string_view name = takeName(rest); !name.empty(); name = takeName(rest)) {
        if (!isDots(name)) {
            names.push_back(name);
        } else if (name == ".." && !names.empty()) {
            names.pop_back();
        }
    }
    for (const std::string_view name : names) (path += '\\').append(name);
    const bool rootAlone = isDrive && hasRoot && names.empty();
    if (rootAlone || isSeparator(text.back())) path += '\\';
    return path;
}

}  // namespace coffrelune
