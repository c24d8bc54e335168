#include "startup/startup.h"

#include "operation/lance_operation.h"
#include "operation/shared_host.h"

namespace coffrelune {

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

ExitStatus runAuto(SystemMod& system) {
    system.tellWriteFailure(
        [&system](const std::string& text) { system.platform.windows.notice(text); });
    SharedHost host(system);
    OperationLauncher launcher(system, host);
    return runUnattended(system, launcher);
}

void rememberConfiguration(SystemMod& system) {
    system.rememberConfiguration();
}

}  // namespace coffrelune
