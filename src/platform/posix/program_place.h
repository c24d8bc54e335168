#pragma once

#include <string>

namespace coffrelune {

/// Absolute native path of the directory that stands for "the executable's directory": that of the
/// environment variable COFFRELUNE_HOME when it is set and not empty, else the executable's own.
std::string settingsDirectory();

/// Absolute native path of the running program's file, links resolved; empty when the system does
/// not tell. DriveService::fromNative turns it into the core's form.
std::string executablePath();

}  // namespace coffrelune
