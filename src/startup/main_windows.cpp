// The desktop program on Windows.
#include "mainwindow/main_form.h"
#include "platform/native/native_platform.h"
#include "platform/win32/desktop/win32_desktop.h"
#include "platform/win32/program_place.h"
#include "platform/wx/wx_program.h"
#include "startup/startup.h"

namespace coffrelune {
namespace {

// The arguments as one text, as the command-line rules expect them; quotes round a name with blanks
// are no part of it.
std::string commandLineText(const std::vector<std::string>& arguments) {
    std::string text;
    for (std::size_t i = 1; i < arguments.size(); ++i) text += (i > 1 ? " " : "") + arguments[i];
    return text;
}

ExitStatus run(const std::string& commandLine) {
    const auto samePath = [](const std::string& path) { return path; };
    NativePlatform native;
    Win32Desktop services;
    Desktop desktop = services.desktop();
    WxProgram toolkit(
        {native.clock(), desktop.driveInformation, samePath,
         [&native](const std::string& path) { return native.drives().fromNative(path); }});
    if (!toolkit.start()) return ExitStatus::interrupted;
    Platform platform{native.files(), native.drives(),   native.clock(),   native.locale(),
                      native.ansi(),  services.sounds(), toolkit.windows()};
    SystemMod system(platform, {commandLine, settingsDirectory(), COFFRELUNE_VERSION_MAJOR,
                                COFFRELUNE_VERSION_MINOR, executablePath(), nativeSystemLevel()});
    if (!startUp(system, native.guard())) return ExitStatus::interrupted;
    MainForm form(system, desktop);
    platform.windows.showModal(form);
    return form.autoStatus().value_or(ExitStatus::clean);
}

}  // namespace
}  // namespace coffrelune

int main(int count, char** values) {
    using namespace coffrelune;
    return static_cast<int>(run(commandLineText(programArguments(count, values))));
}
