#include <algorithm>

#include "console/arguments.h"
#include "console/commands.h"
#include "console/session.h"
#include "console/settings_commands.h"
#include "platform/native/native_platform.h"
#include "platform/out_of_memory.h"

namespace coffrelune::console {
namespace {

ExitStatus run(Session& session, const Arguments& arguments) {
    switch (arguments.command) {
        case Command::restore:
            return restore(session, arguments);
        case Command::compare:
            return compare(session, arguments);
        case Command::verify:
            return verify(session, arguments);
        case Command::journal:
            return showJournal(session, arguments);
        case Command::results:
            return showResults(session, arguments);
        case Command::configurations:
            return configurations(session, arguments);
        case Command::lines:
            return lines(session, arguments);
        case Command::options:
            return options(session, arguments);
        case Command::plan:
            return plan(session, arguments);
        case Command::drives:
            return drives(session, arguments);
        default:
            return backUp(session, arguments);
    }
}

}  // namespace
}  // namespace coffrelune::console

int main(int count, char** values) {
    using namespace coffrelune::console;
    using coffrelune::ExitStatus;
    coffrelune::endWhenMemoryEnds();
    int status = 0;
    const std::optional<Arguments> arguments =
        parseArguments(coffrelune::programArguments(count, values), status);
    if (!arguments) return status;
    Session session(*arguments);
    const ExitStatus end = run(session, *arguments);
    if (!session.terminal().outputLost()) return static_cast<int>(end);
    session.terminal().warn("Le résultat n'a pas pu être écrit.");
    return static_cast<int>(std::max(end, ExitStatus::errors));
}
