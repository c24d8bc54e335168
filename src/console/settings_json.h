#pragma once

#include <map>
#include <string>
#include <vector>

#include "settings/configurations.h"
#include "system/drive_rows.h"

namespace coffrelune::console {

// The settings as one JSON object each. Bytes that are no UTF-8 become U+FFFD.

/// current, and configurations (name, description, current).
std::string configurationsAsJson(SystemMod& system);

/// configuration, and lines: line, source, destination, selected, exclusions.
std::string linesAsJson(SystemMod& system);

/// line, and exclusions: mode ("none", "all", "listed", else the number stored) and directories.
std::string exclusionsAsJson(SystemMod& system, int line);

/// options (those of every configuration), configuration, and configurationOptions.
std::string optionsAsJson(const SystemMod& system);

/// drives: drive, mountPoint, description, total and free in bytes (null when unknown).
std::string drivesAsJson(const std::vector<DriveRow>& rows,
                         const std::map<std::string, std::string>& mountPoints);

}  // namespace coffrelune::console
