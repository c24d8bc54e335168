// The desktop program on Windows.
#include <iostream>

#include "mainwindow/main_form.h"
#include "platform/native/native_platform.h"
#include "platform/out_of_memory.h"
#include "platform/win32/desktop/win32_desktop.h"
#include "platform/win32/win32_platform.h"
#include "startup/startup.h"
#include "views/wx/wx_program.h"

namespace coffrelune {
namespace {

constexpr int allPrograms = 0;     // the first filter of the file chooser: programs bear ".exe"
constexpr int noticeSeconds = 30;  // a window program has no stderr that anybody reads

ExitStatus run(const std::string& commandLine) {
    const auto samePath = [](const std::string& path) { return path; };
    NativePlatform native;
    Win32Desktop services;
    Desktop desktop = services.desktop();
    WxProgram toolkit(
        {native.files(), native.clock(), desktop.driveInformation, samePath,
         [&native](const std::string& path) { return native.drives().fromNative(path); },
         allPrograms, noticeSeconds});
    if (!toolkit.start()) {
        std::cerr << "Aucun affichage n'est disponible : utilisez coffrelune-console.\n";
        return ExitStatus::wrongUse;
    }
    Platform platform{native.files(), native.drives(),   native.clock(),   native.locale(),
                      native.ansi(),  services.sounds(), toolkit.windows()};
    SystemMod system(platform, {commandLine, settingsDirectory(), COFFRELUNE_VERSION_MAJOR,
                                COFFRELUNE_VERSION_MINOR, executablePath(), nativeSystemLevel()});
    if (!startUp(system, native.guard())) return ExitStatus::interrupted;
    MainForm form(system, desktop);
    platform.windows.showModal(form);
    const bool interrupted = toolkit.interruptedBySession();
    return form.autoStatus().value_or(interrupted ? ExitStatus::interrupted : ExitStatus::clean);
}

}  // namespace
}  // namespace coffrelune

int main() {
    using namespace coffrelune;
    endWhenMemoryEnds();
    return static_cast<int>(run(argumentText(rawCommandLine())));
}
