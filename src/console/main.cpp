#include <algorithm>

#include "console/arguments.h"
#include "console/commands.h"
#include "console/session.h"
#include "platform/native/native_platform.h"

namespace coffrelune::console {
namespace {

ExitStatus run(Session& session, const Arguments& arguments) {
    switch (arguments.command) {
        case Command::restore:
            return restore(session, arguments);
        case Command::compare:
            return compare(session, arguments);
        case Command::journal:
            return showJournal(session, arguments);
        case Command::results:
            return showResults(session, arguments);
        default:
            return backUp(session, arguments);
    }
}

}  // namespace
}  // namespace coffrelune::console

int main(int count, char** values) {
    using namespace coffrelune::console;
    using coffrelune::ExitStatus;
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
