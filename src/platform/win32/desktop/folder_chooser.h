#pragma once

#include <string>

namespace coffrelune {

/// The shell's own dialog to choose a directory (with `includeFiles` also a file), modal over the
/// window `owner` (HWND, may be null), under `prompt`, standing at `start` when that exists (the
/// core's form, may be empty). The calling thread must be one of an Apartment. The choice in the
/// core's form; empty when cancelled and for what is no place of the file system.
std::string chooseShellFolder(void* owner, bool includeFiles, const std::string& prompt,
                              const std::string& start);

}  // namespace coffrelune
