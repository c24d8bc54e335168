#include "platform/win32/win32_services.h"

#include <windows.h>

#include <array>
#include <cstdio>

#include "platform/characters.h"
#include "platform/win32/native_path.h"
#include "platform/win32/wide_text.h"

namespace coffrelune {
namespace {

std::string localeText(const wchar_t* name, LCTYPE kind) {
    std::array<wchar_t, 16> text{};
    const int length = GetLocaleInfoEx(name, kind, text.data(), static_cast<int>(text.size()));
    return length > 1 ? narrow({text.data(), static_cast<std::size_t>(length - 1)}) : std::string();
}

/// As the disk compares names, or at least as one function of the system always does.
std::wstring lowered(const std::wstring& text) {
    std::wstring lower(text.size(), L'\0');
    const auto length = static_cast<int>(text.size());
    const int written = LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_LOWERCASE, text.data(), length,
                                      lower.data(), length, nullptr, nullptr, 0);
    return written == length ? lower : text;
}

}  // namespace

std::vector<std::string> Win32Drives::roots() {
    std::vector<std::string> found;
    std::wstring list(128, L'\0');  // "X:\" and its NUL for each letter, and one NUL more
    const DWORD length = GetLogicalDriveStringsW(static_cast<DWORD>(list.size()), list.data());
    for (std::size_t start = 0; start < length && start < list.size();) {
        const std::size_t end = list.find(L'\0', start);
        if (end == std::wstring::npos) break;
        if (end > start)
            found.push_back(narrow(std::wstring_view(list).substr(start, end - start)));
        start = end + 1;
    }
    return found;
}

std::string Win32Drives::windowsDirectory() {
    std::array<wchar_t, MAX_PATH> path{};
    // The other call of the kind gives each user of a terminal server a directory of his own.
    const UINT length = GetSystemWindowsDirectoryW(path.data(), static_cast<UINT>(path.size()));
    return length < path.size() ? narrow({path.data(), length}) : std::string();
}

std::string Win32Drives::fromNative(const std::string& typed) {
    return usualForm(fromTyped(typed));
}

std::string Win32Drives::fromWindow(const std::string& entered) {
    return usualForm(fromEntered(entered));
}

LocalTime toLocalTime(std::uint64_t units) {
    FILETIME time;
    time.dwLowDateTime = static_cast<DWORD>(units);
    time.dwHighDateTime = static_cast<DWORD>(units >> 32);
    SYSTEMTIME universal;
    SYSTEMTIME local;
    if (FileTimeToSystemTime(&time, &universal) == 0 ||
        SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local) == 0) {
        return {};
    }
    return {local.wYear,   local.wMonth,  local.wDay,         local.wHour,
            local.wMinute, local.wSecond, local.wMilliseconds};
}

LocalTime Win32Clock::now() {
    FILETIME time;
    GetSystemTimeAsFileTime(&time);
    return toLocalTime(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
}

LocalTime Win32Clock::localTime(std::uint64_t fileTime) {
    return toLocalTime(fileTime);
}

std::int64_t Win32Clock::monotonicMilliseconds() {
    return static_cast<std::int64_t>(GetTickCount64());
}

Win32Locale::Win32Locale() {
    take(LOCALE_NAME_USER_DEFAULT);
}

Win32Locale::Win32Locale(const std::string& name) {
    take(wide(name).c_str());
}

void Win32Locale::take(const wchar_t* name) {
    const std::string decimal = localeText(name, LOCALE_SDECIMAL);
    if (ascii::isShownText(decimal)) decimal_ = decimal;
}

std::string guardName(const std::string& directory) {
    const std::string path = narrow(lowered(wide(resolvedPath(directory))));
    std::uint64_t hash = 0xCBF29CE484222325;  // FNV-1a: an object's name may hold no "\"
    for (const char c : path) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    }
    std::array<char, 17> digits{};
    std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(hash));
    return std::string("Global\\Coffrelune-") + digits.data();
}

bool Win32Guard::claim(const std::string& directory) {
    object_.reset();
    SetLastError(ERROR_SUCCESS);
    object_ = UniqueHandle(CreateMutexW(nullptr, FALSE, wide(guardName(directory)).c_str()));
    const DWORD error = GetLastError();
    if (object_.valid() && error != ERROR_ALREADY_EXISTS) return true;
    object_.reset();
    // Another user's object is there and may not be opened.
    return error != ERROR_ALREADY_EXISTS && error != ERROR_ACCESS_DENIED;
}

}  // namespace coffrelune
