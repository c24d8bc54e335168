#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/folded_names.h"
#include "engine/line_roots.h"
#include "engine/line_trees.h"
#include "engine/objections.h"
#include "engine/rules.h"

namespace coffrelune {

/// Deletes from the tree that a line writes the files that the tree that it reads, its reference,
/// certainly no longer has. A file that merely differs is counted and stays: the copy pass replaces
/// it. Directories stay, but for one whose name a file bears in the reference. Whatever is in doubt
/// is kept and told: a deletion cannot be taken back.
class ExcessWalk {
  public:
    ExcessWalk(RunState& run, CopyErrors& errors);

    /// The places of every filled line, selected or not, are kept from each other's deletions.
    void protect(const std::vector<RunLine>& lines);

    /// Called for each line before the run changes anything.
    void prepare(const LineTrees& trees);

    /// `loadedLast`: the exclusions of the last line of the pass before, which count for every line
    /// besides its own. True when a file and a directory of one name have been set right: what the
    /// tree pass could not make then must be made.
    bool cleanLine(LineTrees& trees, const ExclusionList& loadedLast);

  private:
    // A place of a line, known by its path and, where it exists, by its identity.
    struct Protected {
        int line = 0;
        bool isCopy = false;
        std::string path;  // resolved
        FileId id;
    };
    // The directories of one directory of the reference, without their case.
    struct DirectoryNames {
        FoldedNames all;
        FoldedNames repeated;
    };
    // One directory of the cleaned tree and its counterpart; both end with a backslash.
    struct Place {
        std::string cleaned;
        std::string reference;   // empty: the reference certainly has no such directory
        bool makesRoom = false;  // for a file of the same name
        Place* above = nullptr;
        std::unique_ptr<DirectoryNames> names;  // once they are gathered
        std::optional<bool> shared;             // see isShared()
        std::optional<bool> hidesFiles;         // see hidesNames()
        std::optional<bool> hidesDirectories;
    };
    enum class Step { count, remove };

    bool referenceReadable();
    bool isSingleFile();
    bool copiedByAnother() const;
    bool keepsAll();
    bool holdsFiles();
    bool anyFileBelow(const std::string& directory, LinkRule links);
    void announce();
    void tellKept(const std::string& directory, const std::string& reason);
    bool isProtected(const std::string& path, const FileEntry& entry) const;
    bool referenceStands();

    void walkFromRoot(Step step);
    void walk(Place& place);
    bool holdsSettings(const Place& place);
    bool belongsToOthers(const Place& place);
    bool openReference(const Place& place, std::unique_ptr<Directory>& reference);
    void scan(Directory& files, Directory* reference, Place& place);
    void handle(const FileEntry& entry, Directory* reference, Place& place);
    bool isGone(const FileEntry& entry, Directory* reference, const Place& place,
                FileEntry& counterpart, bool& known);
    bool isSpelledOtherwise(const FileEntry& entry, Place& place);
    bool listReference(const Place& place, Wanted kind, std::unique_ptr<Directory>& listing);
    bool isListed(const Directory& listing, const Place& place);
    void remove(const FileEntry& entry, const Place& place);
    void showDeleted(const FileEntry& entry, const std::string& path);
    bool enter(Place& place, const std::string& name, Place& below);
    bool enterReference(Place& place, const std::string& name, Place& below);
    bool enterNamesake(Place& place, const std::string& name, Place& below);
    bool gatherNames(Place& place);
    bool findNamesake(const Place& place, const std::string& name, const std::string& cleaned,
                      std::string& namesake);
    std::optional<bool> areOne(const Place& place, const std::string& name,
                               const std::string& path);
    bool isShared(Place& place);
    bool hides(Place& place, Wanted kind);
    std::optional<bool> hidesNames(const Place& place, Wanted kind);
    bool listCleaned(const Place& place, FoldedNames& names);
    bool isLeftOutNow(const Place& place, const FileEntry& entry) const;
    bool isKnownMount(const std::string& path) const;
    std::vector<std::string> subdirectories(const Place& place, LinkRule links);
    void tellUnread(const Status& listed, const std::string& directory);

    bool stopped() const { return run_.stopped() || failed_; }
    const LineRoots& roots() const { return trees_->roots(); }

    RunState& run_;
    CopyErrors& errors_;
    FileService& files_;
    LineGuard guard_;
    std::vector<Protected> protected_;
    FileId home_;                                         // of the settings
    std::string homePath_;                                // resolved
    std::map<int, std::optional<Objection>> objections_;  // by line index

    // Of the current line.
    LineTrees* trees_ = nullptr;
    LeftOut leftOut_;
    std::vector<std::string> mounts_;  // full paths in the cleaned tree, which is not entered there
    DecisionOptions decision_;
    FileId referenceId_;
    Step step_ = Step::count;
    std::uint64_t counted_ = 0;
    std::vector<std::string> firstCounted_;
    bool madeRoom_ = false;
    bool failed_ = false;  // nothing may be changed in this tree

    // Names of the reference directory being looked at, gathered when one of them is missing.
    std::unique_ptr<FoldedNames> referenceNames_;
};

}  // namespace coffrelune
