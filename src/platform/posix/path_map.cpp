#include "platform/posix/path_map.h"

#include <algorithm>

#include "platform/names.h"
#include "platform/posix/native_path.h"

namespace coffrelune {
namespace {

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool equalButCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return upper(x) == upper(y); });
}

bool startsWithRoot(std::string_view path, std::string_view root, bool exact) {
    if (path.size() < root.size()) return false;
    const std::string_view start = path.substr(0, root.size());
    if (exact ? start != root : !equalButCase(start, root)) return false;
    return path.size() == root.size() || path[root.size()] == '\\';
}

std::vector<std::string_view> splitCore(std::string_view rest) {
    std::vector<std::string_view> components;
    for (std::size_t start = 0; start < rest.size();) {
        // No name holds a slash here, so it separates, as it does on Windows.
        const std::size_t end = std::min(rest.find_first_of("\\/", start), rest.size());
        const std::string_view component = rest.substr(start, end - start);
        start = end + 1;
        if (component == "..") {
            if (!components.empty()) components.pop_back();
        } else if (!component.empty() && component != ".") {
            components.push_back(component);
        }
    }
    return components;
}

}  // namespace

PathRoot PathRoot::drive(char letter, std::string native, std::optional<dev_t> device) {
    return {std::string(1, upper(letter)) + ":", std::move(native), device};
}

PathRoot PathRoot::share(const std::string& server, const std::string& name, std::string native,
                         std::optional<dev_t> device) {
    return {"\\\\" + server + "\\" + name, std::move(native), device};
}

std::string Place::name() const {
    return isRoot() ? std::string() : toCoreName(native.substr(native.rfind('/') + 1));
}

bool hasCoreForm(std::string_view text) {
    if (text.starts_with("\\\\")) return text.size() > 2 && text[2] != '\\';
    return hasDriveLetter(text) && (text.size() == 2 || text[2] == '\\');
}

const PathRoot* PathMap::rootOf(std::string_view corePath, std::string_view& rest) const {
    const PathRoot* best = nullptr;
    for (const bool exact : {true, false}) {
        for (const PathRoot& root : roots_) {
            if (startsWithRoot(corePath, root.core, exact) &&
                (best == nullptr || root.core.size() > best->core.size())) {
                best = &root;
            }
        }
    }
    if (best != nullptr) rest = corePath.substr(best->core.size());
    return best;
}

Status PathMap::locate(const std::string& corePath, Place& place) const {
    if (!hasCoreForm(corePath)) return Status::failure(error_number::pathNotFound, corePath);
    if (corePath.find('\0') != std::string::npos) {
        return Status::failure(error_number::invalidParameter, corePath);
    }
    std::string_view rest;
    const PathRoot* root = rootOf(corePath, rest);
    if (root == nullptr) return Status::failure(error_number::deviceDoesNotExist, corePath);
    place.core = corePath;
    place.root = root->native;
    place.device = root->device;
    place.native = root->native;
    for (const std::string_view component : splitCore(rest)) {
        if (!place.native.ends_with('/')) place.native += '/';
        place.native += toNativeName(component);
    }
    return {};
}

std::string PathMap::toCore(const std::string& native) const {
    const PathRoot* best = nullptr;
    for (const PathRoot& root : roots_) {
        if (isWithin(native, root.native) &&
            (best == nullptr || root.native.size() > best->native.size())) {
            best = &root;
        }
    }
    const PathRoot fallback = PathRoot::drive('C', "/");
    if (best == nullptr) best = &fallback;
    std::string core = best->core;
    for (const std::string& component : splitNative(below(native, best->native))) {
        core += '\\';
        core += toCoreName(component);
    }
    return core.size() == 2 ? core + "\\" : core;
}

std::string PathMap::fromNative(const std::string& typed,
                                const std::string& currentDirectory) const {
    if (typed.empty() || hasCoreForm(typed)) return inPlainSpelling(typed);
    const std::string absolute =
        typed.starts_with('/') ? typed : joinNative(currentDirectory, typed);
    const std::vector<std::string> components = splitNative(absolute);
    // "link/.." is not where the link stands: only the file system knows where it leads.
    const bool climbs = std::find(components.begin(), components.end(), "..") != components.end();
    return toCore(climbs ? canonicalPath(absolute) : normalizedPath(absolute));
}

}  // namespace coffrelune
