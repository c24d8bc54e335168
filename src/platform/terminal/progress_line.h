#pragma once

#include <cstdint>
#include <string>

#include "operation/copie.h"
#include "platform/terminal/terminal.h"

namespace coffrelune {

/// The operation window as one line of a terminal: phase or percentage, remaining time, rate; and
/// its journal, line by line, when that is wanted.
class ProgressLine final : public ControlPeer {
  public:
    ProgressLine(Copie& window, Terminal& terminal, bool journal);
    ~ProgressLine() override;
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void controlChanged(Control& control) override;

    /// Redraws the line when something changed and `now` (milliseconds) is late enough.
    void refresh(std::int64_t now);

    Copie& window() { return window_; }

  private:
    void printJournal();
    std::string text() const;

    Copie& window_;
    Terminal& terminal_;
    bool journal_;
    bool changed_ = true;
    std::int64_t drawnAt_ = 0;
    std::size_t linesPrinted_ = 0;
};

}  // namespace coffrelune
