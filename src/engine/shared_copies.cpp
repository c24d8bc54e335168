// Originals whose copies are one, since the volume of the copy takes their names for one.
#include "engine/shared_copies.h"

#include <algorithm>
#include <functional>
#include <memory>

#include "engine/copie_mod.h"
#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {
namespace {

std::uint64_t hashOf(const std::string& name) {
    return std::hash<std::string>()(name);
}

constexpr std::uint64_t roundedBy = 20'000'000;  // two seconds

// Dates that a volume may have rounded into each other have one span in common, or neighbours.
std::uint64_t lookInSpan(std::uint64_t size, std::uint64_t date) {
    std::uint64_t hash = (date / (2 * roundedBy) ^ size << 32 ^ size >> 32) * 0x9E3779B97F4A7C15;
    return hash ^ hash >> 32;
}

}  // namespace

std::uint64_t lookOf(const FileEntry& entry) {
    std::uint64_t hash = entry.size;
    for (const std::uint64_t time : {entry.times.lastWrite, entry.times.creation}) {
        hash = (hash ^ time) * 0x9E3779B97F4A7C15;
        hash ^= hash >> 32;
    }
    return hash;
}

Status ListedEntries::add(Directory& listing) {
    for (FileEntry entry; listing.next(entry);) {
        ++numbers_[entry.id.file];
        ++looks_[lookOf(entry)].listed;
        (void)names_.add(hashOf(entry.name));
    }
    return listing.status();
}

void ListedEntries::lead(const std::string& name, const FileEntry& copy) {
    const auto number = numbers_.find(copy.id.file);
    const bool isNumbered = copy.id.known() && number != numbers_.end();
    if (isNumbered && --number->second < 0) sharers_.insert(name);
    const auto found = looks_.find(lookOf(copy));
    if (found == looks_.end()) return;
    Look& look = found->second;
    const bool isListed = names_.contains(hashOf(name));
    const bool isHidden = !isNumbered && !isListed;
    if (look.listed > 1) {
        look.led += isListed ? 1 : 0;
        if (isHidden) hidden_.emplace_back(name, found->first);
    } else if (look.led++ == 0) {
        look.firstIsHidden = isHidden;
    } else if (isHidden || look.firstIsHidden) {
        sharers_.insert(name);
    }
}

std::set<std::string> ListedEntries::sharers() {
    for (const auto& [name, look] : hidden_) {
        if (++looks_[look].led > looks_[look].listed) sharers_.insert(name);
    }
    hidden_.clear();
    return std::move(sharers_);
}

// Only where something is replaced is the rest worth its time.
bool FileLooks::areDoubtful() {
    if (!replaces_) return false;
    std::sort(seen_.begin(), seen_.end());
    return std::adjacent_find(seen_.begin(), seen_.end()) != seen_.end();
}

void FileLooks::clear() {
    seen_.clear();
    replaces_ = false;
}

void NewFiles::note(const FileEntry& original) {
    (void)looks_.add(lookInSpan(original.size, original.times.lastWrite));
}

bool NewFiles::mayHaveMade(const FileEntry& copy) const {
    const std::uint64_t date = copy.times.lastWrite;
    return looks_.contains(lookInSpan(copy.size, date - roundedBy)) ||
           looks_.contains(lookInSpan(copy.size, date + roundedBy));
}

bool mayBeFolded(const std::vector<std::string>& names) {
    const auto isOdd = [](const std::string& name) {
        const auto isOddCharacter = [](char c) { return c < ' ' || c > '}'; };
        return name.ends_with('.') || name.ends_with(' ') ||
               std::any_of(name.begin(), name.end(), isOddCharacter);
    };
    return std::any_of(names.begin(), names.end(), isOdd);
}

// Two names that differ in their case alone are one name to many volumes: the copy of the second
// would replace that of the first, run after run, and both would count as saved. Asked for names
// that came up again without their case, which is rare, so the source may be listed once more.
bool CopieMod::isTaken(const std::string& name, const Place& place, Wanted kind) {
    queue_.settle();  // the copy of the first one shows whether they are one
    std::unique_ptr<Directory> listing;
    if (!files_.openDirectory(place.source, place.links, kind, listing).ok()) return false;
    for (FileEntry other; listing->next(other);) {
        if (other.name == name || !equalIgnoringCase(other.name, name)) continue;
        if (!isOneEntry(files_, place.destination + other.name, place.destination + name)) continue;
        errors_.unread(error_number::alreadyExists, place.source + name);
        return true;
    }
    return false;
}

