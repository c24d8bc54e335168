#include "platform/memory/memory_node.h"

#include <algorithm>
#include <cctype>
#include <functional>

#include "platform/characters.h"
#include "platform/names.h"

namespace coffrelune {
namespace {

// Length of the root's text, without a backslash that ends it; 0 when the text is no full path.
std::size_t rootLength(const std::string& path) {
    if (hasDriveLetter(path) && (path.size() == 2 || path[2] == '\\')) return 2;
    if (path.compare(0, 2, "\\\\") != 0) return 0;
    const std::size_t share = path.find('\\', 2);
    if (share == std::string::npos || share == 2 || share + 1 == path.size()) return 0;
    const std::size_t end = path.find('\\', share + 1);
    if (end == share + 1) return 0;
    return end == std::string::npos ? path.size() : end;
}

}  // namespace

MemoryPath splitMemoryPath(const std::string& path) {
    MemoryPath result;
    const std::size_t root = rootLength(path);
    if (root == 0) return result;
    result.root = path.substr(0, root);
    if (root == 2) {
        result.root[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(path[0])));
        result.root += '\\';
    }
    for (std::size_t start = root; start < path.size();) {
        const std::size_t end = std::min(path.find('\\', start), path.size());
        if (end > start) result.components.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    return result;
}

std::string foldCase(const std::string& name) {
    std::string folded;
    for (std::size_t position = 0; position < name.size();) {
        char32_t c = utf8::next(name, position);
        const bool latin = c >= 0xE0 && c <= 0xFE && c != 0xF7;
        if ((c >= 'a' && c <= 'z') || latin) c -= 0x20;
        // As on many volumes; the program's own tables have no such letters.
        const bool armenian = c >= 0x561 && c <= 0x586;
        if (armenian) c -= 0x30;
        utf8::append(folded, c);
    }
    return folded;
}

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

FileEntry MemoryVolume::shown(const MemoryNode& node, const std::string& name) const {
    FileEntry entry = node.entry();
    if (numbering == Numbering::byName) entry.id.file ^= std::hash<std::string>()(name);
    if (numbering == Numbering::anew) entry.id.file = ++asked_;
    return entry;
}

FileEntry MemoryNode::entry() const {
    FileEntry entry;
    entry.name = name_;
    entry.attributes = attributes;
    entry.size = isDirectory() ? 0 : size();
    entry.times = times;
    entry.id = id;
    entry.mountPoint = mountPoint;
    entry.lock = lock;
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
