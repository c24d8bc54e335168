#pragma once

#include <string>

namespace coffrelune {

/// Which way a line is read: from its source to its copy, or back.
enum class Layout { normal, reversed };

/// The places that every pass over a line uses, so that a copy is always looked for where it was
/// made.
struct LineRoots {
    std::string source;       // what is read: a directory, a drive root or a single file
    std::string destination;  // what must exist before anything is written
    std::string target;       // what `source` becomes: a directory, or the copy of the file
    Layout layout = Layout::normal;

    /// The line's copy and the place that it is a copy of, whichever of them is read.
    const std::string& copy() const { return layout == Layout::normal ? target : source; }
    const std::string& original() const { return layout == Layout::normal ? source : target; }
};

/// Normal: C:\Data\Docs with F:\Save is read from C:\Data\Docs and written to F:\Save\Docs; the
/// drive root E:\ is written to F:\Save\E. Reversed: exactly the other way round, and only the
/// target's drive or share must exist, since a lost disk is what backups are for. "." and "..", "/"
/// and doubled backslashes are resolved first, wherever the two texts come from.
LineRoots lineRoots(const std::string& source, const std::string& destination, Layout layout);

/// The name under which a line's source lies in its destination: its last component, or the letter
/// of a drive root.
std::string copyName(const std::string& source);

/// The drive root or share that a path lies on: "C:\" or "\\server\share".
std::string volumeOf(const std::string& path);

}  // namespace coffrelune
