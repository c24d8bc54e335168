#include "engine/line_roots.h"

#include "platform/core_path.h"
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

}  // namespace coffrelune
