// The run of a backup or a restore: its passes over the lines, in their order.
#include <algorithm>

#include "operation/copie.h"
#include "operation/line_texts.h"
#include "system/date_time.h"

namespace coffrelune {

void Copie::LanceCopie() {
    statistics_.askBeforeReplacing = system_.Confirmation != 1 && !statistics_.unattended;
    statistics_.baselineTime =
        static_cast<std::int32_t>(secondsSinceMidnight(system_.platform.clock.now()));
    statistics_.totalBytes = 0;
    if (system_.options.ArbreMode != 0) {
        // The option itself is the engine's tree flag: the pass below walks in tree mode.
        showTreePhase();
    } else {
        readExclusions();
        CopieArborescence();
        if (mayDeleteExcess() && !statistics_.interruptionRequested) EffaceExcedents();
        statistics_.totalBytes = 0;
        startAnalysis();
    }
    runPendingEvents();
    analyseLines();
    if (!statistics_.interruptionRequested && system_.options.ArbreMode == 0 && prepareCopy()) {
        copyLines();
    }
    endRun();
}

void Copie::CopieArborescence() {
    showTreePhase();
    system_.options.ArbreMode = -1;
    for (int line = 0; line < host_.lineCount() && !statistics_.interruptionRequested; ++line) {
        if (takesPart(line)) walkLine(line, true);
    }
    system_.options.ArbreMode = 0;
}

void Copie::showTreePhase() {
    ProgBar.setIndeterminate(true);
    Lbl[1].setCaption("Copie de l'arborescence...");
    Lbl[3].setCaption("Aucun répertoire créé");
    statistics_.directoriesRead = 0;
    statistics_.directoriesCreated = 0;
}

// Each line is cleaned with the exclusion list that was loaded last, that of the last line of the
// tree pass, and with its own.
void Copie::EffaceExcedents() {
    ProgBar.setIndeterminate(true);
    statistics_.filesDeleted = 0;
    Lbl[1].setCaption("Effacement des fichiers excédentaires...");
    Lbl[3].setCaption("Analyse des fichiers excédentaires sur la destination");
    statistics_.directoriesRead = 0;
    statistics_.directoriesCreated = 0;
    statistics_.deletionWalk = true;
    for (int line = 0; line < host_.lineCount() && !statistics_.interruptionRequested; ++line) {
        if (!takesPart(line)) continue;
        statistics_.ownExclusions = ownExclusions_[static_cast<std::size_t>(line)];
        statistics_.currentLine = line;
        engine_.cleanLine(rootsOfLine(system_, line), rootsOfOthers(line));
    }
    statistics_.deletionWalk = false;
}

// Who keeps existing files wants none of them deleted, and without the settings nobody knows what
// the lines leave out.
bool Copie::mayDeleteExcess() {
    return system_.options.SynchroCopie != 0 && !statistics_.keepExisting &&
           (system_.homeDirectory.empty() || system_.settingsStatus().ok());
}

// Read before anything is written: a restore may bring back an older settings file in the middle of
// the run, and the deletion must keep to the lists that the run began with.
void Copie::readExclusions() {
    ownExclusions_.clear();
    for (int line = 0; line < host_.lineCount(); ++line) {
        system_.LoadExclusions(line);
        ownExclusions_.push_back(system_.exclusions);
    }
}

// Both ways of every other line: a restore must not empty another line's source, nor its copy.
std::vector<LineRoots> Copie::rootsOfOthers(int line) const {
    std::vector<LineRoots> others;
    for (int other = 0; other < host_.lineCount(); ++other) {
        const auto index = static_cast<std::size_t>(other);
        if (other == line || system_.sources[index].empty() ||
            system_.destinations[index].empty()) {
            continue;
        }
        others.push_back(rootsOfLine(system_, other));
    }
    return others;
}

void Copie::startAnalysis() {
    if (statistics_.interruptionRequested) return;
    ProgBar.setIndeterminate(true);
    AnalyseChk.setVisible(true);
    Lbl[1].setCaption("Analyse de la copie...");
    Lbl[3].setCaption("Analyse de :");
}

void Copie::analyseLines() {
    for (int line = 0; line < host_.lineCount() && !statistics_.interruptionRequested; ++line) {
        if (!takesPart(line)) continue;
        walkLine(line, true);
        if (system_.options.ArbreMode == 0) markAnalysed(line);
    }
}

// A backup has a line marked before anything of it is copied, with the lines that come later: who
// stops the run, or whatever ends it, may never let it come to them. What could not be read is not
// in the copy either, nor is an empty file of a run that finds no bytes to copy.
void Copie::markAnalysed(int line) {
    const LineTally& tally = statistics_.tallies[static_cast<std::size_t>(line)];
    if (backsUp() && (hasErrors(line) || tally.filesToCopy > 0)) {
        mark(line);
    } else if (!statistics_.interruptionRequested && nothingToCopy(line)) {
        unmark(line);
    }
}

// A restore marks what it is about to bring back: until it has, the copy alone holds it.
void Copie::markRestored() {
    if (backsUp()) return;
    for (int line = 0; line < host_.lineCount(); ++line) {
        if (takesPart(line) && !nothingToCopy(line)) mark(line);
    }
}

// A mark that cannot be stored does not keep files from being saved; the settings tell it.
void Copie::mark(int line) {
    (void)UnfinishedCopies(system_, writtenKind()).add(rootsOfLine(system_, line).target);
}

void Copie::unmark(int line) {
    UnfinishedCopies(system_, writtenKind()).remove(rootsOfLine(system_, line).target);
}

UnfinishedCopies::Kind Copie::writtenKind() const {
    return backsUp() ? UnfinishedCopies::Kind::copies : UnfinishedCopies::Kind::originals;
}

bool Copie::backsUp() const {
    return system_.operationKind == OperationKind::backup;
}

// Empty files alone are brought back by no restore: they must not keep a line marked for ever.
bool Copie::nothingToCopy(int line) const {
    const LineTally& tally = statistics_.tallies[static_cast<std::size_t>(line)];
    const bool none = backsUp() ? tally.filesToCopy == 0 : tally.bytesToCopy == 0;
    return none && !tally.sourceMissing && !hasErrors(line);
}

// Errors that leave the line's tree incomplete.
bool Copie::hasErrors(int line) const {
    const LineRoots roots = rootsOfLine(system_, line);
    return std::any_of(
        statistics_.errors.begin(), statistics_.errors.end(), [&](const CopyError& error) {
            return error.line == line && !ExcessWalk::saysUnfinishedReference(error, roots);
        });
}

// False when there is nothing to copy. The test is on the bytes, not on the files: a run whose only
// candidates are empty files copies nothing.
bool Copie::prepareCopy() {
    ProgBar.setIndeterminate(false);
    ProgBar.setValue(0);
    AnalyseChk.setVisible(false);
    Lbl[2].setCaption("Temps restant: Calcul en cours ...");
    Lbl[4].setCaption("");
    statistics_.baselineTime =
        static_cast<std::int32_t>(secondsSinceMidnight(system_.platform.clock.now()));
    statistics_.bytesDone = 0;
    statistics_.bytesAtBaseline = 0;
    return statistics_.totalBytes > 0 && !statistics_.interruptionRequested;
}

void Copie::copyLines() {
    markRestored();
    for (int line = 0; line < host_.lineCount(); ++line) {
        if (!takesPart(line)) continue;
        statistics_.copyPassStarted = true;
        walkLine(line, false);
        if (statistics_.interruptionRequested) return;
        // Complete from here on, and fit to tell what is too much on the other side.
        if (!hasErrors(line)) unmark(line);
        host_.showLineDone(line, true);
        runPendingEvents();
    }
}

void Copie::endRun() {
    const std::int64_t elapsed =
        toMilliseconds(system_.platform.clock.now()) - toMilliseconds(startTime_);
    system_.duration = formatDuration(elapsed);
    if (statistics_.errorCount == 0 || system_.AutoMode) {
        unload();
        return;
    }
    finished_ = true;
    AjouteECTxt("Fin de la " + caption() + " " + std::to_string(statistics_.errorCount) +
                " erreur(s).");
    AjouteECTxt("Durée de la " + caption() + " : " + system_.duration);
    Cmd.setCaption("Fermer");
    Cmd.setEnabled(true);
}

bool Copie::takesPart(int line) const {
    return host_.lineSelected(line) && !host_.lineSource(line).empty() &&
           !host_.lineDestination(line).empty();
}

void Copie::walkLine(int line, bool analysisPass) {
    system_.LoadExclusions(line);
    statistics_.exclusions = system_.exclusions;
    statistics_.currentLine = line;
    engine_.walkLine(rootsOfLine(system_, line), analysisPass);
}

}  // namespace coffrelune
