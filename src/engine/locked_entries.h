#pragma once

#include <string>

#include "platform/file_service.h"

namespace coffrelune {

/// Why nobody may write, replace or delete the file `path`, whatever its rights: it, or the
/// directory that it is in, is immutable or takes additions only. A sentence for the journal; empty
/// when neither is so, or nobody can tell.
std::string lockOn(FileService& files, const std::string& path);

}  // namespace coffrelune
