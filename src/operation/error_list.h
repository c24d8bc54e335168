#pragma once

#include <string>

#include "settings/system_mod.h"

namespace coffrelune {

/// Path of the error list of one kind for the current configuration.
std::string errorListPath(const SystemMod& system, OperationKind kind);

/// Writes the journal of the operation in progress as its error list, in the ANSI code page. The
/// list of an earlier run is replaced as a whole; it stays if the new one cannot be written. Does
/// nothing for a run without a settings directory.
Status EcritErreurs(SystemMod& system, const std::string& journal);

/// Reads the error list of a kind for the current configuration, as UTF-8; empty when there is none
/// or it cannot be read.
std::string readErrorList(SystemMod& system, OperationKind kind);

}  // namespace coffrelune
