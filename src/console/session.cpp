#include "console/session.h"

#include "platform/posix/program_place.h"

namespace coffrelune::console {
namespace {

PosixOptions posixOptions() {
    PosixOptions options;
    options.settingsDirectory = settingsDirectory();
    return options;
}

}  // namespace

Session::Session(const Arguments& arguments)
    : terminal_(arguments.json),
      posix_(posixOptions()),
      signals_(posix_.files()),
      windows_(terminal_, posix_.clock(), signals_, arguments.journal),
      platform_{posix_.files(), posix_.drives(), posix_.clock(), posix_.locale(),
                posix_.ansi(),  posix_.sounds(), windows_},
      system_(platform_, context(arguments)) {}

ProgramContext Session::context(const Arguments& arguments) {
    // A run without settings neither reads nor writes any.
    const std::string home =
        arguments.direct() ? std::string() : posix_.drives().fromNative(settingsDirectory());
    return {"", home, COFFRELUNE_VERSION_MAJOR, COFFRELUNE_VERSION_MINOR};
}

}  // namespace coffrelune::console
