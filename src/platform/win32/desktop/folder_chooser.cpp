#include "platform/win32/desktop/folder_chooser.h"

#include <windows.h>
// Takes its basic types from the one above.
#include <shlobj.h>

#include <array>
#include <memory>

#include "platform/win32/native_path.h"
#include "platform/win32/wide_text.h"

namespace coffrelune {
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
