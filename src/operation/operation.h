#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/run_state.h"
#include "platform/controls.h"
#include "platform/long_lists.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// What changes in the window that launched an operation while it runs, and after it.
class OperationHost {
  public:
    virtual ~OperationHost() = default;

    /// The done mark `ImgOk` of a line.
    virtual void showLineDone(int line, bool done) = 0;
    virtual void setLaunchEnabled(bool enabled) = 0;
    virtual void setTimerEnabled(bool enabled) = 0;
    /// The results of a kind have been recorded: show them.
    virtual void resultStored(OperationKind kind) = 0;

    /// The list of a comparison and the label below it.
    virtual TextLog& comparisonList() = 0;
    virtual Label& comparisonSummary() = 0;

    /// Free bytes of a drive ("E:\\"); nothing when nobody knows.
    virtual std::optional<std::uint64_t> freeSpace(const std::string& /*drive*/) { return {}; }
};

/// A host with no window: for the terminal, and for a start with "/Auto" where there is no display.
class SharedHost final : public OperationHost {
  public:
    void showLineDone(int, bool) override {}
    void setLaunchEnabled(bool) override {}
    void setTimerEnabled(bool) override {}
    void resultStored(OperationKind) override {}
    TextLog& comparisonList() override { return comparisonList_; }
    Label& comparisonSummary() override { return comparisonSummary_; }

  private:
    TextLog comparisonList_;
    Label comparisonSummary_;
};

/// What the operation in progress is called: "Sauvegarde ...".
std::string operationCaption(const SystemMod& system);

/// "Durée de la Sauvegarde ... : 00:03:12"
std::string durationLine(const SystemMod& system);

/// One operation of the current kind from its first journal line to its error list, and the record
/// of it. Whoever shows it calls begin(), run() and end() once each, in this order.
class Operation {
  public:
    /// `errorCount`: of the operation before, which an interrupted comparison keeps.
    Operation(SystemMod& system, const RunSwitches& switches, std::int32_t errorCount = 0);

    void begin(RunDisplay& display);
    void run(RunDisplay& display);
    /// True after a run whose errors somebody should see before the window goes.
    bool waitsForUser() const { return waits_; }
    /// `journal`: all that AjouteECTxt() was given, its error list if there were errors.
    void end(const std::string& journal);

    /// The run stops after the file in progress. Nothing once it is over.
    void requestInterruption();

    bool unattended() const { return switches_.unattended; }
    const RunStatistics& statistics() const { return statistics_; }
    const RunControl& control() const { return control_; }

  private:
    SystemMod& system_;
    RunSwitches switches_;
    RunControl control_;
    RunStatistics statistics_;
    LocalTime startTime_;
    bool over_ = false;
    bool waits_ = false;
};

/// Shows an operation from its beginning to its end: a window, or a terminal.
class OperationStage {
  public:
    virtual ~OperationStage() = default;
    /// `host` shows what outlives the operation: done lines, the result of a comparison.
    virtual void show(Operation& operation, OperationHost& host) = 0;
};

}  // namespace coffrelune
