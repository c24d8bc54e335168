#pragma once

#include "platform/services.h"

namespace coffrelune {

/// Sounds through the system's own player of wave files.
class Win32Sounds final : public SoundService {
  public:
    int deviceCount() override;
    void play(const std::string& path) override;
};

}  // namespace coffrelune
