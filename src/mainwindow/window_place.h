#pragma once

#include <string>

#include "settings/system_mod.h"

namespace coffrelune {

/// Where the main window stands and how large it is, remembered from one run to the next. The view
/// keeps it up to date while the user moves the window.
class WindowPlace {
  public:
    enum State { normal = 0, minimised = 1, maximised = 2 };

    explicit WindowPlace(SystemMod& system) : system_(system) {}

    int left = 0;  // twips, 15 to a pixel
    int top = 0;
    int width =
        0;  // of what it holds; 0: as large as that asks, as long as the user has not chosen
    int height = 0;
    State state = normal;

    /// Reads the stored place; 0 for what is missing or cannot be used.
    void load();
    /// Stores the place. A minimised window has none of its own: the one stored before is kept.
    void save();

  private:
    void saveNumber(const std::string& key, int value, int (*understood)(const std::string&));

    SystemMod& system_;
};

}  // namespace coffrelune
