#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/copy_errors.h"
#include "engine/decision.h"
#include "engine/excess_walk.h"
#include "engine/file_copier.h"
#include "engine/line_guard.h"
#include "engine/line_roots.h"
#include "engine/operation_window.h"
#include "engine/progress.h"
#include "engine/run_statistics.h"

namespace coffrelune {

/// The copy engine: walks the two trees of a line depth first, a directory's files before its
/// sub-directories, and counts, lists or copies what the rules say. One object serves one
/// operation; the flags of RunStatistics and the operation kind choose what a pass does.
class CopieMod {
  public:
    CopieMod(SystemMod& system, RunStatistics& statistics, OperationWindow& window);

    /// One pass over one line. `analysisPass`: count and list only; otherwise act. Reports through
    /// the statistics and the window alone.
    void walkLine(const LineRoots& roots, bool analysisPass);

    /// Deletes the excess files of one line's copy; `others` as in ExcessWalk.
    void cleanLine(const LineRoots& roots, const std::vector<LineRoots>& others) {
        excess_.cleanLine(roots, others);
    }

  private:
    // One directory of the walk; both paths end with a backslash.
    struct Place {
        std::string source;
        std::string destination;
        LinkRule links = LinkRule::enter;  // only the roots of a line are links that are followed
    };

    bool comparing() const { return system_.operationKind == OperationKind::comparison; }
    bool treeMode() const { return !comparing() && system_.options.ArbreMode != 0; }
    bool mayCreate() const { return treeMode() || !statistics_.analysisPass; }
    bool stopped() const { return statistics_.interruptionRequested; }

    bool destinationExists(const std::string& destination);
    Status findSource(const LineRoots& roots, FileEntry& entry);
    bool refuseLine(const LineRoots& roots);
    void createTarget(const LineRoots& roots);
    bool isKept(const LineRoots& roots);
    void copySingleFile(const LineRoots& roots, const FileEntry& entry);

    void walkTree(const Place& place);
    bool hasVanished(const Status& status);
    void sourceNotListed(const Place& place, const Status& status);
    LinkRule targetLinks(const Place& place) const;
    bool openTarget(const Place& place, std::unique_ptr<Directory>& target);
    bool createMissingTarget(const Place& place, std::unique_ptr<Directory>& target);
    void showTreeCounts();
    void walkSubdirectories(const Place& place);
    bool namesOfSubdirectories(const Place& place, std::vector<std::string>& names);

    bool isTaken(const std::string& name, const Place& place, Wanted kind);

    void scanDirectory(Directory& files, Directory* target, const Place& place);
    bool keepsSome() const;
    void scanFile(const FileEntry& entry, Directory* target, const Place& place);
    void analyseFile(const FileEntry& entry, const Decision& decision, const Place& place);
    void copyFile(const FileEntry& entry, const Decision& decision, const Place& place);
    bool grant(const std::string& name, bool isNew);
    void countToCopy(const FileEntry& entry);
    void countDone(const FileEntry& entry, bool copied);

    SystemMod& system_;
    RunStatistics& statistics_;
    OperationWindow& window_;
    Progress progress_;
    FileCopier copier_;
    CopyErrors errors_;
    ExcessWalk excess_;
    LineGuard guard_;
    LineRoots roots_;  // of the current line
    DecisionOptions decision_;
};

}  // namespace coffrelune
