#include "platform/win32/own_version.h"

#include <windows.h>

#include "platform/system_level.h"

namespace coffrelune {

std::int16_t ownSystemLevel() {
    OSVERSIONINFOW told{};
    told.dwOSVersionInfoSize = sizeof told;
    if (GetVersionExW(&told) == 0) return 0;
    return systemLevel({told.dwPlatformId == VER_PLATFORM_WIN32_NT, told.dwMajorVersion,
                        told.dwMinorVersion, told.dwBuildNumber});
}

}  // namespace coffrelune
