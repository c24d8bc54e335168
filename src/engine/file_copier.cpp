#include "engine/file_copier.h"

#include "engine/line_roots.h"
#include "system/paths.h"

namespace coffrelune {

FileCopier::FileCopier(SystemMod& system, Progress& progress)
    : system_(system), progress_(progress) {}

Status FileCopier::copyOnce(const std::string& source, const std::string& destination,
                            LinkRule links) {
    const bool withProgress = system_.OsLevel >= 1 && system_.options.AltCopie == 0;
    return system_.platform.files.copyFile(source, destination, links,
                                           withProgress ? &progress_ : nullptr);
}

Status FileCopier::copy(const FileEntry& entry, const std::string& source,
                        const std::string& destination, LinkRule links) {
    Status copied = copyOnce(source, destination, links);
    if (!copied.ok() && copied.code() != error_number::requestAborted) {
        setAttributes(destination, attribute::normal);
        copied = copyOnce(source, destination, links);
    }
    // The old content of a failed copy must keep its old date: with the new one it would pass for
    // up to date for ever.
    if (!copied.ok()) return copied;

    if (entry.isReadOnly() && system_.options.DelReadOnly != 0) {
        setAttributes(destination, entry.attributes);
    }
    if (system_.options.SynchroDate != 0) {
        // Ignored on purpose: the copy already bears the last-write time, which decides the next
        // run; the other times are a courtesy.
        (void)system_.platform.files.setTimes(destination, entry.times);
    }
    return copied;
}

void FileCopier::setAttributes(const std::string& path, std::uint32_t attributes) {
    (void)system_.platform.files.setAttributes(path, attributes & ~attribute::readOnly);
}

Status FileCopier::createPath(const std::string& path, DirectoryAccess access, bool& created) {
    FileService& files = system_.platform.files;
    const std::string whole = withTrailingBackslash(path);
    Status failure;
    created = false;
    // A drive or a share is not made: the system's refusal (5) would pass for the reason why a
    // level below it could not be. An empty component ends the path.
    std::size_t start = withTrailingBackslash(volumeOf(whole)).size();
    for (std::size_t end = whole.find('\\', start); end != std::string::npos && end != start;
         end = whole.find('\\', start)) {
        const bool isLast = end + 1 == whole.size();
        const Status level =
            files.createDirectory(whole.substr(0, end), isLast ? access : DirectoryAccess::usual);
        created = level.ok();
        if (!level.ok() && level.code() != error_number::alreadyExists && failure.ok()) {
            failure = level;
        }
        start = end + 1;
    }
    std::unique_ptr<Directory> directory;
    const Status opened = files.openDirectory(path, LinkRule::follow, Wanted::nothing, directory);
    return opened.ok() || failure.ok() ? opened : failure;
}

}  // namespace coffrelune
