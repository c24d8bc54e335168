#pragma once

#include <string>

#include "engine/run_statistics.h"

namespace coffrelune {

/// True for the files of the system that are never counted, listed, copied or deleted, in any case.
bool isSystemFile(const std::string& name);

/// True when the directory parent + name must not be entered: the system's own directory, system
/// folders, and what the current line leaves out. `parent` ends with a backslash. Every comparison
/// is exact: "RECYCLED" is walked though "Recycled" is not.
bool isExcludedDirectory(const std::string& parent, const std::string& name,
                         const RunStatistics& statistics);

/// The same for the deletion walk, which leaves out besides what the current line itself leaves
/// out: a restore would otherwise empty folders that were never backed up. The list and the
/// system's own directory are compared in any case here: the copy of a directory may spell its name
/// in another one than the original, and to keep a file too many does no harm.
bool isExcludedFromDeletion(const std::string& parent, const std::string& name,
                            const RunStatistics& statistics);

/// True when the last component names one of the folders that Windows redirects: their absence is
/// no news to the user.
bool isSpecialFolder(const std::string& path);

}  // namespace coffrelune
