#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/win32/entry_query.h"

namespace coffrelune {

/// Names of directories, and of no links, that a listing has met.
using MetDirectories = std::unordered_set<std::string>;

/// What a listing of a directory has told, for its look-ups: one call of the system for hundreds of
/// entries, where a look-up asks it once each, over the net as well, and has it open the file.
///
/// Only a name in the very spelling of the listing is answered from here. Whatever else the disk
/// takes for the same (another case, a short name) is left to the system, and so is what is not
/// there, unless nothing at all is: a first copy fills empty directories.
class KnownEntries {
  public:
    /// The entry of that name and true, when it is known and nobody has forgotten it.
    bool find(const std::string& name, FileEntry& entry);

    /// The same for a name that was not found, after reading on in the listing of `directory`, by a
    /// bounded number of entries, when that seems to pay.
    bool findFurther(const NativePath& directory, const std::string& name, FileEntry& entry);

    /// True when nothing bears the name, as far as a listing tells: it has come to its end and has
    /// shown none but the program's own files, and nothing that the program has written since can
    /// bear it. False where that is not known.
    bool lacks(const std::string& name) const;

    /// Reads the listing of `directory` at once, up to the same bound, and on from there without a
    /// look-up by name; `met` is told of its directories. 0 or the error that kept it from being
    /// opened.
    std::uint32_t readNow(const NativePath& directory, std::shared_ptr<MetDirectories> met);

    /// The program is about to write something of that name, somewhere: from now on it is left to
    /// the system, also under a name that differs by its case.
    void forget(std::wstring_view name);

  private:
    // Without the name, which is in `names_`.
    struct Item {
        std::uint64_t size = 0;
        FileTimes times;
        std::uint32_t attributes = 0;
        std::uint32_t nameStart = 0;
        std::uint32_t nameLength = 0;
    };

    bool lists(const std::string& name);
    std::uint32_t start(const NativePath& directory);
    void readOn();
    void add(const FileEntry& entry);
    void grow();
    std::uint32_t& slotOf(std::string_view name);
    std::string_view nameOf(const Item& item) const;
    bool isForgotten(const std::string& name) const;

    Listing listing_;
    std::shared_ptr<MetDirectories> met_;
    int unknown_ = 0;      // look-ups that found nothing here
    bool open_ = false;    // the listing has been started
    bool closed_ = false;  // there is no more to read in it
    bool empty_ = false;   // there was nothing in it
    std::vector<Item> items_;
    std::string names_;
    // Positions in items_ and one more, found by the hash of the name; 0 in a free slot. At most
    // half of them are taken, so that a search ends soon.
    std::vector<std::uint32_t> slots_;
    std::unordered_set<std::size_t> forgotten_;  // hashes of the names in one case
    bool forgottenAll_ = false;
};

}  // namespace coffrelune
