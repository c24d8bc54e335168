#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/unique_fd.h"

namespace coffrelune {

/// A path cut where the system accepts no more than 4096 bytes at once: `fd()` and `path()` go
/// together into an ...at() call. Costs nothing for an ordinary path.
class ShortPath {
  public:
    explicit ShortPath(const std::string& path);

    int error() const { return error_; }  // errno of a step on the way, 0 when there is none
    int fd() const { return directory_.valid() ? directory_.get() : AT_FDCWD; }
    const char* path() const { return path_; }

  private:
    UniqueFd directory_;
    const char* path_;
    int error_ = 0;
};

/// Opens an entry of `directory`; O_CLOEXEC is added. Returns 0 and the descriptor, or an errno
/// value.
int openEntry(int directory, const char* name, int flags, UniqueFd& fd);

/// The same for reading, without a trace: the time of the last access stays where the system allows
/// that, to the owner and to root.
int openQuietly(int directory, const char* name, int flags, UniqueFd& fd);

/// Opens any path; O_CLOEXEC is added. Returns 0 and the descriptor, or an errno value.
int openPath(const std::string& path, int flags, UniqueFd& fd);

/// statx of an entry of `directory` with all that an entry needs. 0 or an errno value. Never
/// triggers an automount.
int statEntry(int directory, const char* name, bool follow, struct statx& information);

/// The same of any path.
int statPath(const std::string& path, bool follow, struct statx& information);

dev_t deviceOf(const struct statx& information);

/// What the older call would have told of the same file.
struct stat statOf(const struct statx& information);

/// The text of a link. 0 or an errno value (EINVAL: no link).
int readLink(int directory, const char* name, std::string& text);

/// The components of a path, without empty ones and ".".
std::vector<std::string> splitNative(std::string_view path);

/// True when `path` is `root` or lies below it, on whole components. `root` has no trailing slash
/// but is "/" itself.
bool isWithin(std::string_view path, std::string_view root);

/// The part of `path` below `root`, without a slash at its start; `path` must be within `root`.
std::string_view below(std::string_view path, std::string_view root);

/// Joins with one slash; an empty `rest` gives `directory`.
std::string joinNative(const std::string& directory, std::string_view rest);

/// An absolute path with ".", ".." and doubled slashes taken out by the text alone.
std::string normalizedPath(const std::string& absolute);

/// An absolute path with every link resolved. What does not exist (or leads round in a circle of
/// links) is kept as it is after the deepest part that does.
std::string canonicalPath(const std::string& absolute);

/// Whether a component is the same in both forms, as nearly all are.
bool isSameInBoth(std::string_view name);

/// One component of a native path in the core's form: "\" becomes U+F05C and ":" becomes U+F03A,
/// every other byte stays. A name that bears one of these two characters itself (files written by
/// other systems may) gets U+F0FF before it, so that no two names share one form.
std::string toCoreName(std::string_view native);

/// The way back; a name that came from a file always leads to that file again.
std::string toNativeName(std::string_view core);

}  // namespace coffrelune
