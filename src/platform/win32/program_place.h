#pragma once

#include <string>

namespace coffrelune {

/// Absolute path of the directory that stands for "the executable's directory", in the core's form:
/// that of the environment variable COFFRELUNE_HOME when it is set and not empty, else the
/// executable's own.
std::string settingsDirectory();

/// The running program's file, in the core's form.
std::string executablePath();

}  // namespace coffrelune
