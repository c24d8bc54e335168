#include "platform/win32/win32_directory.h"

#include <windows.h>

#include "platform/names.h"
#include "platform/win32/wide_text.h"

namespace coffrelune {
namespace {

/// Errors that only say that nothing here bears the name. 3 is none of them: the directory itself
/// is gone then.
bool isAbsence(std::uint32_t error) {
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_INVALID_NAME ||
           error == ERROR_NO_MORE_FILES;
}

bool isDots(const std::string& name) {
    return name == "." || name == "..";
}

bool mayBeOldName(const FileEntry& entry) {
    constexpr DWORD marks = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
    return entry.isDirectory() && entry.isLink() && (entry.attributes & marks) == marks;
}

}  // namespace

std::uint32_t Win32Directory::open() {
    return wanted_ == Wanted::nothing ? 0 : listing_.open(path_, L"*");
}

std::uint32_t Win32Directory::onlyLook(std::shared_ptr<MetDirectories> met) {
    met_ = std::move(met);
    return wanted_ == Wanted::nothing ? known_->readNow(path_, met_) : 0;
}

bool Win32Directory::next(FileEntry& entry) {
    while (listing_.next(entry)) {
        if (isWanted(entry)) {
            const bool isKept = wanted_ == Wanted::directories
                                    ? complete(entry)
                                    : !mayBeOldName(entry) || !isShut(entry.name);
            if (isKept) return true;
        } else if (wanted_ == Wanted::files && entry.isDirectory() && !isDots(entry.name) &&
                   !isOwnEntry(entry.name, true)) {
            directories_.push_back(entry);
            if (met_ != nullptr && !entry.isLink()) met_->insert(entry.name);
        }
    }
    if (listing_.error() != 0) status_ = Status::failure(listing_.error(), core_);
    return false;
}

std::vector<FileEntry> Win32Directory::takeDirectories() {
    std::erase_if(directories_, [&](FileEntry& entry) { return !complete(entry); });
    return std::move(directories_);
}

/// False for a directory that is not to be listed. A walk of directories must know the place that
/// it copies to when it meets it, whatever the path or the link that leads there; one that only
/// looks can ask for what it needs.
bool Win32Directory::complete(FileEntry& entry) const {
    if (mayBeOldName(entry) && isShut(entry.name)) return false;
    if (met_ == nullptr) (void)queryIdentity(path_.child(wide(entry.name)), entry.id);
    return true;
}

bool Win32Directory::isWanted(const FileEntry& entry) const {
    if (isDots(entry.name) || isOwnEntry(entry.name, entry.isDirectory())) return false;
    return wanted_ != (entry.isDirectory() ? Wanted::files : Wanted::directories);
}

bool Win32Directory::isShut(const std::string& name) const {
    return Listing().open(path_.child(wide(name)), L"*") == ERROR_ACCESS_DENIED;
}

bool Win32Directory::lookUp(const std::string& name, FileEntry& entry) {
    if (name.empty() || name.find_first_of(std::string("\\/:\0", 4)) != std::string::npos) {
        return false;
    }
    if (known_->find(name, entry)) return true;
    const std::uint32_t error = ask(name, entry);
    if (error != 0 && !isAbsence(error)) status_ = Status::failure(error, core_);
    return error == 0;
}

std::uint32_t Win32Directory::ask(const std::string& name, FileEntry& entry) {
    if (const auto hold = hold_.lock()) {
        const std::uint32_t error = hold->walkTo(path_);
        if (error != 0) return error;
    }
    if (known_->findFurther(path_, name, entry)) return 0;
    if (known_->lacks(name)) return ERROR_FILE_NOT_FOUND;
    const NativePath path = path_.child(wide(name));
    if (path.name().size() > 255) return ERROR_INVALID_NAME;
    const std::uint32_t error = queryEntry(path, entry);
    if (error == 0) entry.name = name;
    return error;
}

}  // namespace coffrelune
