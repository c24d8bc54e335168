#pragma once

#include <string>
#include <vector>

namespace coffrelune {

/// Removes the temporaries in an open directory that no running process writes. One whose lock
/// cannot be tested stays. 0 or an errno value.
int removeTemporaries(int directory);

/// The names of the program's own files in an open directory that are no temporaries. 0 or an
/// errno value.
int listOwnFiles(int directory, std::vector<std::string>& names);

/// Removes the program's own files from an open directory that holds nothing else; ENOTEMPTY, and
/// nothing is removed, when it does. 0 or an errno value.
int clearOwnFiles(int directory);

}  // namespace coffrelune
