#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/copy_errors.h"
#include "engine/decision.h"
#include "engine/line_guard.h"
#include "engine/line_roots.h"
#include "engine/operation_window.h"

namespace coffrelune {

/// A line's roots with the roles swapped, for the deletion walk: `source` is the copy to be
/// cleaned, `destination` the directory on the line's side that holds `target`, the place it is a
/// copy of. C:\Data\Docs copied to E:\Backup gives E:\Backup\Docs, C:\Data\ and C:\Data\Docs; a
/// drive or share root has no parent and is its own reference.
LineRoots CheminsExcedents(const LineRoots& roots);

/// Deletes from a line's copy the files that its reference no longer has, or has otherwise: the
/// rule that decides what is copied decides this too. Directories stay. Whatever is in doubt is
/// kept and named: a deletion cannot be taken back.
class ExcessWalk {
  public:
    ExcessWalk(SystemMod& system, RunStatistics& statistics, OperationWindow& window,
               CopyErrors& errors);

    /// Cleans the copy of one line. `others`: the roots of every other line, selected or not, whose
    /// places are left alone.
    void cleanLine(const LineRoots& roots, const std::vector<LineRoots>& others);

    /// True of the error that only says that the reference of the line may tell nothing about what
    /// is too much: nothing is missing in what the run copies.
    static bool saysUnfinishedReference(const CopyError& error, const LineRoots& roots) {
        return error.number == error_number::invalidData && error.path == roots.source;
    }

  private:
    // A place of another line, known by its path and, where it exists, by its identity.
    struct Protected {
        std::string path;
        FileId id;
    };
    // One directory of the copy and its counterpart; both end with a backslash.
    struct Place {
        std::string copy;
        std::string reference;
    };

    bool prepare(const LineRoots& swapped, const std::vector<LineRoots>& others);
    bool referenceReadable(const std::string& reference);
    bool referenceFinished(const LineRoots& swapped);
    bool referenceHoldsFiles(const LineRoots& swapped);
    bool anyFileBelow(const std::string& directory, LinkRule links);
    bool sharedWithAnother(const std::string& copy, const std::vector<LineRoots>& others);
    void protect(const std::string& path);
    bool isProtected(const std::string& path, const FileEntry& entry) const;
    bool referenceStands();

    void walk(const Place& place);
    bool openReference(const Place& place, std::unique_ptr<Directory>& reference);
    void scan(Directory& files, Directory* reference, const Place& place);
    bool isExcess(const FileEntry& entry, Directory* reference, const Place& place);
    bool markTree();
    bool readByAnother(const std::string& tree, const std::vector<LineRoots>& others);
    bool willBeReplaced(const FileEntry& counterpart, const std::string& path);
    bool holdsSettings(const Place& place);
    void remove(const FileEntry& entry, const Place& place);
    std::vector<std::string> subdirectories(const Place& place, LinkRule links = LinkRule::refuse);

    bool stopped() const { return statistics_.interruptionRequested; }

    SystemMod& system_;
    RunStatistics& statistics_;
    OperationWindow& window_;
    CopyErrors& errors_;
    FileService& files_;
    LineGuard guard_;
    std::vector<Protected> protected_;
    LineRoots swapped_;            // of the current line
    bool marked_ = false;          // as unfinished
    bool keepsDiffering_ = false;  // files that merely differ
    std::string referenceRoot_;
    FileId referenceId_;
    DecisionOptions decision_;
};

}  // namespace coffrelune
