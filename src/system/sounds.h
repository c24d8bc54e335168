#pragma once

#include <string>

#include "platform/desktop_services.h"
#include "platform/file_service.h"
#include "platform/services.h"

namespace coffrelune {

/// The file of an end-of-copy sound: `name` + ".wav" in the settings directory.
std::string soundFile(const std::string& homeDirectory, const std::string& name);

/// True when that file is there and is one.
bool soundExists(FileService& files, const std::string& homeDirectory, const std::string& name);

/// Plays an end-of-copy sound asynchronously; silent without a sound device or without its file.
void playEndOfCopySound(SoundService& sounds, FileService& files, const std::string& homeDirectory,
                        const std::string& name);

/// Plays a sound of the system ("SystemStart") asynchronously; silent without a sound device.
void playSystemSound(SoundService& sounds, ShellService& shell, const std::string& name);

}  // namespace coffrelune
