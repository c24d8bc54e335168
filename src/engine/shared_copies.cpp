// Originals whose copies are one, since the volume of the copy takes their names for one.
#include "engine/shared_copies.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <tuple>
#include <utility>

#include "engine/copie_mod.h"
#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {
namespace {

std::uint64_t hashOf(std::string_view name) {
    return std::hash<std::string_view>()(name);
}

constexpr std::uint64_t roundedBy = 20'000'000;  // two seconds

// Dates that a volume may have rounded into each other have one span in common, or neighbours.
std::uint64_t lookInSpan(std::uint64_t size, std::uint64_t date) {
    std::uint64_t hash = (date / (2 * roundedBy) ^ size << 32 ^ size >> 32) * 0x9E3779B97F4A7C15;
    return hash ^ hash >> 32;
}

std::size_t countOf(std::uint64_t key, const std::vector<std::uint64_t>& sorted) {
    const auto [first, last] = std::equal_range(sorted.begin(), sorted.end(), key);
    return static_cast<std::size_t>(last - first);
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

bool Sharers::contains(std::string_view name) const {
    return !failure.ok() || names.contains(hashOf(name));
}

Status ListedEntries::add(Directory& listing) {
    for (FileEntry entry; listing.next(entry);) {
        (void)names_.add(hashOf(entry.name));
        if (entry.isUnreadable()) {
            (void)unreadable_.add(hashOf(entry.name));
            continue;
        }
        numbers_.push_back(entry.id.file);
        looks_.push_back(lookOf(entry));
    }
    for (Keys* keys : {&numbers_, &looks_}) std::sort(keys->begin(), keys->end());
    return listing.status();
}

bool ListedEntries::leavesOpen(std::string_view name, const Status& looked) const {
    return !looked.ok() && !cannotBeThere(looked) && !unreadable_.contains(hashOf(name));
}

void ListedEntries::lead(std::string_view name, const FileEntry& copy, bool isCurrent) {
    const std::uint64_t hash = hashOf(name);
    const bool isNumbered = copy.id.known() && countOf(copy.id.file, numbers_) > 0;
    const bool isListed = names_.contains(hash);
    // Of two that are listed each has an entry of its own.
    const bool areTwo = isListed && !ledAndListed_.add(name);
    const bool isRepeated = !led_.add(name) && !areTwo;
    claims_.push_back({hash, copy.id.file, lookOf(copy), characterCount(name), isNumbered, isListed,
                       isCurrent, isRepeated});
}

HashSet ListedEntries::sharers() const {
    HashSet losers;
    Claims claims;
    for (const Claim& claim : claims_) {
        if (claim.isNumbered) claims.push_back(&claim);
    }
    settle(std::move(claims), &Claim::number, numbers_, losers);
    claims.clear();
    for (const Claim& claim : claims_) {
        // What has changed since it was listed is still its own.
        const bool hasChanged =
            (claim.isNumbered || claim.isListed) && countOf(claim.look, looks_) == 0;
        if (!hasChanged && !losers.contains(claim.name)) claims.push_back(&claim);
    }
    settle(std::move(claims), &Claim::look, looks_, losers);
    return losers;
}

void ListedEntries::settle(Claims claims, std::uint64_t Claim::*key, const Keys& entries,
                           HashSet& losers) {
    std::stable_sort(claims.begin(), claims.end(),
                     [&](const Claim* a, const Claim* b) { return a->*key < b->*key; });
    for (auto first = claims.begin(); first != claims.end();) {
        const std::uint64_t value = (*first)->*key;
        const auto isOther = [&](const Claim* claim) { return claim->*key != value; };
        const auto last = std::find_if(first, claims.end(), isOther);
        settleOne({first, last}, countOf(value, entries), losers);
        first = last;
    }
}

// Claims of one entry, or of several that cannot be told apart, in the order in which they came. A
// volume that shows names otherwise than they were given changes their length: dots at the end,
// accents composed in two ways. On others, an entry bears the name of its owner.
void ListedEntries::settleOne(std::span<const Claim*> claims, std::size_t entries,
                              HashSet& losers) {
    if (claims.size() <= entries) return;
    const auto isOther = [&](const Claim* claim) { return claim->length != claims[0]->length; };
    const bool namesTell = entries > 1 || std::none_of(claims.begin(), claims.end(), isOther);
    std::stable_sort(claims.begin(), claims.end(), [&](const Claim* a, const Claim* b) {
        const auto rank = [&](const Claim& claim) {
            const bool bearsItsName = namesTell && claim.isListed;
            return entries > 1 ? std::tuple(!claim.isRepeated, bearsItsName, claim.isCurrent)
                               : std::tuple(!claim.isRepeated, claim.isCurrent, bearsItsName);
        };
        return rank(*a) > rank(*b);
    });
    for (const Claim* claim : claims.subspan(entries)) (void)losers.add(claim->name);
}

// Only where something is replaced is the rest worth its time.
void FileLooks::note(std::string_view name, const FileEntry& copy, bool isReplaced) {
    seen_.push_back(lookOf(copy));
    replaces_ = replaces_ || isReplaced;
    replacesFolded_ = replacesFolded_ || (isReplaced && mayBeFolded(name));
}

bool FileLooks::areDoubtful() {
    if (!replaces_ || replacesFolded_) return replaces_;
    std::sort(seen_.begin(), seen_.end());
    return std::adjacent_find(seen_.begin(), seen_.end()) != seen_.end();
}

void FileLooks::clear() {
    *this = FileLooks();
}

void NewFiles::note(const FileEntry& original) {
    (void)looks_.add(lookInSpan(original.size, original.times.lastWrite));
}

bool NewFiles::mayHaveMade(const FileEntry& copy) const {
    const std::uint64_t date = copy.times.lastWrite;
    return looks_.contains(lookInSpan(copy.size, date - roundedBy)) ||
           looks_.contains(lookInSpan(copy.size, date + roundedBy));
}

bool mayBeFolded(std::string_view name) {
    const auto isOdd = [](char c) {
        constexpr std::string_view replaced = "\"*:<>?|";  // where Windows is spoken
        return c < ' ' || c > '}' || replaced.find(c) != std::string_view::npos;
    };
    return name.ends_with('.') || name.ends_with(' ') ||
           std::any_of(name.begin(), name.end(), isOdd);
}

bool Siblings::mayBeFolded() const {
    return std::any_of(names.begin(), names.end(), coffrelune::mayBeFolded);
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
    const Status& failure = known->second.failure;
    errors_.unread(failure.ok() ? error_number::alreadyExists : failure.code(),
                   pair.place.source + entry.name);
    return true;
}

// Copies may get their names while the rest of the directory is read: what is found then may be the
// copy of another name that came with this one, which the analysis could not see. Nor could it tell
// whose copy that is which it has not found.
bool CopieMod::isCopyOfAnother(const FileEntry& entry, const FileEntry& existing,
                               const Pair& pair) {
    const std::pair<std::string, std::string> place(pair.place.source, pair.place.destination);
    const bool isNew = newFiles_.mayHaveMade(existing);
    if (!isNew && (!mayBeFolded(entry.name) || sharers_.contains(place))) return false;
    queue_.settle();  // all those up to here are looked at now
    newFiles_.clear();
    if (run_.stopped()) return true;
    sharers_.insert_or_assign(place, sharers(pair));
    return sharesCopy(entry, existing, pair);
}

// Some volumes number an entry anew for each name that it is asked by. There, two names of one
// entry look alike, and one of their originals would be copied over the other's copy.
void CopieMod::noteSharers(const Pair& pair) {
    const std::pair<std::string, std::string> place(pair.place.source, pair.place.destination);
    if (!sharers_.contains(place) && looks_.areDoubtful()) sharers_.emplace(place, sharers(pair));
}

Sharers CopieMod::sharers(const Pair& pair) {
    const Place& place = pair.place;
    ListedEntries listed;
    std::unique_ptr<Directory> listing;
    const auto open = [&](const std::string& path, LinkRule links) {
        return files_.openDirectory(path, links, Wanted::files, listing);
    };
    Status failure = open(place.destination, targetLinks(place));
    if (failure.ok()) failure = listed.add(*listing);
    if (failure.ok()) failure = open(place.source, place.links);
    if (!failure.ok()) return {.failure = failure};
    FileEntry copy;
    for (FileEntry original; listing->next(original);) {
        Status looked;
        if (!pair.target->lookUp(original.name, copy)) {
            // Once a look-up has failed, an absence is asked for by its path.
            if (pair.target->status().ok()) continue;
            looked = files_.lookUp(place.destination + original.name, LinkRule::refuse, copy);
        }
        if (looked.ok() && !copy.isDirectory()) {
            const bool isCurrent =
                original.size == copy.size && haveSameTime(original, copy, decision_);
            listed.lead(original.name, copy, isCurrent);
        }
        if (listed.leavesOpen(original.name, looked)) return {.failure = looked};
    }
    return {listed.sharers(), listing->status()};
}

// Two directories whose copies are one, though their names differ in more than their case: files of
// one name in both would replace each other.
bool CopieMod::isMixedWithSibling(const Place& place, const Directory& target) {
    const FileEntry* self = target.self();
    if (place.siblings == nullptr || self == nullptr) return false;
    // What is written changes how a directory looks: the analysis tells, before it.
    if (!mayCreate() && !place.siblings->looks.add(lookOf(*self))) compareSiblings(place);
    const bool isOther = place.siblings->entries.add(self->id);
    const auto mixed = mixed_.empty() ? mixed_.end() : mixed_.find(place.destination);
    if (isOther && mixed == mixed_.end()) return false;
    errors_.unread(mixed == mixed_.end() ? error_number::alreadyExists : mixed->second,
                   withoutTrailingBackslash(place.source));
    return true;
}

// As sharers() does with files.
void CopieMod::compareSiblings(const Place& place) {
    Siblings& siblings = *place.siblings;
    if (std::exchange(siblings.compared, true) || !siblings.mayBeFolded()) return;
    const std::string copies =
        withTrailingBackslash(splitPath(withoutTrailingBackslash(place.destination)).parent);
    ListedEntries listed;
    std::unique_ptr<Directory> listing;
    const auto wanted = Wanted::directories;
    Status failure = files_.openDirectory(copies, LinkRule::follow, wanted, listing);
    if (failure.ok()) failure = listed.add(*listing);
    if (failure.saysAbsent()) return;
    SeenEntries entered;
    for (const std::string& name : siblings.names) {
        FileEntry copy;
        const Status looked = files_.lookUp(copies + name, LinkRule::refuse, copy);
        // Where the numbers tell, the walk keeps to the first one.
        if (looked.ok() && copy.isDirectory()) listed.lead(name, copy, entered.add(copy.id));
        if (listed.leavesOpen(name, looked)) failure = looked;
    }
    const Sharers found{listed.sharers(), failure};
    const std::uint32_t number = failure.ok() ? error_number::alreadyExists : failure.code();
    for (const std::string& name : siblings.names) {
        if (found.contains(name)) mixed_.emplace(copies + name + "\\", number);
    }
}

}  // namespace coffrelune
