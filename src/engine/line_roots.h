#pragma once

#include <string>
#include <vector>

#include "platform/platform.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// Which way a line is read: from its source to its copy, or back.
enum class Layout { normal, reversed };

/// The places that every pass over a line uses, so that a copy is always looked for where it was
/// made.
struct LineRoots {
    std::string source;       // what is read: a directory, a drive root or a single file
    std::string destination;  // what must exist before anything is written
    std::string target;       // what `source` becomes: a directory, or the copy of the file
    Layout layout = Layout::normal;

    /// The line's copy and the place that it is a copy of, whichever of them is read.
    const std::string& copy() const { return layout == Layout::normal ? target : source; }
    const std::string& original() const { return layout == Layout::normal ? source : target; }
};

/// Normal: C:\Data\Docs with F:\Save is read from C:\Data\Docs and written to F:\Save\Docs; the
/// drive root E:\ is written to F:\Save\E. Reversed: exactly the other way round, and only the
/// target's drive or share must exist, since a lost disk is what backups are for. "." and "..", "/"
/// and doubled backslashes are resolved first, wherever the two texts come from.
LineRoots lineRoots(const std::string& source, const std::string& destination, Layout layout);

/// A line's roots with the roles swapped, for the deletion walk: `source` is the tree to be
/// cleaned, `destination` the directory on the line's side that holds `target`, the place it is a
/// copy of. C:\Data\Docs copied to E:\Backup gives E:\Backup\Docs, C:\Data\ and C:\Data\Docs; a
/// drive or share root has no parent and is its own reference.
LineRoots CheminsExcedents(const LineRoots& roots);

/// The name under which a line's source lies in its destination: its last component, or the letter
/// of a drive root.
std::string copyName(const std::string& source);

/// The drive root or share that a path lies on: "C:\" or "\\server\share".
std::string volumeOf(const std::string& path);

/// True when `path` is `directory` or lies below it, by their texts.
bool isWithin(const std::string& path, const std::string& directory);

/// Restores, and comparisons from destination to source, read the copy.
Layout currentLayout(const SystemMod& system);

/// The places of a backup line, by its index, in the current layout. The line must be filled.
LineRoots rootsOfLine(const SystemMod& system, int line);

/// A backup line that takes part in a run.
struct RunLine {
    int index = 0;
    LineRoots roots;
    ExclusionList exclusions;
};

/// Every line that is filled, selected or not, without its exclusions.
std::vector<RunLine> filledLines(const SystemMod& system);

/// The lines that are selected and filled, in their order. Their exclusions are read now: a restore
/// may bring back an older settings file in the middle of the run.
std::vector<RunLine> selectedLines(SystemMod& system);

/// Keeps a line from harming itself: from writing over its own source, and from walking into its
/// own copy. Places are compared as the file system resolves them.
class LineGuard {
  public:
    explicit LineGuard(FileService& files) : files_(files) {}

    /// Called at the start of each line, and again once its target has been created.
    void watch(const LineRoots& roots);

    /// Why the line must not be run, for the user; empty when nothing speaks against it. Its copy
    /// would be its original itself or one of its ancestors: copying would write over the original,
    /// and deleting excess files would delete it (a copy inside the original is allowed, both
    /// ways). Or the copy would not lie strictly below the line's destination: in the destination
    /// itself or beside it are the files of others.
    std::string refusal(const LineRoots& roots) const;

    /// True when the directory `path`, listed as `entry`, is the line's own target. Called for each
    /// directory of the line that a walk meets, those above a directory before it.
    bool isTarget(const std::string& path, const FileEntry& entry);

  private:
    static bool copyHasNoPlace(const LineRoots& roots);
    bool anyAncestorIs(std::string path, const FileId& id);

    FileService& files_;
    FileId source_;
    FileId target_;
    std::string targetPath_;          // resolved
    bool copyHoldsOriginal_ = false;  // or is it
    bool metLink_ = false;            // what is met may lie on any volume
    bool onShare_ = false;            // the same: a server may show other servers' directories
};

}  // namespace coffrelune
