#pragma once

#include <cstdint>
#include <string>

#include "platform/memory/memory_disk.h"

namespace coffrelune {

/// One copy from its first look to its final name.
struct MemoryCopy {
    std::string from;
    std::string to;
    MemoryNode::Pointer source = nullptr;
    MemoryPlace destination = {};             // as it was when the copy began
    MemoryNode::Pointer temporary = nullptr;  // none yet
    std::uint64_t size = 0;                   // when it was opened
    std::uint32_t attributes = 0;
    FileTimes times = {};  // as they were before the reading
    FileTimes old = {};    // of what bears the name
    std::uint64_t oldSize = 0;
};

}  // namespace coffrelune
