#pragma once

#include <cstdint>
#include <string>

#include "platform/file_service.h"

namespace coffrelune {

/// Writes all of it. 0 or an errno value.
int writeAll(int fd, const char* bytes, std::size_t size);

/// Reads a file of at most `limit` bytes; `path` is native. 0 or an errno value: EFBIG when it is
/// larger, EACCES when it is a directory or no file at all.
int readWholeFile(const std::string& path, std::uint64_t limit, std::string& bytes);

/// The same of an entry of an open directory; with `follow` false a link is ELOOP.
int readWholeEntry(int directory, const char* name, bool follow, std::uint64_t limit,
                   std::string& bytes);

/// Replaces a file's content, or creates it, atomically. A link is followed; mode and, where
/// allowed, owner are kept. A read-only file is refused with EACCES. 0 or an errno value.
int writeWholeFile(const std::string& path, const std::string& bytes, Durability durability);

/// The same of an entry of an open directory (O_PATH will do); a link is ELOOP.
int writeWholeEntry(int directory, const char* name, const std::string& bytes,
                    Durability durability);

}  // namespace coffrelune
