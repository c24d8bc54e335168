#include "engine/restored_names.h"

#include <algorithm>
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

bool cannotBeThere(const Status& looked) {
    return looked.saysAbsent() || looked.code() == error_number::invalidName ||
           looked.code() == error_number::nameTooLong;
}

RestoredNames::Owner RestoredNames::otherOwner(const std::string& copy,
                                               const std::string& originals,
                                               const FileEntry& entry) {
    if (gathered_ != Places(copy, originals)) failure_ = gather(copy, originals);
    if (!failure_.ok()) return {{}, failure_};
    for (const Hidden& hidden : hidden_) {
        if (hidden.name == entry.name || !mayBeOne(hidden, entry)) continue;
        const std::string path = originals + hidden.name;
        // Where the volume of the originals takes the two names for one, they are one original.
        if (!isOneEntry(files_, path, originals + entry.name)) return {path, {}};
    }
    return {};
}

RestoredNames::Owner RestoredNames::otherOwnerAbove(const std::string& copy,
                                                    const std::string& originals,
                                                    std::size_t root) {
    if (copy.size() <= root) return {};
    const auto known = above_.find({copy, originals});
    if (known != above_.end()) return known->second;
    const std::string path = withoutTrailingBackslash(copy);
    const SplitPath split = splitPath(path);
    const std::string parent = originals.substr(0, originals.size() - split.last.size() - 1);
    Owner owner = otherOwnerAbove(split.parent, parent, root);
    if (owner.isNone()) {
        FileEntry directory;
        owner.failure = files_.lookUp(path, LinkRule::refuse, directory);
        directory.name = split.last;
        if (owner.failure.ok()) owner = otherOwner(split.parent, parent, directory);
    }
    return above_[{copy, originals}] = owner;
}

// The names that the copy hides.
Status RestoredNames::gather(const std::string& copy, const std::string& originals) {
    gathered_ = {copy, originals};
    hidden_.clear();
    HashSet names;
    Numbers numbers;
    std::unique_ptr<Directory> listing;
    Status status = listCopy(copy, names, numbers);
    if (!status.ok()) return status;
    status = files_.openDirectory(originals, LinkRule::follow, Wanted::everything, listing);
    if (!status.ok()) return status;
    for (FileEntry original; listing->next(original);) {
        if (names.contains(hashOf(original.name))) continue;
        Hidden hidden;
        Status found = files_.lookUp(copy + original.name, LinkRule::refuse, hidden.copy);
        if (cannotBeThere(found)) continue;
        if (!found.ok()) return found;
        hidden.name = original.name;
        hidden.numbered = hidden.copy.id.known() &&
                          std::binary_search(numbers.begin(), numbers.end(), numberOf(hidden.copy));
        hidden_.push_back(std::move(hidden));
    }
    return listing->status();
}

Status RestoredNames::listCopy(const std::string& copy, HashSet& names, Numbers& numbers) {
    std::unique_ptr<Directory> listing;
    Status status = files_.openDirectory(copy, LinkRule::follow, Wanted::everything, listing);
    if (!status.ok()) return status;
    for (FileEntry entry; listing->next(entry);) {
        (void)names.add(hashOf(entry.name));
        numbers.push_back(numberOf(entry));
    }
    std::sort(numbers.begin(), numbers.end());
    return listing->status();
}

// Some volumes make up a number for each name that they are asked by: there, what looks the same
// may be the same.
bool RestoredNames::mayBeOne(const Hidden& hidden, const FileEntry& entry) {
    if (hidden.copy.isDirectory() != entry.isDirectory()) return false;
    if (hidden.numbered && entry.id.known()) return hidden.copy.id == entry.id;
    return hidden.copy.size == entry.size && hidden.copy.times.lastWrite == entry.times.lastWrite;
}

}  // namespace coffrelune
