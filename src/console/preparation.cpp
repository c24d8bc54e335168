#include "console/preparation.h"

#include "platform/native/native_platform.h"
#include "startup/startup.h"
#include "system/paths.h"
#include "system/text.h"

namespace coffrelune::console {
namespace {

// A directory missing there is a volume that is not plugged in, and making it would fill the system
// disk.
bool liesWhereVolumesAre(const std::string& path) {
    for (const std::string& place : volumePlaces()) {
        if (path.rfind(place, 0) == 0) return true;
    }
    return false;
}

// A person who names a new directory on the command line means it to be made.
void createDestination(Session& session, const std::string& path) {
    FileService& files = session.system().platform.files;
    FileEntry entry;
    if (files.lookUp(path, LinkRule::follow, entry).ok() || liesWhereVolumesAre(path)) return;
    if (files.createDirectory(path, DirectoryAccess::usual).ok()) {
        session.terminal().say("Répertoire destination créé : " + visibleControls(path));
    }
}

bool sourceExists(Session& session, const std::string& source) {
    FileEntry entry;
    return isDriveRoot(source) ||
           session.system().platform.files.lookUp(source, LinkRule::follow, entry).ok();
}

// One line without the settings file: only what changed is copied, and an error does not keep the
// rest from being saved.
bool prepareDirectRun(Session& session, const Arguments& arguments) {
    SystemMod& system = session.system();
    DriveService& drives = system.platform.drives;
    const std::string source = drives.fromNative(arguments.source);
    const std::string destination = drives.fromNative(arguments.destination);
    // A restore is there to bring back a source that is gone; a list tells of the copy alone.
    const bool readsSource =
        arguments.command == Command::backup ||
        (arguments.command != Command::restore && !arguments.reversed && arguments.hashes.empty());
    if (readsSource && !sourceExists(session, source)) {
        session.terminal().warn("La source « " + visibleControls(arguments.source) +
                                " » n'existe pas ou ne peut pas être lue.");
        return false;
    }
    if (arguments.command == Command::backup) createDestination(session, destination);
    system.resizeLines(0);
    system.lines[0] = {source, destination, 1};
    system.Modifie = 1;
    system.options.ContinueOnError = -1;
    return true;
}

bool prepareConfiguredRun(Session& session, const Arguments& arguments, ExitStatus& refusal) {
    SystemMod& system = session.system();
    // Set before the settings are loaded, as a name on the command line would be.
    system.configurationName = ProperCase(arguments.configuration);
    if (!startUp(system, session.guard())) {
        refusal = ExitStatus::interrupted;
        return false;
    }
    return settingsUsable(system);
}

}  // namespace

bool prepare(Session& session, const Arguments& arguments, ExitStatus& refusal) {
    refusal = ExitStatus::wrongUse;
    const bool ready = arguments.direct() ? prepareDirectRun(session, arguments)
                                          : prepareConfiguredRun(session, arguments, refusal);
    if (arguments.roundedDates) session.system().options.DatesArrondies = -1;
    return ready;
}

bool prepareReading(Session& session, const Arguments& arguments, ExitStatus& refusal) {
    SystemMod& system = session.system();
    system.configurationName = ProperCase(arguments.configuration);
    system.LoadSettings();
    refusal = ExitStatus::wrongUse;
    return settingsReadable(system);
}

bool prepareEditing(Session& session, const Arguments& arguments, ExitStatus& refusal) {
    SystemMod& system = session.system();
    system.configurationName = ProperCase(arguments.configuration);
    refusal = ExitStatus::interrupted;
    if (!startUp(system, session.guard())) return false;
    refusal = ExitStatus::wrongUse;
    return settingsReadable(system);
}

bool mayReplace(Session& session, const Arguments& arguments) {
    if (arguments.overwrite) session.system().Confirmation = 1;
    if (session.terminal().canAsk()) return true;
    if (session.system().options.ArbreMode != 0) {
        if (arguments.confirmed) return true;
        session.terminal().warn(
            "Seule l'arborescence des répertoires serait copiée, ce qui demande une confirmation,\n"
            "et il n'y a pas de terminal pour répondre. Ajoutez --confirmer pour la copier.");
        return false;
    }
    if (session.system().Confirmation == 1 || arguments.keep) return true;
    session.terminal().warn(
        "Cette opération demanderait avant de remplacer un fichier, et il n'y a pas de terminal\n"
        "pour répondre. Ajoutez --ecraser pour remplacer les fichiers existants, ou --conserver\n"
        "pour les garder.");
    return false;
}

}  // namespace coffrelune::console
