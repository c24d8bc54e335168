#include "console/commands.h"

#include <algorithm>
#include <set>
#include <utility>

#include "console/json_report.h"
#include "console/preparation.h"
#include "console/run_files.h"
#include "console/session.h"
#include "console/xxh3_hash.h"
#include "operation/errors.h"
#include "operation/operation.h"
#include "operation/results.h"
#include "operation/run_report.h"

namespace coffrelune::console {
namespace {

/// Reads the copies of what has just run, and writes what they hold into the list that was asked
/// for. The outcome of the command, which gets worse when the list is not complete.
ExitStatus writeHashes(Session& session, HashFile& file, std::set<std::string> suspects,
                       ExitStatus end) {
    if (!file.wanted() || end == ExitStatus::interrupted) return end;
    SystemMod& system = session.system();
    const OperationKind kind = std::exchange(system.operationKind, OperationKind::comparison);
    const std::string duration = system.duration;
    SharedHost host;
    OperationLauncher launcher(system, host, session.stage());
    const auto contents = makeContentReader(session.native());
    const auto hash = makeContentHash();
    HashWork work{*hash, file.list(), false, std::move(suspects)};
    const RunEnd read = launcher.launchHashing(*contents, work);
    reportErrors(system, launcher.statistics());
    system.operationKind = kind;
    system.duration = duration;
    const ExitStatus listed = exitStatus(read, launcher.statistics());
    if (listed == ExitStatus::interrupted) return listed;
    return std::max({end, listed, file.write() ? ExitStatus::clean : ExitStatus::errors});
}

/// A backup or a restore, launched and told.
class CopyRun {
  public:
    CopyRun(Session& session, const Arguments& arguments);

    OperationLauncher& launcher() { return launcher_; }
    /// False, with the reason said, when a file that the run is to write besides cannot be.
    bool openFiles() { return hashes_.read() && report_.open(); }
    ExitStatus launch();

  private:
    Session& session_;
    const Arguments& arguments_;
    SharedHost host_;
    OperationLauncher launcher_;
    RunReport report_;
    HashFile hashes_;
};

CopyRun::CopyRun(Session& session, const Arguments& arguments)
    : session_(session),
      arguments_(arguments),
      launcher_(session.system(), host_, session.stage()),
      report_(session, arguments),
      hashes_(session, arguments) {
    launcher_.recordInto(&report_);
    if (arguments.keep) launcher_.keepExistingFiles();
    if (arguments.confirmed) launcher_.skipConfirmations();
    if (arguments.originalConfirmed) launcher_.acceptOriginal();
}

ExitStatus CopyRun::launch() {
    const RunEnd end = launcher_.LanceOperation(RunMode::startedByUser);
    // Nothing ran: there is no result to tell.
    if (end == RunEnd::cancelled) return report_.close(ExitStatus::interrupted);
    reportInterruption(session_.system(), launcher_, end);
    reportErrors(session_.system(), launcher_.statistics());
    if (arguments_.json) {
        session_.terminal().result(runAsJson(session_.system(), launcher_.statistics(), end));
    }
    const ExitStatus copied = exitStatus(end, launcher_.statistics());
    const ExitStatus status = report_.close(writeHashes(session_, hashes_, {}, copied));
    if (arguments_.notifies && wantsNotices(session_.system())) {
        const RunNotice notice = noticeOf(session_.system(), status, launcher_.statistics());
        notifyDesktop(session_.native(), notice.title, notice.text);
    }
    return status;
}

}  // namespace

ExitStatus backUp(Session& session, const Arguments& arguments) {
    ExitStatus refusal = ExitStatus::clean;
    if (!prepare(session, arguments, refusal)) return refusal;
    if (!mayReplace(session, arguments)) return ExitStatus::interrupted;
    CopyRun run(session, arguments);
    return run.openFiles() ? run.launch() : ExitStatus::wrongUse;
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
    return run.openFiles() ? run.launch() : ExitStatus::wrongUse;
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
    RunReport report(session, arguments);
    if (!report.open()) return ExitStatus::wrongUse;
    launcher.recordInto(&report);
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
    return report.close(exitStatus(end, statistics));
}

ExitStatus verify(Session& session, const Arguments& arguments) {
    ExitStatus refusal = ExitStatus::clean;
    const bool ready = arguments.direct() ? prepare(session, arguments, refusal)
                                          : prepareReading(session, arguments, refusal) &&
                                                settingsUsable(session.system());
    if (!ready) return refusal;
    SystemMod& system = session.system();
    system.operationKind = OperationKind::comparison;
    system.comparisonReversed = arguments.reversed;

    SharedHost host;
    OperationLauncher launcher(system, host, session.stage());
    RunReport report(session, arguments);
    HashFile hashes(session, arguments);
    if (!hashes.read() || !report.open()) return ExitStatus::wrongUse;
    launcher.recordInto(&report);
    const auto contents = makeContentReader(session.native());
    const auto hash = makeContentHash();
    HashWork work{*hash, hashes.list(), true, {}};
    const RunEnd end = arguments.hashes.empty() ? launcher.launchVerification(*contents)
                                                : launcher.launchHashing(*contents, work);
    const RunStatistics& statistics = launcher.statistics();
    if (!arguments.journal && !arguments.json) printComparison(session, host);
    const std::string cause =
        errorCause(launcher.control().lastErrorNumber, launcher.control().sharingPath);
    if (!cause.empty()) session.terminal().warn(cause);
    reportErrors(system, statistics);
    if (arguments.json) {
        session.terminal().result(verificationAsJson(system, host, statistics, end));
    }
    const ExitStatus status = exitStatus(end, statistics);
    if (arguments.writtenHashes.empty()) return report.close(status);
    return report.close(writeHashes(session, hashes, report.suspects(), status));
}

ExitStatus showJournal(Session& session, const Arguments& arguments) {
    ExitStatus refusal = ExitStatus::clean;
    if (!prepareReading(session, arguments, refusal)) return refusal;
    if (!settingsUsable(session.system())) return refusal;
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

void sayAge(Terminal& terminal, const BackupAge& age, bool alerts) {
    if (age.date.empty()) {
        if (alerts) terminal.say("ALERTE : aucune sauvegarde complète et sans erreur.");
        return;
    }
    terminal.say(std::string(alerts ? "ALERTE : dernière" : "Dernière") +
                 " sauvegarde complète et sans erreur il y a " + std::to_string(age.days) +
                 " jour(s) (" + age.date + ").");
}

}  // namespace

ExitStatus showResults(Session& session, const Arguments& arguments) {
    ExitStatus refusal = ExitStatus::clean;
    if (!prepareReading(session, arguments, refusal)) return refusal;
    if (!settingsUsable(session.system())) return refusal;
    const SystemMod& system = session.system();
    const bool alerts = arguments.alertDays && ageOfBackup(system, *arguments.alertDays).tooOld;
    const ExitStatus end = alerts ? ExitStatus::errors : ExitStatus::clean;
    if (arguments.json) {
        session.terminal().result(resultsAsJson(system, arguments.alertDays));
        return end;
    }
    session.terminal().say("Configuration : " + system.configurationName);
    bool any = false;
    for (const OperationKind kind : allKinds) {
        const ResultSummary summary = summarize(system, kind);
        any = any || !summary.cleanLine.empty() || !summary.problemLine.empty();
        sayResults(session.terminal(), summary);
    }
    if (!any) session.terminal().say("Aucune opération n'a encore été effectuée.");
    sayAge(session.terminal(), ageOfBackup(system, arguments.alertDays.value_or(0)), alerts);
    return end;
}

}  // namespace coffrelune::console
