#include "operation/lance_operation.h"

#include "operation/errors.h"
#include "operation/line_texts.h"
#include "operation/results.h"
#include "system/sounds.h"

namespace coffrelune {

OperationLauncher::OperationLauncher(SystemMod& system, OperationHost& host, OperationStage& stage)
    : system_(system), host_(host), stage_(stage) {}

RunEnd OperationLauncher::LanceOperation(RunMode mode) {
    host_.setTimerEnabled(false);
    host_.setLaunchEnabled(false);
    RunEnd end = RunEnd::cancelled;
    if (confirmTreeOnly(mode)) {
        end = run(mode);
        for (int line = 0; line <= system_.maximumIndex; ++line) host_.showLineDone(line, false);
    }
    host_.setLaunchEnabled(true);
    host_.setTimerEnabled(system_.AutoSave == 1);
    return end;
}

RunEnd OperationLauncher::run(RunMode mode) {
    if (system_.operationKind == OperationKind::backup) tellSharedCopies();
    showOperation(mode, 0);
    tellDeletions();
    const bool interrupted = control_.interruptionRequested;
    if (statistics_.copyPassStarted) {
        report(mode, interrupted);
    } else {
        reportNothing(mode);
    }
    const bool ran = statistics_.copyPassStarted || system_.options.ArbreMode != 0;
    RunEnd end = ran ? RunEnd::finished : RunEnd::nothing;
    if (interrupted) end = RunEnd::interrupted;
    noteGoodBackup(system_, statistics_, end);
    return end;
}

// Both lines may be meant so, and files of different names lie well side by side: it is said, and
// the backup runs.
void OperationLauncher::tellSharedCopies() {
    for (const std::string& text : sharedCopies(system_)) {
        if (toldCopies_.insert(text).second) system_.platform.windows.notice(text);
    }
}

// No message of the end speaks of what was deleted.
void OperationLauncher::tellDeletions() {
    if (statistics_.filesRemoved == 0) return;
    const bool restores = system_.operationKind == OperationKind::restore;
    system_.platform.windows.notice(
        (restores ? "La restauration a effacé " : "La sauvegarde a effacé de la copie ") +
        std::to_string(statistics_.filesRemoved) + " fichier(s) excédentaire(s).");
}

void OperationLauncher::showOperation(RunMode mode, std::int32_t errorCount,
                                      ContentReader* contents, HashWork* hashes) {
    RunSwitches switches;
    switches.contents = contents;
    switches.hashes = hashes;
    switches.record = record_;
    switches.unattended = mode != RunMode::startedByUser;
    switches.keepExisting = keepExisting_;
    switches.acceptOriginal = acceptOriginal_ && system_.operationKind == OperationKind::backup;
    if (system_.operationKind != OperationKind::comparison) forgetAcceptance();
    Operation operation(system_, switches, errorCount);
    stage_.show(operation, host_);
    statistics_ = operation.statistics();
    control_ = operation.control();
    system_.errorCount = statistics_.errorCount;
}

bool OperationLauncher::confirmRestore() {
    for (const char* question : {"Confirmez-vous la restauration des fichiers ?",
                                 "Vous êtes bien sûr de vous ?\n(Restauration des fichiers)"}) {
        const Answer answer = system_.platform.windows.showMessage(
            {question, system_.programTitle, MessageIcon::question, MessageButtons::okCancel,
             true});
        if (answer != Answer::ok) return false;
    }
    return true;
}

RunEnd OperationLauncher::launchComparison() {
    host_.setLaunchEnabled(false);
    // The error count alone is kept: that of the run before, for an interrupted comparison.
    showOperation(RunMode::startedByUser, statistics_.errorCount);
    // What could not be read was not compared either: no clean result.
    StoreResult(system_, host_, statistics_.errorCount == 0 && statistics_.errors.empty());
    host_.setLaunchEnabled(true);
    return control_.interruptionRequested ? RunEnd::interrupted : RunEnd::finished;
}

RunEnd OperationLauncher::launchVerification(ContentReader& contents) {
    showOperation(RunMode::startedByUser, 0, &contents);
    return control_.interruptionRequested ? RunEnd::interrupted : RunEnd::finished;
}

RunEnd OperationLauncher::launchHashing(ContentReader& contents, HashWork& work) {
    showOperation(RunMode::startedByUser, 0, &contents, &work);
    return control_.interruptionRequested ? RunEnd::interrupted : RunEnd::finished;
}

bool OperationLauncher::confirmTreeOnly(RunMode mode) {
    if (confirmed_ || mode != RunMode::startedByUser || system_.options.ArbreMode == 0) return true;
    const Answer answer = system_.platform.windows.showMessage(
        {"Seule l'arborescence des répertoires sera copiée sur le disque destination.\n"
         "Confirmez-vous la copie ?",
         system_.programTitle, MessageIcon::question, MessageButtons::okCancel});
    return answer == Answer::ok;
}

// Also the path of a run that was interrupted before its copy pass: nothing has been copied then,
// and the cause, when one is known, is told with it.
void OperationLauncher::reportNothing(RunMode mode) {
    const bool treeOnly = system_.options.ArbreMode != 0;
    const std::string cause = errorCause(control_.lastErrorNumber, control_.sharingPath);
    std::string text = treeOnly                                          ? treeMessage()
                       : system_.operationKind == OperationKind::restore ? "Rien à restaurer !"
                                                                         : "Rien à sauvegarder !";
    if (!cause.empty()) text += "\n\n" + cause;
    // A copy whose every directory is refused never begins: without the count, it would look done.
    const bool errors = statistics_.errorCount > 0;
    if (errors) text += "\n\nNombre d'erreur(s): " + std::to_string(statistics_.errorCount);
    const bool trouble = errors || !cause.empty();
    if (mode == RunMode::startedByUser || trouble) say(mode, text, treeOnly);
}

std::string OperationLauncher::treeMessage() const {
    return "Copie de l'arborescence terminée !\n\n" + std::to_string(statistics_.directoriesRead) +
           " répertoire(s) lu(s), " + std::to_string(statistics_.directoriesCreated) +
           " répertoire(s) créé(s).";
}

void OperationLauncher::report(RunMode mode, bool interrupted) {
    if (!interrupted) StoreResult(system_, host_, statistics_.errorCount == 0);
    playEndSound(mode);
    const bool trouble = interrupted || statistics_.errorCount > 0;
    if (mode == RunMode::startedByUser || trouble) {
        say(mode, interrupted ? interruptedMessage() : finishedMessage(), true);
    }
}

std::string OperationLauncher::interruptedMessage() const {
    // A restore never tells the cause: what it was restoring is still in the backup.
    if (system_.operationKind == OperationKind::restore) return "Restauration interrompue !";
    return "Sauvegarde interrompue !\n\n" +
           errorCause(control_.lastErrorNumber, control_.sharingPath);
}

std::string OperationLauncher::finishedMessage() const {
    std::string text = system_.operationKind == OperationKind::restore ? "Restauration terminée"
                                                                       : "Sauvegarde terminée";
    text += statistics_.errorCount == 0
                ? " sans erreur."
                : ", nombre d'erreur(s): " + std::to_string(statistics_.errorCount);
    return text + "\r\n\r\nDurée : " + system_.duration;
}

// The success sound whatever happened: it says that the run is over, the message says how.
void OperationLauncher::playEndSound(RunMode mode) {
    if (mode != RunMode::startedByUser || system_.options.SignalSonore == 0) return;
    playEndOfCopySound(system_.platform.sounds, system_.platform.files, system_.homeDirectory,
                       system_.soundNames[0]);
}

// Nobody reads a box of an unattended run: it would keep the program waiting for ever.
void OperationLauncher::say(RunMode mode, const std::string& text, bool information) {
    if (mode != RunMode::startedByUser) {
        system_.platform.windows.notice(text);
        return;
    }
    (void)system_.platform.windows.showMessage(
        {text, system_.programTitle,
         information ? MessageIcon::information : MessageIcon::exclamation});
}

}  // namespace coffrelune
