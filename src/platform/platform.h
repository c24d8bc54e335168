#pragma once

#include "platform/file_service.h"
#include "platform/services.h"

namespace coffrelune {

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
