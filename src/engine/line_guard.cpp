#include "engine/line_guard.h"

#include "system/paths.h"

namespace coffrelune {
namespace {

bool isBelow(const std::string& path, const std::string& directory) {
    return withTrailingBackslash(path).rfind(withTrailingBackslash(directory), 0) == 0;
}

}  // namespace

void LineGuard::watch(const LineRoots& roots) {
    targetPath_ = files_.resolve(roots.target);
    target_ = FileId{};
    // A target that does not exist yet has no identity; its resolved path speaks for it.
    if (!files_.identify(roots.target, target_).ok()) target_ = FileId{};
    const std::string original = files_.resolve(roots.original());
    FileId copy;
    copyHoldsOriginal_ =
        isBelow(original, files_.resolve(roots.copy())) ||
        (files_.identify(roots.copy(), copy).ok() && anyAncestorIs(original, copy));
}

// One place may be mounted under two paths, which no text tells: the identities do.
bool LineGuard::anyAncestorIs(std::string path, const FileId& id) {
    while (true) {
        FileId ancestor;
        if (files_.identify(path, ancestor).ok() && ancestor == id) return true;
        SplitPath split = splitPath(path);
        if (split.last.empty() || split.parent == path || isDriveRoot(path)) return false;
        path = isDriveRoot(split.parent) ? split.parent : withoutTrailingBackslash(split.parent);
    }
}

bool LineGuard::isTarget(const std::string& path, const FileEntry& entry) const {
    if (entry.id.known() && target_.known()) return entry.id == target_;
    return path == targetPath_;
}

}  // namespace coffrelune
