#include "platform/posix/own_files.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <optional>
#include <utility>

#include "platform/names.h"
#include "platform/posix/listing.h"
#include "platform/posix/temporary_file.h"
#include "platform/posix/unique_fd.h"

namespace coffrelune {
namespace {

/// Calls `visit` with each name until one call returns false. 0 or an errno value.
template <typename Visit>
int visitNames(int directory, Visit visit) {
    UniqueFd fd(openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!fd.valid()) return errno;
    Listing listing(std::move(fd));
    while (const dirent64* entry = listing.next()) {
        if (!visit(*entry)) return 0;
    }
    return listing.error();
}

std::optional<OwnFile> kindOf(int directory, const dirent64& entry) {
    const std::optional<OwnFile> kind = ownFileKind(entry.d_name);
    struct stat information {};
    if (!kind || fstatat(directory, entry.d_name, &information, AT_SYMLINK_NOFOLLOW) != 0) {
        return {};
    }
    const bool isDirectory = S_ISDIR(information.st_mode);
    const bool isFile = S_ISREG(information.st_mode) || S_ISLNK(information.st_mode);
    return (isDirectory || isFile) && isOwnEntry(entry.d_name, isDirectory) ? kind : std::nullopt;
}

int removeEntry(int directory, const char* name) {
    return unlinkat(directory, name, 0) == 0 || errno == ENOENT ? 0 : errno;
}

}  // namespace

int removeTemporaries(int directory) {
    int failure = 0;
    const int error = visitNames(directory, [&](const dirent64& entry) {
        if (!isTemporaryName(entry.d_name)) return true;
        const int removal = removeTemporary(directory, entry.d_name);
        if (removal != 0) failure = removal;
        return true;
    });
    return failure != 0 ? failure : error;
}

int listOwnFiles(int directory, std::vector<std::string>& names) {
    names.clear();
    const int error = visitNames(directory, [&](const dirent64& entry) {
        const std::optional<OwnFile> kind = kindOf(directory, entry);
        if (kind && *kind != OwnFile::temporary) names.emplace_back(entry.d_name);
        return true;
    });
    if (error != 0) names.clear();
    return error;
}

int clearOwnFiles(int directory) {
    std::vector<std::string> names;
    bool alone = true;
    const int error = visitNames(directory, [&](const dirent64& entry) {
        alone = kindOf(directory, entry).has_value();
        if (alone) names.emplace_back(entry.d_name);
        return alone;
    });
    if (error != 0) return error;
    if (!alone) return ENOTEMPTY;
    for (const std::string& name : names) {
        const int removal = isTemporaryName(name) ? removeTemporary(directory, name.c_str())
                                                  : removeEntry(directory, name.c_str());
        if (removal != 0) return removal;
    }
    return 0;
}

}  // namespace coffrelune
