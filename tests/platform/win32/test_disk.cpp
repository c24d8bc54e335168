#include "platform/win32/test_disk.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>

#include "platform/win32/wide_text.h"

namespace coffrelune::disk {
namespace {

constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD oneMinute = 60'000;

std::wstring native(const std::string& path) {
    return LR"(\\?\)" + wide(path);
}

std::string directoryOf(const std::string& path) {
    return path.substr(0, path.rfind('\\'));
}

std::string joined(const std::string& directory, const std::string& name) {
    return directory + (directory.ends_with('\\') ? "" : "\\") + name;
}

/// "Z:\tmp\x" is "/tmp/x" for the system that Wine runs on.
std::string unixPath(const std::string& path) {
    using UnixName = char*(CDECL*)(const wchar_t*);
    FARPROC function = GetProcAddress(GetModuleHandleW(L"kernel32"), "wine_get_unix_file_name");
    if (function == nullptr) return {};
    char* name = reinterpret_cast<UnixName>(reinterpret_cast<void*>(function))(wide(path).c_str());
    std::string text = name == nullptr ? "" : name;
    HeapFree(GetProcessHeap(), 0, name);
    return text;
}

/// Wine has no call that makes a link, and the one that removes it would remove its target, but it
/// starts the programs of its host. It does not tell their end: the change in the directory does.
bool runOnHost(const wchar_t* program, const std::string& command, const std::string& directory) {
    void* changed =
        FindFirstChangeNotificationW(native(directory).c_str(), FALSE,
                                     FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_DIR_NAME);
    std::wstring words = wide(command);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    const bool started = CreateProcessW(program, words.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                        nullptr, &start, &process) != 0;
    const bool told = started && WaitForSingleObject(changed, oneMinute) == WAIT_OBJECT_0;
    FindCloseChangeNotification(changed);
    return told;
}

bool makeHostLink(const std::string& path, const std::string& target) {
    std::string hostTarget = target;
    std::replace(hostTarget.begin(), hostTarget.end(), '\\', '/');
    const std::string name = "/" + path.substr(path.rfind('\\') + 1);
    return runOnHost(LR"(\\?\unix\bin\ln)",
                     "ln -s \"" + hostTarget + "\" \"" + unixPath(directoryOf(path)) + name + "\"",
                     directoryOf(path));
}

bool makeLink(const std::string& path, const std::string& target, DWORD kind) {
    if (isWine()) return makeHostLink(path, target);
    constexpr DWORD unprivileged = 2;  // for users in developer mode
    return CreateSymbolicLinkW(native(path).c_str(), wide(target).c_str(), kind | unprivileged) !=
           0;
}

/// Before anything else is removed: a link that leads nowhere can no longer be seen under Wine.
void removeLinks(const std::string& directory) {
    for (const std::string& name : names(directory)) {
        const std::string path = joined(directory, name);
        const std::uint32_t word = attributes(path).value_or(0);
        if ((word & FILE_ATTRIBUTE_DIRECTORY) == 0) continue;
        if ((word & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
            removeLinks(path);
        } else if (!isWine()) {
            EXPECT_NE(RemoveDirectoryW(native(path).c_str()), 0) << path;
        } else {
            EXPECT_TRUE(
                runOnHost(LR"(\\?\unix\bin\rm)", "rm \"" + unixPath(path) + "\"", directory));
        }
    }
}

}  // namespace

bool isWine() {
    return GetProcAddress(GetModuleHandleW(L"ntdll"), "wine_get_version") != nullptr;
}

std::string environment(const std::string& name) {
    std::wstring text(32768, L'\0');
    text.resize(GetEnvironmentVariableW(wide(name).c_str(), text.data(), 32768));
    return narrow(text);
}

void makeDirectory(const std::string& path) {
    EXPECT_NE(CreateDirectoryW(native(path).c_str(), nullptr), 0) << path;
}

void makeFile(const std::string& path, const std::string& content, std::uint64_t lastWrite) {
    void* file =
        CreateFileW(native(path).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE) << path << ": " << GetLastError();
    DWORD written = 0;
    EXPECT_NE(
        WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr), 0);
    EXPECT_EQ(written, content.size());
    if (lastWrite != 0) {
        FILETIME time;
        time.dwLowDateTime = static_cast<DWORD>(lastWrite);
        time.dwHighDateTime = static_cast<DWORD>(lastWrite >> 32);
        EXPECT_NE(SetFileTime(file, nullptr, &time, &time), 0);
    }
    CloseHandle(file);
}

std::optional<std::string> content(const std::string& path) {
    void* file = CreateFileW(native(path).c_str(), GENERIC_READ, shareAll, nullptr, OPEN_EXISTING,
                             0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return std::nullopt;
    std::string bytes;
    std::vector<char> buffer(1 << 20);
    for (DWORD read = 1; read != 0;) {
        if (ReadFile(file, buffer.data(), static_cast<DWORD>(buffer.size()), &read, nullptr) == 0) {
            ADD_FAILURE() << path << ": " << GetLastError();
            break;
        }
        bytes.append(buffer.data(), read);
    }
    CloseHandle(file);
    return bytes;
}

std::vector<std::string> names(const std::string& directory) {
    std::vector<std::string> found;
    WIN32_FIND_DATAW entry;
    void* find = FindFirstFileW(native(joined(directory, "*")).c_str(), &entry);
    if (find == INVALID_HANDLE_VALUE) return found;
    do {
        const std::string name = narrow(entry.cFileName);
        if (name != "." && name != "..") found.push_back(name);
    } while (FindNextFileW(find, &entry) != 0);
    FindClose(find);
    std::sort(found.begin(), found.end());
    return found;
}

std::optional<std::uint32_t> attributes(const std::string& path) {
    const DWORD word = GetFileAttributesW(native(path).c_str());
    return word == INVALID_FILE_ATTRIBUTES ? std::nullopt : std::optional<std::uint32_t>(word);
}

void setAttributes(const std::string& path, std::uint32_t attributes) {
    EXPECT_NE(SetFileAttributesW(native(path).c_str(), attributes), 0) << path;
}

bool makeDirectoryLink(const std::string& path, const std::string& target) {
    return makeLink(path, target, SYMBOLIC_LINK_FLAG_DIRECTORY);
}

bool makeFileLink(const std::string& path, const std::string& target) {
    return makeLink(path, target, 0);
}

void empty(const std::string& directory) {
    removeLinks(directory);
    for (const std::string& name : names(directory)) {
        const std::string path = joined(directory, name);
        const std::uint32_t word = attributes(path).value_or(0);
        if ((word & FILE_ATTRIBUTE_READONLY) != 0) setAttributes(path, FILE_ATTRIBUTE_NORMAL);
        if ((word & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            empty(path);
            EXPECT_NE(RemoveDirectoryW(native(path).c_str()), 0) << path << ": " << GetLastError();
        } else {
            EXPECT_NE(DeleteFileW(native(path).c_str()), 0) << path << ": " << GetLastError();
        }
    }
}

Held::Held(const std::string& path, bool shareReading)
    : handle_(CreateFileW(native(path).c_str(), GENERIC_READ, shareReading ? FILE_SHARE_READ : 0,
                          nullptr, OPEN_EXISTING, 0, nullptr)) {
    EXPECT_NE(handle_, INVALID_HANDLE_VALUE) << path;
}

Held::~Held() {
    CloseHandle(handle_);
}

Temporary::Temporary() {
    std::wstring directory(MAX_PATH + 1, L'\0');
    directory.resize(GetTempPathW(MAX_PATH + 1, directory.data()));
    std::wstring path(MAX_PATH + 1, L'\0');
    EXPECT_NE(GetTempFileNameW(directory.c_str(), L"cof", 0, path.data()), 0U);
    path.resize(path.find(L'\0'));
    DeleteFileW(path.c_str());
    path_ = narrow(path);
    makeDirectory(path_);
}

Temporary::~Temporary() {
    empty(path_);
    EXPECT_NE(RemoveDirectoryW(native(path_).c_str()), 0) << path_ << ": " << GetLastError();
}

std::optional<std::uint32_t> runTestAgain(const std::string& test, const std::string& variable,
                                          const std::string& value) {
    std::wstring program(32768, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), 32768));
    std::wstring command = L"\"" + program + L"\" --gtest_brief=1 --gtest_filter=" + wide(test);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    SetEnvironmentVariableW(wide(variable).c_str(), wide(value).c_str());
    const BOOL started = CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, FALSE, 0,
                                        nullptr, nullptr, &start, &process);
    SetEnvironmentVariableW(wide(variable).c_str(), nullptr);
    if (started == 0) return std::nullopt;
    std::optional<std::uint32_t> status;
    DWORD code = 0;
    if (WaitForSingleObject(process.hProcess, oneMinute) == WAIT_OBJECT_0 &&
        GetExitCodeProcess(process.hProcess, &code) != 0) {
        status = code;
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return status;
}

}  // namespace coffrelune::disk
