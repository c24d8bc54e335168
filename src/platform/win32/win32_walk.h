#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/win32/known_entries.h"
#include "platform/win32/win32_files.h"

namespace coffrelune {

/// Lists each directory of a pair once and asks the system nothing else: over a net every question
/// is a way there and back. What the listing above has shown to be a directory and no link is not
/// opened to make sure; all others, and what cannot be listed, are opened as
/// FileService::openDirectory does.
class Win32Walk final : public WalkAhead {
  public:
    /// Both outlive this.
    Win32Walk(Win32Files& files, Win32Places& places) : files_(files), places_(places) {}

    void announce(std::vector<DirectoryPair>) override {}
    OpenedPair open(const DirectoryPair& pair) override;

  private:
    struct Side {
        std::string path;
        std::shared_ptr<MetDirectories> met;
    };
    /// A pair on the way to the one that was opened last.
    struct Level {
        Side source;
        Side target;
    };

    static bool isListed(const std::string& path, const Side& above);
    Status open(const Side& side, bool listed, LinkRule links, Wanted wanted,
                std::unique_ptr<Directory>& directory);
    bool openListed(const Side& side, Wanted wanted, std::unique_ptr<Directory>& directory);

    Win32Files& files_;
    Win32Places& places_;
    std::vector<Level> levels_;
};

}  // namespace coffrelune
