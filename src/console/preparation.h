#pragma once

#include "console/session.h"
#include "operation/run_report.h"

namespace coffrelune::console {

/// Makes the shared state ready for the command: from the settings file, or from --source and
/// --destination. False when the command cannot run; the reason has been said, and `refusal` holds
/// how the process ends.
bool prepare(Session& session, const Arguments& arguments, ExitStatus& refusal);

/// For a command that only shows what is stored: reads the settings, also while another program
/// works on them. The configuration need not exist.
bool prepareReading(Session& session, const Arguments& arguments, ExitStatus& refusal);

/// For a command that changes settings: refused while another program works on them. The
/// configuration need not exist.
bool prepareEditing(Session& session, const Arguments& arguments, ExitStatus& refusal);

/// False, with a message that names the switches, when the run would ask before replacing a file
/// and there is nobody to ask.
bool mayReplace(Session& session, const Arguments& arguments);

}  // namespace coffrelune::console
