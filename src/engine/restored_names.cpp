#include "engine/restored_names.h"

#include <functional>
#include <memory>

#include "system/paths.h"

namespace coffrelune {
namespace {

std::uint64_t hashOf(const std::string& name) {
    return std::hash<std::string>()(name);
}

std::pair<std::uint64_t, std::uint64_t> numberOf(const FileEntry& entry) {
    return {entry.id.volume, entry.id.file};
}

}  // namespace

std::string RestoredNames::otherOwner(const std::string& copy, const std::string& originals,
                                      const FileEntry& entry) {
    if (gathered_ != Places(copy, originals)) complete_ = gather(copy, originals);
    if (!complete_) return withoutTrailingBackslash(originals);
    for (const Hidden& hidden : hidden_) {
        if (hidden.name == entry.name || !mayBeOne(hidden, entry)) continue;
        const std::string path = originals + hidden.name;
        // Where the volume of the originals takes the two names for one, they are one original.
        if (!isOneEntry(files_, path, originals + entry.name)) return path;
    }
    return {};
}

std::string RestoredNames::otherOwnerAbove(const std::string& copy, const std::string& originals,
                                           std::size_t root) {
    if (copy.size() <= root) return {};
    const auto known = above_.find({copy, originals});
    if (known != above_.end()) return known->second;
    const std::string path = withoutTrailingBackslash(copy);
    const SplitPath split = splitPath(path);
    const std::string parent = originals.substr(0, originals.size() - split.last.size() - 1);
    std::string owner = otherOwnerAbove(split.parent, parent, root);
    if (owner.empty()) {
        FileEntry directory;
        const Status found = files_.lookUp(path, LinkRule::refuse, directory);
        directory.name = split.last;
        owner = found.ok() ? otherOwner(split.parent, parent, directory)
                           : withoutTrailingBackslash(originals);
    }
    return above_[{copy, originals}] = owner;
}

// False when nobody can tell which names the copy hides.
bool RestoredNames::gather(const std::string& copy, const std::string& originals) {
    gathered_ = {copy, originals};
    hidden_.clear();
    HashSet names;
    Numbers numbers;
    std::unique_ptr<Directory> listing;
    if (!listCopy(copy, names, numbers)) return false;
    const Status opened =
        files_.openDirectory(originals, LinkRule::follow, Wanted::everything, listing);
    if (!opened.ok()) return false;
    for (FileEntry original; listing->next(original);) {
        if (names.contains(hashOf(original.name))) continue;
        Hidden hidden;
        const Status found = files_.lookUp(copy + original.name, LinkRule::refuse, hidden.copy);
        if (found.saysAbsent()) continue;
        hidden.name = original.name;
        hidden.known = found.ok();
        hidden.numbered = hidden.copy.id.known() && numbers.contains(numberOf(hidden.copy));
        hidden_.push_back(std::move(hidden));
    }
    return listing->status().ok();
}

bool RestoredNames::listCopy(const std::string& copy, HashSet& names, Numbers& numbers) {
    std::unique_ptr<Directory> listing;
    const Status opened = files_.openDirectory(copy, LinkRule::follow, Wanted::everything, listing);
    if (!opened.ok()) return false;
    for (FileEntry entry; listing->next(entry);) {
        (void)names.add(hashOf(entry.name));
        (void)numbers.insert(numberOf(entry));
    }
    return listing->status().ok();
}

// Some volumes make up a number for each name that they are asked by: there, what looks the same
// may be the same.
bool RestoredNames::mayBeOne(const Hidden& hidden, const FileEntry& entry) {
    if (!hidden.known) return true;
    if (hidden.copy.isDirectory() != entry.isDirectory()) return false;
    if (hidden.numbered && entry.id.known()) return hidden.copy.id == entry.id;
    return hidden.copy.size == entry.size && hidden.copy.times.lastWrite == entry.times.lastWrite;
}

}  // namespace coffrelune
