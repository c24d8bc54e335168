#pragma once

#include <cstdint>

#include "platform/win32/native_path.h"

namespace coffrelune {

// What is removed is what was opened and looked at, whatever bears its name a moment later.

/// See FileService::removeFile. 0 or a system error.
std::uint32_t removeFileAt(const NativePath& path);

/// See FileService::removeDirectory. 0 or a system error.
std::uint32_t removeDirectoryAt(const NativePath& path);

}  // namespace coffrelune
