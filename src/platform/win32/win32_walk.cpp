#include "platform/win32/win32_walk.h"

#include "platform/win32/win32_directory.h"

namespace coffrelune {
namespace {

std::string_view withoutEnd(std::string_view path) {
    while (path.ends_with('\\')) path.remove_suffix(1);
    return path;
}

/// The component that `path` adds to `above`; empty when that is not one.
std::string nameBelow(std::string_view path, std::string_view above) {
    path = withoutEnd(path);
    above = withoutEnd(above);
    if (!path.starts_with(above) || path.size() <= above.size() + 1) return {};
    if (path[above.size()] != '\\') return {};
    const std::string_view name = path.substr(above.size() + 1);
    return name.find('\\') == std::string_view::npos ? std::string(name) : std::string();
}

}  // namespace

bool Win32Walk::isListed(const std::string& path, const Side& above) {
    return above.met->contains(nameBelow(path, above.path));
}

OpenedPair Win32Walk::open(const DirectoryPair& pair) {
    while (!levels_.empty() && nameBelow(pair.source, levels_.back().source.path).empty()) {
        levels_.pop_back();
    }
    const bool sourceListed = !levels_.empty() && isListed(pair.source, levels_.back().source);
    const bool targetListed = !levels_.empty() && isListed(pair.target, levels_.back().target);
    Level level{{pair.source, std::make_shared<MetDirectories>()},
                {pair.target, std::make_shared<MetDirectories>()}};
    OpenedPair opened;
    opened.sourceStatus =
        open(level.source, sourceListed, pair.sourceLinks, Wanted::files, opened.source);
    opened.targetStatus =
        open(level.target, targetListed, pair.targetLinks, Wanted::nothing, opened.target);
    levels_.push_back(std::move(level));
    return opened;
}

Status Win32Walk::open(const Side& side, bool listed, LinkRule links, Wanted wanted,
                       std::unique_ptr<Directory>& directory) {
    if (listed && openListed(side, wanted, directory)) return {};
    Status status = files_.openDirectory(side.path, links, wanted, directory);
    // What this service opens is of this kind. Where it cannot be listed, look-ups may work.
    if (status.ok()) (void)static_cast<Win32Directory&>(*directory).onlyLook(side.met);
    return status;
}

/// False when it cannot be listed, whatever that means.
bool Win32Walk::openListed(const Side& side, Wanted wanted, std::unique_ptr<Directory>& directory) {
    Win32Place place;
    if (!places_.holds().locate(side.path, place).ok()) return false;
    auto opened = std::make_unique<Win32Directory>(place.path, side.path, wanted, places_.watch(),
                                                   std::weak_ptr<HeldRoot>());
    if (opened->open() != 0 || opened->onlyLook(side.met) != 0) return false;
    directory = std::move(opened);
    return true;
}

}  // namespace coffrelune