// Names that differ in more than their case may be one name to the volume of the copy as well:
// accents composed in two ways, dots at the end, letters of other alphabets. Found by the analysis,
// since to copy the first of them changes what the second one leads to.
bool CopieMod::sharesCopy(const FileEntry& entry, const FileEntry& existing, const Pair& pair) {
    const bool repeated = pass_ == Pass::analysis && !copies_.add(existing.id);
    if (!repeated && sharers_.empty()) return false;
    // Another line may copy the same directory to another volume.
    const std::pair<std::string, std::string> place(pair.place.source, pair.place.destination);
    if (repeated && !sharers_.contains(place)) sharers_.emplace(place, sharers(pair));
    const auto known = sharers_.find(place);
    if (known == sharers_.end() || !known->second.contains(entry.name)) return false;
    errors_.unread(error_number::alreadyExists, pair.place.source + entry.name);
    return true;
}

// Copies may get their names while the rest of the directory is read: what is found then may be the
// copy of another name that came with this one, which the analysis could not see.
bool CopieMod::isCopyOfAnother(const FileEntry& entry, const FileEntry& existing,
                               const Pair& pair) {
    if (!newFiles_.mayHaveMade(existing)) return false;
    queue_.settle();  // all those up to here are looked at now
    newFiles_.clear();
    if (run_.stopped()) return true;
    sharers_[{pair.place.source, pair.place.destination}].merge(sharers(pair));
    return sharesCopy(entry, existing, pair);
}

// Some volumes number an entry anew for each name that it is asked by. There, two names of one
// entry look alike, and one of their originals would be copied over the other's copy.
void CopieMod::noteSharers(const Pair& pair) {
    const std::pair<std::string, std::string> place(pair.place.source, pair.place.destination);
    if (!looks_.areDoubtful() || sharers_.contains(place)) return;
    std::set<std::string> found = sharers(pair);
    if (!found.empty()) sharers_.emplace(place, std::move(found));
}

std::set<std::string> CopieMod::sharers(const Pair& pair) {
    const Place& place = pair.place;
    ListedEntries listed;
    std::unique_ptr<Directory> listing;
    const auto open = [&](const std::string& path, LinkRule links) {
        return files_.openDirectory(path, links, Wanted::files, listing).ok();
    };
    if (!open(place.destination, targetLinks(place)) || !listed.add(*listing).ok()) return {};
    if (!open(place.source, place.links)) return {};
    for (FileEntry original; listing->next(original);) {
        FileEntry copy;
        if (pair.target->lookUp(original.name, copy)) listed.lead(original.name, copy);
    }
    return listed.sharers();
}

// Two directories whose copies are one, though their names differ in more than their case: files of
// one name in both would replace each other.
bool CopieMod::isMixedWithSibling(const Place& place, const Directory& target) {
    const FileEntry* self = target.self();
    if (place.siblings == nullptr || self == nullptr) return false;
    // What is written changes how a directory looks: the analysis tells, before it.
    if (!mayCreate() && !place.siblings->looks.add(lookOf(*self))) compareSiblings(place);
    const bool isOther = place.siblings->entries.add(self->id);
    if (isOther && (mixed_.empty() || !mixed_.contains(place.destination))) return false;
    errors_.unread(error_number::alreadyExists, withoutTrailingBackslash(place.source));
    return true;
}

// As sharers() does with files.
void CopieMod::compareSiblings(const Place& place) {
    Siblings& siblings = *place.siblings;
    if (std::exchange(siblings.compared, true) || !mayBeFolded(siblings.names)) return;
    const std::string copies =
        withTrailingBackslash(splitPath(withoutTrailingBackslash(place.destination)).parent);
    ListedEntries listed;
    std::unique_ptr<Directory> listing;
    const auto wanted = Wanted::directories;
    const Status opened = files_.openDirectory(copies, LinkRule::follow, wanted, listing);
    if (!opened.ok() || !listed.add(*listing).ok()) return;
    for (const std::string& name : siblings.names) {
        FileEntry copy;
        if (files_.lookUp(copies + name, LinkRule::refuse, copy).ok()) listed.lead(name, copy);
    }
    for (const std::string& name : listed.sharers()) mixed_.insert(copies + name + "\\");
}

}  // namespace coffrelune
