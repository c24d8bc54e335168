#include "startup/startup.h"

#include "operation/lance_operation.h"

namespace coffrelune {
namespace {

constexpr const char* blanks = " \t";

// The program's name ends at its closing quote, or at the first blank when it has none.
std::string::size_type endOfName(const std::string& text) {
    if (text.empty() || text[0] != '"') return text.find_first_of(blanks);
    const auto quote = text.find('"', 1);
    return quote == std::string::npos ? quote : quote + 1;
}

}  // namespace

std::string argumentText(const std::string& commandLine) {
    const auto end = endOfName(commandLine);
    if (end == std::string::npos) return {};
    const auto begin = commandLine.find_first_not_of(blanks, end);
    if (begin == std::string::npos) return {};
    std::string text = commandLine.substr(begin);
    for (auto first = text.find('"'); first != std::string::npos;) {
        const auto second = text.find('"', first + 1);
        if (second == std::string::npos) break;
        text.erase(second, 1);
        text.erase(first, 1);
        first = text.find('"', second - 1);
    }
    return text;
}

bool startUp(SystemMod& system, InstanceGuard& guard) {
    if (!guard.claim(system.homeDirectory)) {
        const std::string text =
            "LE PROGRAMME EST DEJA EN MEMOIRE !\r\n"
            "     (Regardez la barre des taches)";
        WindowService& windows = system.platform.windows;
        // Nobody is there to close a message box of an unattended run: it would wait for ever.
        if (system.asksForAuto()) {
            windows.notice(text);
        } else {
            (void)windows.showMessage({text, system.programTitle, MessageIcon::exclamation});
        }
        return false;
    }
    // What a process left that was killed while it wrote its settings.
    (void)system.platform.files.removeLeftovers(system.homeDirectory);
    system.LoadSettings();
    return true;
}

ExitStatus runAuto(SystemMod& system, OperationStage& stage) {
    system.tellWriteFailure(
        [&system](const std::string& text) { system.platform.windows.notice(text); });
    SharedHost host;
    OperationLauncher launcher(system, host, stage);
    return runUnattended(system, launcher);
}

void rememberConfiguration(SystemMod& system) {
    system.rememberConfiguration();
}

}  // namespace coffrelune
