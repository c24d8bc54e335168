#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/folded_names.h"
#include "platform/directory.h"

namespace coffrelune {

/// The same for two names of one entry, whatever numbers its volume makes up for each.
std::uint64_t lookOf(const FileEntry& entry);

/// What a directory of a copy lists, and the originals that lead there by their names: more of them
/// than there are entries share one.
class ListedEntries {
  public:
    Status add(Directory& listing);
    /// An original of this name leads to `copy`.
    void lead(const std::string& name, const FileEntry& copy);
    /// All but the first of those that share an entry. As many names as the copy lists may lead to
    /// one: these are hard links. Where numbers are made up, and several entries look alike, each
    /// is the original's whose name it bears.
    std::set<std::string> sharers();

  private:
    struct Look {
        int listed = 0;  // entries that look so
        int led = 0;     // originals to them
        bool firstIsHidden = false;
    };

    std::map<std::uint64_t, int> numbers_;  // how many entries bear each
    std::map<std::uint64_t, Look> looks_;
    HashSet names_;
    std::vector<std::pair<std::string, std::uint64_t>>
        hidden_;  // originals by other names than it lists
    std::set<std::string> sharers_;
};

/// The copies of the files of one directory, to notice that two of them may be one.
class FileLooks {
  public:
    void note(const FileEntry& copy, bool isReplaced) {
        seen_.push_back(lookOf(copy));
        replaces_ = replaces_ || isReplaced;
    }
    /// Some are to be replaced and some look alike, which is rare.
    bool areDoubtful();
    void clear();

  private:
    std::vector<std::uint64_t> seen_;
    bool replaces_ = false;
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

/// The directories beside one, by their originals' names, and what was seen of their copies.
struct Siblings {
    const std::vector<std::string>& names;
    SeenEntries entries{};
    HashSet looks{};
    bool compared = false;  // those that look alike, with what the copy lists
};

/// True when some volumes may take one of the names for another that does not only differ by its
/// case, or show it otherwise.
bool mayBeFolded(const std::vector<std::string>& names);

}  // namespace coffrelune
