#include "engine/copy_errors.h"

#include "system/paths.h"

namespace coffrelune {
namespace {

// One spelling for each directory, so that every pass counts the same one: without its trailing
// backslash, which a drive root alone keeps.
std::string inOneSpelling(const std::string& directory) {
    const std::string inFull = withTrailingBackslash(directory);
    return isDriveRoot(inFull) ? inFull : withoutTrailingBackslash(inFull);
}

}  // namespace

void CopyErrors::failed(std::uint32_t number, const std::string& path,
                        const std::string& directory) {
    run_.tally(line_).incomplete = true;
    name(number, path);
    stopUnlessContinued(number, directory);
}

void CopyErrors::failedOnce(std::uint32_t number, const std::string& directory) {
    const std::string path = inOneSpelling(directory);
    run_.tally(line_).incomplete = true;
    if (named_.insert(path).second) failed(number, path, path);
}

void CopyErrors::failedInLine(std::uint32_t number, const std::string& directory) {
    const std::string path = inOneSpelling(directory);
    if (namedInLine_.insert({line_, path}).second) failed(number, path, path);
}

bool CopyErrors::hasFailedInLine(const std::string& directory) const {
    return namedInLine_.count({line_, inOneSpelling(directory)}) != 0;
}

void CopyErrors::unread(std::uint32_t number, const std::string& path) {
    run_.tally(line_).incomplete = true;
    if (named_.insert(inOneSpelling(path)).second) name(number, inOneSpelling(path));
}

void CopyErrors::keptExcess(const std::string& reason, std::uint32_t number,
                            const std::string& path) {
    run_.statistics.keptReasons.push_back(reason);
    run_.display.AjouteECTxt(reason);
    if (named_.insert(inOneSpelling(path)).second) name(number, inOneSpelling(path));
}

void CopyErrors::refused(const std::string& reason, std::uint32_t number,
                         const std::string& source) {
    if (hasFailedInLine(source)) return;
    run_.display.AjouteECTxt("Ligne " + std::to_string(line_ + 1) + " refusée : " + reason);
    failedInLine(number, source);
}

void CopyErrors::name(std::uint32_t number, const std::string& path) {
    RunStatistics& statistics = run_.statistics;
    ++statistics.errorCount;
    if (statistics.errorCount == 1) run_.display.MajErreurImg();
    statistics.errors.push_back({number, path, line_});
    run_.record({FileOutcome::failed, line_, path, 0, number});
    run_.display.AjouteECTxt("Erreur: " + std::to_string(number) + " - Fichier: " + path);
    run_.display.runPendingEvents();
}

void CopyErrors::stopUnlessContinued(std::uint32_t number, const std::string& directory) {
    if (run_.system.options.ContinueOnError != 0) return;
    run_.control.interruptionRequested = true;
    run_.control.lastErrorNumber = number;
    if (number == error_number::sharingViolation || number == error_number::lockViolation) {
        run_.control.sharingPath = directory;
    }
}

}  // namespace coffrelune
