#pragma once

#include "console/session.h"
#include "operation/run_report.h"

namespace coffrelune::console {

// One function a command. Everything that the user must know has been said when they return.

ExitStatus backUp(Session& session, const Arguments& arguments);
ExitStatus restore(Session& session, const Arguments& arguments);
ExitStatus compare(Session& session, const Arguments& arguments);
ExitStatus verify(Session& session, const Arguments& arguments);
ExitStatus showJournal(Session& session, const Arguments& arguments);
ExitStatus showResults(Session& session, const Arguments& arguments);

}  // namespace coffrelune::console
