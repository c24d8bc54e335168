#include "platform/win32/win32_platform.h"

#include <windows.h>

namespace coffrelune {

Win32Platform::Win32Platform() {
    SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, nullptr);
}

}  // namespace coffrelune
