#include "platform/memory/memory_node.h"

#include <algorithm>

namespace coffrelune {
namespace {

std::uint64_t sizeBelow(const MemoryNode& node) {
    std::uint64_t size = node.isDirectory() ? 0 : node.size();
    for (const auto& child : node.children()) size += sizeBelow(*child);
    return size;
}

}  // namespace

std::uint64_t MemoryVolume::usedBytes() const {
    return sizeBelow(*top);
}

FileEntry MemoryNode::entry() const {
    FileEntry entry;
    entry.name = name_;
    entry.attributes = attributes;
    entry.size = isDirectory() ? 0 : size();
    entry.times = times;
    entry.id = id;
    entry.mountPoint = mountPoint;
    return entry;
}

MemoryNode::Pointer MemoryNode::find(const std::string& key) const {
    const auto found = index_.find(key);
    return found == index_.end() ? nullptr : found->second;
}

void MemoryNode::add(const std::string& key, Pointer child) {
    child->parent_ = weak_from_this();
    children_.push_back(child);
    index_.emplace(key, std::move(child));
}

void MemoryNode::remove(const std::string& key) {
    const auto found = index_.find(key);
    if (found == index_.end()) return;
    // From the end, where the temporaries are.
    const auto place = std::find(children_.rbegin(), children_.rend(), found->second);
    children_.erase(std::next(place).base());
    found->second->parent_.reset();
    index_.erase(found);
}

void MemoryNode::adopt(const std::string& key, const std::string& name, Pointer child) {
    child->name_ = name;
    add(key, std::move(child));
}

void MemoryNode::rename(const std::string& childKey, const std::string& key,
                        const std::string& name) {
    const Pointer child = find(childKey);
    const Pointer replaced = find(key);
    if (child == nullptr || child == replaced) return;
    child->name_ = name;
    if (replaced == nullptr) {
        index_.erase(childKey);
        index_.emplace(key, child);
        return;
    }
    remove(childKey);
    replaced->parent_.reset();
    child->parent_ = weak_from_this();
    *std::find(children_.begin(), children_.end(), replaced) = child;
    index_[key] = child;
}

}  // namespace coffrelune
