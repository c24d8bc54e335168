#include "engine/excess_walk.h"

#include <algorithm>

#include "engine/restored_names.h"
#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {
ExcessWalk::ExcessWalk(RunState& run, CopyErrors& errors)
    : run_(run), errors_(errors), files_(run.files()), guard_(run.files()) {}

void ExcessWalk::protect(const std::vector<RunLine>& lines) {
    const auto add = [&](int line, bool isCopy, const std::string& path) {
        Protected place{line, isCopy, files_.resolve(path), {}};
        // A place that does not exist is not in the way.
        if (!files_.identify(path, place.id).ok()) place.id = FileId{};
        protected_.push_back(place);
    };
    for (const RunLine& line : lines) {
        add(line.index, false, line.roots.original());
        add(line.index, true, line.roots.copy());
    }
    const std::string& home = run_.system.homeDirectory;
    homePath_ = home.empty() ? home : files_.resolve(withoutTrailingBackslash(home));
    if (home.empty() || !files_.identify(home, home_).ok()) home_ = FileId{};
}

void ExcessWalk::prepare(const LineTrees& trees) {
    // Of trees that are not there yet nothing is known: cleanLine() asks again.
    if (trees.originalTree() == nullptr || trees.copyTree() == nullptr) return;
    objections_[trees.line().index] = objectionTo(files_, trees);
}

bool ExcessWalk::cleanLine(LineTrees& trees, const ExclusionList& loadedLast) {
    trees_ = &trees;
    if (!trees.take()) return false;  // told
    failed_ = madeRoom_ = false;
    guard_.watch(roots());
    if (!guard_.refusal(roots()).empty()) return false;  // told by the pass before
    const LineRoots swapped = CheminsExcedents(roots());
    leftOut_ = {run_.system.platform.drives.windowsDirectory(),
                withTrailingBackslash(swapped.source),
                {loadedLast, trees.line().exclusions}};
    mounts_.clear();
    for (const std::string& mount : trees.knownMounts()) mounts_.push_back(leftOut_.root + mount);
    if (const Certificate* certificate = trees.certificate();
        certificate != nullptr && !trees.backsUp()) {
        leftOut_.lists.push_back(certificate->exclusions);
    }
    decision_ = {run_.system.Modifie != 0, run_.system.options.RecentSeul != 0,
                 run_.system.options.CorrectEteOff == 0, trees.heldTimes(), trees.backsUp()};
    if (!referenceReadable()) return false;
    if (!objections_.contains(trees.line().index)) prepare(trees);
    if (keepsAll()) return false;
    if (!trees.backsUp()) announce();
    walkFromRoot(Step::remove);
    return madeRoom_;
}

// An unplugged disk, or a restore of what was never backed up, must not pass for a tree from which
// everything has been deleted.
bool ExcessWalk::referenceReadable() {
    std::unique_ptr<Directory> directory;
    Status status =
        files_.openDirectory(roots().target, LinkRule::follow, Wanted::directories, directory);
    if (!status.ok()) {
        // No tree, or the copy of a single file: nothing to clean.
        const bool isTree = !cannotBeThere(status) && status.code() != error_number::notADirectory;
        if (isTree) errors_.unread(status.code(), roots().target);
        return false;
    }
    status = files_.openDirectory(roots().source, LinkRule::follow, Wanted::directories, directory);
    if (status.ok()) status = files_.identify(roots().source, referenceId_);
    // What the trees say is only known of those that are held.
    if (status.ok() && (trees_->originalTree() == nullptr || trees_->copyTree() == nullptr)) {
        status = Status::failure(error_number::notReady, roots().source);
    }
    if (!status.ok() && !isSingleFile()) errors_.unread(status.code(), roots().source);
    return status.ok();
}

// A backup of a file that was missing has left an empty directory of its name, which would shut the
// file's copy out for ever. One that holds something stays: the copy of the file tells it.
bool ExcessWalk::isSingleFile() {
    FileEntry source;
    const Status found = files_.lookUp(roots().source, LinkRule::follow, source);
    if (!found.ok() || source.isDirectory()) return false;
    (void)files_.removeDirectory(roots().target);
    return true;
}

// True when nothing may be deleted. That is told where there is something to keep.
bool ExcessWalk::keepsAll() {
    const std::string kept = "Fichiers excédentaires conservés dans " + roots().target + " : ";
    if (copiedByAnother()) {
        run_.display.AjouteECTxt(kept + "une autre ligne y est copiée aussi.");
        return true;
    }
    if (trees_->targetIsLink()) {
        walkFromRoot(Step::count);
        if (counted_ == 0 || stopped()) return true;
        run_.display.AjouteECTxt(kept +
                                 "c'est un lien. Donnez à la ligne le répertoire où il mène.");
        return true;
    }
    const std::optional<Objection>& objection = objections_[trees_->line().index];
    if (!objection && holdsFiles()) return false;
    walkFromRoot(Step::count);
    if (counted_ == 0 || stopped()) return true;
    if (objection) {
        run_.statistics.originalInDoubt |= objection->acceptable;
        errors_.keptExcess(kept + objection->reason, objection->number, objection->path);
    } else {
        errors_.keptExcess(kept + roots().source + " ne contient aucun fichier.",
                           error_number::fileNotFound, roots().source);
    }
    return true;
}

