#pragma once

#include <cstdint>
#include <set>
#include <string>

#include "engine/run_statistics.h"
#include "operation/operation_host.h"

namespace coffrelune {

/// How a launch ended.
enum class RunEnd {
    cancelled,    // the user did not confirm: nothing ran
    nothing,      // nothing was to be copied
    finished,     // to its end, with or without errors
    interrupted,  // by the user, by an error, or by a missing destination
};

/// Launches an operation, tells how it went and records its result.
class OperationLauncher {
  public:
    OperationLauncher(SystemMod& system, OperationHost& host);

    /// What existing files become without a question, for the whole run; by default the
    /// configuration and the user decide.
    void keepExistingFiles() { keepExisting_ = true; }

    /// The user has confirmed everything beforehand: no question precedes the run.
    void skipConfirmations() { confirmed_ = true; }

    /// Runs a backup or a restore. `mode` 1: the user started it; any other value: unattended,
    /// which asks nothing, shows no message and plays no sound.
    RunEnd LanceOperation(std::int16_t mode);

    /// The two questions before a restore: true when both were answered OK.
    bool confirmRestore();

    /// Runs a comparison and records its result; asks and tells nothing.
    RunEnd launchComparison();

    /// The record of the last run.
    const RunStatistics& statistics() const { return statistics_; }

  private:
    RunEnd run(std::int16_t mode);
    void showOperation();
    bool confirmTreeOnly(std::int16_t mode);
    void tellSharedCopies();
    void tellRestoreDeletions();
    void reset(std::int16_t mode);
    void reportNothing(std::int16_t mode);
    void report(std::int16_t mode, bool interrupted);
    std::string treeMessage() const;
    std::string interruptedMessage() const;
    std::string finishedMessage() const;
    void playEndSound(std::int16_t mode);
    void say(std::int16_t mode, const std::string& text, bool information);

    SystemMod& system_;
    OperationHost& host_;
    RunStatistics statistics_;
    std::set<std::string> toldCopies_;  // each is told once, not at every run
    bool keepExisting_ = false;
    bool confirmed_ = false;
};

}  // namespace coffrelune
