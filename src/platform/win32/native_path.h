#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace coffrelune {

/// A path as the wide calls take it without touching it: `\\?\C:\dir` or
/// `\\?\UNC\server\share\dir`, up to 32,767 characters. In this form alone "a." and "a ", "CON" and
/// names of more than 260 characters are the files that they name; no root but those of a drive or
/// a share ends with "\".
struct NativePath {
    std::wstring text;
    std::size_t rootLength = 0;  // of the drive's or share's root in `text`

    bool isRoot() const { return text.size() <= rootLength; }
    /// Last component; empty for a root.
    std::wstring_view name() const;
    /// What holds the last component; a root is its own holder.
    NativePath holder() const;
    NativePath child(std::wstring_view name) const;
};

/// Reads the core's form, also with "/", "." and "..", or one that bears the prefix already. 3 for
/// anything that is no absolute path, 87 when there is a NUL in it, 123 for a ":" in a name (it
/// would lead to a hidden stream of a file), 206 for a name or a path that is too long.
Status toNative(std::string_view core, NativePath& native);

/// The core's form of what the system calls a file.
std::string toCore(std::wstring_view native);

/// True for a path of a drive ("X:", "X:\...") or of a share ("\\server...").
bool hasCoreForm(std::string_view text);

/// The path of `core` for calls that do not know the prefix: as the core writes it.
std::wstring plainPath(const std::string& core);

/// Where an open file lies, links resolved, in the long form. Empty when the system does not tell.
std::wstring finalPath(void* handle);

/// The same below its volume's own name, which stays when the volume gets another letter. Empty
/// also on a share.
std::wstring finalPathOnVolume(void* handle);

/// The path with every link and substituted drive resolved, as the disk spells it. What does not
/// exist is kept as it is after the deepest part that does; `core` itself when it is no path.
std::string resolvedPath(const std::string& core);

/// A path that a person gave, as every other program would take it: without the blanks and dots at
/// the end of a name, where nothing bears the name with them. A copy would else go to a directory
/// of its own that few programs can open, beside the one that is meant. A device ("F:\CON") becomes
/// what no path of a file is.
std::string usualForm(const std::string& core);

/// What a person typed, dropped or chose: quotes round it are taken off, "/" becomes "\", a
/// relative path is completed from the current directory. "." and ".." are resolved by the text;
/// the core's own form is changed in nothing else.
std::string fromTyped(const std::string& typed);

/// What a person entered in a window, where there is no current directory: an absolute path as
/// above, also "/C:/Docs", as a file's address on the net writes it; any other text as it is.
std::string fromEntered(const std::string& entered);

}  // namespace coffrelune
