#pragma once

#include <array>
#include <deque>
#include <functional>
#include <string>

#include "platform/controls.h"
#include "platform/services.h"

namespace coffrelune {

/// What a backup that nobody watched had to say: lines at the top of the main window that stay
/// until the user hides them. The last ones are shown; of those before, how many there were.
class NoticeArea {
  public:
    /// `clock` is not owned.
    explicit NoticeArea(Clock& clock);

    Picture Img;
    std::array<Label, 5> Lbl;  // from the oldest that is shown to the newest
    Button Cmd{"Masquer"};

    /// Called when the area has grown, shrunk or gone.
    std::function<void()> onChanged;

    /// `text`: line ends become blanks.
    void add(const std::string& text);

  private:
    void show();
    void hide();

    Clock& clock_;
    std::deque<std::string> messages_;
    std::size_t dropped_ = 0;
};

}  // namespace coffrelune
