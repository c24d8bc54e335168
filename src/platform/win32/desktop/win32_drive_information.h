#pragma once

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

}  // namespace coffrelune
