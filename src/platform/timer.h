#pragma once

#include <functional>

#include "platform/controls.h"

namespace coffrelune {

/// Raises `onTick` every `interval` milliseconds while enabled. The window system drives tick();
/// no tick comes while a dialog or a message box is open.
class Timer : public Control {
  public:
    Timer() { Control::setEnabled(false); }

    int interval() const { return interval_; }  // milliseconds
    void setInterval(int milliseconds);
    void tick();

    std::function<void()> onTick;

  private:
    int interval_ = 0;
};

}  // namespace coffrelune
