#pragma once

#include <string>

namespace coffrelune {

/// Absolute native path of the directory that stands for "the executable's directory": that of the
/// environment variable COFFRELUNE_HOME when it is set and not empty, else the executable's own.
std::string settingsDirectory();

}  // namespace coffrelune
