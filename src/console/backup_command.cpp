#include "console/commands.h"
#include "console/copy_run.h"
#include "console/preparation.h"

namespace coffrelune::console {

ExitStatus backUp(Session& session, const Arguments& arguments) {
    ExitStatus refusal = ExitStatus::clean;
    if (!prepare(session, arguments, refusal)) return refusal;
    if (!mayReplace(session, arguments)) return ExitStatus::interrupted;
    CopyRun run(session, arguments);
    return run.launch();
}

}  // namespace coffrelune::console
