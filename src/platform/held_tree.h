#pragma once

#include <string>

#include "platform/status.h"
#include "platform/time_grid.h"

namespace coffrelune {

/// Where a directory lies, in words that outlive this run and this computer.
struct TreePlace {
    /// The volume that holds it ("uuid:1234-ABCD"); empty where the system tells nothing stable.
    std::string volume;
    /// Its path on that volume, in the core's form with a leading backslash ("\" for the top): the
    /// same under another letter, another mount point, or reached through a link.
    std::string path;
    /// What tells this very directory from every copy of it, on this volume or another; the same
    /// after it has been renamed, where the volume can tell. Empty when nothing does.
    std::string self;

    bool operator==(const TreePlace&) const = default;
};

/// How many runs may work on one tree: any number of readers, or one writer.
enum class TreeUse { read, write };

/// A directory that was taken hold of; see FileService::hold. Let go when destroyed.
class HeldTree {
  public:
    virtual ~HeldTree() = default;

    /// Asked of the system when it was taken hold of.
    virtual const TreePlace& place() const = 0;

    /// Success, or 33 when another process uses the tree in a way that does not agree with `use`.
    /// Kept until this object goes; may be asked again, also for the other use. Two holds of one
    /// process on one directory never stand in each other's way. A system that cannot lock there
    /// lets the run go on.
    virtual Status claim(TreeUse use) = 0;

    /// Everything written to the volume since the hold is safe when this succeeds, write errors
    /// that showed late included.
    virtual Status flush() = 0;

    /// What the volume makes of the times of files, tried out there on a file of the program's own
    /// that is removed again. 50 when it keeps none.
    virtual Status measureTimes(TimeGrid& grid) = 0;
};

}  // namespace coffrelune
