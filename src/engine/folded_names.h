#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace coffrelune {

/// Names without their case, remembered by their hashes alone: a directory may hold a million. Two
/// names of one hash are taken for the same one, so a repetition is a suspicion, no proof.
class FoldedNames {
  public:
    /// False when this name, in this case or another, has been added before.
    bool add(std::string_view name);

  private:
    bool insert(std::uint64_t hash);
    void grow();

    std::vector<std::uint64_t> slots_;  // open addressing; 0 is an empty one
    std::size_t count_ = 0;
};

}  // namespace coffrelune
