#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "engine/run_state.h"

namespace coffrelune {

/// Free bytes of a drive ("E:\"); nothing when nobody knows.
using FreeSpace = std::function<std::optional<std::uint64_t>(const std::string& drive)>;

/// A text for every drive on which the files that the analysis has found ask for more than is free.
/// Files that are replaced give room back, so it is a warning and no refusal.
std::vector<std::string> lackingSpace(const SystemMod& system, const RunStatistics& statistics,
                                      const FreeSpace& freeSpace);

}  // namespace coffrelune
