#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/copy_errors.h"
#include "engine/copy_queue.h"
#include "engine/file_copier.h"
#include "engine/line_roots.h"
#include "engine/line_trees.h"
#include "engine/progress.h"
#include "engine/rules.h"

namespace coffrelune {

/// The copy engine: walks the two trees of a line depth first, a directory's files before its
/// sub-directories, and makes directories, counts, lists or copies as the pass says. One object
/// serves one operation.
class CopieMod {
  public:
    CopieMod(RunState& run, CopyErrors& errors);

    /// One pass over one line, any but the deletion. Reports through the run's state alone.
    void walkLine(LineTrees& trees, Pass pass);

  private:
    // One directory of the walk; both paths end with a backslash.
    struct Place {
        std::string source;
        std::string destination;
        LinkRule links = LinkRule::enter;  // only the roots of a line are links that are followed
    };

    // The same, open. The target is null where there is none, which no copy pass goes on with.
    struct Pair {
        const Place& place;
        Directory& source;
        Directory* target = nullptr;
    };

    bool mayCreate() const { return pass_ == Pass::tree || pass_ == Pass::copy; }
    const LineRoots& roots() const { return trees_->roots(); }

    bool destinationExists(const std::string& destination);
    Status findSource(FileEntry& entry);
    bool isRefused();
    void createTarget();
    bool createRoot();
    bool isKept();
    void copySingleFile(const FileEntry& entry);

    void walkTree(const Place& place);
    bool bringsRights() const;
    bool hasVanished(const Status& status);
    void sourceNotListed(const Place& place, const Status& status);
    LinkRule targetLinks(const Place& place) const;
    void look(const Place& place);
    bool openTarget(const Place& place, std::unique_ptr<Directory>& target);
    void announce(const Place& place, const std::vector<std::string>& names, std::size_t first);
    DirectoryPair pairOf(const Place& place) const;
    bool leadsBack(const Place& place);
    bool mayBeOwn(const FileEntry& entry, const Place& place);
    bool createMissingTarget(const Place& place, const Status& opened);
    bool isBlocked(const Place& place);
    void showTreeCounts();
    static Place below(const Place& place, const std::string& name);
    void walkSubdirectories(const Place& place, const std::vector<std::string>& names);
    std::vector<std::string> subdirectories(const Place& place, Directory& listing);
    bool isWanted(const Place& place, const FileEntry& directory);

    bool isTaken(const std::string& name, const Place& place, Wanted kind);
    void scanDirectory(const Pair& pair);
    bool keepsSome() const;
    bool findExisting(const FileEntry& entry, const Pair& pair, FileEntry& existing, bool& found);
    void scanFile(const FileEntry& entry, const Pair& pair);
    void analyseFile(const FileEntry& entry, const Decision& decision, const Place& place);
    void copyFile(const FileEntry& entry, const Decision& decision, bool found, const Pair& pair);
    bool mayReplace(const std::string& name);
    bool mayChange();
    void tellObstacle(const std::string& text);
    void countToCopy(const FileEntry& entry);

    RunState& run_;
    FileService& files_;
    RunDisplay& display_;
    RunStatistics& statistics_;
    CopyErrors& errors_;
    Progress progress_;
    FileCopier copier_;
    CopyQueue queue_;
    LineGuard guard_;

    // Of the line and pass in progress.
    LineTrees* trees_ = nullptr;
    Pass pass_ = Pass::analysis;
    std::unique_ptr<WalkAhead> ahead_;  // where the pass changes nothing
    LeftOut leftOut_;
    DecisionOptions decision_;
};

}  // namespace coffrelune
