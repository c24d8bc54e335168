#pragma once

#include "console/session.h"
#include "operation/run_report.h"

namespace coffrelune::console {

// The commands that show and change the settings. What only shows runs while a window is open; what
// changes them is refused then. Everything that the user must know has been said when they return.

ExitStatus configurations(Session& session, const Arguments& arguments);
ExitStatus lines(Session& session, const Arguments& arguments);
ExitStatus options(Session& session, const Arguments& arguments);
ExitStatus drives(Session& session, const Arguments& arguments);
ExitStatus plan(Session& session, const Arguments& arguments);

/// Says why a command goes no further.
ExitStatus refuse(Session& session, const std::string& reason);

/// How a change ends: `done` is said when it has been stored. What cannot be written has been said.
ExitStatus conclude(Session& session, const Status& stored, const std::string& done);

/// True when --confirmer was given or the user agrees; otherwise says what is missing.
bool isConfirmed(Session& session, const Arguments& arguments, const std::string& question);

}  // namespace coffrelune::console
