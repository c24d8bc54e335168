#include "startup/startup.h"

#include "operation/lance_operation.h"
#include "operation/shared_host.h"

namespace coffrelune {

bool startUp(SystemMod& system, InstanceGuard& guard) {
    if (!guard.claim(system.homeDirectory)) {
        (void)system.platform.windows.showMessage(
            {"LE PROGRAMME EST DEJA EN MEMOIRE !\r\n"
             "     (Regardez la barre des taches)",
             system.programTitle, MessageIcon::exclamation});
        return false;
    }
    // What a process left that was killed while it wrote its settings.
    (void)system.platform.files.removeLeftovers(system.homeDirectory);
    system.LoadSettings();
    return true;
}

ExitStatus runAuto(SystemMod& system) {
    if (!settingsUsable(system)) return ExitStatus::wrongUse;
    SharedHost host(system);
    OperationLauncher launcher(system, host);
    const RunEnd end = launcher.LanceOperation(0);
    reportErrors(system, launcher.statistics());
    return exitStatus(end, launcher.statistics());
}

void rememberConfiguration(SystemMod& system) {
    if (!system.configurationExists(system.configurationName)) return;
    // A settings file that cannot be written keeps the name it had.
    (void)system.WriteSetting("Position", "Config", system.configurationName);
}

}  // namespace coffrelune