bool ExcessWalk::copiedByAnother() const {
    const int line = trees_->line().index;
    const std::string tree = files_.resolve(roots().target);
    FileId id;
    const bool known = files_.identify(roots().target, id).ok() && id.known();
    return std::any_of(protected_.begin(), protected_.end(), [&](const Protected& place) {
        // The tree that this run writes for the other line.
        if (place.line == line || place.isCopy != trees_->backsUp()) return false;
        return isWithin(tree, place.path) || (known && place.id == id);
    });
}

// A mount point without its volume, or the bare directories of a backup that was stopped before its
// first file, look like a tree from which everything has been deleted.
bool ExcessWalk::holdsFiles() {
    return anyFileBelow(withTrailingBackslash(roots().source), LinkRule::follow);
}

bool ExcessWalk::anyFileBelow(const std::string& directory, LinkRule links) {
    std::unique_ptr<Directory> files;
    if (files_.openDirectory(directory, links, Wanted::files, files).ok()) {
        for (FileEntry entry; files->next(entry);) {
            if (!entry.isDirectory() && !isSystemFile(entry.name)) return true;
        }
    }
    files.reset();
    Place place;
    place.cleaned = place.reference = directory;
    const std::vector<std::string> names = subdirectories(place, links);
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        run_.display.runPendingEvents();
        return anyFileBelow(directory + name + "\\", LinkRule::refuse);
    });
}

// What a backup deletes is a copy. What a restore deletes is the user's own.
void ExcessWalk::announce() {
    walkFromRoot(Step::count);
    if (counted_ == 0 || stopped()) return;
    run_.display.AjouteECTxt("La restauration va effacer " + std::to_string(counted_) +
                             " fichier(s) de " + roots().target + " que la copie n'a pas :");
    for (const std::string& path : firstCounted_) run_.display.AjouteECTxt("  " + path);
    if (counted_ > firstCounted_.size()) run_.display.AjouteECTxt("  …");
}

void ExcessWalk::tellKept(const std::string& directory, const std::string& reason) {
    if (step_ == Step::count) return;
    run_.display.AjouteECTxt("Fichiers excédentaires conservés dans " +
                             withoutTrailingBackslash(directory) + " : " + reason);
}

// One place has several paths; and a volume may give it another identity each time it is asked.
bool ExcessWalk::isProtected(const std::string& path, const FileEntry& entry) const {
    return std::any_of(protected_.begin(), protected_.end(), [&](const Protected& place) {
        return path == place.path || (entry.id.known() && entry.id == place.id);
    });
}

// Asked before anything is taken for deleted: the reference may have been unplugged meanwhile. A
// root that was removed keeps its identity as long as it is held, but cannot be listed.
bool ExcessWalk::referenceStands() {
    FileId id;
    Status status = files_.identify(roots().source, id);
    std::unique_ptr<Directory> root;
    if (status.ok()) {
        status = files_.openDirectory(roots().source, LinkRule::follow, Wanted::nothing, root);
    }
    if (status.ok() && id == referenceId_) return true;
    errors_.failedOnce(status.ok() ? error_number::deviceDoesNotExist : status.code(),
                       roots().source);
    return false;
}

void ExcessWalk::walkFromRoot(Step step) {
    step_ = step;
    counted_ = 0;
    firstCounted_.clear();
    Place root;
    root.cleaned = withTrailingBackslash(roots().target);
    root.reference = withTrailingBackslash(roots().source);
    walk(root);
}

void ExcessWalk::walk(Place& place) {
    const bool isRoot = place.cleaned.size() == leftOut_.root.size();
    const LinkRule links = isRoot ? LinkRule::follow : LinkRule::refuse;
    std::unique_ptr<Directory> files;
    const Status listed = files_.openDirectory(place.cleaned, links, Wanted::files, files);
    if (!listed.ok()) {
        tellUnread(listed, place.cleaned);
        return;
    }
    if (belongsToOthers(place)) return;
    std::unique_ptr<Directory> reference;
    if (!openReference(place, reference)) return;
    if (step_ == Step::remove) {
        ++run_.statistics.directoriesRead;
        // What cannot be removed now stays hidden from every listing until a later run can.
        (void)files_.removeLeftovers(place.cleaned);
    }
    // The program's own files are no part of what a line keeps in step.
    if (!holdsSettings(place)) scan(*files, reference.get(), place);
    tellUnread(files->status(), place.cleaned);
    files.reset();  // a deep tree must not hold a descriptor for every level
    reference.reset();
    for (const std::string& name : subdirectories(place, links)) {
        if (stopped()) return;
        Place below;
        if (enter(place, name, below)) walk(below);
        run_.display.runPendingEvents();
    }
    // Kept when something is left in it: the copy of the file then tells what stands in its way.
    if (place.makesRoom && step_ == Step::remove && !stopped()) {
        (void)files_.removeDirectory(withoutTrailingBackslash(place.cleaned));
    }
}

