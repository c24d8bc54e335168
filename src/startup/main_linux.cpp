// The desktop program on Linux. Without a display "/Auto" runs in the terminal; everything else is
// told where to go.
#include <cstdlib>

#include "mainwindow/main_form.h"
#include "platform/out_of_memory.h"
#include "platform/posix/desktop/posix_desktop.h"
#include "platform/posix/posix_platform.h"
#include "startup/startup.h"
#include "views/terminal/terminal_windows.h"
#include "views/wx/wx_program.h"

namespace coffrelune {
namespace {

// The arguments as one text, as the command-line rules expect them.
std::string commandLineText(int count, char** values) {
    std::string text;
    for (int i = 1; i < count; ++i) text += (i > 1 ? " " : "") + std::string(values[i]);
    return text;
}

PosixOptions posixOptions() {
    PosixOptions options;
    options.settingsDirectory = settingsDirectory();
    return options;
}

const char* variable(const char* name) {
    return std::getenv(name);
}

class Program {
  public:
    explicit Program(std::string commandLine)
        : posix_(posixOptions()),
          desktop_(posix_.driveTable(), DesktopOptions::fromEnvironment(variable)),
          context_{std::move(commandLine),
                   posix_.drives().fromNative(settingsDirectory()),
                   COFFRELUNE_VERSION_MAJOR,
                   COFFRELUNE_VERSION_MINOR,
                   posix_.drives().fromNative(executablePath()),
                   newestSystemLevel} {}

    ExitStatus run() {
        WxProgram toolkit(wxServices());
        return hasDisplay() && toolkit.start() ? runWindows(toolkit.windows()) : runInTerminal();
    }

  private:
    static bool hasDisplay() {
        return std::getenv("DISPLAY") != nullptr || std::getenv("WAYLAND_DISPLAY") != nullptr;
    }

    WxServices wxServices() {
        constexpr int allFiles = 2;  // programs bear no extension here
        return {posix_.files(),
                posix_.clock(),
                desktop_.desktop().driveInformation,
                [this](const std::string& path) { return toNative(path); },
                [this](const std::string& path) { return posix_.drives().fromNative(path); },
                allFiles};
    }

    std::string toNative(const std::string& path) {
        Place place;
        return posix_.driveTable().paths().locate(path, place).ok() ? place.native : std::string();
    }

    Platform platform(WindowService& windows, SoundService& sounds) {
        return {posix_.files(), posix_.drives(), posix_.clock(), posix_.locale(),
                posix_.ansi(),  sounds,          windows};
    }

    ExitStatus runWindows(WindowService& windows) {
        Platform services = platform(windows, desktop_.sounds());
        SystemMod system(services, context_);
        if (!startUp(system, posix_.guard())) return ExitStatus::interrupted;
        Desktop desktop = desktop_.desktop();
        MainForm form(system, desktop);
        windows.showModal(form);
        return form.autoStatus().value_or(ExitStatus::clean);
    }

    ExitStatus runInTerminal() {
        Terminal terminal(false);
        InterruptSignals signals(posix_.files());
        TerminalWindows windows(terminal, posix_.clock(), signals, false);
        Platform services = platform(windows, posix_.sounds());
        SystemMod system(services, context_);
        if (!startUp(system, posix_.guard())) return ExitStatus::interrupted;
        if (!system.AutoMode) {
            windows.notice(
                "Aucun affichage n'est disponible : utilisez coffrelune-console, ou "
                "« coffrelune /Auto » pour une sauvegarde sans surveillance.");
            return ExitStatus::wrongUse;
        }
        const ExitStatus status = runAuto(system, windows);
        rememberConfiguration(system);
        return status;
    }

    PosixPlatform posix_;
    PosixDesktop desktop_;
    ProgramContext context_;
};

}  // namespace
}  // namespace coffrelune

int main(int count, char** values) {
    using namespace coffrelune;
    endWhenMemoryEnds();
    return static_cast<int>(Program(commandLineText(count, values)).run());
}
