#include "platform/memory/memory_disk.h"

#include <algorithm>
#include <cassert>
#include <deque>

#include "platform/memory/memory_hold.h"
#include "platform/memory/memory_node.h"
#include "platform/names.h"

namespace coffrelune {
namespace {

constexpr int mostLinks = 40;

std::string textOf(const MemoryVolume& volume, const std::vector<MemoryNode::Pointer>& trail) {
    std::string text = volume.root;
    for (std::size_t i = 1; i < trail.size(); ++i) {
        if (text.back() != '\\') text += '\\';
        text += trail[i]->name();
    }
    return text;
}

void appendName(std::string& text, const std::string& name) {
    if (text.back() != '\\') text += '\\';
    text += name;
}

void listBelow(const MemoryNode& node, const std::string& prefix, std::vector<std::string>& paths) {
    for (const auto& child : node.children()) {
        std::string path = prefix;
        appendName(path, child->name());
        paths.push_back(path);
        listBelow(*child, path, paths);
    }
}

}  // namespace

// One walk along a path. Links met on the way put their own components before those that remain.
class MemoryWalk {
  public:
    MemoryWalk(const MemoryDisk& disk, MemoryPlace& place) : disk_(disk), place_(place) {}

    Status run(const std::map<std::string, MemoryVolume>& volumes, const std::string& path,
               LinkRule links) {
        path_ = path;
        return go(volumes, start(volumes, splitMemoryPath(path)), links);
    }

    /// The same from a held directory.
    Status runFrom(const MemoryHold& hold, const std::map<std::string, MemoryVolume>& volumes,
                   const std::string& path, LinkRule links) {
        path_ = path;
        hold_ = &hold;
        return go(volumes, startFrom(hold), links);
    }

  private:
    Status go(const std::map<std::string, MemoryVolume>& volumes, Status status, LinkRule links) {
        while (status.ok() && !rest_.empty() && !done_) {
            const std::string name = rest_.front();
            rest_.pop_front();
            status = enter(volumes, name, links);
        }
        if (status.ok() && !done_) reach(trail_.back());
        return status;
    }

    Status startFrom(const MemoryHold& hold) {
        const std::vector<std::string> below = belowHold(hold, path_);
        rest_.insert(rest_.begin(), below.begin(), below.end());
        guarded_ = rest_.size();
        place_.volume = hold.volume;
        place_.resolved = path_;
        if (!hold.volume->present) return fail(error_number::pathNotFound);
        for (MemoryNode::Pointer node = hold.node; node != nullptr; node = node->parent()) {
            trail_.insert(trail_.begin(), node);
        }
        const bool removed = trail_.front() != hold.volume->top;
        if (removed) trail_.clear();
        top_ = trail_.size();
        if (removed) return fail(error_number::pathNotFound);
        return hold.volume->ready ? Status() : fail(error_number::notReady);
    }

    Status start(const std::map<std::string, MemoryVolume>& volumes, const MemoryPath& path) {
        const auto found = volumes.find(foldCase(path.root));
        rest_.insert(rest_.begin(), path.components.begin(), path.components.end());
        place_.resolved = path.root.empty() ? path_ : path.root;
        place_.volume = nullptr;
        trail_.clear();
        if (path.root.empty() || found == volumes.end() || !found->second.present) {
            return fail(error_number::pathNotFound);
        }
        // The disk hands out writable places though walking changes nothing itself.
        place_.volume = const_cast<MemoryVolume*>(&found->second);
        trail_ = {place_.volume->top};
        if (!place_.volume->ready) return fail(error_number::notReady);
        return {};
    }

    Status enter(const std::map<std::string, MemoryVolume>& volumes, const std::string& name,
                 LinkRule links) {
        // What a link's text put before the path's own components is the system's affair.
        const bool own = rest_.size() < guarded_;
        guarded_ = std::min(guarded_, rest_.size());
        if (name == ".") return {};
        if (name == "..") {
            if (trail_.size() > (own ? top_ : 1)) trail_.pop_back();
            return {};
        }
        const MemoryNode::Pointer child = trail_.back()->find(disk_.key(*place_.volume, name));
        if (child == nullptr) return miss(name);
        if (child->isLink() && (!rest_.empty() || links == LinkRule::follow)) {
            if (own && !rest_.empty() && hold_->entered.count(child) == 0) {
                rest_.push_front(name);
                return fail(error_number::cannotResolveName);
            }
            if (rest_.empty() && place_.link == nullptr) place_.link = child;
            return follow(volumes, *child);
        }
        if (!rest_.empty() && !child->isDirectory()) {
            rest_.push_front(name);
            return fail(error_number::pathNotFound);
        }
        trail_.push_back(child);
        return {};
    }

