#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/folded_names.h"
#include "platform/directory.h"

namespace coffrelune {

/// The same for two names of one entry, whatever numbers its volume makes up for each.
std::uint64_t lookOf(const FileEntry& entry);

/// Names of originals, by their hashes, that must not be copied: what they lead to is another's
/// copy.
struct Sharers {
    HashSet names{};
    Status failure{};  // why nobody can tell; then any of them may be one

    bool contains(std::string_view name) const;
};

/// What a directory of a copy lists, and the originals that lead there by their names: more of them
/// than there are entries share one.
class ListedEntries {
  public:
    Status add(Directory& listing);
    /// True when a look-up of `name`, which the copy lists or not, leaves open what it leads to.
    /// What is listed by its name alone can be looked at by none, so it is not counted for any.
    bool leavesOpen(std::string_view name, const Status& looked) const;
    /// An original of this name leads to `copy`. `isCurrent`: which is up to date with it. In the
    /// order in which the originals are copied.
    void lead(std::string_view name, const FileEntry& copy, bool isCurrent);
    /// All that share an entry but its owner: the original that is up to date with it, or else the
    /// one whose name it bears, or the first one. As many names as the copy lists may lead to one:
    /// these are hard links. Where numbers are made up, entries are told by their looks, and where
    /// several look alike, each is the original's whose name it bears. Of names that differ in
    /// their case alone the first one leads, since the walk copies no other.
    HashSet sharers() const;

  private:
    struct Claim {
        std::uint64_t name, number, look;
        std::size_t length;  // of the name, in characters
        bool isNumbered;     // by a number that is listed
        bool isListed;       // by this very name
        bool isCurrent;
        bool isRepeated;  // a name that came before it is the same but for its case
    };
    using Claims = std::vector<const Claim*>;
    using Keys = std::vector<std::uint64_t>;  // of the entries, sorted

    static void settle(Claims claims, std::uint64_t Claim::*key, const Keys& entries,
                       HashSet& losers);
    static void settleOne(std::span<const Claim*> claims, std::size_t entries, HashSet& losers);

    Keys numbers_;
    Keys looks_;
    HashSet names_;
    HashSet unreadable_;  // names
    FoldedNames led_;
    FoldedNames ledAndListed_;
    std::vector<Claim> claims_;
};

/// The copies of the files of one directory, to notice that two of them may be one.
class FileLooks {
  public:
    void note(std::string_view name, const FileEntry& copy, bool isReplaced);
    /// One is to be replaced that its volume may show by another name, or some are and some look
    /// alike, which is rare.
    bool areDoubtful();
    void clear();

  private:
    std::vector<std::uint64_t> seen_;
    bool replaces_ = false;
    bool replacesFolded_ = false;
};

/// The originals that a directory of the copy did not have when they were looked for, by size and
/// date, which are those of their copies.
class NewFiles {
  public:
    void note(const FileEntry& original);
    /// `copy` may be that of one of them. Volumes round a date by two seconds at most.
    bool mayHaveMade(const FileEntry& copy) const;
    void clear() { looks_ = HashSet(); }

  private:
    HashSet looks_;
};

/// True when some volumes may take the name for another that does not only differ by its case, or
/// show it otherwise.
bool mayBeFolded(std::string_view name);

/// The directories beside one, by their originals' names, and what was seen of their copies.
struct Siblings {
    const std::vector<std::string>& names;
    bool inNewCopy = false;  // the copy of their parent was made just now
    SeenEntries entries{};
    HashSet looks{};
    bool compared = false;  // those that look alike, with what the copy lists

    bool mayBeFolded() const;
};

}  // namespace coffrelune
