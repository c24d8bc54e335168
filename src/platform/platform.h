#pragma once

#include <cstdint>

#include "platform/file_service.h"
#include "platform/services.h"

namespace coffrelune {

/// What a system says of its own version. `ntBased`: of the Windows family that began with NT.
struct SystemVersion {
    bool ntBased = false;
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
    std::uint32_t build = 0;
};

/// How much the program trusts the system's copy: 0, plain copies only; 1, the first system whose
/// copy with progress is known to be good (Windows XP as it was sold, build 2600); 2, those after.
constexpr std::int16_t systemLevel(const SystemVersion& version) {
    if (!version.ntBased) return 0;
    if (version.major > 5) return 2;
    return version.major == 5 && version.minor == 1 && version.build >= 2600 ? 1 : 0;
}

/// Of the systems of today, and of those where the program copies with progress itself.
constexpr std::int16_t newestSystemLevel = 2;

/// Every service of the system that the core may use, passed down by reference. The services
/// outlive everything that holds this.
struct Platform {
    FileService& files;
    DriveService& drives;
    Clock& clock;
    Locale& locale;
    AnsiCodec& ansi;
    SoundService& sounds;
    WindowService& windows;
};

}  // namespace coffrelune
