#include "operation/backup_run.h"

#include <algorithm>

#include "system/date_time.h"

namespace coffrelune {

BackupRun::BackupRun(RunState& run)
    : run_(run), errors_(run), engine_(run, errors_), excess_(run, errors_) {}

void BackupRun::LanceCopie() {
    const bool treeOnly = run_.system.options.ArbreMode != 0;
    begin();
    CopieArborescence();
    if (!treeOnly) {
        if (mayDeleteExcess(run_) && !run_.stopped()) EffaceExcedents();
        run_.statistics.totalBytes = 0;
        startAnalysis();
        run_.display.runPendingEvents();
        analyseLines();
        if (!run_.stopped() && prepareCopy()) copyLines();
    }
    conclude();
    // What is written after the run, settings and error lists, may lie below the held trees.
    lines_.clear();
    destinations_.clear();
}

void BackupRun::begin() {
    run_.control.askBeforeReplacing = run_.system.Confirmation != 1 && !run_.switches.unattended;
    run_.statistics.baselineTime =
        static_cast<std::int32_t>(secondsSinceMidnight(run_.system.platform.clock.now()));
    run_.statistics.totalBytes = 0;
    for (RunLine& line : selectedLines(run_.system)) {
        const std::string& destination = line.roots.destination;
        if (line.roots.layout == Layout::normal && !destinations_.contains(destination)) {
            // One that is not there is told by the pass that looks for it.
            (void)run_.files().hold(destination, destinations_[destination]);
        }
        lines_.push_back(std::make_unique<LineTrees>(run_, errors_, std::move(line)));
    }
    for (const auto& line : lines_) examine(*line);
}

// All lines before the first is changed: a line may read what another one writes.
void BackupRun::examine(LineTrees& line) {
    errors_.startLine(line.line().index);
    if (!line.take()) return;
    if (run_.switches.acceptOriginal) {
        const Status accepted = line.accept();
        if (!accepted.ok()) errors_.unread(accepted.code(), line.roots().source);
    }
    if (mayDeleteExcess(run_)) excess_.prepare(line);
}

void BackupRun::CopieArborescence() {
    run_.display.showPhase("Copie de l'arborescence...", "Aucun répertoire créé");
    run_.statistics.directoriesRead = 0;
    run_.statistics.directoriesCreated = 0;
    run_.display.runPendingEvents();
    for (const auto& line : lines_) {
        if (run_.stopped()) return;
        engine_.walkLine(*line, Pass::tree);
    }
}

// Each line is cleaned with the exclusions that were loaded last, those of the last line of the
// tree pass, and with its own.
void BackupRun::EffaceExcedents() {
    run_.display.showPhase("Effacement des fichiers excédentaires...",
                           "Analyse des fichiers excédentaires sur la destination");
    run_.statistics.filesDeleted = 0;
    run_.statistics.directoriesRead = 0;
    run_.statistics.directoriesCreated = 0;
    excess_.protect(filledLines(run_.system));
    for (const auto& line : lines_) {
        if (run_.stopped()) return;
        errors_.startLine(line->line().index);
        const bool madeRoom = excess_.cleanLine(*line, lines_.back()->line().exclusions);
        if (madeRoom && !run_.stopped()) engine_.walkLine(*line, Pass::tree);
    }
}

void BackupRun::startAnalysis() {
    if (run_.stopped()) return;
    run_.display.showPhase("Analyse de la copie...", "Analyse de :");
    run_.display.offerAnalysisDetail();
}

void BackupRun::analyseLines() {
    for (const auto& line : lines_) {
        if (run_.stopped()) return;
        engine_.walkLine(*line, Pass::analysis);
        const LineTally& tally = run_.tally(line->line().index);
        // Empty files alone are brought back by no restore: its mark would stay for ever.
        const std::uint64_t lacking = line->backsUp() ? tally.filesToCopy : tally.bytesToCopy;
        const bool lacksNothing = lacking == 0 && !tally.incomplete && !tally.sourceMissing;
        if (!lacksNothing) line->leaveOpen();
        if (lacksNothing && !run_.stopped()) settled_.insert(line->line().index);
    }
}

// False when there is nothing to copy. The test is on the bytes, not on the files: a run whose only
// candidates are empty files copies nothing.
bool BackupRun::prepareCopy() {
    run_.display.showCopyPhase("Temps restant: Calcul en cours ...");
    RunStatistics& statistics = run_.statistics;
    statistics.baselineTime =
        static_cast<std::int32_t>(secondsSinceMidnight(run_.system.platform.clock.now()));
    statistics.bytesDone = 0;
    statistics.bytesAtBaseline = 0;
    return statistics.totalBytes > 0 && !run_.stopped();
}

void BackupRun::copyLines() {
    for (const auto& line : lines_) {
        const int index = line->line().index;
        run_.statistics.copyPassStarted = true;
        engine_.walkLine(*line, Pass::copy);
        if (run_.stopped()) return;
        if (!run_.tally(index).incomplete && !run_.tally(index).sourceMissing) {
            settled_.insert(index);
        }
        run_.display.showLineDone(index);
        run_.display.runPendingEvents();
    }
}

// The trees say that a line is complete only when everything is on the disk.
void BackupRun::conclude() {
    Lines done;
    for (const auto& line : lines_) {
        const int index = line->line().index;
        if (line->mustConclude(settled_.contains(index) && !run_.tally(index).incomplete)) {
            done.push_back(line.get());
        }
    }
    flushVolumes(done);
    std::erase_if(done, [&](LineTrees* line) {
        const Status concluded = line->conclude();
        // What was copied is there; only a deletion will have to wait for a better day.
        if (!concluded.ok()) {
            run_.display.AjouteECTxt("La fin de l'opération n'a pas pu être notée dans " +
                                     line->roots().target + " (erreur " +
                                     std::to_string(concluded.code()) + ").");
        }
        return !concluded.ok();
    });
    flushVolumes(done);
}

// Each volume once. Lines whose volume may not hold what was written are errors, and leave the
// list.
void BackupRun::flushVolumes(Lines& lines) {
    std::map<std::string, std::uint32_t> flushed;  // error numbers by volume
    std::erase_if(lines, [&](LineTrees* line) {
        const std::string volume = line->writtenVolume();
        const auto known = flushed.find(volume);
        const bool isKnown = !volume.empty() && known != flushed.end();
        const std::uint32_t number = isKnown ? known->second : line->flush().code();
        flushed[volume] = number;
        if (number == error_number::none) return false;
        errors_.startLine(line->line().index);
        errors_.failed(number, line->roots().target, line->roots().target);
        return true;
    });
}

}  // namespace coffrelune
