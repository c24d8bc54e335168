#include "platform/memory/memory_directory.h"

#include "platform/names.h"

namespace coffrelune {

MemoryDirectory::MemoryDirectory(const MemoryDisk& disk, const MemoryPlace& place, std::string path,
                                 Wanted wanted, std::vector<std::string>& calls)
    : disk_(disk),
      volume_(*place.volume),
      node_(place.node),
      listing_(place.node->children()),
      path_(std::move(path)),
      wanted_(wanted),
      calls_(calls),
      dots_(place.parent == nullptr || wanted == Wanted::files || wanted == Wanted::nothing ? 2
                                                                                            : 0) {
    if (path_.back() != '\\') path_ += '\\';
}

bool MemoryDirectory::gives(const MemoryNode& node) const {
    if (wanted_ == Wanted::nothing) return false;
    if (isOwnEntry(node.name(), node.isDirectory())) return false;
    if (wanted_ != Wanted::everything && node.isDirectory() != (wanted_ == Wanted::directories)) {
        return false;
    }
    return isThere(node);
}

bool MemoryDirectory::isThere(const MemoryNode& node) const {
    return node_->find(disk_.key(volume_, node.name())).get() == &node;
}

bool MemoryDirectory::nextDots(FileEntry& entry) {
    if (dots_ == 2) return false;
    entry = volume_.shown(*node_, node_->name());
    entry.name = dots_++ == 0 ? "." : "..";
    return true;
}

bool MemoryDirectory::next(FileEntry& entry) {
    if (status_.ok() && !volume_.present) {
        status_ = Status::failure(error_number::deviceDoesNotExist, path_);
    }
    if (!status_.ok()) return false;
    if (nextDots(entry)) return true;
    while (next_ < listing_.size()) {
        const MemoryNode& node = *listing_[next_++];
        if (!gives(node)) continue;
        entry = volume_.shown(node, node.name());
        if (!node.nameAlone) return true;
        entry.size = 0;
        entry.times = {};
        entry.id = {};
        entry.failure = node.readError != 0 ? node.readError : error_number::accessDenied;
        return true;
    }
    return false;
}

std::vector<FileEntry> MemoryDirectory::takeDirectories() {
    std::vector<FileEntry> directories;
    if (!status_.ok()) return directories;
    for (const MemoryNode::Pointer& node : listing_) {
        if (!node->isDirectory() || isOwnEntry(node->name(), true) || !isThere(*node)) continue;
        directories.push_back(volume_.shown(*node, node->name()));
    }
    return directories;
}

bool MemoryDirectory::lookUp(const std::string& name, FileEntry& entry) {
    calls_.push_back("find " + path_ + name);
    const MemoryNode::Pointer node = node_->find(disk_.key(volume_, name));
    if (node == nullptr || !volume_.present) return false;
    entry = volume_.shown(*node, name);
    return true;
}

}  // namespace coffrelune
