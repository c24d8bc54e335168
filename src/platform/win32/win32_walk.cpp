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

Status Win32Walk::open(Side& side, bool listed, LinkRule links, Wanted wanted,
                       std::unique_ptr<Directory>& directory) {
    Win32Place place;
    Status status = places_.holds().locate(side.path, place);
    if (!status.ok()) return status;
    std::unique_ptr<Directory> opened;
    std::uint32_t error = 0;
    if (listed) {
        auto made = std::make_unique<Win32Directory>(place.path, side.path, wanted, places_.watch(),
                                                     std::weak_ptr<HeldRoot>());
        error = made->open();
        opened = std::move(made);
    } else {
        status = files_.openDirectory(side.path, links, wanted, opened);
        if (!status.ok()) return status;
    }
    // What this service opens is of this kind.
    if (error == 0) error = static_cast<Win32Directory&>(*opened).onlyLook(side.met);
    if (error != 0) return failureAt(error, place.path, side.path);
    directory = std::move(opened);
    return status;
}

}  // namespace coffrelune
