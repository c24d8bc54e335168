#include "engine/copie_mod.h"

#include <algorithm>

#include "engine/folded_names.h"
#include "engine/objections.h"
#include "system/paths.h"

namespace coffrelune {
namespace {

// Numbers that say that a directory is not there, as opposed to one that cannot be read.
bool saysMissing(const Status& status) {
    return status.saysAbsent() || status.code() == error_number::notReady ||
           status.code() == error_number::deviceDoesNotExist;
}

}  // namespace

CopieMod::CopieMod(RunState& run, CopyErrors& errors)
    : run_(run),
      files_(run.files()),
      display_(run.display),
      statistics_(run.statistics),
      errors_(errors),
      progress_(run),
      copier_(run.system, progress_),
      queue_(run, errors, progress_, copier_),
      guard_(run.files()),
      restored_(run.files()) {}

void CopieMod::walkLine(LineTrees& trees, Pass pass) {
    trees_ = &trees;
    pass_ = pass;
    errors_.startLine(trees.line().index);
    leftOut_ = {run_.system.platform.drives.windowsDirectory(),
                withTrailingBackslash(roots().source),
                {trees.line().exclusions}};
    decision_ = {run_.system.Modifie != 0 || run_.comparing(),
                 run_.system.options.RecentSeul != 0,
                 run_.system.options.CorrectEteOff == 0,
                 {},
                 !trees.backsUp()};
    if (!destinationExists(roots().destination)) {
        run_.tally(trees.line().index).destinationMissing = true;
        run_.control.lastErrorNumber = error_number::deviceDoesNotExist;
        run_.control.interruptionRequested = true;
        return;
    }
    if (isRefused() || !trees.take()) return;
    if (pass_ != Pass::tree) decision_.grid = trees.heldTimes();

    FileEntry source;
    const Status found = findSource(source);
    if (found.ok() && !source.isDirectory()) return copySingleFile(source);
    // Only a source that is known to be missing is taken for a directory: a look-up that failed for
    // another reason may hide a file, whose copy a directory of its name would shut out for ever.
    if (saysMissing(found) || isDriveRoot(roots().source)) createTarget();
    if (run_.stopped()) return;
    progress_.clearTexts();
    if (pass_ == Pass::copy) queue_.open(trees.line().index, roots().target);
    if (!mayCreate()) ahead_ = files_.startWalk();
    paths_ = {withTrailingBackslash(roots().source), withTrailingBackslash(roots().target)};
    walkTree({paths_.source, paths_.destination, LinkRule::follow});
    ahead_.reset();
    tellTimes(queue_.close());
}

// The test for a drive root comes first: it may hold nothing and yet be a freshly formatted disk.
bool CopieMod::destinationExists(const std::string& destination) {
    if (isDriveRoot(destination)) {
        const std::vector<std::string> drives = run_.system.platform.drives.roots();
        return std::any_of(drives.begin(), drives.end(), [&](const std::string& root) {
            return (root[0] | 0x20) == (destination[0] | 0x20);
        });
    }
    std::unique_ptr<Directory> directory;
    return files_.openDirectory(destination, LinkRule::follow, Wanted::directories, directory).ok();
}

Status CopieMod::findSource(FileEntry& entry) {
    const std::string& source = roots().source;
    if (!isDriveRoot(source)) {
        return files_.lookUp(withoutTrailingBackslash(source), LinkRule::follow, entry);
    }
    entry.attributes = attribute::directory;
    if (destinationExists(source)) return {};
    return Status::failure(error_number::pathNotFound, source);
}

bool CopieMod::isRefused() {
    guard_.watch(roots());
    const std::string reason = guard_.refusal(roots());
    if (!reason.empty()) errors_.refused(reason, error_number::invalidParameter, roots().source);
    return !reason.empty();
}

void CopieMod::createTarget() {
    if (mayCreate()) (void)createRoot();  // what failed has been told
}

// The root of the written tree, with the levels above it. Held, and marked as being written, before
// anything goes into it.
bool CopieMod::createRoot() {
    bool created = false;
    const Status status = copier_.createPath(roots().target, DirectoryAccess::ownerOnly, created);
    if (created) ++statistics_.directoriesCreated;
    if (!status.ok()) {
        errors_.failedInLine(status.code(), roots().source);
        return false;
    }
    guard_.watch(roots());
    if (!trees_->take() || !mayChange()) return false;
    (void)trees_->heldTimes();  // noted in the certificate
    return true;
}

// Nothing in the written tree changes before the tree itself says that it is being changed.
bool CopieMod::mayChange() {
    const Status ready = trees_->beforeChange();
    if (!ready.ok()) errors_.failedInLine(ready.code(), roots().source);
    return ready.ok();
}

// When nobody can tell whether there is a file to keep, none is written over.
bool CopieMod::isKept() {
    FileEntry existing;
    const Status found = files_.lookUp(roots().target, LinkRule::refuse, existing);
    if (found.ok()) return true;
    if (saysMissing(found)) return false;
    errors_.failedInLine(found.code(), roots().source);
    return true;
}

// A single file is copied on every backup, changed or not, and without the question.
void CopieMod::copySingleFile(const FileEntry& entry) {
    if (pass_ == Pass::tree) return;
    if (run_.verifying()) return verifySingleFile(entry);
    if (run_.switches.keepExisting && isKept()) {
        if (pass_ == Pass::analysis) skip(roots().source, entry, keptReason);
        return;
    }
    if (pass_ == Pass::analysis) {
        addBytes(statistics_.totalBytes, entry.size);
        countToCopy(entry);
        return;
    }
    const std::string& source = roots().source;
    const std::string holder = withoutTrailingBackslash(splitPath(roots().target).parent);
    bool created = false;
    // What cannot be removed now stays hidden from every listing until a later run can.
    (void)files_.removeLeftovers(holder);
    // A restore may find the directory gone. What stands in the way is told by the copy itself.
    (void)copier_.createPath(holder, DirectoryAccess::usual, created);
    if (created) ++statistics_.directoriesCreated;
    display_.showFile("Fichier: " + entry.name);
    FileEntry existing;
    const bool replaces =
        run_.keepsRecord() && files_.lookUp(roots().target, LinkRule::refuse, existing).ok();
    const Status copied =
        copier_.copy(entry, withoutTrailingBackslash(source), roots().target, LinkRule::follow);
    if (copied.code() == error_number::requestAborted) {
        run_.control.interruptionRequested = true;
        return;
    }
    // A file that failed counts too: the percentage measures how far the run has come.
    addBytes(statistics_.bytesDone, entry.size);
    if (!copied.ok()) return errors_.failed(copied.code(), source, splitPath(source).parent);
    LineTally& tally = run_.tally(trees_->line().index);
    ++tally.files;
    tally.bytes += entry.size;
    run_.record({replaces ? FileOutcome::replaced : FileOutcome::copied, trees_->line().index,
                 source, entry.size});
}

// One directory of a pass that changes nothing.
void CopieMod::look(const Place& place) {
    OpenedPair pair = ahead_->open(pairOf(place));
    if (!pair.sourceStatus.ok()) return sourceNotListed(place, pair.sourceStatus);
    ++statistics_.directoriesRead;
    if (!pair.targetStatus.ok() && errors_.hasFailedInLine(place.source)) return;
    if (pair.target != nullptr && isMixedWithSibling(place, *pair.target)) return;
    scanDirectory({place, *pair.source, pair.target.get()});
    if (run_.stopped()) return;
    const std::vector<std::string> names = subdirectories(place, *pair.source);
    pair = {};  // a deep tree must not hold a descriptor for every level
    walkSubdirectories(place, names, false);
}

DirectoryPair CopieMod::pairOf(const Place& place) const {
    return {place.source, place.links, place.destination, targetLinks(place)};
}

// What comes next may be read while this directory is looked at.
void CopieMod::announce(const std::vector<std::string>& names, std::size_t first) {
    constexpr std::size_t most = 64;
    if (ahead_ == nullptr || first % most != 0) return;
    std::vector<DirectoryPair> pairs;
    for (std::size_t i = first; i < std::min(first + most, names.size()); ++i) {
        const Entered next(paths_, names[i]);
        pairs.push_back(pairOf({paths_.source, paths_.destination}));
    }
    ahead_->announce(std::move(pairs));
}

void CopieMod::verifySingleFile(const FileEntry& entry) {
    FileEntry existing;
    const bool found = files_.lookUp(roots().target, LinkRule::refuse, existing).ok();
    FileEntry file = entry;
    file.name = splitPath(roots().source).last;
    const std::string source = withTrailingBackslash(splitPath(roots().source).parent);
    const std::string destination = withTrailingBackslash(splitPath(roots().target).parent);
    verifyFile(file, found ? &existing : nullptr, {source, destination, LinkRule::follow});
}

void CopieMod::walkTree(const Place& place) {
    if (!mayCreate()) return look(place);
    const Wanted wanted = pass_ == Pass::tree ? Wanted::directories : Wanted::files;
    std::unique_ptr<Directory> listing;
    const Status listed = files_.openDirectory(place.source, place.links, wanted, listing);
    if (!listed.ok()) return sourceNotListed(place, listed);
    ++statistics_.directoriesRead;
    std::unique_ptr<Directory> target;
    const std::int32_t createdBefore = statistics_.directoriesCreated;
    if (!openTarget(place, target) || isMixedWithSibling(place, *target)) return;
    const bool isNew = statistics_.directoriesCreated != createdBefore;
    const bool hadRights = !isNew && target->hasRightsOf(*listing);
    const std::uint64_t addedBefore = queue_.added();
    if (pass_ == Pass::tree) {
        showTreeCounts();
    } else {
        scanDirectory({place, *listing, target.get()});
        if (run_.stopped()) return;
    }
    const std::vector<std::string> names = subdirectories(place, *listing);
    listing.reset();  // a deep tree must not hold a descriptor for every level
    target.reset();
    walkSubdirectories(place, names, isNew);
    // What is written into a directory may have needed rights that its original does not give.
    const bool hasRights = hadRights && queue_.added() == addedBefore &&
                           statistics_.directoriesCreated == createdBefore;
    // Last, since it may forbid writing. A volume that refuses keeps its own rights.
    if (isNew || (bringsRights() && !hasRights)) {
        queue_.matchDirectory(place.source, place.destination);
    }
}

// A copy that no backup of this program has made may show any rights: a restore gives them to none
// of the user's directories that are there.
bool CopieMod::bringsRights() const {
    return mayCreate() && (trees_->backsUp() || trees_->certificate() != nullptr);
}

// Below a root that was just listed, a directory is gone only when the root still stands: with an
// unplugged medium its files are not deleted, they cannot be read.
bool CopieMod::hasVanished(const Status& status) {
    FileEntry root;
    return status.saysAbsent() && files_.lookUp(roots().source, LinkRule::follow, root).ok();
}

void CopieMod::sourceNotListed(const Place& place, const Status& status) {
    const std::string directory = withoutTrailingBackslash(place.source);
    const bool isRoot = place.links == LinkRule::follow;
    const bool missing = isRoot ? saysMissing(status) : hasVanished(status);
    // One that is there but cannot be read is named whatever the pass: nothing else might be left
    // to copy, and the run must not look complete.
    if (!missing) errors_.unread(status.code(), directory);
    if (missing && isRoot) run_.tally(trees_->line().index).sourceMissing = true;
    if (isSpecialFolder(place.source)) return;
    // A link that leads back to where it stands hides nothing: the rest goes on.
    if (!isRoot && status.code() == error_number::cannotResolveName) return;
    if (pass_ != Pass::copy) return;

    if (!isRoot && run_.system.options.ContinueOnError != 0) {
        errors_.failedOnce(status.code(), directory);
        return;
    }
    display_.showCritical("Répertoire source '" + place.source + "' non trouvé.");
    run_.control.interruptionRequested = true;
}

// A backup makes no directory links: one that stands in the copy leads to somebody else's files. A
// restore goes back through the links that the backup has entered.
LinkRule CopieMod::targetLinks(const Place& place) const {
    return trees_->backsUp() && place.links == LinkRule::enter ? LinkRule::refuse : place.links;
}

// False when nothing below this place can be written: its target could not be made.
bool CopieMod::openTarget(const Place& place, std::unique_ptr<Directory>& target) {
    const auto open = [&] {
        return files_.openDirectory(place.destination, targetLinks(place), Wanted::nothing, target);
    };
    const auto openNew = [&] {
        const Status opened = open();
        if (!opened.ok()) errors_.failedInLine(opened.code(), place.source);
        return opened.ok();
    };
    // Nothing need be looked for in what was made just now. What stands in the way is told below.
    if (place.siblings != nullptr && place.siblings->inNewCopy) {
        if (!mayChange()) return false;
        if (makeTarget(place).ok()) return openNew();
    }
    const Status opened = open();
    if (!opened.ok()) {
        if (errors_.hasFailedInLine(place.source)) return false;
        return createMissingTarget(place, opened) && openNew();
    }
    if (place.links == LinkRule::enter && leadsBack(place, *target)) return false;
    // Once per run and directory is enough: the tree pass meets every one of them. What cannot be
    // removed now stays hidden from every listing until a later run can.
    const bool isRoot = place.links == LinkRule::follow;  // where certificates are written
    if (pass_ == Pass::tree && (isRoot || trees_->mayHoldLeftovers())) {
        (void)files_.removeLeftovers(place.destination);
    }
    return true;
}

// A mount in the written tree that shows what is read: one file would be written over another.
bool CopieMod::leadsBack(const Place& place, const Directory& target) {
    const std::string path = withoutTrailingBackslash(place.destination);
    FileEntry found;
    const FileEntry* entry = target.self();
    if (entry == nullptr && files_.lookUp(path, LinkRule::refuse, found).ok()) entry = &found;
    const bool isThere = entry != nullptr && entry->isDirectory() && !entry->isLink();
    if (!isThere || !trees_->showsSource(path, *entry)) return false;
    if (!errors_.hasFailedInLine(place.source)) {
        display_.AjouteECTxt(path + " est un montage qui montre les fichiers de " + roots().source +
                             " : rien n'y est écrit.");
    }
    errors_.failedInLine(error_number::invalidParameter, place.source);
    return true;
}

void CopieMod::showTreeCounts() {
    display_.showCount(std::to_string(statistics_.directoriesRead) + " répertoire(s) lu(s), " +
                       std::to_string(statistics_.directoriesCreated) + " répertoire(s) créé(s)");
    display_.runPendingEvents();
}

CopieMod::Entered::Entered(WalkPaths& paths, const std::string& name)
    : paths_(paths), added_(name.size() + 1) {
    for (std::string* path : {&paths_.source, &paths_.destination}) path->append(name).append("\\");
}

CopieMod::Entered::~Entered() {
    for (std::string* path : {&paths_.source, &paths_.destination}) {
        path->resize(path->size() - added_);
    }
}

void CopieMod::walkSubdirectories(const Place& place, const std::vector<std::string>& names,
                                  bool isNew) {
    FoldedNames handled;
    Siblings siblings{names, isNew};
    for (std::size_t i = 0; i < names.size(); ++i) {
        announce(names, i);
        if (run_.stopped()) return;
        if (!handled.add(names[i]) && isTaken(names[i], place, Wanted::directories)) continue;
        const Entered entered(paths_, names[i]);
        walkTree({paths_.source, paths_.destination, LinkRule::enter, &siblings});
        display_.runPendingEvents();
    }
}

// The names are gathered before any is entered, for the descriptor's sake.
std::vector<std::string> CopieMod::subdirectories(const Place& place, Directory& listing) {
    std::vector<std::string> names;
    if (pass_ == Pass::tree) {
        for (FileEntry entry; listing.next(entry);) {
            if (entry.isDirectory() && isWanted(place, entry)) names.push_back(entry.name);
        }
    } else {
        for (const FileEntry& entry : listing.takeDirectories()) {
            if (isWanted(place, entry)) names.push_back(entry.name);
        }
    }
    if (!listing.status().ok()) {
        errors_.failedOnce(listing.status().code(), withoutTrailingBackslash(place.source));
    }
    return names;
}

bool CopieMod::isWanted(const Place& place, const FileEntry& directory) {
    const std::string path = place.source + directory.name;
    if (isExcludedDirectory(place.source, directory.name, leftOut_)) return false;
    if (guard_.isTarget(path, directory)) return false;
    if (directory.mountPoint && pass_ == Pass::tree) trees_->mountMet(path, directory.id);
    return true;
}

}  // namespace coffrelune
