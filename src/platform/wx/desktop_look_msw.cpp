#include <windows.h>

#include "platform/wx/desktop_look.h"

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

}  // namespace coffrelune
