#pragma once

#include <cstdint>

#include "platform/services.h"
#include "platform/terminal/interrupt_signals.h"
#include "platform/terminal/progress_line.h"
#include "platform/terminal/terminal.h"

namespace coffrelune {

/// Windows in a terminal: the operation window is a progress line, every other one a question whose
/// buttons are the answers.
class TerminalWindows final : public WindowService {
  public:
    /// `journal`: print the operation's journal as it grows. Everything passed outlives this.
    TerminalWindows(Terminal& terminal, Clock& clock, InterruptSignals& signals, bool journal);

    void showModal(Window& window) override;
    void runPendingEvents() override;
    Answer showMessage(const MessageBoxText& message) override;
    void notice(const std::string& text) override;

  private:
    void runOperation(Copie& operation);
    void askWindow(Window& window);

    Terminal& terminal_;
    Clock& clock_;
    InterruptSignals& signals_;
    bool journal_;
    ProgressLine* line_ = nullptr;  // of the operation in progress
    std::int64_t servedAt_ = 0;     // milliseconds
};

}  // namespace coffrelune
