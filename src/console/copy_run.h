#pragma once

#include "console/session.h"
#include "operation/run_report.h"
#include "operation/shared_host.h"

namespace coffrelune::console {

/// A backup or a restore, launched and told.
class CopyRun {
  public:
    CopyRun(Session& session, const Arguments& arguments);

    OperationLauncher& launcher() { return launcher_; }
    ExitStatus launch();

  private:
    Session& session_;
    const Arguments& arguments_;
    SharedHost host_;
    OperationLauncher launcher_;
};

}  // namespace coffrelune::console
