#include "console/copy_run.h"

#include "console/json_report.h"

namespace coffrelune::console {

CopyRun::CopyRun(Session& session, const Arguments& arguments)
    : session_(session),
      arguments_(arguments),
      host_(session.system()),
      launcher_(session.system(), host_) {
    if (arguments.keep) launcher_.keepExistingFiles();
    if (arguments.confirmed) launcher_.skipConfirmations();
}

ExitStatus CopyRun::launch() {
    constexpr std::int16_t startedByUser = 1;
    const RunEnd end = launcher_.LanceOperation(startedByUser);
    // Nothing ran: there is no result to tell.
    if (end == RunEnd::cancelled) return ExitStatus::interrupted;
    reportErrors(session_.system(), launcher_.statistics());
    if (arguments_.json) {
        session_.terminal().result(
            runAsJson(session_.system(), host_, launcher_.statistics(), end));
    }
    return exitStatus(end, launcher_.statistics());
}

}  // namespace coffrelune::console
