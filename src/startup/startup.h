#pragma once

#include <string>

#include "operation/run_report.h"
#include "platform/platform.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// What follows the program's name in the command line of a process, as Windows keeps it: one text,
/// blanks included. Pairs of double quotes, which only hold a word with blanks together for whoever
/// starts the program, are taken off; a quote without another stays.
std::string argumentText(const std::string& commandLine);

/// The first steps of every program: refuses a second process on the same settings with its
/// message (in a box, or as a notice with "/Auto"), before they are read, then loads them. False
/// when refused.
bool startUp(SystemMod& system, InstanceGuard& guard);

/// An unattended backup of the current configuration, as "/Auto" starts it. A configuration that
/// has no section is refused: a mistyped name must not pass for a backup.
ExitStatus runAuto(SystemMod& system, OperationStage& stage);

/// What the main window does when it closes: the configuration in use is remembered, unless it was
/// only tried on the command line and has no section.
void rememberConfiguration(SystemMod& system);

}  // namespace coffrelune
