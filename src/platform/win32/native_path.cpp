#include "platform/win32/native_path.h"

#include <windows.h>

#include <algorithm>
#include <vector>

#include "platform/names.h"
#include "platform/win32/unique_handle.h"
#include "platform/win32/wide_text.h"

namespace coffrelune {
namespace {

constexpr std::size_t longestName = 255;
constexpr std::size_t longestPath = 32766;
constexpr std::wstring_view verbatim = LR"(\\?\)";
constexpr std::wstring_view verbatimShare = LR"(\\?\UNC\)";

bool isSeparator(wchar_t c) {
    return c == L'\\' || c == L'/';
}

Status refusal(std::uint32_t number, std::string_view core) {
    return Status::failure(number, std::string(core));
}

std::vector<std::wstring_view> components(std::wstring_view rest) {
    std::vector<std::wstring_view> found;
    for (std::size_t start = 0; start < rest.size();) {
        const std::size_t end = std::min(rest.find_first_of(L"\\/", start), rest.size());
        const std::wstring_view component = rest.substr(start, end - start);
        start = end + 1;
        if (component == L"..") {
            if (!found.empty()) found.pop_back();
        } else if (!component.empty() && component != L".") {
            found.push_back(component);
        }
    }
    return found;
}

/// Takes the root off `rest`. False when there is none.
bool takeRoot(std::wstring_view& rest, std::wstring& root) {
    if (rest.starts_with(verbatimShare)) {
        rest.remove_prefix(verbatimShare.size());
    } else if (rest.starts_with(verbatim)) {
        rest.remove_prefix(verbatim.size());
        const std::size_t end = std::min(rest.find(L'\\'), rest.size());
        root = std::wstring(verbatim).append(rest.substr(0, end)) + L"\\";
        const bool volume = rest.starts_with(L"Volume{");
        if (volume) rest.remove_prefix(end);
        if (volume || !startsWithDrive(rest)) return volume;
    } else if (rest.size() > 2 && isSeparator(rest[0]) && isSeparator(rest[1])) {
        rest.remove_prefix(2);
    }
    if (startsWithDrive(rest)) {
        const auto letter = static_cast<wchar_t>(rest[0] & ~0x20);
        root = std::wstring(verbatim) + letter + L":\\";
        rest.remove_prefix(2);
        return true;
    }
    const std::size_t server = std::min(rest.find_first_of(L"\\/"), rest.size());
    if (server == 0 || server == rest.size() || rest[0] == L'.' || rest[0] == L'?') return false;
    const std::size_t share = std::min(rest.find_first_of(L"\\/", server + 1), rest.size());
    if (share == server + 1) return false;
    root = std::wstring(verbatimShare).append(rest.substr(0, server)) + L"\\";
    root.append(rest.substr(server + 1, share - server - 1)) += L'\\';
    rest.remove_prefix(share);
    return true;
}

bool looksAbsolute(std::wstring_view text) {
    return startsWithDrive(text) ||
           (text.size() > 2 && isSeparator(text[0]) && isSeparator(text[1]));
}

/// Calls that fill a buffer and tell the length that it needs. Empty when they fail.
template <typename Call>
std::wstring filled(Call call) {
    std::wstring text(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = call(text.data(), static_cast<DWORD>(text.size()));
        if (length < text.size()) {
            text.resize(length);
            return text;
        }
        text.resize(length + 1);
    }
}

/// Without blanks and quotes round it, and with "\\" for "/".
std::wstring tidied(const std::string& typed) {
    std::wstring text = wide(typed);
    const std::size_t first = text.find_first_not_of(L" \t");
    if (first == std::wstring::npos) return {};
    text = text.substr(first, text.find_last_not_of(L" \t") - first + 1);
    if (text.size() >= 2 && text.front() == L'"' && text.back() == L'"') {
        text = text.substr(1, text.size() - 2);
    }
    std::replace(text.begin(), text.end(), L'/', L'\\');
    return text;
}

}  // namespace

std::wstring_view NativePath::name() const {
    if (isRoot()) return {};
    return std::wstring_view(text).substr(text.rfind(L'\\') + 1);
}

NativePath NativePath::holder() const {
    if (isRoot()) return *this;
    return {text.substr(0, std::max(text.rfind(L'\\'), rootLength)), rootLength};
}

NativePath NativePath::child(std::wstring_view name) const {
    std::wstring path = text;
    if (!path.ends_with(L'\\')) path += L'\\';
    return {path.append(name), rootLength};
}

Status toNative(std::string_view core, NativePath& native) {
    if (core.find('\0') != std::string_view::npos) {
        return refusal(error_number::invalidParameter, core);
    }
    const std::wstring text = wide(core);
    std::wstring_view rest = text;
    if (!looksAbsolute(text) || !takeRoot(rest, native.text)) {
        return refusal(error_number::pathNotFound, core);
    }
    native.rootLength = native.text.size();
    for (const std::wstring_view component : components(rest)) {
        if (component.find(L':') != std::wstring_view::npos)
            return refusal(ERROR_INVALID_NAME, core);
        if (component.size() > longestName) return refusal(error_number::nameTooLong, core);
        if (!native.text.ends_with(L'\\')) native.text += L'\\';
        native.text.append(component);
    }
    return native.text.size() <= longestPath ? Status() : refusal(error_number::nameTooLong, core);
}

std::string toCore(std::wstring_view native) {
    if (native.starts_with(verbatimShare)) {
        return R"(\\)" + narrow(native.substr(verbatimShare.size()));
    }
    if (native.starts_with(verbatim) && startsWithDrive(native.substr(verbatim.size()))) {
        native.remove_prefix(verbatim.size());
    }
    return narrow(native);
}

bool hasCoreForm(std::string_view text) {
    if (text.starts_with(R"(\\)")) return text.size() > 2 && text[2] != '\\' && text[2] != '?';
    return startsWithDrive(text) && text.find('/') == std::string_view::npos;
}

std::wstring plainPath(const std::string& core) {
    NativePath native;
    return toNative(core, native).ok() ? wide(toCore(native.text)) : wide(core);
}

namespace {

std::wstring finalPathUnder(DWORD volumeName, void* handle) {
    // To spell the name as the disk does, the system must be able to read every directory on the
    // way, and some file systems do not know how:
    // https://learn.microsoft.com/windows/win32/api/fileapi/nf-fileapi-getfinalpathnamebyhandlew
    for (const DWORD spelling : {FILE_NAME_NORMALIZED, FILE_NAME_OPENED}) {
        std::wstring path = filled([&](wchar_t* buffer, DWORD size) {
            return GetFinalPathNameByHandleW(handle, buffer, size, spelling | volumeName);
        });
        if (!path.empty()) return path;
    }
    return {};
}

}  // namespace

std::wstring finalPath(void* handle) {
    return finalPathUnder(VOLUME_NAME_DOS, handle);
}

std::wstring finalPathOnVolume(void* handle) {
    return finalPathUnder(VOLUME_NAME_GUID, handle);
}

std::string resolvedPath(const std::string& core) {
    NativePath native;
    if (!toNative(core, native).ok()) return core;
    std::wstring tail;
    for (;; native = native.holder()) {
        const UniqueHandle handle = openShared(native.text, 0, FILE_FLAG_BACKUP_SEMANTICS);
        if (handle.valid()) {
            const std::wstring path = finalPath(handle.get());
            if (!path.empty()) native.text = path;
        }
        if (handle.valid() || native.isRoot()) break;
        tail.insert(0, std::wstring(1, L'\\').append(native.name()));
    }
    // Some file systems give the final path as it was asked for.
    const std::wstring spelled = filled([&](wchar_t* buffer, DWORD size) {
        return GetLongPathNameW(native.text.c_str(), buffer, size);
    });
    std::wstring path = spelled.empty() ? native.text : spelled;
    if (path.empty()) return core;
    if (!tail.empty() && path.ends_with(L'\\')) path.pop_back();
    return toCore(path + tail);
}

std::string usualForm(const std::string& core) {
    NativePath native;
    if (!toNative(core, native).ok()) return core;
    const std::wstring plain = wide(toCore(native.text));
    const std::wstring usual = filled([&](wchar_t* buffer, DWORD size) {
        return GetFullPathNameW(plain.c_str(), size, buffer, nullptr);
    });
    // The disk is asked for odd names alone: a share that is gone would make the user wait.
    if (usual.empty() || usual == plain) return core;
    const bool exists = GetFileAttributesW(native.text.c_str()) != INVALID_FILE_ATTRIBUTES;
    return exists ? core : narrow(usual);
}

std::string fromTyped(const std::string& typed) {
    if (hasCoreForm(typed)) return inPlainSpelling(typed);
    const std::wstring text = tidied(typed);
    if (text.empty() || hasCoreForm(narrow(text)) || text.starts_with(verbatim)) {
        return inPlainSpelling(narrow(text));
    }
    const std::wstring full = filled([&](wchar_t* buffer, DWORD size) {
        return GetFullPathNameW(text.c_str(), size, buffer, nullptr);
    });
    return full.empty() ? narrow(text) : toCore(full);
}

std::string fromEntered(const std::string& entered) {
    if (hasCoreForm(entered)) return inPlainSpelling(entered);
    std::wstring text = tidied(entered);
    if (text.starts_with(L'\\') && startsWithDrive(text.substr(1))) text.erase(0, 1);
    const bool isPath = text.starts_with(verbatim) || hasCoreForm(narrow(text));
    return isPath ? inPlainSpelling(narrow(text)) : entered;
}

}  // namespace coffrelune
