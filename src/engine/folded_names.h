#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_service.h"

namespace coffrelune {

/// Numbers that stand for something by their hash.
class HashSet {
  public:
    /// `expected`: how many there will usually be; more cost a little time.
    explicit HashSet(std::size_t expected = 32) : expected_(expected) {}

    /// False when it has been added before. 0 is taken for 1.
    bool add(std::uint64_t hash);
    bool contains(std::uint64_t hash) const;

  private:
    std::size_t slotOf(std::uint64_t hash) const;
    bool insert(std::uint64_t hash);
    void grow();

    std::size_t expected_;
    std::vector<std::uint64_t> slots_;  // open addressing; 0 is an empty one
    std::size_t count_ = 0;
};

/// Entries of the disk that were met; two may have the same hash.
class SeenEntries {
  public:
    /// False when it has been added before. One whose identity is unknown has not.
    bool add(const FileId& id);

  private:
    HashSet ids_;
};

/// Names without their case, remembered by their hashes alone: a directory may hold a million. Two
/// names of one hash are taken for the same one, so a repetition is a suspicion, no proof.
class FoldedNames {
  public:
    /// `expected`: how many names there will usually be; more cost a little time.
    explicit FoldedNames(std::size_t expected = 32) : names_(expected) {}

    /// False when this name, in this case or another, has been added before.
    bool add(std::string_view name);
    /// True when this name has been added, in this case or another.
    bool contains(std::string_view name) const;

  private:
    HashSet names_;
};

/// Whether two paths, which differ in their case, are one entry of the disk, no link followed.
/// Nothing when nobody can tell; `failed` is then the call that did not answer, if it is one.
std::optional<bool> areOneEntry(FileService& files, const std::string& a, const std::string& b,
                                Status& failed);
/// True when they are, for certain.
bool isOneEntry(FileService& files, const std::string& a, const std::string& b);

}  // namespace coffrelune
