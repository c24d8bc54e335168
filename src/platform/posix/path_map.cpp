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

bool isSeparator(char c) {
    // No name holds a slash here, so it separates, as it does on Windows.
    return c == '\\' || c == '/';
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

const PathRoot* PathMap::rootOf(std::string_view corePath) const {
    const PathRoot* best = nullptr;
    for (const bool exact : {true, false}) {
        for (const PathRoot& root : roots_) {
            if (startsWithRoot(corePath, root.core, exact) &&
                (best == nullptr || root.core.size() > best->core.size())) {
                best = &root;
            }
        }
    }
    return best;
}

std::size_t PathMap::Trail::sharedWith(std::string_view corePath, const PathRoot& wanted) const {
    if (root != &wanted) return 0;
    const auto isShared = [&](const Step& step) {
        return corePath.starts_with(std::string_view(core).substr(0, step.core)) &&
               (corePath.size() == step.core || isSeparator(corePath[step.core]));
    };
    if (steps.empty() || isShared(steps.back())) return steps.size();
    const auto end = std::partition_point(steps.begin(), steps.end(), isShared);
    return static_cast<std::size_t>(end - steps.begin());
}

void PathMap::Trail::cut(std::size_t stepsLeft) {
    steps.resize(stepsLeft);
    core.resize(steps.empty() ? 0 : steps.back().core);
    native.resize(steps.empty() ? 0 : steps.back().native);
}

/// The trail that leads farthest towards a path, cut where the path leaves it.
PathMap::Trail& PathMap::trailFor(std::string_view corePath, const PathRoot& root) const {
    const std::array<std::size_t, 2> shared = {trails_[0].sharedWith(corePath, root),
                                               trails_[1].sharedWith(corePath, root)};
    const std::size_t nearest = shared[1] > shared[0] ? 1 : 0;
    // The trail that was just used is not given up for a path that soon leaves it: that one goes
    // down the other tree.
    constexpr std::size_t fewSteps = 4;
    const bool leavesSoon = trails_[nearest].steps.size() - shared[nearest] > fewSteps;
    const std::size_t chosen = leavesSoon ? 1 - lastTrail_ : nearest;
    Trail& trail = trails_[chosen];
    if (chosen != nearest) trail = trails_[nearest];
    lastTrail_ = chosen;
    trail.cut(shared[nearest]);
    return trail;
}

void PathMap::Trail::goOn(std::string_view component) {
    core.append(1, '\\').append(component);
    if (!native.ends_with('/')) native += '/';
    native += toNativeName(component);
    steps.push_back({core.size(), native.size()});
}

Status PathMap::locate(const std::string& corePath, Place& place) const {
    if (!hasCoreForm(corePath)) return Status::failure(error_number::pathNotFound, corePath);
    if (corePath.find('\0') != std::string::npos) {
        return Status::failure(error_number::invalidParameter, corePath);
    }
    const PathRoot* root = rootOf(corePath);
    if (root == nullptr) return Status::failure(error_number::deviceDoesNotExist, corePath);
    Trail& trail = trailFor(corePath, *root);
    if (trail.steps.empty()) {
        const std::size_t length = root->core.size();
        trail = {root, corePath.substr(0, length), root->native, {{length, root->native.size()}}};
    }
    std::size_t start = trail.core.size();
    while (start < corePath.size()) {
        const std::size_t end = std::min(corePath.find_first_of("\\/", start), corePath.size());
        const std::string_view component = std::string_view(corePath).substr(start, end - start);
        start = end + 1;
        if (component == "..") {
            // Never out of the root.
            trail.cut(std::max<std::size_t>(trail.steps.size() - 1, 1));
        } else if (!component.empty() && component != ".") {
            trail.goOn(component);
        }
    }
    place.core = corePath;
    place.root = root->native;
    place.device = root->device;
    place.native = trail.native;
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
