#pragma once

#include <set>
#include <string>

#include "operation/operation.h"

namespace coffrelune {

/// How a launch ended.
enum class RunEnd {
    cancelled,    // the user did not confirm: nothing ran
    nothing,      // nothing was to be copied
    finished,     // to its end, with or without errors
    interrupted,  // by the user, by an error, or by a missing destination
};

/// Who is there to read and to answer: an unattended run asks nothing, shows no message and plays
/// no sound.
enum class RunMode { unattended, startedByUser };

/// Launches an operation, tells how it went and records its result.
class OperationLauncher {
  public:
    OperationLauncher(SystemMod& system, OperationHost& host, OperationStage& stage);

    /// What existing files become without a question, for the whole run; by default the
    /// configuration and the user decide.
    void keepExistingFiles() { keepExisting_ = true; }

    /// The user says that the originals are the right ones; holds for the next backup, unless a
    /// restore changes them before it.
    void acceptOriginal() { acceptOriginal_ = true; }
    void forgetAcceptance() { acceptOriginal_ = false; }

    /// The user has confirmed everything beforehand: no question precedes the run.
    void skipConfirmations() { confirmed_ = true; }

    /// Every run tells it what becomes of each file. Not owned; may be null.
    void recordInto(RunRecord* record) { record_ = record; }

    /// Runs a backup or a restore.
    RunEnd LanceOperation(RunMode mode);

    /// The two questions before a restore: true when both were answered OK.
    bool confirmRestore();

    /// Runs a comparison and records its result; asks and tells nothing.
    RunEnd launchComparison();

    /// The same walk, comparing what the files hold; leaves no result and no list of errors.
    RunEnd launchVerification(ContentReader& contents);

    /// Reads the copies alone, as `work` says; leaves no result and no list of errors either.
    RunEnd launchHashing(ContentReader& contents, HashWork& work);

    /// The record of the last run, and what stopped it.
    const RunStatistics& statistics() const { return statistics_; }
    const RunControl& control() const { return control_; }

  private:
    RunEnd run(RunMode mode);
    void showOperation(RunMode mode, std::int32_t errorCount, ContentReader* contents = nullptr,
                       HashWork* hashes = nullptr);
    bool confirmTreeOnly(RunMode mode);
    void tellSharedCopies();
    void tellDeletions();
    void reportNothing(RunMode mode);
    void report(RunMode mode, bool interrupted);
    std::string treeMessage() const;
    std::string interruptedMessage() const;
    std::string finishedMessage() const;
    void playEndSound(RunMode mode);
    void say(RunMode mode, const std::string& text, bool information);

    SystemMod& system_;
    OperationHost& host_;
    OperationStage& stage_;
    RunStatistics statistics_;
    RunControl control_;
    std::set<std::string> toldCopies_;  // each is told once, not at every run
    RunRecord* record_ = nullptr;
    bool keepExisting_ = false;
    bool acceptOriginal_ = false;
    bool confirmed_ = false;
};

}  // namespace coffrelune
