#pragma once

#include <string>
#include <vector>

#include "platform/posix/drive_table.h"
#include "platform/services.h"

namespace coffrelune {

struct SoundSources {
    std::string searchPath;  // as in $PATH
    std::string cards = "/proc/asound/cards";
    std::vector<std::string> serverSockets;  // of sound servers, which may play elsewhere
};

/// Sounds through the player programs that desktops bring.
class DesktopSounds final : public SoundService {
  public:
    /// `table` is not owned and must outlive this object.
    DesktopSounds(const DriveTable& table, SoundSources sources)
        : table_(table), sources_(std::move(sources)) {}

    /// The sound cards; a sound server counts as one where there is none. None at all without a
    /// player: nothing could be heard.
    int deviceCount() override;
    void play(const std::string& path) override;

  private:
    int cardCount() const;
    bool hasServer() const;
    std::vector<std::string> playerOf(const std::string& native) const;  // empty without one

    const DriveTable& table_;
    SoundSources sources_;
};

}  // namespace coffrelune
