// The files of one directory of the cleaned tree: what the reference has of each, and what becomes
// of it.
#include "engine/excess_walk.h"
#include "engine/locked_entries.h"
#include "system/text.h"

namespace coffrelune {
namespace {

constexpr std::size_t namesTold = 10;  // of the files that a restore is about to delete

}  // namespace

void ExcessWalk::scan(Directory& files, Directory* reference, Place& place) {
    referenceNames_.reset();
    for (FileEntry entry; files.next(entry);) {
        if (!entry.isDirectory() && !isSystemFile(entry.name) &&
            !isProtected(place.cleaned + entry.name, entry)) {
            handle(entry, reference, place);
        }
        run_.display.runPendingEvents();
        if (stopped()) return;
    }
}

void ExcessWalk::handle(const FileEntry& entry, Directory* reference, Place& place) {
    FileEntry counterpart;
    bool known = true;
    if (isGone(entry, reference, place, counterpart, known)) {
        if (!isSpelledOtherwise(entry, place) && !isShared(place)) remove(entry, place);
        return;
    }
    // Of unknown age: nobody can say whether it differs.
    if (!known || entry.isUnreadable() || step_ == Step::count) return;
    // What the copy pass would leave alone is none of those that it replaces: with `RecentSeul` a
    // newer file of the copy is kept.
    DecisionOptions back = decision_;
    back.sourceIsCopy = !decision_.sourceIsCopy;
    if (decide(entry, &counterpart, decision_).copy && decide(counterpart, &entry, back).copy) {
        showDeleted(entry, place.cleaned + entry.name);
    }
}

// `known` is false when nobody can say what the reference has.
bool ExcessWalk::isGone(const FileEntry& entry, Directory* reference, const Place& place,
                        FileEntry& counterpart, bool& known) {
    if (place.reference.empty()) return referenceStands();
    if (reference->lookUp(entry.name, counterpart)) {
        const bool isDirectory = counterpart.isDirectory() && !counterpart.isLink();
        known = !counterpart.isDirectory();
        if (isDirectory && step_ == Step::remove) madeRoom_ = true;
        return isDirectory;
    }
    // A look-up that failed says nothing yet; only the certain absence counts.
    const std::string path = place.reference + entry.name;
    const Status status = files_.lookUp(path, LinkRule::refuse, counterpart);
    known = false;
    if (status.saysAbsent()) return referenceStands();
    if (!status.ok()) errors_.unread(status.code(), path);
    return false;
}

// A volume without case, or one that spells names its own way, lists a file under another name than
// its original bears: it is the copy of that original all the same.
bool ExcessWalk::isSpelledOtherwise(const FileEntry& entry, Place& place) {
    if (place.reference.empty()) return false;
    std::unique_ptr<Directory> listing;
    if (referenceNames_ == nullptr) {
        auto names = std::make_unique<FoldedNames>();
        if (!listReference(place, Wanted::files, listing)) return true;
        for (FileEntry other; listing->next(other);) (void)names->add(other.name);
        if (!isListed(*listing, place)) return true;
        referenceNames_ = std::move(names);
    }
    if (hides(place, Wanted::files)) return true;
    if (!referenceNames_->contains(entry.name)) return false;
    if (!listReference(place, Wanted::files, listing)) return true;
    for (FileEntry other; listing->next(other);) {
        if (other.name == entry.name || !equalIgnoringCase(other.name, entry.name)) continue;
        if (areOne(place, other.name, place.cleaned + entry.name) != false) return true;
    }
    return !isListed(*listing, place);
}

// False when it cannot be: that is an error, since files are kept for it.
bool ExcessWalk::listReference(const Place& place, Wanted kind,
                               std::unique_ptr<Directory>& listing) {
    const Status opened = files_.openDirectory(place.reference, LinkRule::follow, kind, listing);
    tellUnread(opened, place.reference);
    return opened.ok();
}

bool ExcessWalk::isListed(const Directory& listing, const Place& place) {
    tellUnread(listing.status(), place.reference);
    return listing.status().ok();
}

void ExcessWalk::remove(const FileEntry& entry, const Place& place) {
    const std::string path = place.cleaned + entry.name;
    if (step_ == Step::count) {
        ++counted_;
        if (firstCounted_.size() < namesTold) firstCounted_.push_back(path);
        return;
    }
    const Status ready = trees_->beforeChange();
    if (!ready.ok()) {
        failed_ = true;
        errors_.failedInLine(ready.code(), roots().source);
        return;
    }
    showDeleted(entry, path);
    // A file that cannot be deleted counts as shown all the same and stays: the next run tries
    // again.
    const Status removed = files_.removeFile(path);
    if (!removed.ok()) {
        run_.record({FileOutcome::failed, trees_->line().index, path, 0, removed.code()});
        run_.display.AjouteECTxt("Non effacé : " + path + " (erreur " +
                                 std::to_string(removed.code()) + ").");
        const std::string lock =
            removed.code() == error_number::accessDenied ? lockOn(files_, path) : "";
        if (!lock.empty()) run_.display.AjouteECTxt(lock);
        return;
    }
    ++run_.statistics.filesRemoved;
    run_.record({FileOutcome::deleted, trees_->line().index, path, entry.size});
    run_.display.AjouteECTxt("Effacé : " + path);
}

void ExcessWalk::showDeleted(const FileEntry& entry, const std::string& path) {
    RunStatistics& statistics = run_.statistics;
    addBytes(statistics.totalBytes, entry.size);
    ++statistics.filesDeleted;
    run_.display.showFile(path);
    run_.display.showCount(std::to_string(statistics.filesDeleted) +
                           " fichier(s) effacé(s) sur la destination ");
}

}  // namespace coffrelune
