#pragma once

#include <string>
#include <vector>

namespace coffrelune {

/// A path of the core taken apart.
struct MemoryPath {
    std::string root;                     // "C:\" or "\\server\share"; empty when there is none
    std::vector<std::string> components;  // below the root, empty ones left out
};

/// Takes any text; one that is no full path gets an empty root.
MemoryPath splitMemoryPath(const std::string& path);

/// ASCII and Latin-1 letters in upper case, for names that differ at most in case.
std::string foldCase(const std::string& name);

}  // namespace coffrelune
