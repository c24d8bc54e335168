// The desktop program on a system without a display: "/Auto" runs, everything else is told where to
// go.
#include "platform/posix/posix_platform.h"
#include "platform/posix/program_place.h"
#include "platform/terminal/terminal_windows.h"
#include "startup/startup.h"

namespace {

// The arguments as one text, as the command-line rules expect them.
std::string commandLineText(int count, char** values) {
    std::string text;
    for (int i = 1; i < count; ++i) text += (i > 1 ? " " : "") + std::string(values[i]);
    return text;
}

coffrelune::PosixOptions posixOptions() {
    coffrelune::PosixOptions options;
    options.settingsDirectory = coffrelune::settingsDirectory();
    return options;
}

}  // namespace

int main(int count, char** values) {
    using namespace coffrelune;
    PosixPlatform posix(posixOptions());
    Terminal terminal(false);
    InterruptSignals signals(posix.files());
    TerminalWindows windows(terminal, posix.clock(), signals, false);
    Platform platform{posix.files(), posix.drives(), posix.clock(), posix.locale(),
                      posix.ansi(),  posix.sounds(), windows};
    SystemMod system(
        platform, {commandLineText(count, values), posix.drives().fromNative(settingsDirectory()),
                   COFFRELUNE_VERSION_MAJOR, COFFRELUNE_VERSION_MINOR});
    if (!startUp(system, posix.guard())) return static_cast<int>(ExitStatus::interrupted);
    if (!system.AutoMode) {
        windows.notice(
            "Aucun affichage n'est disponible. Utilisez coffrelune-console, ou « coffrelune /Auto »"
            " pour\nune sauvegarde sans surveillance.");
        return static_cast<int>(ExitStatus::wrongUse);
    }
    const ExitStatus status = runAuto(system);
    rememberConfiguration(system);
    return static_cast<int>(status);
}
