#include <windows.h>
// After the above.
#include <wx/anybutton.h>
#include <wx/icon.h>
#include <wx/window.h>

#include "platform/win32/desktop/win32_desktop.h"
#include "platform/win32/desktop/win32_drive_information.h"
#include "views/wx/desktop.h"
#include "views/wx/text.h"

namespace coffrelune {

// Menus show their pictures there anyway.
void adaptDesktopLook() {}

// The toolkit starts without a display driver, and stumbles over its first window.
bool canMakeWindows() {
    const HWND window = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPED, 0, 0, 0, 0, nullptr,
                                        nullptr, nullptr, nullptr);
    if (window == nullptr) return false;
    DestroyWindow(window);
    return true;
}

wxBitmapBundle systemPicture(const std::string& name) {
    void* handle = shellIcon(name);
    if (handle == nullptr) return {};
    // The icon takes the handle over.
    wxIcon icon;
    icon.CreateFromHICON(static_cast<WXHICON>(handle));
    wxBitmap bitmap;
    bitmap.CopyFromIcon(icon);
    return wxBitmapBundle::FromBitmap(bitmap);
}

// The toolkit's own fading is towards white, which stands out on a dark ground.
void drawDisabled(wxAnyButton& button, const wxBitmapBundle& faint) {
    button.SetBitmapDisabled(faint);
}

std::string chooseNativeFolder(wxWindow* parent, bool includeFiles, const std::string& prompt,
                               const std::string& start) {
    void* owner = parent == nullptr ? nullptr : static_cast<void*>(parent->GetHandle());
    return chooseShellFolder(owner, includeFiles, prompt, start);
}

// Its tabs show the mark, and know nothing of keys.
bool giveTabsMnemonics(wxWindow&, const std::vector<std::string>&) {
    return false;
}

// The focus selects nothing here.
void keepUnchosen(wxWindow&) {}

// A drop-down list is as narrow as asked here.
void shortenEntries(wxWindow&) {}

void giveReasonToWait(const wxWindow& main, const std::string& reason) {
    ShutdownBlockReasonCreate(main.GetHWND(), toWx(reason).wc_str());
}

void withdrawReasonToWait(const wxWindow& main) {
    ShutdownBlockReasonDestroy(main.GetHWND());
}

}  // namespace coffrelune
