#include "console/commands.h"

#include "console/json_report.h"
#include "console/preparation.h"
#include "console/session.h"
#include "operation/errors.h"
#include "operation/operation.h"
#include "operation/results.h"
#include "operation/run_report.h"

namespace coffrelune::console {
namespace {

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

CopyRun::CopyRun(Session& session, const Arguments& arguments)
    : session_(session),
      arguments_(arguments),
      launcher_(session.system(), host_, session.stage()) {
    if (arguments.keep) launcher_.keepExistingFiles();
    if (arguments.confirmed) launcher_.skipConfirmations();
    if (arguments.originalConfirmed) launcher_.acceptOriginal();
}

ExitStatus CopyRun::launch() {
    const RunEnd end = launcher_.LanceOperation(RunMode::startedByUser);
    // Nothing ran: there is no result to tell.
    if (end == RunEnd::cancelled) return ExitStatus::interrupted;
    reportErrors(session_.system(), launcher_.statistics());
    if (arguments_.json) {
        session_.terminal().result(runAsJson(session_.system(), launcher_.statistics(), end));
    }
    return exitStatus(end, launcher_.statistics());
}

}  // namespace

ExitStatus backUp(Session& session, const Arguments& arguments) {
    ExitStatus refusal = ExitStatus::clean;
    if (!prepare(session, arguments, refusal)) return refusal;
    if (!mayReplace(session, arguments)) return ExitStatus::interrupted;
    CopyRun run(session, arguments);
    return run.launch();
}

ExitStatus restore(Session& session, const Arguments& arguments) {
    ExitStatus refusal = ExitStatus::clean;
    if (!prepare(session, arguments, refusal)) return refusal;
    session.system().operationKind = OperationKind::restore;
    if (!arguments.confirmed && !session.terminal().canAsk()) {
        session.terminal().warn(
            "Une restauration demande deux confirmations, et il n'y a pas de terminal pour\n"
            "répondre. Ajoutez --confirmer pour restaurer sans les questions.");
        return ExitStatus::interrupted;
    }
    if (!mayReplace(session, arguments)) return ExitStatus::interrupted;
    CopyRun run(session, arguments);
    if (!arguments.confirmed && !run.launcher().confirmRestore()) return ExitStatus::interrupted;
    return run.launch();
}

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

    SharedHost host;
    OperationLauncher launcher(system, host, session.stage());
    const RunEnd end = launcher.launchComparison();
    const RunStatistics& statistics = launcher.statistics();
    // With --journal the same lines have been printed as they were found.
    if (!arguments.journal && !arguments.json) printComparison(session, host);
    const std::string cause =
        errorCause(launcher.control().lastErrorNumber, launcher.control().sharingPath);
    if (!cause.empty()) session.terminal().warn(cause);
    reportErrors(system, statistics);
    if (arguments.json) {
        session.terminal().result(comparisonAsJson(system, host, statistics, end));
    }
    return exitStatus(end, statistics);
}

ExitStatus showJournal(Session& session, const Arguments& arguments) {
    ExitStatus refusal = ExitStatus::clean;
    if (!prepare(session, arguments, refusal)) return refusal;
    session.system().operationKind = arguments.kind;
    const VisuErrFrm viewer(session.system());
    if (arguments.json) {
        session.terminal().result(journalAsJson(session.system(), viewer.ListeTxt));
        return ExitStatus::clean;
    }
    session.terminal().say(viewer.Lbl[0].caption());
    if (viewer.ListeTxt.lineCount() == 0) {
        session.terminal().say("Aucune liste d'erreurs n'a été enregistrée.");
    }
    for (std::size_t i = 0; i < viewer.ListeTxt.lineCount(); ++i) {
        session.terminal().say(std::string(viewer.ListeTxt.line(i)));
    }
    return ExitStatus::clean;
}

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
    for (const OperationKind kind : allKinds) {
        const ResultSummary summary = summarize(system, kind);
        any = any || !summary.cleanLine.empty() || !summary.problemLine.empty();
        sayResults(session.terminal(), summary);
    }
    if (!any) session.terminal().say("Aucune opération n'a encore été effectuée.");
    return ExitStatus::clean;
}

}  // namespace coffrelune::console
