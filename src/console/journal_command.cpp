#include "console/commands.h"
#include "console/json_report.h"
#include "console/preparation.h"
#include "operation/visu_err_frm.h"

namespace coffrelune::console {

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

}  // namespace coffrelune::console
