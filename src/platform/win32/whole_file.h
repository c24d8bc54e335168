#pragma once

#include <cstdint>
#include <string>

#include "platform/win32/native_path.h"

namespace coffrelune {

/// See FileService::readWhole and writeWhole. 0 or a system error.
std::uint32_t readWholeFile(const NativePath& path, std::uint64_t limit, std::string& bytes);
std::uint32_t writeWholeFile(const NativePath& path, const std::string& bytes);

}  // namespace coffrelune
