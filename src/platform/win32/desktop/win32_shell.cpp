#include "platform/win32/desktop/win32_shell.h"

#include <windows.h>
// These take their basic types from the one above.
#include <mmsystem.h>
#include <shellapi.h>

#include "platform/win32/native_path.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/win32_services.h"

namespace coffrelune {
namespace {

/// The shell knows neither the long form of paths nor "/" in them; an address stays as it is.
std::wstring shellTarget(const std::string& target) {
    return hasCoreForm(target) ? plainPath(target) : wide(target);
}

}  // namespace

void Win32Shell::open(const std::string& target, const std::string& parameters) {
    const std::wstring words = wide(parameters);
    ShellExecuteW(nullptr, nullptr, shellTarget(target).c_str(),
                  words.empty() ? nullptr : words.c_str(), nullptr, SW_SHOWNORMAL);
}

void Win32Shell::showProperties(const std::string& path) {
    const std::wstring file = shellTarget(path);
    SHELLEXECUTEINFOW request{};
    request.cbSize = sizeof request;
    request.fMask = SEE_MASK_INVOKEIDLIST;
    // In front of the window that asks for it, and with it in the task bar.
    request.hwnd = GetActiveWindow();
    request.lpVerb = L"properties";
    request.lpFile = file.c_str();
    request.nShow = SW_SHOWNORMAL;
    ShellExecuteExW(&request);
}

void Win32Shell::openTaskScheduler() {
    open(taskSchedulerConsole(), {});
}

void Win32Shell::playSystemSound(const std::string& name) {
    PlaySoundW(wide(name).c_str(), nullptr, SND_ALIAS | SND_ASYNC);
}

std::string taskSchedulerConsole() {
    return Win32Drives().windowsDirectory() + "\\system32\\taskschd.msc";
}

}  // namespace coffrelune
