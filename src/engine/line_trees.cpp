#include "engine/line_trees.h"

#include <algorithm>

#include "platform/names.h"
#include "system/paths.h"

namespace coffrelune {
namespace {

// Through whatever mounts the two are reached. Where the system names no volumes, all of them may
// be one.
bool liesWithin(const TreePlace& inner, const TreePlace& outer) {
    if (inner.volume.empty() && outer.volume.empty()) return true;
    return inner.volume == outer.volume && isWithin(inner.path, outer.path);
}

}  // namespace

LineTrees::LineTrees(RunState& run, CopyErrors& errors, RunLine line)
    : run_(run), errors_(errors), files_(run.files()), line_(std::move(line)) {}

bool LineTrees::take() {
    if (refused_) return false;
    if (originalPath_.empty()) {
        originalPath_ = files_.resolve(roots().original());
        FileId id;
        if (files_.identify(roots().source, id).ok()) readRoots_.push_back(id);
        FileEntry root;
        targetIsLink_ = files_.lookUp(roots().target, LinkRule::refuse, root).ok() && root.isLink();
    }
    refused_ = !hold(roots().source, TreeUse::read, source_) ||
               (!isSingleFile_ && !hold(roots().target, TreeUse::write, target_));
    return !refused_;
}

// False when another run stands in the way, or the tree is there and cannot be held. What does not
// exist yet, or is no directory, is told by the walk that meets it; so is a source that may not be
// read.
bool LineTrees::hold(const std::string& root, TreeUse use, std::unique_ptr<HeldTree>& tree) {
    if (tree != nullptr) return true;
    const Status held = files_.hold(root, tree);
    if (!held.ok()) {
        const bool denied = held.code() == error_number::accessDenied && use == TreeUse::read;
        const bool isNone = held.saysAbsent() || held.code() == error_number::notADirectory ||
                            held.code() == error_number::deviceDoesNotExist ||
                            held.code() == error_number::notReady;
        if (use == TreeUse::read) isSingleFile_ = held.code() == error_number::notADirectory;
        if (isNone || denied) return true;
        errors_.unread(held.code(), root);
        return false;
    }
    if (!run_.comparing() && !claim(*tree, use, root)) return false;
    if (tree.get() == copyTree()) readCopy();
    return true;
}

bool LineTrees::claim(HeldTree& tree, TreeUse use, const std::string& root) {
    const Status claimed = tree.claim(use);
    if (claimed.ok()) return true;
    errors_.refused("une autre opération est en cours sur " + root + ".", claimed.code(),
                    roots().source);
    return false;
}

void LineTrees::readCopy() {
    // A directory whose names cannot be listed bears, for all that is known, the mark of others.
    const Status read = readMarks(files_, roots().copy(), copyMarks_);
    if (!read.ok()) copyMarks_.unreadable.emplace_back();
    if (!read.ok()) copyMarks_.failure = read;
    const Certificate* own = certificate();
    if (own == nullptr) return;
    foundComplete_ = backsUp() && own->complete;
    const std::string original = withTrailingBackslash(roots().original());
    for (const std::string& mount : own->mounts) {
        FileEntry entry;
        const Status found = files_.lookUp(original + mount, LinkRule::refuse, entry);
        // Behind a link, which the walk alone goes through: the deletion does not go there.
        if (found.code() == error_number::cannotResolveName) continue;
        if (!found.ok() || !entry.mountPoint) missingMounts_.push_back(mount);
    }
}

// By the path that names it, or by the place on its volume, which outlives letters and spellings.
bool LineTrees::isOwn(const Certificate& certificate) const {
    if (certificate.original == originalPath_) return true;
    const HeldTree* original = originalTree();
    return original != nullptr && !certificate.volume.empty() &&
           certificate.volume == original->place().volume &&
           certificate.pathOnVolume == original->place().path;
}

// Of several, which a former name may have left, an open one: it promises less.
const DirectoryMarks::Named* LineTrees::ownFile() const {
    const DirectoryMarks::Named* found = nullptr;
    for (const DirectoryMarks::Named& one : copyMarks_.certificates) {
        if (!isOwn(one.certificate)) continue;
        if (found == nullptr || !one.certificate.complete) found = &one;
    }
    return found;
}

bool LineTrees::mustOpen() const {
    const auto& all = copyMarks_.certificates;
    return ownFile() == nullptr || std::any_of(all.begin(), all.end(), [&](const auto& one) {
               return one.certificate.complete && isOwn(one.certificate);
           });
}

const Certificate* LineTrees::certificate() const {
    const DirectoryMarks::Named* file = ownFile();
    return file == nullptr ? nullptr : &file->certificate;
}

bool LineTrees::isShared() const {
    return !copyMarks_.unreadable.empty() ||
           copyMarks_.certificates.size() > (ownFile() == nullptr ? 0U : 1U);
}

bool LineTrees::copyIsHalfRestored() const {
    const auto& marks = copyMarks_.restoreMarks;
    return copyTree() != nullptr && std::any_of(marks.begin(), marks.end(), [&](const auto& name) {
               return name != markName();
           });
}

bool LineTrees::originalOnOtherVolume() const {
    const Certificate* own = certificate();
    const HeldTree* original = originalTree();
    return own != nullptr && original != nullptr && own->volume != original->place().volume;
}

void LineTrees::mountMet(const std::string& path, const FileId& id) {
    const std::size_t root = withTrailingBackslash(roots().source).size();
    const std::string mount = path.substr(std::min(root, path.size()));
    if (std::find(mounts_.begin(), mounts_.end(), mount) == mounts_.end()) {
        mounts_.push_back(mount);
        readRoots_.push_back(id);
    }
}

std::vector<std::string> LineTrees::knownMounts() const {
    std::vector<std::string> known = mounts_;
    if (const Certificate* own = certificate()) {
        known.insert(known.end(), own->mounts.begin(), own->mounts.end());
    }
    return known;
}

bool LineTrees::showsSource(const std::string& path, const FileEntry& directory) {
    const bool isReadRoot =
        std::any_of(readRoots_.begin(), readRoots_.end(),
                    [&](const FileId& id) { return id.known() && id == directory.id; });
    if (isReadRoot || !directory.mountPoint) return isReadRoot;
    std::unique_ptr<HeldTree> shown;
    if (source_ == nullptr || !files_.hold(path, shown).ok()) return true;
    if (liesWithin(shown->place(), source_->place())) return true;
    const std::string root = withTrailingBackslash(roots().source);
    return std::any_of(mounts_.begin(), mounts_.end(), [&](const std::string& met) {
        std::unique_ptr<HeldTree> read;
        return !files_.hold(root + met, read).ok() || liesWithin(shown->place(), read->place());
    });
}

const TimeGrid& LineTrees::heldTimes() {
    if (timesKnown_ || run_.system.options.DatesArrondies == 0) return heldTimes_;
    if (copyTree() == nullptr) return heldTimes_;
    // A copy that has been moved bears the times that its first volume has made of them.
    if (const Certificate* own = certificate()) heldTimes_ = own->times;
    // What cannot be tried out is as it was noted.
    if (backsUp() && !run_.comparing()) (void)target_->measureTimes(heldTimes_);
    timesKnown_ = true;
    return heldTimes_;
}

Status LineTrees::beforeChange() {
    if (changing_) return {};
    // What was not there when the pass began may be there by now.
    if ((source_ == nullptr || target_ == nullptr) && !take()) {
        return Status::failure(error_number::lockViolation, roots().target);
    }
    if (target_ == nullptr) return Status::failure(error_number::notReady, roots().target);
    if (source_ == nullptr) return {};  // there is nothing to be copied
    Status marked;
    if (!backsUp()) {
        marked = markRestore();
    } else if (mustOpen()) {
        const Certificate* own = certificate();
        // What was known of the original stays: it is what a later run compares it with.
        Certificate open = own == nullptr ? current() : *own;
        open.complete = false;
        // Where nothing claims anything yet, the flush before the first copy gets its name is soon
        // enough: without any certificate nothing is ever deleted by it.
        const bool isFirst = copyMarks_.certificates.empty() && copyMarks_.unreadable.empty();
        marked = store(open, isFirst ? Durability::nextFlush : Durability::now);
        if (!marked.ok() && ownFile() == nullptr) marked = {};
    }
    changing_ = marked.ok();
    return marked;
}

// Where the root itself cannot be written, the copy bears the mark: a backup onto it finds it
// there.
Status LineTrees::markRestore() {
    Status marked = writeMark(roots().original());
    if (!marked.ok()) marked = writeMark(roots().copy());
    if (!marked.ok()) {
        run_.display.AjouteECTxt("Attention : rien ne peut être noté dans " + roots().original() +
                                 " (erreur " + std::to_string(marked.code()) +
                                 "). Ne lancez aucune sauvegarde avant la fin de la restauration.");
    }
    // To bring files back matters more than the mark.
    return {};
}

Status LineTrees::writeMark(const std::string& root) {
    return files_.writeWhole(joinPath(root, markName()),
                             "Restauration inachevée de " + roots().copy() + "\n", Durability::now);
}

// One for each copy that is restored from, so that the end of one restore does not pass for that of
// another.
std::string LineTrees::markName() const {
    const std::string& self = copyTree()->place().self;
    return ownFileName(OwnFile::restoreMark, placeNumber(self.empty() ? roots().copy() : self));
}

// What this backup leaves out: the line's exclusions, and the directory of the system that runs. On
// another computer that is any directory, and a restore would take it for an excess one.
ExclusionList LineTrees::leftOut() const {
    ExclusionList list = line_.exclusions;
    const std::string windows = run_.system.platform.drives.windowsDirectory();
    const std::string root = withTrailingBackslash(roots().source);
    if (list.mode == ExclusionMode::all || windows == root || !isWithin(windows, root)) return list;
    // Entries that the mode ignores must not count because one is added.
    if (list.mode != ExclusionMode::listed) list = {ExclusionMode::listed, {}};
    list.directories.push_back(windows.substr(root.size()));
    return list;
}

Certificate LineTrees::current() const {
    const TreePlace& original = originalTree()->place();
    Certificate certificate;
    certificate.original = originalPath_;
    certificate.volume = original.volume;
    certificate.pathOnVolume = original.path;
    certificate.copy = copyTree()->place().self;
    certificate.exclusions = leftOut();
    certificate.mounts = mounts_;
    std::sort(certificate.mounts.begin(), certificate.mounts.end());
    certificate.times = heldTimes_;
    return certificate;
}

Status LineTrees::store(const Certificate& certificate, Durability durability) {
    const std::string name = ownFileName(OwnFile::certificate, placeNumber(certificate.original));
    const std::string path = joinPath(roots().copy(), name);
    Status stored = files_.writeWhole(path, certificateText(certificate), durability);
    if (!stored.ok()) {
        // One that says too much is worse than none.
        if (!certificate.complete) (void)removeOwn("");
        return stored;
    }
    // Left visible where this fails; only a file manager shows the difference.
    (void)files_.setAttributes(path, attribute::hidden);
    std::erase_if(copyMarks_.certificates, [&](const auto& one) { return one.name == name; });
    copyMarks_.certificates.push_back({name, certificate});
    return removeOwn(name);
}

// Every certificate of this pair but that of the name `kept`.
Status LineTrees::removeOwn(const std::string& kept) {
    Status outcome;
    std::erase_if(copyMarks_.certificates, [&](const auto& one) {
        if (one.name == kept || !isOwn(one.certificate)) return false;
        const Status removed = files_.removeFile(joinPath(roots().copy(), one.name));
        if (!removed.ok()) outcome = removed;
        return removed.ok();
    });
    return outcome;
}

bool LineTrees::mustConclude(bool complete) const {
    if (!complete || source_ == nullptr || target_ == nullptr) return false;
    if (!backsUp()) {
        FileEntry mark;
        return changing_ ||
               files_.lookUp(joinPath(roots().original(), markName()), LinkRule::refuse, mark)
                   .ok() ||
               files_.lookUp(joinPath(roots().copy(), markName()), LinkRule::refuse, mark).ok();
    }
    // An original in doubt is not taken for the new one because a run over it went well.
    if (inDoubt()) return false;
    Certificate wanted = current();
    wanted.complete = true;
    const Certificate* own = certificate();
    return own == nullptr || *own != wanted;
}

Status LineTrees::conclude() {
    if (backsUp()) {
        Certificate done = current();
        done.complete = true;
        return store(done, Durability::nextFlush);
    }
    Status status;
    for (const std::string& root : {roots().original(), roots().copy()}) {
        const Status removed = files_.removeFile(joinPath(root, markName()));
        if (!removed.ok() && !removed.saysAbsent()) status = removed;
    }
    return status;
}

void LineTrees::leaveOpen() {
    const Certificate* own = certificate();
    const bool isKnown = backsUp() ? own == nullptr || !own->complete : source_ == nullptr;
    if (changing_ || target_ == nullptr || isKnown) return;
    // Where even this cannot be written, nothing has been changed either.
    (void)beforeChange();
}

Status LineTrees::accept() {
    // What stands in the way, or is not there, is told by the passes.
    if (!backsUp() || !take() || originalTree() == nullptr) return {};
    DirectoryMarks marks;
    Status status = readMarks(files_, roots().original(), marks);
    if (!status.ok()) return status;
    for (const std::string& name : marks.restoreMarks) {
        status = files_.removeFile(joinPath(roots().original(), name));
        if (!status.ok()) return status;
    }
    for (const std::string& name : copyMarks_.restoreMarks) {
        status = files_.removeFile(joinPath(roots().copy(), name));
        if (!status.ok()) return status;
    }
    copyMarks_.restoreMarks.clear();
    const Certificate* own = certificate();
    if (own == nullptr || !inDoubt()) return {};
    Certificate accepted = *own;
    accepted.volume = originalTree()->place().volume;
    accepted.pathOnVolume = originalTree()->place().path;
    std::erase_if(accepted.mounts, [&](const std::string& mount) {
        return std::find(missingMounts_.begin(), missingMounts_.end(), mount) !=
               missingMounts_.end();
    });
    accepted.complete = false;
    status = store(accepted, Durability::now);
    if (status.ok()) missingMounts_.clear();
    return status;
}

}  // namespace coffrelune
