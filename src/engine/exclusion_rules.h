#pragma once

#include <string>
#include <vector>

#include "settings/system_mod.h"

namespace coffrelune {

/// What the walk of a tree does not enter.
struct LeftOut {
    std::string windowsDirectory;
    std::string root;                  // of the walked tree, with a trailing backslash
    std::vector<ExclusionList> lists;  // each of them counts
};

/// True for the files of the system that are never counted, listed, copied or deleted, in any case.
bool isSystemFile(const std::string& name);

/// True when the directory parent + name must not be entered: the system's own directory, system
/// folders, and what the line leaves out. `parent` ends with a backslash. Every comparison is
/// exact: "RECYCLED" is walked though "Recycled" is not.
bool isExcludedDirectory(const std::string& parent, const std::string& name,
                         const LeftOut& leftOut);

/// The same for a deletion, in any case: the copy of a directory may spell its name in another one
/// than the original, and to keep a file too many does no harm.
bool isExcludedFromDeletion(const std::string& parent, const std::string& name,
                            const LeftOut& leftOut);

/// True when the last component names one of the folders that Windows redirects: their absence is
/// no news to the user.
bool isSpecialFolder(const std::string& path);

}  // namespace coffrelune
