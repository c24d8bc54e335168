#include "engine/line_guard.h"

#include "platform/core_path.h"
#include "system/paths.h"

namespace coffrelune {
void LineGuard::watch(const LineRoots& roots) {
    targetPath_ = files_.resolve(roots.target);
    target_ = FileId{};
    // A target that does not exist yet has no identity; its resolved path speaks for it.
    if (!files_.identify(roots.target, target_).ok()) target_ = FileId{};
    const std::string original = files_.resolve(roots.original());
    FileId copy;
    copyHoldsOriginal_ =
        isWithin(original, files_.resolve(roots.copy())) ||
        (files_.identify(roots.copy(), copy).ok() && anyAncestorIs(original, copy));
}

bool LineGuard::copyHasNoPlace(const LineRoots& roots) {
    const std::string& copy = roots.copy();
    const std::string name = splitPath(copy).last;
    if (name.empty() || name == "." || name == ".." || inPlainSpelling(copy) != copy) return true;
    // A line that is read backwards no longer bears its destination; the name alone must do there.
    return roots.layout == Layout::normal &&
           (isWithin(roots.destination, copy) || !isWithin(copy, roots.destination));
}

std::string LineGuard::refusal(const LineRoots& roots) const {
    if (copyHasNoPlace(roots)) {
        return "la copie " + roots.copy() + " ne serait pas à l'intérieur de la destination.";
    }
    if (!copyHoldsOriginal_) return {};
    return "la destination " + roots.target + " contient la source elle-même.";
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
