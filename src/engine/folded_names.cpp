#include "engine/folded_names.h"

#include "platform/utf8.h"
#include "system/casing.h"

namespace coffrelune {
namespace {

// FNV-1a over the characters in lower case; never 0.
std::uint64_t hashOf(std::string_view name) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (std::size_t position = 0; position < name.size();) {
        hash ^= lowerCase(utf8::next(name, position));
        hash *= 0x100000001B3;
    }
    // The low bits alone choose the slot.
    hash ^= hash >> 32;
    return hash == 0 ? 1 : hash;
}

}  // namespace

bool FoldedNames::add(std::string_view name) {
    if (count_ * 2 >= slots_.size()) grow();
    if (!insert(hashOf(name))) return false;
    ++count_;
    return true;
}

bool FoldedNames::insert(std::uint64_t hash) {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = hash & mask;
    while (slots_[slot] != 0) {
        if (slots_[slot] == hash) return false;
        slot = (slot + 1) & mask;
    }
    slots_[slot] = hash;
    return true;
}

void FoldedNames::grow() {
    constexpr std::size_t fewest = 64;
    std::vector<std::uint64_t> old(slots_.empty() ? fewest : slots_.size() * 2);
    old.swap(slots_);
    for (const std::uint64_t hash : old) {
        if (hash != 0) insert(hash);
    }
}

}  // namespace coffrelune
