#include "console/session.h"

#include "console/json_report.h"

namespace coffrelune::console {

Session::Session(const Arguments& arguments)
    : terminal_(arguments.json),
      native_(makeNativePlatform()),
      signals_(native_.files()),
      windows_(terminal_, native_.clock(), signals_, arguments.journal),
      platform_{native_.files(), native_.drives(), native_.clock(), native_.locale(),
                native_.ansi(),  native_.sounds(), windows_},
      system_(platform_, context(arguments)) {
    if (arguments.progress) {
        windows_.tellProgress(
            [this](const RunProgress& progress) { terminal_.warn(progressAsJson(progress)); });
    }
    system_.tellWriteFailure([this](const std::string& text) { windows_.notice(text); });
}

ProgramContext Session::context(const Arguments& arguments) {
    // A run without settings neither reads nor writes any.
    const std::string home =
        arguments.direct() ? std::string() : native_.drives().fromNative(settingsPlace());
    return {"",
            home,
            COFFRELUNE_VERSION_MAJOR,
            COFFRELUNE_VERSION_MINOR,
            std::string(),
            nativeSystemLevel()};
}

}  // namespace coffrelune::console
