#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

#include "operation/operation.h"
#include "platform/services.h"
#include "views/terminal/interrupt_signals.h"
#include "views/terminal/terminal.h"

namespace coffrelune {

/// How far an operation has come, for a program that shows it elsewhere. Texts may be empty.
struct RunProgress {
    int percent = -1;  // -1: not known yet
    std::string phase;
    std::string detail;
    std::string remainingTime;
    std::string rate;
};

/// An operation in a terminal: one line with its phase or percentage, remaining time and rate; and
/// its journal, line by line, when that is wanted.
class TerminalRun final : public RunDisplay {
  public:
    /// `windows` asks the questions. Everything passed outlives this.
    TerminalRun(Operation& operation, OperationHost& host, WindowService& windows,
                Terminal& terminal, bool printsJournal);
    ~TerminalRun() override;
    TerminalRun(const TerminalRun&) = delete;
    TerminalRun& operator=(const TerminalRun&) = delete;

    /// Told at most ten times a second, and once with what was shown last.
    std::function<void(const RunProgress&)> onProgress;

    /// Redraws the line when something changed and `now` (milliseconds) is late enough.
    void refresh(std::int64_t now);

    /// The run stops after the file in progress.
    void requestInterruption();
    const std::string& journal() const { return journal_.text(); }

    void showPhase(const std::string& phase, const std::string& detail) override;
    void offerAnalysisDetail() override {}
    void showCopyPhase(const std::string& remainingTime) override;
    void showComparisonPhase(const std::string& phase) override;
    void showSource(const std::string& path) override;
    void showDestination(const std::string& path) override { show(detail_, "Vers: " + path); }
    void showFile(const std::string& path) override { show(file_, path); }
    void showPercentage(int percent, const std::string& caption) override;
    void showRemainingTime(const std::string& caption) override { show(remainingTime_, caption); }
    void showRate(const std::string& caption) override { show(rate_, caption); }
    void showCount(const std::string& caption) override { show(detail_, caption); }
    void showLineDone(int line) override { host_.showLineDone(line, true); }
    void addToComparison(const std::string& line) override;
    void showComparisonSummary(const std::string& summary) override;
    void AjouteECTxt(const std::string& text) override;
    void MajErreurImg() override {}
    void showCritical(const std::string& text) override;
    ReplacementAnswer DemandeRemplacement(const Replacement& replacement) override;
    void runPendingEvents() override { windows_.runPendingEvents(); }

  private:
    void show(std::string& part, const std::string& text);
    std::string text() const;
    void tellProgress();

    Operation& operation_;
    OperationHost& host_;
    WindowService& windows_;
    Terminal& terminal_;
    bool printsJournal_;
    TextLog journal_;
    // The parts of the line; with a percentage the copy has begun.
    std::string percentage_;
    int percent_ = -1;
    std::string phase_;
    std::string remainingTime_;
    std::string detail_;
    std::string file_;
    std::string rate_;
    std::string stop_;  // once it is asked for
    bool changed_ = true;
    std::int64_t drawnAt_ = 0;
};

/// Windows in a terminal: each one is a question whose buttons are the answers. An operation is a
/// progress line.
class TerminalWindows final : public WindowService, public OperationStage {
  public:
    /// `journal`: print the operation's journal as it grows. Everything passed outlives this.
    TerminalWindows(Terminal& terminal, Clock& clock, InterruptSignals& signals, bool journal);

    /// Told how far each operation comes, instead of the line that shows it.
    void tellProgress(std::function<void(const RunProgress&)> tell) { tell_ = std::move(tell); }

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
    std::function<void(const RunProgress&)> tell_;
    TerminalRun* run_ = nullptr;  // of the operation in progress
    std::int64_t servedAt_ = 0;   // milliseconds
};

}  // namespace coffrelune
