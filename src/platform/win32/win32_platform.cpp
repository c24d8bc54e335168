#include "platform/win32/win32_platform.h"

#include <windows.h>

#include "platform/platform.h"
#include "platform/win32/native_path.h"
#include "platform/win32/wide_text.h"

namespace coffrelune {
namespace {

constexpr std::size_t longestPath = 32768;

std::string environmentText(const wchar_t* name) {
    std::wstring text(longestPath, L'\0');
    const DWORD length =
        GetEnvironmentVariableW(name, text.data(), static_cast<DWORD>(text.size()));
    return length < text.size() ? narrow({text.data(), length}) : std::string();
}

// Only a file that is made tells: rights, a read-only medium and the system's own protection all
// have their say.
bool mayWrite(const std::string& directory) {
    const std::wstring file = wide(directory + "\\.~coffrelune-essai");
    HANDLE handle =
        CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                    CREATE_NEW, FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    // Another program of ours asks at this very moment.
    if (handle == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_FILE_EXISTS;
    CloseHandle(handle);
    return true;
}

}  // namespace

std::string executablePath() {
    std::wstring path(longestPath, L'\0');
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    return toCore({path.data(), length});
}

std::string settingsDirectory() {
    const std::string chosen = environmentText(L"COFFRELUNE_HOME");
    if (!chosen.empty()) return fromTyped(chosen);
    const std::string program = executablePath();
    const std::size_t separator = program.rfind('\\');
    // "C:\coffrelune.exe" lies in the root, whose backslash belongs to it.
    std::string own = program.substr(0, separator == 2 ? 3 : separator);
    const std::string user = environmentText(L"APPDATA");
    if (user.empty() || mayWrite(own)) return own;
    std::string home = user + "\\Coffrelune";
    // What cannot be made is told by the first setting that cannot be written.
    (void)CreateDirectoryW(wide(home).c_str(), nullptr);
    return home;
}

std::int16_t ownSystemLevel() {
    OSVERSIONINFOW told{};
    told.dwOSVersionInfoSize = sizeof told;
    if (GetVersionExW(&told) == 0) return 0;
    return systemLevel({told.dwPlatformId == VER_PLATFORM_WIN32_NT, told.dwMajorVersion,
                        told.dwMinorVersion, told.dwBuildNumber});
}

Win32Platform::Win32Platform() {
    SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, nullptr);
}

}  // namespace coffrelune
