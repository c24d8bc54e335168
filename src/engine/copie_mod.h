#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/copy_errors.h"
#include "engine/decision.h"
#include "engine/exclusion_rules.h"
#include "engine/file_copier.h"
#include "engine/line_guard.h"
#include "engine/line_trees.h"
#include "engine/progress.h"

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
    bool openTarget(const Place& place, std::unique_ptr<Directory>& target);
    bool leadsBack(const Place& place);
    bool mayBeOwn(const FileEntry& entry, const Place& place);
    bool createMissingTarget(const Place& place, const Status& opened);
    bool isBlocked(const Place& place);
    void showTreeCounts();
    void walkSubdirectories(const Place& place, const std::vector<std::string>& names);
    std::vector<std::string> subdirectories(const Place& place, Directory& listing);

    bool isTaken(const std::string& name, const Place& place, Wanted kind);
    void scanDirectory(Directory& files, Directory* target, const Place& place);
    bool keepsSome() const;
    bool findExisting(const FileEntry& entry, Directory* target, const Place& place,
                      FileEntry& existing, bool& found);
    void scanFile(const FileEntry& entry, Directory* target, const Place& place);
    void analyseFile(const FileEntry& entry, const Decision& decision, const Place& place);
    void copyFile(const FileEntry& entry, const Decision& decision, const Place& place);
    bool mayReplace(const std::string& name);
    bool mayChange();
    void tellObstacle(const std::string& text);
    void countToCopy(const FileEntry& entry);
    void countDone(const FileEntry& entry, bool copied);

    RunState& run_;
    FileService& files_;
    RunDisplay& display_;
    RunStatistics& statistics_;
    CopyErrors& errors_;
    Progress progress_;
    FileCopier copier_;
    LineGuard guard_;

    // Of the line and pass in progress.
    LineTrees* trees_ = nullptr;
    Pass pass_ = Pass::analysis;
    LeftOut leftOut_;
    DecisionOptions decision_;
};

}  // namespace coffrelune