    Status follow(const std::map<std::string, MemoryVolume>& volumes, const MemoryNode& link) {
        if (++links_ > mostLinks) return fail(error_number::cannotResolveName);
        const MemoryPath target = splitMemoryPath(link.content);
        if (!target.root.empty()) return start(volumes, target);
        // Relative: read as a path below a root of its own, of which only the components count.
        const MemoryPath relative = splitMemoryPath("X:\\" + link.content);
        rest_.insert(rest_.begin(), relative.components.begin(), relative.components.end());
        return {};
    }

    Status miss(const std::string& name) {
        if (!rest_.empty()) {
            rest_.push_front(name);
            return fail(error_number::pathNotFound);
        }
        place_.parent = trail_.back();
        place_.name = name;
        place_.resolved = textOf(*place_.volume, trail_);
        appendName(place_.resolved, name);
        done_ = true;
        return {};
    }

    void reach(const MemoryNode::Pointer& node) {
        place_.node = node;
        place_.name = node->name();
        if (trail_.size() > 1) place_.parent = trail_[trail_.size() - 2];
        place_.resolved = textOf(*place_.volume, trail_);
    }

    Status fail(std::uint32_t code) {
        if (!trail_.empty()) place_.resolved = textOf(*place_.volume, trail_);
        for (const auto& name : rest_) appendName(place_.resolved, name);
        rest_.clear();
        return Status::failure(code, path_);
    }

