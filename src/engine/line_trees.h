#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/certificate.h"
#include "engine/copy_errors.h"
#include "engine/line_roots.h"

namespace coffrelune {

/// One line during a run: its two trees, held for as long as the run lasts, and what the program's
/// own files in them say of earlier runs. Keeps the certificate of the copy (a backup) and the mark
/// of the original (a restore) true whatever stops the run. The line of a single file has neither:
/// its copy is one file, whole or absent.
class LineTrees {
  public:
    LineTrees(RunState& run, CopyErrors& errors, RunLine line);

    const RunLine& line() const { return line_; }
    const LineRoots& roots() const { return line_.roots; }
    bool backsUp() const { return line_.roots.layout == Layout::normal; }

    /// Takes hold of the trees as far as they exist, and claims them: one run per tree. False when
    /// the line must not go on; that has been told. Called in every pass; what is held stays.
    bool take();
    /// The root of the written tree is a link, which a user made: nothing is deleted behind it.
    bool targetIsLink() const { return targetIsLink_; }

    /// An earlier run may have left unfinished files in the written tree. Not so where the copy was
    /// complete when it was taken hold of: then no run has been killed in it.
    bool mayHoldLeftovers() const { return !foundComplete_; }

    /// The times that the volume of the copy holds, where the user accepts that it rounds them; all
    /// of them else. A backup tries them out there; whoever only reads the copy believes what the
    /// backup has noted.
    const TimeGrid& heldTimes();

    /// Called before each change of the written tree: the first one makes the copy's certificate
    /// say that it is not complete, or marks the original as half restored. A failure means that
    /// nothing may be changed.
    Status beforeChange();

    /// The walk of the tree that is read has met a mount point.
    void mountMet(const std::string& path, const FileId& id);
    /// Where the original has mount points, by the certificate or by what this run has met;
    /// relative to its root.
    std::vector<std::string> knownMounts() const;
    /// True when a directory of the written tree is, through a mount, one of the tree that is read,
    /// or nobody can tell: what is written there would replace the user's only files.
    bool showsSource(const std::string& path, const FileEntry& directory);

    // ---- what the trees say ------------------------------------------------------------------
    const HeldTree* originalTree() const { return backsUp() ? source_.get() : target_.get(); }
    const HeldTree* copyTree() const { return backsUp() ? target_.get() : source_.get(); }
    /// The own files in the root of the copy, as they were when it was taken hold of.
    const DirectoryMarks& copyMarks() const { return copyMarks_; }
    /// Of this very pair, wherever original and copy lie by now; null when there is none.
    const Certificate* certificate() const;
    /// A certificate of another pair lies beside it.
    bool isShared() const;
    /// The copy is itself the original of another pair, whose restore into it is unfinished.
    bool copyIsHalfRestored() const;
    /// The copy is this pair's and another one's.
    bool isMixed() const { return certificate() != nullptr && copyMarks_.certificates.size() > 1; }
    /// The file `name` of a directory of the copy may be that of another pair, whose copy lies
    /// around this one or in it.
    bool mayBeOfAnother(const std::string& directory, const std::string& name);
    bool originalOnOtherVolume() const;
    /// Mount points of the original that the certificate knows and that show nothing now.
    const std::vector<std::string>& missingMounts() const { return missingMounts_; }

    // ---- the end of the run ------------------------------------------------------------------
    /// True when conclude() has something to write. `complete`: all of the line has been copied.
    bool mustConclude(bool complete) const;
    Status flush() { return target_->flush(); }
    const std::string& writtenVolume() const { return target_->place().volume; }
    /// Writes that the copy is complete, or that the restore is over. What it writes is safe after
    /// the next flush.
    Status conclude();
    /// The run knows that the written tree lacks something, though it has changed nothing yet.
    void leaveOpen();

    /// The user says that the original is the right one: no volume, mount point or unfinished
    /// restore of old speaks against it any more. Fails with what could not be written. Nothing in
    /// a restore, which has no doubts to be settled.
    Status accept();

  private:
    // Of a pair that has its files in a directory of this copy, too: its root, and the directory
    // there. Both are empty where nobody can tell.
    struct OtherOriginal {
        std::string root;
        std::string directory;
    };
    using OtherOriginals = std::vector<OtherOriginal>;

    const OtherOriginals& othersIn(const std::string& directory);
    std::vector<Certificate> knownOriginals() const;
    OtherOriginals othersAround() const;
    OtherOriginals othersThere(const std::string& directory) const;
    bool hold(const std::string& root, TreeUse use, std::unique_ptr<HeldTree>& tree);
    bool claim(HeldTree& tree, TreeUse use, const std::string& root);
    void readCopy();
    bool isOwn(const Certificate& certificate) const;
    const DirectoryMarks::Named* ownFile() const;
    ExclusionList leftOut() const;
    Certificate current() const;
    bool mustOpen() const;
    Status store(const Certificate& certificate, Durability durability);
    Status removeOwn(const std::string& kept);
    Status markRestore();
    Status writeMark(const std::string& root);
    std::string markName() const;
    bool inDoubt() const { return originalOnOtherVolume() || !missingMounts_.empty(); }

    RunState& run_;
    CopyErrors& errors_;
    FileService& files_;
    RunLine line_;
    std::unique_ptr<HeldTree> source_;
    std::unique_ptr<HeldTree> target_;
    std::string originalPath_;  // resolved
    DirectoryMarks copyMarks_;
    std::vector<std::string> missingMounts_;
    TimeGrid heldTimes_;
    std::vector<std::string> mounts_;  // met by the walk, relative to what is read
    std::vector<FileId> readRoots_;    // of what is read and of its mount points
    bool refused_ = false;
    bool targetIsLink_ = false;
    bool isSingleFile_ = false;  // a directory of its name in the destination is not its tree
    bool foundComplete_ = false;
    bool timesKnown_ = false;
    bool changing_ = false;                         // beforeChange() has done its work
    std::map<std::string, OtherOriginals> others_;  // by the directory of the copy
};

}  // namespace coffrelune
