#pragma once

#include <sys/types.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/status.h"

namespace coffrelune {

struct Hold;

/// A root of the core's paths and the native directory that it stands for.
struct PathRoot {
    std::string core;             // "D:" or "\\server\share"
    std::string native;           // absolute, without links and without a slash at its end
    std::optional<dev_t> device;  // of the mounted volume; none: nothing can be unmounted there

    static PathRoot drive(char letter, std::string native,
                          std::optional<dev_t> device = std::nullopt);
    static PathRoot share(const std::string& server, const std::string& name, std::string native,
                          std::optional<dev_t> device = std::nullopt);
    bool isDrive() const { return core.size() == 2; }
};

/// Where a path of the core leads on this system.
struct Place {
    std::string core;    // as it was asked for
    std::string native;  // absolute; the native directory itself for a root
    std::string root;    // native directory of its drive or share
    std::optional<dev_t> device;
    std::shared_ptr<const Hold> hold;  // that it is reached from; none: by its path

    bool isRoot() const { return native == root; }
    /// Last component in the core's form; empty for a root.
    std::string name() const;
};

/// True for `X:\...`, `X:` and `\\server\...`.
bool hasCoreForm(std::string_view text);

/// Turns the core's paths into native ones and back. Letters and share names are found whatever
/// their case; names below them are taken as they are.
class PathMap {
  public:
    PathMap() = default;
    explicit PathMap(std::vector<PathRoot> roots) : roots_(std::move(roots)) {}

    const std::vector<PathRoot>& roots() const { return roots_; }

    /// 55 for a letter or share that does not exist now; 3 for a text that is no path of the core.
    /// ".." is taken out by the text alone and never leaves the root, as on Windows.
    Status locate(const std::string& corePath, Place& place) const;

    /// The core's form of an absolute native path without "..": below the innermost root that
    /// holds it, else as if "C:\" were "/". A drive root ends with a backslash, nothing else does.
    std::string toCore(const std::string& native) const;

    /// The core's form of what a person typed. `currentDirectory`: absolute, for a relative path.
    std::string fromNative(const std::string& typed, const std::string& currentDirectory) const;

  private:
    const PathRoot* rootOf(std::string_view corePath, std::string_view& rest) const;

    std::vector<PathRoot> roots_;
};

}  // namespace coffrelune
