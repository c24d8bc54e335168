#pragma once

#include <string>

#include "platform/desktop_services.h"

namespace coffrelune {

class Win32DriveInformation final : public DriveInformation {
  public:
    Status volumeLabel(const std::string& root, std::string& label) override;
    /// As the shell names and pictures the drive. The icon's name is for shellIcon().
    DriveDescription describe(const std::string& root) override;
    /// Free: what the user may still fill.
    Status sizes(const std::string& root, std::uint64_t& total, std::uint64_t& free) override;
};

/// The name under which a picture of the shell's own list travels in the core ("shell:12").
std::string shellIconName(int index);

/// An icon handle (HICON) of the picture that `name` names, in the shell's small size; the caller
/// destroys it. Null when the name is no such name or the shell has no such picture.
void* shellIcon(const std::string& name);

}  // namespace coffrelune
