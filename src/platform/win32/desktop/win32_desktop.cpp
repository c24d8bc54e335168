#include "platform/win32/desktop/win32_desktop.h"

#include <windows.h>
// These take their basic types from the one above.
#include <mmsystem.h>
#include <objbase.h>
#include <shellapi.h>
#include <shlobj.h>

#include <array>
#include <memory>

#include "platform/win32/native_path.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/win32_services.h"

namespace coffrelune {
namespace {

class OpenKey {
  public:
    OpenKey(RegistryService::Root root, const std::string& path) {
        const HKEY top =
            root == RegistryService::Root::currentUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
        error_ = RegOpenKeyExW(top, wide(path).c_str(), 0, KEY_ALL_ACCESS, &key_);
    }
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;
    ~OpenKey() {
        if (error_ == ERROR_SUCCESS) RegCloseKey(key_);
    }

    LSTATUS error() const { return error_; }
    HKEY get() const { return key_; }

  private:
    HKEY key_ = nullptr;
    LSTATUS error_;
};

template <typename Step>
Status withKey(RegistryService::Root root, const std::string& path, Step step) {
    const OpenKey key(root, path);
    const LSTATUS error = key.error() == ERROR_SUCCESS ? step(key.get()) : key.error();
    if (error == ERROR_SUCCESS) return {};
    return Status::failure(static_cast<std::uint32_t>(error), path);
}

}  // namespace

Status Win32Registry::setText(Root root, const std::string& key, const std::string& name,
                              const std::string& data) {
    const std::wstring text = wide(data);
    return withKey(root, key, [&](HKEY opened) {
        return RegSetValueExW(opened, wide(name).c_str(), 0, REG_SZ,
                              reinterpret_cast<const BYTE*>(text.c_str()),
                              static_cast<DWORD>(text.size() * sizeof(wchar_t)));
    });
}

Status Win32Registry::deleteValue(Root root, const std::string& key, const std::string& name) {
    return withKey(root, key,
                   [&](HKEY opened) { return RegDeleteValueW(opened, wide(name).c_str()); });
}

Apartment::Apartment()
    : entered_(
          SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {}

Apartment::~Apartment() {
    if (entered_) CoUninitialize();
}

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

namespace {

NOTIFYICONDATAW messageOf(void* window) {
    NOTIFYICONDATAW data{};
    data.cbSize = sizeof data;
    data.hWnd = static_cast<HWND>(window);
    data.uID = 1;
    return data;
}

template <std::size_t Size>
void fill(wchar_t (&field)[Size], const std::string& text) {
    const std::wstring whole = wide(text);
    whole.copy(field, Size - 1);  // the field is empty and keeps its end
}

}  // namespace

void Win32Shell::notify(const std::string& title, const std::string& text) {
    if (notifier_ == nullptr) {
        notifier_ = CreateWindowExW(0, L"STATIC", L"Coffrelune", 0, 0, 0, 0, 0, HWND_MESSAGE,
                                    nullptr, nullptr, nullptr);
        if (notifier_ == nullptr) return;
        NOTIFYICONDATAW icon = messageOf(notifier_);
        icon.uFlags = NIF_ICON | NIF_TIP;
        icon.hIcon = LoadIconW(nullptr, reinterpret_cast<const wchar_t*>(IDI_INFORMATION));
        fill(icon.szTip, "Coffrelune");
        Shell_NotifyIconW(NIM_ADD, &icon);
    }
    NOTIFYICONDATAW message = messageOf(notifier_);
    message.uFlags = NIF_INFO;
    message.dwInfoFlags = NIIF_INFO | NIIF_NOSOUND;
    fill(message.szInfoTitle, title);
    fill(message.szInfo, text);
    Shell_NotifyIconW(NIM_MODIFY, &message);
    notifiedAt_ = GetTickCount64();
}

Win32Shell::~Win32Shell() {
    constexpr std::uint64_t readingTime = 6'000;  // milliseconds
    if (notifier_ == nullptr) return;
    const std::uint64_t shown = GetTickCount64() - notifiedAt_;
    if (shown < readingTime) Sleep(static_cast<DWORD>(readingTime - shown));
    NOTIFYICONDATAW icon = messageOf(notifier_);
    Shell_NotifyIconW(NIM_DELETE, &icon);
    DestroyWindow(static_cast<HWND>(notifier_));
}

void Win32Shell::playSystemSound(const std::string& name) {
    PlaySoundW(wide(name).c_str(), nullptr, SND_ALIAS | SND_ASYNC);
}

std::string taskSchedulerConsole() {
    return Win32Drives().windowsDirectory() + "\\system32\\taskschd.msc";
}

int Win32Sounds::deviceCount() {
    return static_cast<int>(waveOutGetNumDevs());
}

void Win32Sounds::play(const std::string& path) {
    PlaySoundW(plainPath(path).c_str(), nullptr, SND_FILENAME | SND_ASYNC | SND_NODEFAULT);
}

namespace {

/// `data`: the start folder's text, or 0.
int CALLBACK selectStart(HWND dialog, UINT message, LPARAM, LPARAM data) {
    if (message == BFFM_INITIALIZED && data != 0) {
        SendMessageW(dialog, BFFM_SETSELECTIONW, TRUE, data);
    }
    return 0;
}

}  // namespace

std::string chooseShellFolder(void* owner, bool includeFiles, const std::string& prompt,
                              const std::string& start) {
    const std::wstring title = wide(prompt);
    const std::wstring first = start.empty() ? std::wstring() : plainPath(start);
    std::array<wchar_t, MAX_PATH> text{};
    BROWSEINFOW request{};
    request.hwndOwner = static_cast<HWND>(owner);
    request.pszDisplayName = text.data();
    request.lpszTitle = title.c_str();
    request.ulFlags = BIF_RETURNONLYFSDIRS | (includeFiles ? UINT{BIF_BROWSEINCLUDEFILES} : 0);
    request.lpfn = selectStart;
    request.lParam = first.empty() ? 0 : reinterpret_cast<LPARAM>(first.c_str());
    const std::unique_ptr<ITEMIDLIST, decltype(&CoTaskMemFree)> chosen(SHBrowseForFolderW(&request),
                                                                       CoTaskMemFree);
    if (chosen == nullptr || SHGetPathFromIDListW(chosen.get(), text.data()) == 0) return {};
    return toCore(text.data());
}

}  // namespace coffrelune