bool ExcessWalk::holdsSettings(const Place& place) {
    if (withoutTrailingBackslash(place.cleaned) == homePath_) return true;
    FileId id;
    return home_.known() && files_.identify(place.cleaned, id).ok() && id == home_;
}

// Below the roots, what bears a mark is the tree of another pair, or one that a restore or a backup
// has left unfinished.
bool ExcessWalk::belongsToOthers(const Place& place) {
    if (place.cleaned.size() == leftOut_.root.size()) return false;
    DirectoryMarks marks;
    Status read = readMarks(files_, place.cleaned, marks);
    if (read.ok() && !marks.empty()) {
        tellKept(
            place.cleaned,
            "c'est la copie d'une autre sauvegarde, ou une restauration inachevée. Si ce n'est "
            "plus vrai, effacez le fichier caché « .~coffrelune-… » qui en reste.");
        return true;
    }
    if (read.ok() && place.reference.empty()) return false;
    if (read.ok()) read = readMarks(files_, place.reference, marks);
    if (!read.ok()) {
        errors_.unread(read.code(), read.path());
        return true;
    }
    const bool unfinished = !marks.restoreMarks.empty() || !marks.unreadable.empty() ||
                            std::any_of(marks.certificates.begin(), marks.certificates.end(),
                                        [](const auto& one) { return !one.certificate.complete; });
    if (unfinished) {
        tellKept(place.cleaned,
                 withoutTrailingBackslash(place.reference) +
                     " est inachevé : une restauration ou une sauvegarde y a été interrompue. "
                     "Recommencez-la jusqu'au bout. Si elle est sans objet, effacez le fichier "
                     "caché « .~coffrelune-… » qui s'y trouve.");
    }
    return unfinished;
}

// False when the counterpart is there but cannot be read: its files keep their copies.
bool ExcessWalk::openReference(const Place& place, std::unique_ptr<Directory>& reference) {
    if (place.reference.empty()) return true;
    const bool isRoot = place.cleaned.size() == leftOut_.root.size();
    const Status opened = files_.openDirectory(
        place.reference, isRoot ? LinkRule::follow : LinkRule::refuse, Wanted::nothing, reference);
    if (!opened.ok()) {
        errors_.unread(opened.code(), withoutTrailingBackslash(place.reference));
    }
    return opened.ok();
}

// False when the directory keeps what is in it.
bool ExcessWalk::enter(Place& place, const std::string& name, Place& below) {
    below.cleaned = place.cleaned + name + "\\";
    // What stands below a directory that must go stands in its way, too.
    below.makesRoom = place.makesRoom;
    below.above = &place;
    // Unmounted while the run goes on, a volume leaves a directory that has lost everything.
    // What a backup merely counts is what the absent volume would have lost.
    const bool deletes = step_ == Step::remove || !trees_->backsUp();
    if (deletes && isKnownMount(place.cleaned + name)) {
        tellKept(below.cleaned, place.reference.empty()
                                    ? "un volume était monté à cet endroit de l'original."
                                    : place.reference + name + " est un autre volume.");
        return false;
    }
    if (place.reference.empty()) return true;
    return enterReference(place, name, below);
}

bool ExcessWalk::isLeftOutNow(const Place& place, const FileEntry& entry) const {
    return isExcludedFromDeletion(place.cleaned, entry.name, leftOut_);
}

bool ExcessWalk::isKnownMount(const std::string& path) const {
    return std::any_of(mounts_.begin(), mounts_.end(),
                       [&](const std::string& mount) { return equalIgnoringCase(mount, path); });
}

std::vector<std::string> ExcessWalk::subdirectories(const Place& place, LinkRule links) {
    std::vector<std::string> names;
    std::unique_ptr<Directory> directories;
    const Status opened =
        files_.openDirectory(place.cleaned, links, Wanted::directories, directories);
    if (!opened.ok()) {
        tellUnread(opened, place.cleaned);
        return names;
    }
    for (FileEntry entry; directories->next(entry);) {
        if (!entry.isDirectory() || entry.isLink() || entry.mountPoint) continue;
        if (isLeftOutNow(place, entry) || isProtected(place.cleaned + entry.name, entry)) continue;
        names.push_back(entry.name);
    }
    tellUnread(directories->status(), place.cleaned);
    return names;
}

// What was not listed was not compared: the run has not done all that it says.
void ExcessWalk::tellUnread(const Status& listed, const std::string& directory) {
    if (!listed.ok() && !listed.saysAbsent()) errors_.unread(listed.code(), directory);
}

}  // namespace coffrelune
