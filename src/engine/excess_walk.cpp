#include "engine/excess_walk.h"

#include <algorithm>

#include "engine/exclusion_rules.h"
#include "settings/unfinished_copies.h"
#include "system/paths.h"

namespace coffrelune {
namespace {

bool saysAbsent(const Status& status) {
    return status.code() == error_number::fileNotFound ||
           status.code() == error_number::pathNotFound;
}

}  // namespace

LineRoots CheminsExcedents(const LineRoots& roots) {
    const bool isVolume =
        withTrailingBackslash(volumeOf(roots.source)) == withTrailingBackslash(roots.source);
    const std::string reference =
        isVolume ? roots.source : withTrailingBackslash(splitPath(roots.source).parent);
    return {roots.target, reference, roots.source, roots.layout};
}

ExcessWalk::ExcessWalk(SystemMod& system, RunStatistics& statistics, OperationWindow& window,
                       CopyErrors& errors)
    : system_(system),
      statistics_(statistics),
      window_(window),
      errors_(errors),
      files_(system.platform.files),
      guard_(system.platform.files) {}

void ExcessWalk::cleanLine(const LineRoots& roots, const std::vector<LineRoots>& others) {
    guard_.watch(roots);
    const std::string reason = guard_.refusal(roots);
    if (!reason.empty()) return errors_.refuseLine(reason, roots.source);
    const LineRoots swapped = CheminsExcedents(roots);
    statistics_.analysisPass = true;
    statistics_.windowsDirectory = system_.platform.drives.windowsDirectory();
    statistics_.lineSourceRoot = withTrailingBackslash(swapped.source);
    decision_ = {system_.Modifie != 0, system_.options.RecentSeul != 0,
                 system_.options.CorrectEteOff == 0};
    if (prepare(swapped, others)) {
        walk({withTrailingBackslash(swapped.source), withTrailingBackslash(swapped.target)});
    }
}

bool ExcessWalk::prepare(const LineRoots& swapped, const std::vector<LineRoots>& others) {
    FileEntry root;
    std::unique_ptr<Directory> copy;
    // No copy, the copy of a single file, or a link that leads who knows where (which some systems
    // open as a directory): nothing to clean.
    if (!files_.lookUp(swapped.source, LinkRule::refuse, root).ok() || root.isLink()) return false;
    if (!files_.openDirectory(swapped.source, LinkRule::refuse, Wanted::directories, copy).ok()) {
        return false;
    }
    if (!referenceReadable(swapped.target) || sharedWithAnother(swapped.source, others)) {
        return false;
    }
    protected_.clear();
    swapped_ = swapped;
    marked_ = false;
    keepsDiffering_ = readByAnother(swapped.source, others);
    if (!referenceHoldsFiles(swapped) || !referenceFinished(swapped)) return false;
    // The reference itself may be mounted, or lie, inside the tree that is cleaned.
    protect(swapped.target);
    for (const LineRoots& other : others) {
        protect(other.source);
        protect(other.target);
    }
    return true;
}

// An unplugged disk, or a restore of what was never backed up, must not pass for a tree from which
// everything has been deleted.
bool ExcessWalk::referenceReadable(const std::string& reference) {
    referenceRoot_ = reference;
    referenceId_ = FileId{};
    std::unique_ptr<Directory> directory;
    Status status =
        files_.openDirectory(reference, LinkRule::follow, Wanted::directories, directory);
    if (status.ok()) status = files_.identify(reference, referenceId_);
    if (!status.ok()) errors_.nameOnce(status.code(), reference);
    return status.ok();
}

// A mount point without its volume, or the bare directories of a backup that was stopped before its
// first file, look like a tree from which everything has been deleted.
bool ExcessWalk::referenceHoldsFiles(const LineRoots& swapped) {
    if (anyFileBelow(withTrailingBackslash(swapped.target), LinkRule::follow)) return true;
    if (!anyFileBelow(withTrailingBackslash(swapped.source), LinkRule::refuse)) return false;
    window_.AjouteECTxt("Fichiers excédentaires conservés dans " + swapped.source + " : " +
                        swapped.target + " ne contient aucun fichier.");
    errors_.nameOnce(error_number::fileNotFound, swapped.target);
    return false;
}

// What a stopped backup never copied exists in the original alone, and what a stopped restore has
// deleted and not brought back yet exists in the copy alone.
bool ExcessWalk::referenceFinished(const LineRoots& swapped) {
    const bool isBackup = swapped.layout == Layout::normal;
    using Kind = UnfinishedCopies::Kind;
    const UnfinishedCopies unfinished(system_, isBackup ? Kind::originals : Kind::copies);
    if (!unfinished.hold(swapped.target)) return true;
    window_.AjouteECTxt(
        "Fichiers excédentaires conservés dans " + swapped.source + " : " +
        (isBackup ? "la dernière restauration dans " : "la dernière sauvegarde dans ") +
        swapped.target + (isBackup ? " n'a pas tout remis." : " n'a pas tout copié."));
    errors_.nameOnce(error_number::invalidData, swapped.target);
    return false;
}

bool ExcessWalk::anyFileBelow(const std::string& directory, LinkRule links) {
    std::unique_ptr<Directory> files;
    if (files_.openDirectory(directory, links, Wanted::files, files).ok()) {
        for (FileEntry entry; files->next(entry);) {
            if (!entry.isDirectory() && !isSystemFile(entry.name)) return true;
        }
    }
    files.reset();
    const std::vector<std::string> names = subdirectories({directory, directory}, links);
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        window_.runPendingEvents();
        return anyFileBelow(directory + name + "\\", LinkRule::refuse);
    });
}

