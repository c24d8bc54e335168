#include "platform/win32/held_root.h"

#include <windows.h>

#include <algorithm>

#include "platform/win32/entry_query.h"
#include "platform/win32/wide_text.h"

namespace coffrelune {
namespace {

/// True for the directory's own path and for one below it.
bool isAtOrBelow(const NativePath& path, const NativePath& directory) {
    const std::wstring_view text = path.text;
    const std::wstring_view above = directory.text;
    return text.starts_with(above) &&
           (text.size() == above.size() || above.ends_with(L'\\') || text[above.size()] == L'\\');
}

/// Opens a directory, or with FILE_FLAG_OPEN_REPARSE_POINT also a link, so that nobody renames or
/// removes it. Who may not list it may still go through it, or see what it is.
UniqueHandle openKept(const NativePath& path, DWORD flags) {
    UniqueHandle handle;
    for (const DWORD access : {FILE_LIST_DIRECTORY, FILE_TRAVERSE, FILE_READ_ATTRIBUTES}) {
        handle = UniqueHandle(
            CreateFileW(path.text.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr));
        if (handle.valid() || GetLastError() != ERROR_ACCESS_DENIED) break;
    }
    return handle;
}

/// What a handle leads to. 0 or a system error.
std::uint32_t identityOf(void* handle, FileId& id) {
    FileEntry entry;
    const std::uint32_t error = queryOpenFile(handle, entry);
    if (error == 0) id = entry.id;
    return error;
}

/// The path that the system gives an open directory, when it leads back to it; else `asked`.
NativePath ownPath(void* handle, const FileId& id, const NativePath& asked) {
    for (const std::wstring& text : {finalPathOnVolume(handle), finalPath(handle)}) {
        NativePath path;
        FileId found;
        if (!text.empty() && toNative(narrow(text), path).ok() && queryIdentity(path, found) == 0 &&
            found == id) {
            return path;
        }
    }
    return asked;
}

}  // namespace

std::uint32_t HeldRoot::open(const NativePath& path, const NativePath& asked) {
    FileEntry entry;
    root_ = openKept(path, 0);
    std::uint32_t error = root_.valid() ? queryOpenFile(root_.get(), entry) : GetLastError();
    if (error == 0 && !entry.isDirectory()) error = ERROR_DIRECTORY;
    if (error != 0) return error;
    asked_ = asked;
    path_ = ownPath(root_.get(), entry.id, path);
    return 0;
}

bool HeldRoot::covers(const NativePath& path) const {
    return isAtOrBelow(path, asked_);
}

NativePath HeldRoot::placeOf(const NativePath& path) const {
    std::wstring_view rest = std::wstring_view(path.text).substr(asked_.text.size());
    if (rest.starts_with(L'\\')) rest.remove_prefix(1);
    return rest.empty() ? path_ : path_.child(rest);
}

std::uint32_t HeldRoot::walkTo(const NativePath& directory) {
    std::size_t kept = 0;
    while (kept < levels_.size() && isAtOrBelow(directory, levels_[kept].path)) ++kept;
    NativePath reached = kept == 0 ? path_ : levels_[kept - 1].path;
    // What is open further down the same way is left for the next call.
    if (reached.text.size() == directory.text.size()) {
        return kept == levels_.size() ? checkEnd() : 0;
    }
    levels_.resize(kept);
    std::uint32_t error = checkEnd();
    while (error == 0 && reached.text.size() < directory.text.size()) {
        const std::size_t start = reached.text.size() + (reached.text.ends_with(L'\\') ? 0 : 1);
        const std::size_t end = directory.text.find(L'\\', start);
        reached = reached.child(std::wstring_view(directory.text).substr(start, end - start));
        error = step(reached);
    }
    return error;
}

bool HeldRoot::opensPlain(const NativePath& directory) {
    const bool isRoot = directory.text.size() == path_.text.size();
    const bool isOpen =
        isRoot || std::any_of(levels_.begin(), levels_.end(),
                              [&](const Level& one) { return one.path.text == directory.text; });
    return !isOpen && walkTo(directory) == 0 && !levels_.back().target.valid();
}

std::uint32_t HeldRoot::step(const NativePath& directory) {
    Level level{directory, openKept(directory, FILE_FLAG_OPEN_REPARSE_POINT), {}};
    if (!level.entry.valid()) {
        const DWORD error = GetLastError();
        return error == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : error;
    }
    // By its path, which nobody can give to something else by now: only there do all systems tell
    // a link from the many other things that are reparse points.
    FileEntry entry;
    std::uint32_t error = queryEntry(directory, entry);
    if (error == 0 && !entry.isDirectory()) error = ERROR_PATH_NOT_FOUND;
    if (error == 0 && entry.isLink()) {
        const auto known = entered_.find(directory.text);
        if (known == entered_.end()) return ERROR_CANT_RESOLVE_FILENAME;
        level.target = openKept(directory, 0);
        FileId target;
        error = level.target.valid() ? identityOf(level.target.get(), target) : GetLastError();
        if (error == 0 && target != known->second) error = ERROR_CANT_RESOLVE_FILENAME;
    }
    if (error == 0) levels_.push_back(std::move(level));
    return error;
}

std::uint32_t HeldRoot::checkEnd() const {
    if (levels_.empty() && path_.isRoot()) return 0;  // may bear the mark of where it is mounted
    if (!levels_.empty() && levels_.back().target.valid()) return 0;
    void* const end = levels_.empty() ? root_.get() : levels_.back().entry.get();
    FILE_ATTRIBUTE_TAG_INFO mark{};
    // A volume that does not tell the tag has no junctions.
    if (GetFileInformationByHandleEx(end, FileAttributeTagInfo, &mark, sizeof mark) == 0) return 0;
    const bool isLink = (mark.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
                        IsReparseTagNameSurrogate(mark.ReparseTag);
    return isLink ? ERROR_CANT_RESOLVE_FILENAME : 0;
}

void HeldRoot::letGo(const NativePath& path) {
    std::size_t kept = 0;
    while (kept < levels_.size() && !isAtOrBelow(levels_[kept].path, path)) ++kept;
    levels_.resize(kept);
    entered_.erase(path.text);
}

}  // namespace coffrelune
