#include <algorithm>

#include "platform/memory/memory_files.h"
#include "platform/names.h"

namespace coffrelune {
namespace {

bool isTemporary(const MemoryNode& node) {
    const auto isFile = [](const auto& child) { return !child->isDirectory(); };
    const auto& children = node.children();
    return isTemporaryName(node.name()) && std::all_of(children.begin(), children.end(), isFile);
}

bool isOwnFile(const MemoryNode& node) {
    return isTemporary(node) || (!node.isDirectory() && ownFileKind(node.name()).has_value());
}

TreePlace placeOf(const MemoryPlace& place) {
    const std::string& top = place.volume->root;
    std::string below = place.resolved.substr(top.size());
    if (below.empty() || below.front() != '\\') below.insert(below.begin(), '\\');
    const std::string self = place.volume->identity + ":" + std::to_string(place.node->id.file);
    return {place.volume->identity, below, self};
}

}  // namespace

Status MemoryFiles::hold(const std::string& root, std::unique_ptr<HeldTree>& held) {
    record("hold", root);
    MemoryPlace place;
    Status status = existingDirectory(root, LinkRule::follow, place);
    if (!status.ok()) return status;
    held = std::make_unique<MemoryHeldTree>(MemoryHold{root, place.volume, place.node, {}},
                                            placeOf(place), holds_, calls_);
    return {};
}

// A directory that bears the path.
Status MemoryFiles::existingDirectory(const std::string& path, LinkRule links,
                                      MemoryPlace& place) const {
    Status status = locate(path, links, place);
    if (!status.ok()) return status;
    if (!place.node) return Status::failure(error_number::pathNotFound, path);
    if (!place.node->isDirectory()) return Status::failure(error_number::notADirectory, path);
    return {};
}

// The last component is a link below a hold, which was followed.
bool MemoryFiles::leavesHold(const std::string& path, const MemoryPlace& place) const {
    return place.link != nullptr && holds_.holding(path) != nullptr;
}

Status MemoryFiles::createDirectory(const std::string& path, DirectoryAccess access) {
    record("createDirectory", path);
    MemoryPlace place;
    Status status = locate(path, LinkRule::refuse, place);
    if (!status.ok()) return status;
    if (place.node) return Status::failure(error_number::alreadyExists, path);
    status = prepareDestination(path, LinkRule::refuse, place);
    if (!status.ok()) return status;
    auto node = disk_.newNode(*place.volume, place.name, attribute::directory);
    node->times = {clock_.fileTime(), clock_.fileTime(), clock_.fileTime()};
    if (access == DirectoryAccess::ownerOnly && place.volume->holdsRights) {
        node->mode = MemoryNode::ownerOnlyMode;
    }
    place.parent->add(disk_.key(*place.volume, place.name), std::move(node));
    return {};
}

Status MemoryFiles::matchDirectory(const std::string& source, const std::string& target) {
    record("matchDirectory", source, target);
    MemoryPlace from;
    MemoryPlace to;
    Status status = existingDirectory(source, LinkRule::refuse, from);
    if (status.ok()) status = existingDirectory(target, LinkRule::refuse, to);
    if (!status.ok()) return status;
    if (to.volume->writeProtected) return Status::failure(error_number::writeProtect, target);
    if (to.node->writeError != 0) return Status::failure(to.node->writeError, target);
    if (!from.volume->holdsRights || !to.volume->holdsRights) return {};
    to.node->mode = from.node->mode;
    to.node->owner = from.node->owner;
    return {};
}

Status MemoryFiles::removeDirectory(const std::string& path) {
    record("removeDirectory", path);
    MemoryPlace place;
    Status status = existing(path, LinkRule::refuse, place);
    if (!status.ok()) return status;
    if (!place.node->isDirectory()) return Status::failure(error_number::notADirectory, path);
    if (place.volume->writeProtected) return Status::failure(error_number::writeProtect, path);
    if (!place.parent) return Status::failure(error_number::accessDenied, path);
    if (place.node->mountPoint) return Status::failure(error_number::sharingViolation, path);
    for (const MemoryNode* node : {place.node.get(), place.parent.get()}) {
        if (node->writeError != 0) return Status::failure(node->writeError, path);
    }
    const auto& children = place.node->children();
    const bool empty = std::all_of(children.begin(), children.end(), [](const auto& child) {
        return isOwnFile(*child) && !child->beingWritten;
    });
    if (!empty) return Status::failure(error_number::directoryNotEmpty, path);
    place.parent->remove(disk_.key(*place.volume, place.name));
    return {};
}

Status MemoryFiles::removeLeftovers(const std::string& directory) {
    record("removeLeftovers", directory);
    MemoryPlace place;
    Status status = existingDirectory(directory, LinkRule::follow, place);
    if (!status.ok()) return status;
    if (leavesHold(directory, place)) {
        return Status::failure(error_number::cannotResolveName, directory);
    }
    const auto children = place.node->children();
    for (const auto& child : children) {
        if (!isTemporary(*child) || child->beingWritten) continue;
        if (place.volume->writeProtected) {
            return Status::failure(error_number::writeProtect, directory);
        }
        place.node->remove(disk_.key(*place.volume, child->name()));
    }
    return {};
}

Status MemoryFiles::ownFiles(const std::string& directory, std::vector<std::string>& names) {
    record("ownFiles", directory);
    names.clear();
    MemoryPlace place;
    Status status = existingDirectory(directory, LinkRule::follow, place);
    if (!status.ok()) return status;
    if (leavesHold(directory, place)) {
        return Status::failure(error_number::cannotResolveName, directory);
    }
    if (place.node->readError != 0) return Status::failure(place.node->readError, directory);
    for (const auto& child : place.node->children()) {
        if (isOwnFile(*child) && !isTemporary(*child)) names.push_back(child->name());
    }
    return {};
}

}  // namespace coffrelune
