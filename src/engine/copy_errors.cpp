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

CopyErrors::CopyErrors(SystemMod& system, RunStatistics& statistics, OperationWindow& window)
    : system_(system), statistics_(statistics), window_(window) {}

void CopyErrors::count(std::uint32_t number, const std::string& path,
                       const std::string& directory) {
    name(number, path);
    if (system_.options.ContinueOnError != 0) return;
    statistics_.interruptionRequested = true;
    statistics_.lastErrorNumber = number;
    if (number == error_number::sharingViolation || number == error_number::lockViolation) {
        statistics_.sharingPath = directory;
    }
}

bool CopyErrors::nameOnce(std::uint32_t number, const std::string& directory) {
    const std::string path = inOneSpelling(directory);
    if (!named_.insert(path).second) return false;
    name(number, path);
    return true;
}

void CopyErrors::countOnce(std::uint32_t number, const std::string& directory) {
    const std::string path = inOneSpelling(directory);
    if (named_.insert(path).second) count(number, path, path);
}

void CopyErrors::countOnceInLine(std::uint32_t number, const std::string& directory) {
    const std::string path = inOneSpelling(directory);
    if (namedInLine_.insert({statistics_.currentLine, path}).second) count(number, path, path);
}

void CopyErrors::refuseLine(const std::string& reason, const std::string& source) {
    if (!namedInLine(source)) {
        window_.AjouteECTxt("Ligne " + std::to_string(statistics_.currentLine + 1) +
                            " refusée : " + reason);
    }
    countOnceInLine(error_number::invalidParameter, source);
}

bool CopyErrors::namedInLine(const std::string& directory) const {
    return namedInLine_.count({statistics_.currentLine, inOneSpelling(directory)}) != 0;
}

void CopyErrors::name(std::uint32_t number, const std::string& path) {
    ++statistics_.errorCount;
    if (statistics_.errorCount == 1) window_.MajErreurImg();
    statistics_.errors.push_back({number, path, statistics_.currentLine});
    window_.AjouteECTxt("Erreur: " + std::to_string(number) + " - Fichier: " + path);
    window_.runPendingEvents();
}

}  // namespace coffrelune
