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

/// Who may do what with the old file holds for the new one as well, which is empty yet. A volume
/// without access rights has none to give, and a user may lack the right to set them: the new file
/// then has those that its directory gives, as every other copy there.
void keepAccessRights(const NativePath& old, const NativePath& fresh);

// What is removed is what was opened and looked at, whatever bears its name a moment later.

/// See FileService::removeFile. 0 or a system error.
std::uint32_t removeFileAt(const NativePath& path);

/// See FileService::removeDirectory. 0 or a system error.
std::uint32_t removeDirectoryAt(const NativePath& path);

}  // namespace coffrelune
