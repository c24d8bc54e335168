#include "mainwindow/path_completion.h"

#include <algorithm>
#include <memory>

#include "system/text.h"

namespace coffrelune {

std::vector<std::string> completions(Platform& platform, const std::string& typed) {
    constexpr std::size_t most = 100;
    std::vector<std::string> found;
    const std::size_t separator = typed.find_last_of("/\\");
    if (separator == std::string::npos) return found;
    const std::string before = typed.substr(0, separator + 1);
    const std::string begun = lowerCase(typed.substr(separator + 1));
    std::unique_ptr<Directory> directory;
    // What cannot be read has nothing to offer.
    const Status opened = platform.files.openDirectory(
        platform.drives.fromWindow(before), LinkRule::follow, Wanted::directories, directory);
    if (!opened.ok()) return found;
    FileEntry entry;
    while (found.size() < most && directory->next(entry)) {
        const std::string name = lowerCase(entry.name);
        if (name == "." || name == "..") continue;
        if (entry.isDirectory() && name.rfind(begun, 0) == 0) found.push_back(before + entry.name);
    }
    std::sort(found.begin(), found.end());
    return found;
}

}  // namespace coffrelune
