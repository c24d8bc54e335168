#pragma once

#include <string>

namespace coffrelune {

/// The user's configuration directory, native; empty when the environment tells no home. `variable`
/// is as std::getenv.
std::string configurationDirectory(const char* (*variable)(const char* name));

/// Makes a directory and those above it, for the user alone. 0 or an errno value.
int makeDirectories(const std::string& path);

}  // namespace coffrelune