bool ExcessWalk::sharedWithAnother(const std::string& copy, const std::vector<LineRoots>& others) {
    FileId id;
    const bool known = files_.identify(copy, id).ok();
    const std::string path = files_.resolve(copy);
    const bool shared = std::any_of(others.begin(), others.end(), [&](const LineRoots& other) {
        FileId otherId;
        return withTrailingBackslash(path).starts_with(
                   withTrailingBackslash(files_.resolve(other.target))) ||
               (known && files_.identify(other.target, otherId).ok() && otherId == id);
    });
    if (shared) {
        window_.AjouteECTxt("Fichiers excédentaires conservés dans " + copy +
                            " : une autre ligne y est copiée aussi.");
    }
    return shared;
}

void ExcessWalk::protect(const std::string& path) {
    Protected place{files_.resolve(path), {}};
    // A place that does not exist is not in the way.
    if (!files_.identify(path, place.id).ok()) place.id = FileId{};
    protected_.push_back(place);
}

bool ExcessWalk::isProtected(const std::string& path, const FileEntry& entry) const {
    return std::any_of(protected_.begin(), protected_.end(), [&](const Protected& place) {
        if (entry.id.known() && place.id.known()) return entry.id == place.id;
        return path == place.path;
    });
}

// Asked before anything is taken for deleted: the reference may have been unplugged meanwhile.
bool ExcessWalk::referenceStands() {
    FileId id;
    const Status status = files_.identify(referenceRoot_, id);
    if (status.ok() && id == referenceId_) return true;
    errors_.countOnce(status.ok() ? error_number::deviceDoesNotExist : status.code(),
                      referenceRoot_);
    return false;
}

void ExcessWalk::walk(const Place& place) {
    std::unique_ptr<Directory> files;
    const Status listed = files_.openDirectory(place.copy, LinkRule::refuse, Wanted::files, files);
    if (!listed.ok()) {
        if (!saysAbsent(listed)) errors_.nameOnce(listed.code(), place.copy);
        return;
    }
    ++statistics_.directoriesRead;
    // What cannot be removed now stays hidden from every listing until a later run can.
    (void)files_.removeLeftovers(place.copy);
    std::unique_ptr<Directory> reference;
    if (!openReference(place, reference)) return;
    if (!holdsSettings(place)) scan(*files, reference.get(), place);
    files.reset();  // a deep tree must not hold a descriptor for every level
    reference.reset();
    if (stopped()) return;

    for (const std::string& name : subdirectories(place)) {
        walk({place.copy + name + "\\", place.reference + name + "\\"});
        window_.runPendingEvents();
        if (stopped()) return;
    }
}

// False when the counterpart is there but cannot be read: its files keep their copies. A
// counterpart that is gone leaves `reference` empty, and every file of the copy is an excess file.
bool ExcessWalk::openReference(const Place& place, std::unique_ptr<Directory>& reference) {
    const Status opened =
        files_.openDirectory(place.reference, LinkRule::follow, Wanted::files, reference);
    if (opened.ok()) return true;
    if (saysAbsent(opened)) return referenceStands();
    errors_.nameOnce(opened.code(), withoutTrailingBackslash(place.reference));
    return false;
}

