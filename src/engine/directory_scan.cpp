// The files of one directory: what each of them is compared with, and what becomes of it.
#include "engine/copie_mod.h"
#include "engine/exclusion_rules.h"
#include "engine/folded_names.h"
#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {
namespace {

// One entry under two names. The identity that a look-up gives is that of a link itself.
bool isOneEntry(FileService& files, const std::string& a, const std::string& b) {
    FileEntry first;
    FileEntry second;
    if (!files.lookUp(a, LinkRule::refuse, first).ok()) return false;
    if (!files.lookUp(b, LinkRule::refuse, second).ok()) return false;
    if (first.id.known() && second.id.known()) return first.id == second.id;
    const bool known = files.identify(a, first.id).ok() && files.identify(b, second.id).ok();
    return known && first.id.known() && first.id == second.id;
}

}  // namespace

// Two names that differ in their case alone are one name to many volumes: the copy of the second
// would replace that of the first, run after run, and both would count as saved. Asked for names
// that came up again without their case, which is rare, so the source may be listed once more.
bool CopieMod::isTaken(const std::string& name, const Place& place, Wanted kind) {
    FileService& files = system_.platform.files;
    std::unique_ptr<Directory> listing;
    if (!files.openDirectory(place.source, place.links, kind, listing).ok()) return false;
    for (FileEntry other; listing->next(other);) {
        if (other.name == name || !equalIgnoringCase(other.name, name)) continue;
        if (!isOneEntry(files, place.destination + other.name, place.destination + name)) continue;
        errors_.nameOnce(error_number::alreadyExists, place.source + name);
        return true;
    }
    return false;
}

void CopieMod::scanDirectory(Directory& files, Directory* target, const Place& place) {
    FoldedNames handled;
    for (FileEntry entry; files.next(entry);) {
        const bool isWanted = !entry.isDirectory() && !isSystemFile(entry.name);
        if (isWanted && (handled.add(entry.name) || !isTaken(entry.name, place, Wanted::files))) {
            scanFile(entry, target, place);
        }
        window_.runPendingEvents();
        if (stopped()) return;
    }
    if (!files.status().ok()) {
        errors_.countOnce(files.status().code(), withoutTrailingBackslash(place.source));
    }
}

// A failed look-up passes for absence, which is right where everything is replaced anyway. Where
// the user may want a file kept, only the certain absence lets the copy take its name unasked.
bool CopieMod::keepsSome() const {
    return statistics_.askBeforeReplacing || statistics_.keepExisting || decision_.newerOnly;
}

void CopieMod::scanFile(const FileEntry& entry, Directory* target, const Place& place) {
    // Listed, but not to be looked at: its age is unknown, and no rule may take it for up to date.
    if (entry.unreadable) {
        errors_.nameOnce(error_number::accessDenied, place.source + entry.name);
        return;
    }
    FileEntry existing;
    bool found = target != nullptr && target->lookUp(entry.name, existing);
    if (!found && !statistics_.analysisPass && keepsSome()) {
        const Status status = system_.platform.files.lookUp(place.destination + entry.name,
                                                            LinkRule::refuse, existing);
        found = status.ok();
        if (!found && status.code() != error_number::fileNotFound &&
            status.code() != error_number::pathNotFound) {
            errors_.count(status.code(), place.source + entry.name, place.source);
            return;
        }
    }
    if (found && decision_.compare && statistics_.analysisPass && system_.SuiviAnalyse != 0 &&
        system_.options.ArbreMode == 0 && !comparing()) {
        window_.showFile(place.source + entry.name);
        window_.runPendingEvents();
    }
    const Decision decision = decide(entry, found ? &existing : nullptr, decision_);
    if (!decision.copy) return;
    if (statistics_.keepExisting && !decision.isNew && !comparing()) return;
    if (statistics_.analysisPass) {
        analyseFile(entry, decision, place);
    } else {
        copyFile(entry, decision, place);
    }
}

void CopieMod::analyseFile(const FileEntry& entry, const Decision& decision, const Place& place) {
    // The size is exact, its sum is a 32-bit float: see RunStatistics.
    statistics_.totalBytes += static_cast<float>(entry.size);
    countToCopy(entry);
    if (!comparing()) return;
    const std::string line = place.destination + entry.name + std::string(decision.status);
    window_.addToComparison(line);
    window_.AjouteECTxt(line);
    ++statistics_.filesToCopy;
    window_.showCount(std::to_string(statistics_.filesToCopy) + " fichier(s) à copier ");
}

void CopieMod::copyFile(const FileEntry& entry, const Decision& decision, const Place& place) {
    if (!grant(entry.name, decision.isNew)) return;
    progress_.refreshCaptions(place.source, place.destination);
    const std::string source = place.source + entry.name;
    const Status copied =
        copier_.copy(entry, source, place.destination + entry.name, LinkRule::refuse);
    if (copied.code() == error_number::requestAborted) {
        // The user gave the file up: its old copy is whole, and that is no error.
        statistics_.interruptionRequested = true;
        return;
    }
    if (!copied.ok()) errors_.count(copied.code(), source, place.source);
    countDone(entry, copied.ok());
    progress_.refreshCaptions(place.source, place.destination);
    progress_.refreshEstimate();
}

bool CopieMod::grant(const std::string& name, bool isNew) {
    statistics_.copyGranted = true;
    if (isNew || !statistics_.askBeforeReplacing) return true;
    switch (window_.DemandeRemplacement(name)) {
        case 0:
            break;
        case 1:
            statistics_.askBeforeReplacing = false;
            break;
        case 2:
            statistics_.copyGranted = false;
            break;
        default:
            statistics_.copyGranted = false;
            statistics_.interruptionRequested = true;
            break;
    }
    return statistics_.copyGranted;
}

void CopieMod::countToCopy(const FileEntry& entry) {
    LineTally& tally = statistics_.currentTally();
    ++tally.filesToCopy;
    tally.bytesToCopy += entry.size;
}

void CopieMod::countDone(const FileEntry& entry, bool copied) {
    // A file that failed counts too: the percentage measures how far the run has come.
    statistics_.bytesDone += static_cast<float>(entry.size);
    if (!copied) return;
    LineTally& tally = statistics_.currentTally();
    ++tally.files;
    tally.bytes += entry.size;
}

}  // namespace coffrelune
