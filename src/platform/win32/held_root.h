#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/file_entry.h"
#include "platform/win32/native_path.h"
#include "platform/win32/unique_handle.h"

namespace coffrelune {

/// A directory that is kept open so that it can be neither renamed nor removed, and the way to what
/// lies below it.
///
/// The directories on the last way that was asked for are kept open, too: none of them can be
/// exchanged for a link while something is done at its end, and the next call there opens nothing.
class HeldRoot {
  public:
    /// `asked`: the text by which it is known from here on; `path`: where that is now, links
    /// followed. 0 or a system error.
    std::uint32_t open(const NativePath& path, const NativePath& asked);

    /// True for the very text that was asked for, and for what continues it.
    bool covers(const NativePath& path) const;
    /// Where a covered path lies, whatever bears its name by now.
    NativePath placeOf(const NativePath& path) const;

    /// Success when a directory, the root or one below it, is reached without a link, but for those
    /// that were entered; 1921 for a link, 3 for anything else that is no directory.
    std::uint32_t walkTo(const NativePath& directory);
    /// Walks to a directory that is not open yet. True when it was reached and is no link: nothing
    /// need be asked about it by its path.
    bool opensPlain(const NativePath& directory);
    /// The end of the last way again: an empty directory can become a junction while it is open.
    /// The others cannot: each holds the next one.
    std::uint32_t checkEnd() const;

    /// From here on, the directory that a link leads to now may be reached through it.
    void enter(const NativePath& link, const FileId& target) { entered_[link.text] = target; }

    /// A directory below it may be on another volume.
    bool hasEntered() const { return !entered_.empty(); }

    /// Closes a directory, and what is open below it, that is about to be removed.
    void letGo(const NativePath& path);

    void* handle() const { return root_.get(); }
    const NativePath& path() const { return path_; }
    /// How long the text is that was asked for: the longest of several holds is the innermost.
    std::size_t askedLength() const { return asked_.text.size(); }

  private:
    struct Level {
        NativePath path;
        UniqueHandle entry;   // the directory, or the link that was entered
        UniqueHandle target;  // of such a link
    };

    std::uint32_t step(const NativePath& directory);

    NativePath asked_;
    NativePath path_;  // the root's own, no link on the way
    UniqueHandle root_;
    std::vector<Level> levels_;
    std::map<std::wstring, FileId> entered_;
};

}  // namespace coffrelune