void ExcessWalk::scan(Directory& files, Directory* reference, const Place& place) {
    for (FileEntry entry; files.next(entry);) {
        if (!entry.isDirectory() && !isSystemFile(entry.name) &&
            !isProtected(place.copy + entry.name, entry) && isExcess(entry, reference, place)) {
            remove(entry, place);
        }
        window_.runPendingEvents();
        if (stopped()) return;
    }
}

bool ExcessWalk::isExcess(const FileEntry& entry, Directory* reference, const Place& place) {
    FileEntry counterpart;
    if (reference == nullptr || !reference->lookUp(entry.name, counterpart)) {
        // A look-up that failed says nothing yet; only the certain absence counts.
        const std::string path = place.reference + entry.name;
        const Status status = files_.lookUp(path, LinkRule::refuse, counterpart);
        if (saysAbsent(status)) return referenceStands();
        if (!status.ok()) {
            errors_.nameOnce(status.code(), path);
            return false;
        }
    }
    if (entry.unreadable) return false;  // of unknown age
    // What the copy pass would leave alone must not be deleted either: with `RecentSeul` a newer
    // file of the copy is kept by both.
    return !keepsDiffering_ && decide(entry, &counterpart, decision_).copy &&
           decide(counterpart, &entry, decision_).copy &&
           willBeReplaced(counterpart, place.reference + entry.name) && markTree();
}

// Until the copy pass has brought the counterparts, the tree lacks files that it had: whatever
// stops the program before that, no deletion on the other side may go by it. Without the mark
// nothing that merely differs is deleted: the copy pass replaces it just as well.
bool ExcessWalk::markTree() {
    using Kind = UnfinishedCopies::Kind;
    const Kind kind = swapped_.layout == Layout::normal ? Kind::copies : Kind::originals;
    if (!marked_) marked_ = UnfinishedCopies(system_, kind).add(swapped_.source).ok();
    return marked_;
}

// What lacks a file for a while, another line that reads it must not take for complete.
bool ExcessWalk::readByAnother(const std::string& tree, const std::vector<LineRoots>& others) {
    const std::string cleaned = withTrailingBackslash(files_.resolve(tree));
    return std::any_of(others.begin(), others.end(), [&](const LineRoots& other) {
        const std::string read = withTrailingBackslash(files_.resolve(other.source));
        return cleaned.starts_with(read) || read.starts_with(cleaned);
    });
}

// A file that merely differs goes only when the copy pass is sure to bring its counterpart: one
// that is empty may not start that pass, one that cannot be read fails in it, and the question
// before replacing must find something to ask about.
bool ExcessWalk::willBeReplaced(const FileEntry& counterpart, const std::string& path) {
    if (statistics_.askBeforeReplacing || counterpart.size == 0) return false;
    if (counterpart.isLink()) return true;
    std::string first;
    const Status read = files_.readWhole(path, 0, first);
    return read.ok() || read.code() == error_number::fileTooLarge;
}

// The program's own files are no part of what a line keeps in step.
bool ExcessWalk::holdsSettings(const Place& place) {
    FileId home;
    FileId directory;
    return !system_.homeDirectory.empty() && files_.identify(system_.homeDirectory, home).ok() &&
           files_.identify(place.copy, directory).ok() && home == directory;
}

void ExcessWalk::remove(const FileEntry& entry, const Place& place) {
    const std::string path = place.copy + entry.name;
    statistics_.totalBytes += static_cast<float>(entry.size);
    ++statistics_.filesDeleted;
    window_.showFile(path);
    window_.showCount(std::to_string(statistics_.filesDeleted) +
                      " fichier(s) effacé(s) sur la destination ");
    // A file that cannot be deleted counts all the same and stays: the next run tries again.
    (void)files_.removeFile(path);
}

std::vector<std::string> ExcessWalk::subdirectories(const Place& place, LinkRule links) {
    std::vector<std::string> names;
    std::unique_ptr<Directory> directories;
    const Status listed = files_.openDirectory(place.copy, links, Wanted::directories, directories);
    if (!listed.ok()) return names;
    for (FileEntry entry; directories->next(entry);) {
        if (!entry.isDirectory() || entry.isLink()) continue;
        if (isExcludedFromDeletion(place.copy, entry.name, statistics_)) continue;
        if (isProtected(place.copy + entry.name, entry)) continue;
        names.push_back(entry.name);
    }
    return names;
}

}  // namespace coffrelune
