#include "console/commands.h"
#include "console/json_report.h"
#include "console/preparation.h"
#include "operation/results.h"

namespace coffrelune::console {
namespace {

void sayResults(Terminal& terminal, const ResultSummary& summary) {
    if (!summary.cleanLine.empty()) {
        terminal.say(summary.cleanLine);
        terminal.say("  " + summary.cleanToolTip);
    }
    if (!summary.problemLine.empty()) {
        terminal.say(summary.problemLine);
        terminal.say("  " + summary.problemToolTip + ", " + summary.countLine);
    }
}

}  // namespace

ExitStatus showResults(Session& session, const Arguments& arguments) {
    ExitStatus refusal = ExitStatus::clean;
    if (!prepare(session, arguments, refusal)) return refusal;
    const SystemMod& system = session.system();
    if (arguments.json) {
        session.terminal().result(resultsAsJson(system));
        return ExitStatus::clean;
    }
    session.terminal().say("Configuration : " + system.configurationName);
    bool any = false;
    for (const OperationKind kind :
         {OperationKind::backup, OperationKind::restore, OperationKind::comparison}) {
        const ResultSummary summary = summarize(system, kind);
        any = any || !summary.cleanLine.empty() || !summary.problemLine.empty();
        sayResults(session.terminal(), summary);
    }
    if (!any) session.terminal().say("Aucune opération n'a encore été effectuée.");
    return ExitStatus::clean;
}

}  // namespace coffrelune::console
