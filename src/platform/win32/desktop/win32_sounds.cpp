#include "platform/win32/desktop/win32_sounds.h"

#include <windows.h>
// The multimedia header takes its basic types from the one above.
#include <mmsystem.h>

#include "platform/win32/native_path.h"

namespace coffrelune {

int Win32Sounds::deviceCount() {
    return static_cast<int>(waveOutGetNumDevs());
}

void Win32Sounds::play(const std::string& path) {
    PlaySoundW(plainPath(path).c_str(), nullptr, SND_FILENAME | SND_ASYNC | SND_NODEFAULT);
}

}  // namespace coffrelune
