#pragma once

#include <cstdint>

#include "platform/services.h"
#include "views/terminal/interrupt_signals.h"
#include "views/terminal/terminal.h"
#include "views/terminal/terminal_run.h"

namespace coffrelune {

/// Windows in a terminal: each one is a question whose buttons are the answers. An operation is a
/// progress line.
class TerminalWindows final : public WindowService, public OperationStage {
  public:
    /// `journal`: print the operation's journal as it grows. Everything passed outlives this.
    TerminalWindows(Terminal& terminal, Clock& clock, InterruptSignals& signals, bool journal);

    void show(Operation& operation, OperationHost& host) override;

    void showModal(Window& window) override;
    void runPendingEvents() override;
    Answer showMessage(const MessageBoxText& message) override;
    void notice(const std::string& text) override;

  private:
    Terminal& terminal_;
    Clock& clock_;
    InterruptSignals& signals_;
    bool journal_;
    TerminalRun* run_ = nullptr;  // of the operation in progress
    std::int64_t servedAt_ = 0;   // milliseconds
};

}  // namespace coffrelune
