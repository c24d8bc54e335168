#include "engine/copie_mod.h"

#include <algorithm>

#include "engine/exclusion_rules.h"
#include "engine/folded_names.h"
#include "system/paths.h"

namespace coffrelune {
namespace {

// Numbers that say that a directory is not there, as opposed to one that cannot be read.
bool saysMissing(std::uint32_t number) {
    return number == error_number::fileNotFound || number == error_number::pathNotFound ||
           number == error_number::notReady || number == error_number::deviceDoesNotExist;
}

}  // namespace

CopieMod::CopieMod(SystemMod& system, RunStatistics& statistics, OperationWindow& window)
    : system_(system),
      statistics_(statistics),
      window_(window),
      progress_(statistics, system.platform, window),
      copier_(system, statistics, progress_),
      errors_(system, statistics, window),
      excess_(system, statistics, window, errors_),
      guard_(system.platform.files) {}

void CopieMod::walkLine(const LineRoots& roots, bool analysisPass) {
    statistics_.analysisPass = analysisPass;
    statistics_.windowsDirectory = system_.platform.drives.windowsDirectory();
    statistics_.lineSourceRoot = withTrailingBackslash(roots.source);
    decision_ = {system_.Modifie != 0 || comparing(), system_.options.RecentSeul != 0,
                 system_.options.CorrectEteOff == 0};
    roots_ = roots;

    if (!destinationExists(roots.destination)) {
        statistics_.lastErrorNumber = error_number::deviceDoesNotExist;
        statistics_.interruptionRequested = true;
        return;
    }
    guard_.watch(roots);
    if (refuseLine(roots)) return;

    FileEntry source;
    const Status found = findSource(roots, source);
    if (found.ok() && !source.isDirectory()) {
        copySingleFile(roots, source);
        return;
    }
    // Only a source that is known to be missing is taken for a directory: a look-up that failed for
    // another reason may hide a file, whose copy a directory of its name would shut out for ever.
    if (saysMissing(found.code()) || isDriveRoot(roots.source)) createTarget(roots);
    if (stopped()) return;
    progress_.clearTexts();
    walkTree({withTrailingBackslash(roots.source), withTrailingBackslash(roots.target),
              LinkRule::follow});
}

// The test for a drive root comes first: it may hold nothing and yet be a freshly formatted disk.
bool CopieMod::destinationExists(const std::string& destination) {
    if (isDriveRoot(destination)) {
        const std::vector<std::string> roots = system_.platform.drives.roots();
        return std::any_of(roots.begin(), roots.end(), [&](const std::string& root) {
            return (root[0] | 0x20) == (destination[0] | 0x20);
        });
    }
    std::unique_ptr<Directory> directory;
    return system_.platform.files
        .openDirectory(destination, LinkRule::follow, Wanted::directories, directory)
        .ok();
}

Status CopieMod::findSource(const LineRoots& roots, FileEntry& entry) {
    if (isDriveRoot(roots.source)) {
        entry.attributes = attribute::directory;
        if (destinationExists(roots.source)) return {};
        return Status::failure(error_number::pathNotFound, roots.source);
    }
    return system_.platform.files.lookUp(withoutTrailingBackslash(roots.source), LinkRule::follow,
                                         entry);
}

bool CopieMod::refuseLine(const LineRoots& roots) {
    const std::string reason = guard_.refusal(roots);
    if (!reason.empty()) errors_.refuseLine(reason, roots.source);
    return !reason.empty();
}

void CopieMod::createTarget(const LineRoots& roots) {
    if (!mayCreate()) return;
    bool created = false;
    const Status status = copier_.createPath(roots.target, created);
    if (created) ++statistics_.directoriesCreated;
    if (status.ok()) {
        guard_.watch(roots);
    } else {
        errors_.countOnceInLine(status.code(), roots.source);
    }
}

// When nobody can tell whether there is a file to keep, none is written over.
bool CopieMod::isKept(const LineRoots& roots) {
    FileEntry existing;
    const Status found = system_.platform.files.lookUp(roots.target, LinkRule::refuse, existing);
    if (found.ok()) return true;
    if (saysMissing(found.code())) return false;
    errors_.countOnceInLine(found.code(), roots.source);
    return true;
}

// A single file is copied on every backup, changed or not, and without the question.
void CopieMod::copySingleFile(const LineRoots& roots, const FileEntry& entry) {
    if (statistics_.keepExisting && isKept(roots)) return;
    if (statistics_.analysisPass) {
        statistics_.totalBytes += static_cast<float>(entry.size);
        countToCopy(entry);
        return;
    }
    const SplitPath source = splitPath(roots.source);
    bool created = false;
    // What cannot be removed now stays hidden from every listing until a later run can.
    (void)system_.platform.files.removeLeftovers(splitPath(roots.target).parent);
    // A restore may find the directory gone. What stands in the way is told by the copy itself.
    (void)copier_.createPath(withoutTrailingBackslash(splitPath(roots.target).parent), created);
    if (created) ++statistics_.directoriesCreated;
    const Status copied =
        copier_.copy(entry, withoutTrailingBackslash(roots.source), roots.target, LinkRule::follow);
    if (copied.code() == error_number::requestAborted) {
        statistics_.interruptionRequested = true;
        return;
    }
    if (!copied.ok()) errors_.count(copied.code(), roots.source, source.parent);
    countDone(entry, copied.ok());
}

void CopieMod::walkTree(const Place& place) {
    std::unique_ptr<Directory> files;
    const Status listed =
        system_.platform.files.openDirectory(place.source, place.links, Wanted::files, files);
    if (!listed.ok()) {
        sourceNotListed(place, listed);
        return;
    }
    ++statistics_.directoriesRead;
    std::unique_ptr<Directory> target;
    if (!openTarget(place, target)) return;
    if (treeMode()) showTreeCounts();

    scanDirectory(*files, target.get(), place);
    files.reset();  // a deep tree must not hold a descriptor for every level
    target.reset();
    if (!stopped()) walkSubdirectories(place);
}

// Below a root that was just listed, a directory is gone only when the root still stands: with an
// unplugged medium its files are not deleted, they cannot be read.
bool CopieMod::hasVanished(const Status& status) {
    FileEntry root;
    return (status.code() == error_number::fileNotFound ||
            status.code() == error_number::pathNotFound) &&
           system_.platform.files.lookUp(roots_.source, LinkRule::follow, root).ok();
}

void CopieMod::sourceNotListed(const Place& place, const Status& status) {
    const std::string directory = withoutTrailingBackslash(place.source);
    const bool isRoot = place.links == LinkRule::follow;
    const bool missing = isRoot ? saysMissing(status.code()) : hasVanished(status);
    // One that is there but cannot be read is named whatever the pass: nothing else might be left
    // to copy, and the run must not look complete.
    if (!missing) errors_.nameOnce(status.code(), directory);
    if (isSpecialFolder(place.source)) return;
    // A link that leads back to where it stands hides nothing: the rest goes on.
    if (!isRoot && status.code() == error_number::cannotResolveName) return;
    if (missing && isRoot) statistics_.currentTally().sourceMissing = true;
    if (statistics_.analysisPass) return;

    if (!isRoot && system_.options.ContinueOnError != 0) {
        errors_.countOnce(status.code(), directory);
        return;
    }
    window_.showCritical("Répertoire source '" + place.source + "' non trouvé.");
    statistics_.interruptionRequested = true;
}

// A backup makes no directory links: one that stands in the copy leads to somebody else's files. A
// restore goes back through the links that the backup has entered.
LinkRule CopieMod::targetLinks(const Place& place) const {
    const bool isBackup = roots_.layout == Layout::normal;
    return isBackup && place.links == LinkRule::enter ? LinkRule::refuse : place.links;
}

// False when nothing below this place can be written: its target could not be made.
bool CopieMod::openTarget(const Place& place, std::unique_ptr<Directory>& target) {
    FileService& files = system_.platform.files;
    const Status opened =
        files.openDirectory(place.destination, targetLinks(place), Wanted::nothing, target);
    if (opened.ok()) {
        // Once per run and directory is enough: the tree pass meets every one of them.
        // What cannot be removed now stays hidden from every listing until a later run can.
        if (treeMode()) (void)files.removeLeftovers(place.destination);
        return true;
    }
    if (errors_.namedInLine(place.source)) return false;
    return !mayCreate() || createMissingTarget(place, target);
}

bool CopieMod::createMissingTarget(const Place& place, std::unique_ptr<Directory>& target) {
    bool created = false;
    Status status = copier_.createPath(place.destination, created);
    if (created) ++statistics_.directoriesCreated;
    if (status.ok()) {
        status = system_.platform.files.openDirectory(place.destination, targetLinks(place),
                                                      Wanted::nothing, target);
    }
    if (!status.ok()) {
        errors_.countOnceInLine(status.code(), place.source);
        return false;
    }
    if (place.links == LinkRule::follow) guard_.watch(roots_);
    return true;
}

void CopieMod::showTreeCounts() {
    window_.showCount(std::to_string(statistics_.directoriesRead) + " répertoire(s) lu(s), " +
                      std::to_string(statistics_.directoriesCreated) + " répertoire(s) créé(s)");
    window_.runPendingEvents();
}

void CopieMod::walkSubdirectories(const Place& place) {
    std::vector<std::string> names;
    if (!namesOfSubdirectories(place, names)) return;
    FoldedNames handled;
    for (const std::string& name : names) {
        if (!handled.add(name) && isTaken(name, place, Wanted::directories)) continue;
        walkTree({place.source + name + "\\", place.destination + name + "\\", LinkRule::enter});
        window_.runPendingEvents();
        if (stopped()) return;
    }
}

// The names are gathered before any is entered, for the descriptor's sake again.
bool CopieMod::namesOfSubdirectories(const Place& place, std::vector<std::string>& names) {
    std::unique_ptr<Directory> directories;
    const Status listed = system_.platform.files.openDirectory(place.source, place.links,
                                                               Wanted::directories, directories);
    if (!listed.ok()) {
        sourceNotListed(place, listed);
        return !stopped();
    }
    for (FileEntry entry; directories->next(entry);) {
        if (!entry.isDirectory()) continue;
        if (isExcludedDirectory(place.source, entry.name, statistics_)) continue;
        if (guard_.isTarget(place.source + entry.name, entry)) continue;
        names.push_back(entry.name);
    }
    if (!directories->status().ok()) {
        errors_.countOnce(directories->status().code(), withoutTrailingBackslash(place.source));
    }
    return !stopped();
}

}  // namespace coffrelune