    const MemoryDisk& disk_;
    MemoryPlace& place_;
    std::string path_;
    std::vector<MemoryNode::Pointer> trail_;
    std::deque<std::string> rest_;
    const MemoryHold* hold_ = nullptr;
    std::size_t top_ = 1;      // how many of the trail ".." cannot leave
    std::size_t guarded_ = 0;  // how many of the rest, from its end, may be no links on the way
    int links_ = 0;
    bool done_ = false;
};

Status MemoryDisk::locate(const std::string& path, LinkRule links, MemoryPlace& place,
                          const MemoryHold* hold) const {
    place = {};
    MemoryWalk walk(*this, place);
    return hold == nullptr ? walk.run(volumes_, path, links)
                           : walk.runFrom(*hold, volumes_, path, links);
}

std::string MemoryDisk::key(const MemoryVolume& volume, const std::string& name) const {
    return names_ == Names::caseInsensitive || volume.foldsCase ? foldCase(name) : name;
}

MemoryVolume& MemoryDisk::volume(const std::string& path) {
    const std::string root = splitMemoryPath(path).root;
    assert(!root.empty());
    const auto [entry, added] = volumes_.try_emplace(foldCase(root));
    MemoryVolume& volume = entry->second;
    if (added) {
        volume.root = root;
        volume.identity = "memory:" + root;
        volume.top = newNode(volume, "", attribute::directory);
    }
    return volume;
}

MemoryNode::Pointer MemoryDisk::newNode(const MemoryVolume& volume, const std::string& name,
                                        std::uint32_t attributes) {
    // Volumes never go away, so the number of one is good for its identity.
    const auto number = reinterpret_cast<std::uintptr_t>(&volume);
    auto node = std::make_shared<MemoryNode>(name, attributes, FileId{number, ++lastId_});
    node->times = {defaultTime, defaultTime, defaultTime};
    return node;
}

MemoryNode& MemoryDisk::make(const std::string& path, std::uint32_t attributes,
                             std::uint64_t lastWrite) {
    MemoryVolume& on = volume(path);
    const MemoryPath split = splitMemoryPath(path);
    MemoryNode::Pointer node = on.top;
    for (std::size_t i = 0; i < split.components.size(); ++i) {
        const std::string& name = split.components[i];
        const bool last = i + 1 == split.components.size();
        const bool directory = !last || attributes == attribute::directory;
        MemoryNode::Pointer child = node->find(key(on, name));
        if (child != nullptr && !(directory && child->isDirectory())) {
            node->remove(key(on, name));
            child = nullptr;
        }
        if (child == nullptr) {
            child = newNode(on, name, directory ? attribute::directory : attributes);
            child->times = {lastWrite, lastWrite, lastWrite};
            node->add(key(on, name), child);
        }
        node = child;
    }
    return *node;
}

MemoryNode& MemoryDisk::file(const std::string& path, const std::string& content,
                             std::uint64_t lastWrite, std::uint32_t attributes) {
    MemoryNode& node = make(path, attributes, lastWrite);
    node.content = content;
    return node;
}

MemoryNode& MemoryDisk::directory(const std::string& path, std::uint64_t lastWrite) {
    return make(path, attribute::directory, lastWrite);
}

MemoryNode& MemoryDisk::link(const std::string& path, const std::string& target) {
    MemoryNode& node = make(path, attribute::link, defaultTime);
    node.content = target;
    return node;
}

void MemoryDisk::leftover(const std::string& directory) {
    std::string path = directory;
    appendName(path, newTemporaryName());
    file(path, "half a f");
}

void MemoryDisk::remove(const std::string& path) {
    MemoryPlace place;
    if (!locate(path, LinkRule::refuse, place).ok() || !place.node || !place.parent) return;
    place.parent->remove(key(*place.volume, place.name));
}

void MemoryDisk::move(const std::string& from, const std::string& to) {
    MemoryPlace source;
    MemoryPlace target;
    const bool found =
        locate(from, LinkRule::refuse, source).ok() && locate(to, LinkRule::refuse, target).ok();
    assert(found && source.node && source.parent && !target.node);
    assert(source.volume == target.volume);
    if (!found) return;
    source.parent->remove(key(*source.volume, source.name));
    target.parent->adopt(key(*target.volume, target.name), target.name, source.node);
}

void MemoryDisk::setUnreadable(const std::string& path, bool unreadable) {
    MemoryNode* node = find(path);
    assert(node != nullptr);
    node->readError = unreadable ? error_number::accessDenied : 0;
}

void MemoryDisk::setInUse(const std::string& path, bool inUse) {
    MemoryNode* node = find(path);
    assert(node != nullptr);
    node->readError = node->writeError = inUse ? error_number::sharingViolation : 0;
}

void MemoryDisk::setTruncatedAt(const std::string& path, std::uint64_t bytes) {
    MemoryNode* node = find(path);
    assert(node != nullptr);
    node->endsAt = bytes;
}

void MemoryDisk::setMountPoint(const std::string& path, bool mountPoint) {
    MemoryNode* node = find(path);
    assert(node != nullptr);
    node->mountPoint = mountPoint;
}

void MemoryDisk::setUsedByAnother(const std::string& path, std::optional<TreeUse> use) {
    MemoryNode* node = find(path);
    assert(node != nullptr);
    auto& claims = node->claims;
    claims.erase(std::remove_if(claims.begin(), claims.end(),
                                [](const TreeUser& claim) { return claim.process == nullptr; }),
                 claims.end());
    if (use) claims.push_back({nullptr, nullptr, *use});
}

const MemoryNode* MemoryDisk::find(const std::string& path) const {
    MemoryPlace place;
    if (!locate(path, LinkRule::refuse, place).ok()) return nullptr;
    return place.node.get();
}

MemoryNode* MemoryDisk::find(const std::string& path) {
    return const_cast<MemoryNode*>(static_cast<const MemoryDisk*>(this)->find(path));
}

std::optional<std::string> MemoryDisk::content(const std::string& path) const {
    const MemoryNode* node = find(path);
    if (node == nullptr || node->isDirectory()) return std::nullopt;
    return node->content;
}

std::uint64_t MemoryDisk::lastWrite(const std::string& path) const {
    const MemoryNode* node = find(path);
    return node == nullptr ? 0 : node->times.lastWrite;
}

std::uint32_t MemoryDisk::attributes(const std::string& path) const {
    const MemoryNode* node = find(path);
    return node == nullptr ? 0 : node->attributes;
}

std::vector<std::string> MemoryDisk::list(const std::string& path) const {
    std::vector<std::string> paths;
    MemoryPlace place;
    if (locate(path, LinkRule::refuse, place).ok() && place.node) {
        listBelow(*place.node, place.resolved, paths);
    }
    return paths;
}

std::vector<std::string> MemoryDisk::driveRoots() const {
    std::vector<std::string> roots;
    for (const auto& [key, volume] : volumes_) {
        if (volume.present && hasDriveLetter(volume.root)) roots.push_back(volume.root);
    }
    return roots;
}

std::string MemoryDisk::newTemporaryName() {
    return ownFileName(OwnFile::temporary, ++lastTemporary_);
}

}  // namespace coffrelune
