#pragma once

#include <cstdint>
#include <string>

#include "platform/file_service.h"
#include "platform/win32/native_path.h"
#include "platform/win32/temporary_file.h"

namespace coffrelune {

/// See FileService::readWhole and writeWhole. 0 or a system error.
std::uint32_t readWholeFile(const NativePath& path, std::uint64_t limit, std::string& bytes);
std::uint32_t writeWholeFile(const NativePath& target, const std::string& bytes,
                             Durability durability, WriteGuard& guard);

/// What a link leads to in the end; 0 and the path itself when it is none.
std::uint32_t followLink(NativePath& path);

}  // namespace coffrelune
