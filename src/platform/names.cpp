#include "platform/names.h"

#include <algorithm>
#include <array>
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
    // Spelled another way, the prefix is none; written plainly it would become one.
    if (server == "?" && (share == "UNC" || startsWithDrive(share))) return {};
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

namespace {

constexpr std::string_view prefix = ".~coffrelune-";
constexpr std::string_view digits = "0123456789abcdef";
constexpr std::size_t digitCount = 16;
constexpr std::array<std::string_view, 4> endings = {".tmp", ".copie", ".restauration", ".verrou"};

}  // namespace

std::optional<OwnFile> ownFileKind(std::string_view name) {
    if (!name.starts_with(prefix) || name.size() < prefix.size() + digitCount) return {};
    const std::string_view number = name.substr(prefix.size(), digitCount);
    const bool isNumber = std::all_of(number.begin(), number.end(), [](char c) {
        return digits.find(c) != std::string_view::npos;
    });
    const auto* const ending =
        std::find(endings.begin(), endings.end(), name.substr(prefix.size() + digitCount));
    if (!isNumber || ending == endings.end()) return {};
    return static_cast<OwnFile>(ending - endings.begin());
}

std::string ownFileName(OwnFile kind, std::uint64_t number) {
    std::string text(digitCount, '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, number >>= 4) {
        *digit = digits[number & 15];
    }
    return std::string(prefix).append(text).append(endings[static_cast<std::size_t>(kind)]);
}

}  // namespace coffrelune
