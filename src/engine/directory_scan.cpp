// The files of one directory: what each of them is compared with, and what becomes of it.
#include "engine/content_check.h"
#include "engine/copie_mod.h"
#include "engine/replacement.h"
#include "system/paths.h"

namespace coffrelune {
namespace {

// Why the rules leave a file alone.
std::string_view unchangedReason(const FileEntry& source, const FileEntry& existing) {
    const bool older = source.times.lastWrite < existing.times.lastWrite;
    return older ? "la copie est plus récente" : "à jour";
}

// The words for a list follow a path and begin with a blank.
std::string_view withoutBlank(std::string_view status) {
    return status.starts_with(' ') ? status.substr(1) : status;
}

}  // namespace

void CopieMod::scanDirectory(const Pair& pair) {
    constexpr std::size_t usual = 128;
    FoldedNames handled(usual);
    copies_ = SeenEntries();
    looks_.clear();
    newFiles_.clear();
    const std::string& source = pair.place.source;
    FileEntry existing;  // kept from file to file, with the room for its name
    for (FileEntry entry; pair.source.next(entry);) {
        const bool isWanted = !entry.isDirectory() && !isSystemFile(entry.name);
        if (isWanted &&
            (handled.add(entry.name) || !isTaken(entry.name, pair.place, Wanted::files))) {
            scanFile(entry, pair, existing);
        }
        display_.runPendingEvents();
        if (run_.stopped()) return;
    }
    noteSharers(pair);
    if (!pair.source.status().ok()) {
        errors_.failedOnce(pair.source.status().code(), withoutTrailingBackslash(source));
    }
}

// Where the user may want a file kept, only the certain absence lets the copy take its name
// unasked.
bool CopieMod::keepsSome() const {
    return run_.control.askBeforeReplacing || run_.switches.keepExisting || decision_.newerOnly;
}

// False when nobody can tell what bears the name; that has been counted. What passes for absent in
// a directory where a look-up has failed may be there, so it is asked for by its path.
bool CopieMod::findExisting(const FileEntry& entry, const Pair& pair, FileEntry& existing,
                            bool& found) {
    const Place& place = pair.place;
    found = pair.target != nullptr && pair.target->lookUp(entry.name, existing);
    const bool doubted = pair.target != nullptr && !pair.target->status().ok();
    const bool asksAgain =
        pass_ == Pass::copy ? doubted || keepsSome() : doubted && run_.comparing();
    if (found || !asksAgain) return true;
    const Status status = files_.lookUp(place.destination + entry.name, LinkRule::refuse, existing);
    found = status.ok();
    if (found || status.saysAbsent()) return true;
    const std::string source = place.source + entry.name;
    if (pass_ == Pass::copy) {
        errors_.failed(status.code(), source, place.source);
    } else {
        errors_.unread(status.code(), source);
    }
    return false;
}

void CopieMod::scanFile(const FileEntry& entry, const Pair& pair, FileEntry& existing) {
    const Place& place = pair.place;
    // Listed, but not to be looked at: its age is unknown, and no rule may take it for up to date.
    if (entry.isUnreadable()) {
        errors_.unread(entry.failure, place.source + entry.name);
        return;
    }
    bool found = false;
    if (!findExisting(entry, pair, existing, found)) return;
    if (found && sharesCopy(entry, existing, pair)) return;
    if (run_.verifying()) return verifyFile(entry, found ? &existing : nullptr, place);
    const bool analysing = pass_ == Pass::analysis;
    if (found && decision_.compare && analysing && run_.system.SuiviAnalyse != 0 &&
        !run_.comparing()) {
        display_.showFile(place.source + entry.name);
        display_.runPendingEvents();
    }
    const Decision decision = decide(entry, found ? &existing : nullptr, decision_);
    if (pass_ == Pass::copy) pair.source.expectCopy(decision.copy);  // like its neighbour
    if (found && analysing && !run_.comparing()) looks_.note(entry.name, existing, decision.copy);
    if (!decision.copy) {
        if (analysing && run_.keepsRecord()) {
            skip(place.source + entry.name, entry, unchangedReason(entry, existing));
        }
        return;
    }
    if (run_.switches.keepExisting && !decision.isNew && !run_.comparing()) {
        if (analysing) skip(place.source + entry.name, entry, keptReason);
        return;
    }
    if (!decision.isNew && !mayBeOwn(entry, place)) return;
    if (analysing) return analyseFile(entry, decision, place);
    if (found && existing.isDirectory()) {
        display_.AjouteECTxt(place.destination + entry.name +
                             " est un répertoire : le fichier de ce nom ne peut pas être copié.");
    }
    copyFile(entry, found ? &existing : nullptr, decision, pair);
}

// Equal dates of different contents speak of a damaged file, others of one that was changed.
void CopieMod::verifyFile(const FileEntry& entry, const FileEntry* existing, const Place& place) {
    if (existing == nullptr || existing->isDirectory()) {
        return analyseFile(entry, {true, true, " n'existe pas"}, place);
    }
    const std::string source = place.source + entry.name;
    // Where the volume of the copy holds no links, it holds what they lead to.
    const bool links = entry.isLink() && existing->isLink();
    const bool sizesTell = !entry.isLink() && !existing->isLink();
    bool same = false;
    if (!sizesTell || entry.size == existing->size) {
        const Status read =
            ContentCheck(run_).compare(source, place.destination + entry.name,
                                       links ? LinkRule::refuse : LinkRule::follow, same);
        if (!read.ok()) return errors_.unread(read.code(), read.path());
    }
    if (run_.stopped()) return;
    LineTally& tally = run_.tally(trees_->line().index);
    ++tally.files;
    tally.bytes += entry.size;
    display_.showCount(std::to_string(tally.files) + " fichier(s) vérifié(s)");
    if (same) {
        return run_.record({FileOutcome::verified, trees_->line().index, source, entry.size});
    }
    const bool sameDate = haveSameTime(entry, *existing, decision_);
    analyseFile(entry,
                {true, false, sameDate ? " est différent, à la même date" : " est différent"},
                place);
}

// What a restore puts in the place of a file must be that file's own copy: the file may be nowhere
// else.
bool CopieMod::mayBeOwn(const FileEntry& entry, const Place& place) {
    if (run_.comparing() || trees_->backsUp()) return true;
    const std::string path = place.destination + entry.name;
    const auto keep = [&](const std::string& reason, std::uint32_t number) {
        if (!kept_.insert(path).second) return false;  // each pass asks once more
        errors_.keptExcess(path + " est conservé : " + reason +
                               ". Pour le remettre, renommez d'abord celui qui est conservé.",
                           number, path);
        return false;
    };
    // That copy holds one file of each name, and nobody can say whose.
    if (trees_->isMixed() || trees_->mayBeOfAnother(place.source, entry.name)) {
        return keep("la copie est aussi celle d'une autre sauvegarde, d'où vient peut-être " +
                        place.source + entry.name,
                    error_number::invalidData);
    }
    const RestoredNames::Owner owner = otherOwner(entry, place);
    if (!owner.failure.ok()) errors_.unread(owner.failure.code(), place.source + entry.name);
    if (owner.path.empty()) return owner.failure.ok();
    return keep("ce que la copie montre sous ce nom est peut-être celle de " + owner.path +
                    ", que son volume n'en distingue pas",
                error_number::alreadyExists);
}

RestoredNames::Owner CopieMod::otherOwner(const FileEntry& entry, const Place& place) {
    const std::size_t root = withTrailingBackslash(roots().source).size();
    RestoredNames::Owner above = restored_.otherOwnerAbove(place.source, place.destination, root);
    return above.isNone() ? restored_.otherOwner(place.source, place.destination, entry) : above;
}

void CopieMod::analyseFile(const FileEntry& entry, const Decision& decision, const Place& place) {
    // The size is exact, its sum is a 32-bit float: see RunStatistics.
    addBytes(statistics_.totalBytes, entry.size);
    countToCopy(entry);
    if (!run_.comparing()) return;
    const std::string line = place.destination + entry.name + std::string(decision.status);
    display_.addToComparison(line);
    display_.AjouteECTxt(line);
    ++statistics_.filesToCopy;
    run_.record({FileOutcome::differs, trees_->line().index, place.source + entry.name, entry.size,
                 0, withoutBlank(decision.status)});
    display_.showCount(std::to_string(statistics_.filesToCopy) + " fichier(s) à copier ");
}

// `existing` is null where nothing bears the name.
void CopieMod::copyFile(const FileEntry& entry, const FileEntry* existing, const Decision& decision,
                        const Pair& pair) {
    const Place& place = pair.place;
    const bool replaces = existing != nullptr && !decision.isNew;
    if (replaces && isCopyOfAnother(entry, *existing, pair)) return;
    if (!replaces) newFiles_.note(entry);
    progress_.startFile(entry.name, place.source, place.destination);
    if (replaces && run_.control.askBeforeReplacing &&
        !mayReplace(describeReplacement(run_.system, place.destination, *existing, entry))) {
        if (!run_.stopped()) skip(place.source + entry.name, entry, keptReason);
        return;
    }
    if (!mayChange()) return;
    if (!queue_.add({entry, pair.source, *pair.target, place.source, place.destination,
                     existing != nullptr})) {
        // The user gave the file up: its old copy is whole, and that is no error.
        run_.control.interruptionRequested = true;
        return;
    }
    progress_.refreshCaptions(place.source, place.destination);
    progress_.refreshEstimate();
}

bool CopieMod::mayReplace(const Replacement& replacement) {
    switch (display_.DemandeRemplacement(replacement)) {
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

void CopieMod::skip(const std::string& path, const FileEntry& entry, std::string_view reason) {
    run_.record({FileOutcome::skipped, trees_->line().index, path, entry.size, 0, reason});
}

void CopieMod::countToCopy(const FileEntry& entry) {
    LineTally& tally = run_.tally(trees_->line().index);
    ++tally.filesToCopy;
    tally.bytesToCopy += entry.size;
}

}  // namespace coffrelune
