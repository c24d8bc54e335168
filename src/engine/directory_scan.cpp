// The files of one directory: what each of them is compared with, and what becomes of it.
#include "engine/copie_mod.h"
#include "engine/folded_names.h"
#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {
// Two names that differ in their case alone are one name to many volumes: the copy of the second
// would replace that of the first, run after run, and both would count as saved. Asked for names
// that came up again without their case, which is rare, so the source may be listed once more.
bool CopieMod::isTaken(const std::string& name, const Place& place, Wanted kind) {
    queue_.settle();  // the copy of the first one shows whether they are one
    std::unique_ptr<Directory> listing;
    if (!files_.openDirectory(place.source, place.links, kind, listing).ok()) return false;
    for (FileEntry other; listing->next(other);) {
        if (other.name == name || !equalIgnoringCase(other.name, name)) continue;
        if (!isOneEntry(files_, place.destination + other.name, place.destination + name)) continue;
        errors_.unread(error_number::alreadyExists, place.source + name);
        return true;
    }
    return false;
}

void CopieMod::scanDirectory(const Pair& pair) {
    FoldedNames handled;
    const std::string& source = pair.place.source;
    for (FileEntry entry; pair.source.next(entry);) {
        const bool isWanted = !entry.isDirectory() && !isSystemFile(entry.name);
        if (isWanted &&
            (handled.add(entry.name) || !isTaken(entry.name, pair.place, Wanted::files))) {
            scanFile(entry, pair);
        }
        display_.runPendingEvents();
        if (run_.stopped()) return;
    }
    if (!pair.source.status().ok()) {
        errors_.failedOnce(pair.source.status().code(), withoutTrailingBackslash(source));
    }
}

// A failed look-up passes for absence, which is right where everything is replaced anyway. Where
// the user may want a file kept, only the certain absence lets the copy take its name unasked.
bool CopieMod::keepsSome() const {
    return run_.control.askBeforeReplacing || run_.switches.keepExisting || decision_.newerOnly;
}

// False when nobody can tell what bears the name; that has been counted.
bool CopieMod::findExisting(const FileEntry& entry, const Pair& pair, FileEntry& existing,
                            bool& found) {
    const Place& place = pair.place;
    found = pair.target != nullptr && pair.target->lookUp(entry.name, existing);
    if (found || pass_ != Pass::copy || !keepsSome()) return true;
    const Status status = files_.lookUp(place.destination + entry.name, LinkRule::refuse, existing);
    found = status.ok();
    if (found || status.saysAbsent()) return true;
    errors_.failed(status.code(), place.source + entry.name, place.source);
    return false;
}

void CopieMod::scanFile(const FileEntry& entry, const Pair& pair) {
    const Place& place = pair.place;
    // Listed, but not to be looked at: its age is unknown, and no rule may take it for up to date.
    if (entry.unreadable) {
        errors_.unread(error_number::accessDenied, place.source + entry.name);
        return;
    }
    FileEntry existing;
    bool found = false;
    if (!findExisting(entry, pair, existing, found)) return;
    const bool analysing = pass_ == Pass::analysis;
    if (found && decision_.compare && analysing && run_.system.SuiviAnalyse != 0 &&
        !run_.comparing()) {
        display_.showFile(place.source + entry.name);
        display_.runPendingEvents();
    }
    const Decision decision = decide(entry, found ? &existing : nullptr, decision_);
    if (!decision.copy) return;
    if (run_.switches.keepExisting && !decision.isNew && !run_.comparing()) return;
    if (!decision.isNew && !mayBeOwn(entry, place)) return;
    if (analysing) return analyseFile(entry, decision, place);
    if (found && existing.isDirectory()) {
        tellObstacle(place.destination + entry.name +
                     " est un répertoire : le fichier de ce nom ne peut pas être copié.");
    }
    copyFile(entry, decision, found, pair);
}

// Of two originals with one copy, that copy holds one file of each name, and nobody can say whose:
// a restore would put it in the place of the other's only one.
bool CopieMod::mayBeOwn(const FileEntry& entry, const Place& place) {
    if (run_.comparing() || trees_->backsUp() || !trees_->isMixed()) return true;
    const std::string path = place.destination + entry.name;
    errors_.keptExcess(path +
                           " est conservé : la copie est aussi celle d'une autre sauvegarde, d'où "
                           "vient peut-être " +
                           place.source + entry.name +
                           ". Pour le remettre, renommez d'abord celui qui est conservé.",
                       error_number::invalidData, path);
    return false;
}

void CopieMod::analyseFile(const FileEntry& entry, const Decision& decision, const Place& place) {
    // The size is exact, its sum is a 32-bit float: see RunStatistics.
    statistics_.totalBytes += static_cast<float>(entry.size);
    countToCopy(entry);
    if (!run_.comparing()) return;
    const std::string line = place.destination + entry.name + std::string(decision.status);
    display_.addToComparison(line);
    display_.AjouteECTxt(line);
    ++statistics_.filesToCopy;
    display_.showCount(std::to_string(statistics_.filesToCopy) + " fichier(s) à copier ");
}

void CopieMod::copyFile(const FileEntry& entry, const Decision& decision, bool found,
                        const Pair& pair) {
    const Place& place = pair.place;
    const bool asks = !decision.isNew && run_.control.askBeforeReplacing;
    if ((asks && !mayReplace(entry.name)) || !mayChange()) return;
    progress_.refreshCaptions(place.source, place.destination);
    if (!queue_.add({entry, pair.source, *pair.target, place.source, place.destination, found})) {
        // The user gave the file up: its old copy is whole, and that is no error.
        run_.control.interruptionRequested = true;
        return;
    }
    progress_.refreshCaptions(place.source, place.destination);
    progress_.refreshEstimate();
}

bool CopieMod::mayReplace(const std::string& name) {
    switch (display_.DemandeRemplacement(name)) {
        case ReplacementAnswer::yes:
            return true;
        case ReplacementAnswer::yesToAll:
            run_.control.askBeforeReplacing = false;
            return true;
        case ReplacementAnswer::no:
            return false;
        case ReplacementAnswer::cancel:
            break;
    }
    run_.control.interruptionRequested = true;
    return false;
}

void CopieMod::countToCopy(const FileEntry& entry) {
    LineTally& tally = run_.tally(trees_->line().index);
    ++tally.filesToCopy;
    tally.bytesToCopy += entry.size;
}

}  // namespace coffrelune
