#pragma once

#include <sys/types.h>

#include <array>
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
    PathMap(PathMap&&) = default;
    PathMap& operator=(PathMap&&) = default;

    const std::vector<PathRoot>& roots() const { return roots_; }

    /// 55 for a letter or share that does not exist now; 3 for a text that is no path of the core.
    /// ".." is taken out by the text alone and never leaves the root, as on Windows. Not for two
    /// threads at once.
    Status locate(const std::string& corePath, Place& place) const;

    /// The core's form of an absolute native path without "..": below the innermost root that
    /// holds it, else as if "C:\" were "/". A drive root ends with a backslash, nothing else does.
    std::string toCore(const std::string& native) const;

    /// The core's form of what a person typed. `currentDirectory`: absolute, for a relative path.
    std::string fromNative(const std::string& typed, const std::string& currentDirectory) const;

  private:
    /// The way to what was located last, without "." and "..". The next path shares most of it, and
    /// in a tree of thousands of levels it would take long to spell it out again.
    struct Trail {
        struct Step {  // where a component ends in the two forms; the first one is the root
            std::size_t core;
            std::size_t native;
        };
        const PathRoot* root = nullptr;
        std::string core;
        std::string native;
        std::vector<Step> steps;

        /// How many steps `corePath`, which is below `wanted`, begins with.
        std::size_t sharedWith(std::string_view corePath, const PathRoot& wanted) const;
        void cut(std::size_t stepsLeft);
        void goOn(std::string_view component);
    };

    Trail& trailFor(std::string_view corePath, const PathRoot& root) const;
    const PathRoot* rootOf(std::string_view corePath) const;

    std::vector<PathRoot> roots_;
    mutable std::array<Trail, 2> trails_;  // a walk goes down two trees in turn
    mutable std::size_t lastTrail_ = 0;
};

}  // namespace coffrelune
