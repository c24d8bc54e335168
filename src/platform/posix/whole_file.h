#pragma once

#include <cstdint>
#include <string>

namespace coffrelune {

/// Reads a file of at most `limit` bytes; `path` is native. 0 or an errno value: EFBIG when it is
/// larger, EACCES when it is a directory or no file at all.
int readWholeFile(const std::string& path, std::uint64_t limit, std::string& bytes);

/// Replaces a file's content, or creates it, atomically and durably. A link is followed; mode and,
/// where allowed, owner are kept. A read-only file is refused with EACCES. 0 or an errno value.
int writeWholeFile(const std::string& path, const std::string& bytes);

}  // namespace coffrelune
