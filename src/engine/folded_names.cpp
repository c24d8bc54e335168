#include "engine/folded_names.h"

#include <bit>
#include <memory>

#include "platform/characters.h"
#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {
namespace {

// FNV-1a over the characters in lower case.
std::uint64_t hashOf(std::string_view name) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (std::size_t position = 0; position < name.size();) {
        hash ^= lowerCase(utf8::next(name, position));
        hash *= 0x100000001B3;
    }
    // The low bits alone choose the slot.
    return hash ^ hash >> 32;
}

// False when the directory of both lists both names; true when it lists one of them, which is then
// what either leads to.
std::optional<bool> areListed(FileService& files, const std::string& a, const std::string& b,
                              Status& failed) {
    const SplitPath first = splitPath(a);
    const std::string second = splitPath(b).last;
    std::unique_ptr<Directory> listing;
    failed = files.openDirectory(first.parent, LinkRule::follow, Wanted::everything, listing);
    if (!failed.ok()) return {};
    int listed = 0;
    for (FileEntry entry; listing->next(entry);) {
        listed += entry.name == first.last || entry.name == second ? 1 : 0;
    }
    failed = listing->status();
    if (!failed.ok()) return {};
    return listed < 2;
}

}  // namespace

bool HashSet::add(std::uint64_t hash) {
    if (count_ * 2 >= slots_.size()) grow();
    if (!insert(hash == 0 ? 1 : hash)) return false;
    ++count_;
    return true;
}

bool HashSet::contains(std::uint64_t hash) const {
    return !slots_.empty() && slots_[slotOf(hash == 0 ? 1 : hash)] != 0;
}

// Where the hash is, or would be.
std::size_t HashSet::slotOf(std::uint64_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = hash & mask;
    while (slots_[slot] != 0 && slots_[slot] != hash) slot = (slot + 1) & mask;
    return slot;
}

bool HashSet::insert(std::uint64_t hash) {
    std::uint64_t& slot = slots_[slotOf(hash)];
    const bool isNew = slot == 0;
    slot = hash;
    return isNew;
}

void HashSet::grow() {
    std::vector<std::uint64_t> old(2 * (slots_.empty() ? std::bit_ceil(expected_) : slots_.size()));
    old.swap(slots_);
    for (const std::uint64_t hash : old) {
        if (hash != 0) insert(hash);
    }
}

bool FoldedNames::add(std::string_view name) {
    return names_.add(hashOf(name));
}

bool FoldedNames::contains(std::string_view name) const {
    return names_.contains(hashOf(name));
}

bool SeenEntries::add(const FileId& id) {
    if (!id.known()) return true;
    // Neighbours differ in the low bits of their numbers, which choose the slot.
    const std::uint64_t mixed = (id.file ^ id.volume << 40) * 0x9E3779B97F4A7C15;
    return ids_.add(mixed ^ mixed >> 32);
}

std::optional<bool> areOneEntry(FileService& files, const std::string& a, const std::string& b,
                                Status& failed) {
    FileEntry first;
    FileEntry second;
    const Status foundFirst = files.lookUp(a, LinkRule::refuse, first);
    const Status foundSecond = files.lookUp(b, LinkRule::refuse, second);
    if (foundFirst.saysAbsent() || foundSecond.saysAbsent()) return false;
    failed = foundFirst.ok() ? foundSecond : foundFirst;
    // The identity that a look-up gives is that of a link itself.
    if (failed.ok() && !(first.id.known() && second.id.known())) {
        failed = files.identify(a, first.id);
        if (failed.ok()) failed = files.identify(b, second.id);
    }
    if (!failed.ok() || !first.id.known() || !second.id.known()) return {};
    if (first.id == second.id) return true;
    // Programs that serve a volume may number one entry twice, once for each name it is asked by.
    return areListed(files, a, b, failed);
}

bool isOneEntry(FileService& files, const std::string& a, const std::string& b) {
    Status failed;
    return areOneEntry(files, a, b, failed) == true;
}

}  // namespace coffrelune
