#include "console/commands.h"
#include "console/copy_run.h"
#include "console/preparation.h"

namespace coffrelune::console {

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

}  // namespace coffrelune::console
