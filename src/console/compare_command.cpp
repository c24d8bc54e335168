#include "console/commands.h"
#include "console/json_report.h"
#include "console/preparation.h"
#include "operation/error_causes.h"
#include "operation/shared_host.h"

namespace coffrelune::console {
namespace {

void printComparison(Session& session, SharedHost& host) {
    const TextLog& list = host.comparisonList();
    for (std::size_t i = 0; i < list.lineCount(); ++i) {
        session.terminal().say(std::string(list.line(i)));
    }
    session.terminal().say(host.comparisonSummary().caption());
}

}  // namespace

ExitStatus compare(Session& session, const Arguments& arguments) {
    ExitStatus refusal = ExitStatus::clean;
    if (!prepare(session, arguments, refusal)) return refusal;
    SystemMod& system = session.system();
    system.operationKind = OperationKind::comparison;
    system.comparisonReversed = arguments.reversed;

    SharedHost host(system);
    OperationLauncher launcher(system, host);
    const RunEnd end = launcher.launchComparison();
    const RunStatistics& statistics = launcher.statistics();
    // With --journal the same lines have been printed as they were found.
    if (!arguments.journal && !arguments.json) printComparison(session, host);
    const std::string cause = errorCause(statistics.lastErrorNumber, statistics.sharingPath);
    if (!cause.empty()) session.terminal().warn(cause);
    reportErrors(system, statistics);
    if (arguments.json) {
        session.terminal().result(comparisonAsJson(system, host, statistics, end));
    }
    return exitStatus(end, statistics);
}

}  // namespace coffrelune::console
