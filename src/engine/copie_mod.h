#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/copy_errors.h"
#include "engine/copy_queue.h"
#include "engine/file_copier.h"
#include "engine/line_roots.h"
#include "engine/line_trees.h"
#include "engine/progress.h"
#include "engine/restored_names.h"
#include "engine/rules.h"
#include "engine/shared_copies.h"

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
    // One directory of the walk; both paths end with a backslash. They are the walk's own, which
    // grow while it is in a directory of this one: each level's own paths would fill the memory of
    // a tree of thousands of levels.
    struct Place {
        const std::string& source;
        const std::string& destination;
        LinkRule links = LinkRule::enter;  // only the roots of a line are links that are followed
        Siblings* siblings = nullptr;
    };

    struct WalkPaths {
        std::string source;
        std::string destination;
    };

    // A directory of the one that the paths lead to, until this goes.
    class Entered {
      public:
        Entered(WalkPaths& paths, const std::string& name);
        Entered(const Entered&) = delete;
        Entered& operator=(const Entered&) = delete;
        ~Entered();

      private:
        WalkPaths& paths_;
        std::size_t added_;
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
    void announce(const std::vector<std::string>& names, std::size_t first);
    DirectoryPair pairOf(const Place& place) const;
    bool leadsBack(const Place& place, const Directory& target);
    bool mayBeOwn(const FileEntry& entry, const Place& place);
    RestoredNames::Owner otherOwner(const FileEntry& entry, const Place& place);
    bool createMissingTarget(const Place& place, const Status& opened);
    Status makeTarget(const Place& place);
    bool isBlocked(const Place& place);
    void showTreeCounts();
    void walkSubdirectories(const Place& place, const std::vector<std::string>& names, bool isNew);
    std::vector<std::string> subdirectories(const Place& place, Directory& listing);
    bool isWanted(const Place& place, const FileEntry& directory);

    bool isTaken(const std::string& name, const Place& place, Wanted kind);
    void scanDirectory(const Pair& pair);
    bool keepsSome() const;
    bool findExisting(const FileEntry& entry, const Pair& pair, FileEntry& existing, bool& found);
    bool sharesCopy(const FileEntry& entry, const FileEntry& existing, const Pair& pair);
    bool isCopyOfAnother(const FileEntry& entry, const FileEntry& existing, const Pair& pair);
    void noteSharers(const Pair& pair);
    Sharers sharers(const Pair& pair);
    bool isMixedWithSibling(const Place& place, const Directory& target);
    void compareSiblings(const Place& place);
    void scanFile(const FileEntry& entry, const Pair& pair, FileEntry& existing);
    void verifyFile(const FileEntry& entry, const FileEntry* existing, const Place& place);
    void verifySingleFile(const FileEntry& entry);
    void analyseFile(const FileEntry& entry, const Decision& decision, const Place& place);
    void copyFile(const FileEntry& entry, const FileEntry* existing, const Decision& decision,
                  const Pair& pair);
    bool mayReplace(const Replacement& replacement);
    bool mayChange();
    void tellTimes(KeptTimes kept);
    void countToCopy(const FileEntry& entry);
    void skip(const std::string& path, const FileEntry& entry, std::string_view reason);

    RunState& run_;
    FileService& files_;
    RunDisplay& display_;
    RunStatistics& statistics_;
    CopyErrors& errors_;
    Progress progress_;
    FileCopier copier_;
    CopyQueue queue_;
    LineGuard guard_;
    RestoredNames restored_;
    std::set<std::string> kept_;         // that a restore does not replace, and told
    std::set<std::string> toldVolumes_;  // that they do not hold the times of files

    // Of the line and pass in progress.
    LineTrees* trees_ = nullptr;
    WalkPaths paths_;
    Pass pass_ = Pass::analysis;
    // Originals whose copy is another's, by directory and its target.
    std::map<std::pair<std::string, std::string>, Sharers> sharers_;
    SeenEntries copies_;                          // of the files of one directory
    FileLooks looks_;                             // of the same
    NewFiles newFiles_;                           // of one directory, in the copy pass
    std::map<std::string, std::uint32_t> mixed_;  // copies of directories that are another's: why
    std::unique_ptr<WalkAhead> ahead_;            // where the pass changes nothing
    LeftOut leftOut_;
    DecisionOptions decision_;
};

}  // namespace coffrelune
