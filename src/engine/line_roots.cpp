#include "engine/line_roots.h"

#include "platform/names.h"
#include "system/paths.h"

namespace coffrelune {
namespace {

// "E:" alone would be the current directory of that drive to some systems: a line means its root.
// With a last component that is empty, "." or ".." the copy would be the destination itself or lie
// beside it, among the files of others: whoever wrote the path, it is read in its plain spelling.
std::string inFull(const std::string& text) {
    std::string path = inPlainSpelling(text);
    while (path.size() > 2 && path.ends_with(R"(\\)")) path.pop_back();
    return path.size() == 2 && path[1] == ':' ? path + "\\" : path;
}

}  // namespace

std::string copyName(const std::string& source) {
    const std::string path = inFull(source);
    if (isDriveRoot(path)) return path.substr(0, 1);
    const SplitPath split = splitPath(path);
    return split.last.empty() ? split.parent : split.last;
}

std::string volumeOf(const std::string& path) {
    if (path.rfind(R"(\\)", 0) != 0) return inFull(path.substr(0, 2));
    const std::size_t server = path.find('\\', 2);
    if (server == std::string::npos) return path;
    return path.substr(0, path.find('\\', server + 1));
}

LineRoots lineRoots(const std::string& source, const std::string& destination, Layout layout) {
    const std::string place = inFull(source);
    const std::string copy = joinPath(inFull(destination), copyName(place));
    if (layout == Layout::normal) return {place, inFull(destination), copy, layout};
    return {copy, volumeOf(place), place, layout};
}

LineRoots CheminsExcedents(const LineRoots& roots) {
    const bool isVolume =
        withTrailingBackslash(volumeOf(roots.source)) == withTrailingBackslash(roots.source);
    const std::string reference =
        isVolume ? roots.source : withTrailingBackslash(splitPath(roots.source).parent);
    return {roots.target, reference, roots.source, roots.layout};
}

bool isWithin(const std::string& path, const std::string& directory) {
    return withTrailingBackslash(path).starts_with(withTrailingBackslash(directory));
}

Layout currentLayout(const SystemMod& system) {
    const bool reversed =
        system.operationKind == OperationKind::restore ||
        (system.operationKind == OperationKind::comparison && system.comparisonReversed);
    return reversed ? Layout::reversed : Layout::normal;
}

LineRoots rootsOfLine(const SystemMod& system, int line) {
    const BackupLine& paths = system.lineAt(line);
    return lineRoots(paths.source, paths.destination, currentLayout(system));
}

std::vector<RunLine> filledLines(const SystemMod& system) {
    std::vector<RunLine> lines;
    for (int index = 0; index <= system.maximumIndex; ++index) {
        if (system.lineAt(index).filled()) lines.push_back({index, rootsOfLine(system, index), {}});
    }
    return lines;
}

std::vector<RunLine> selectedLines(SystemMod& system) {
    std::vector<RunLine> lines = filledLines(system);
    std::erase_if(lines,
                  [&](const RunLine& line) { return system.lineAt(line.index).selected == 0; });
    for (RunLine& line : lines) {
        system.LoadExclusions(line.index);
        line.exclusions = system.exclusions;
    }
    return lines;
}

void LineGuard::watch(const LineRoots& roots) {
    targetPath_ = files_.resolve(roots.target);
    target_ = FileId{};
    // A target that does not exist yet has no identity; its resolved path speaks for it.
    if (!files_.identify(roots.target, target_).ok()) target_ = FileId{};
    if (!files_.identify(roots.source, source_).ok()) source_ = FileId{};
    metLink_ = false;
    onShare_ = files_.resolve(roots.source).starts_with(R"(\\)");
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

bool LineGuard::isTarget(const std::string& path, const FileEntry& entry) {
    metLink_ = metLink_ || entry.isLink() || entry.mountPoint;
    // A volume may give it another identity each time it is asked.
    if (path == targetPath_) return true;
    if (!target_.known()) return false;
    FileId id = entry.id;
    // To ask for it costs a call each. On a disk of this computer what is reached without a link is
    // on the source's volume.
    const bool mayBeTarget =
        metLink_ || onShare_ || !source_.known() || source_.volume == target_.volume;
    if (!id.known() && mayBeTarget) (void)files_.identify(path, id);
    return id.known() && id == target_;
}

}  // namespace coffrelune
