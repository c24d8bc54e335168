#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "engine/copie_mod.h"
#include "platform/memory/faulty_files.h"
#include "platform/memory/memory_platform.h"

namespace coffrelune {

/// The operation window of a test: keeps everything it is shown, answers questions as prepared. A
/// question that no test prepared is a failure, answered with cancel.
class RecordingWindow final : public OperationWindow {
  public:
    std::vector<std::string> sources;
    std::vector<std::string> destinations;
    std::vector<std::string> files;
    std::vector<std::pair<int, std::string>> percentages;
    std::vector<std::string> remainingTimes;
    std::vector<std::string> rates;
    std::vector<std::string> counts;
    std::vector<std::string> comparison;
    std::vector<std::string> journal;
    std::vector<std::string> criticals;
    std::vector<std::string> questions;
    std::vector<std::string> order;  // journal lines and "first error", as they came
    int firstErrors = 0;
    int events = 0;
    std::deque<int> answers;
    std::function<void()> onEvents;

    void showSource(const std::string& path) override { sources.push_back(path); }
    void showDestination(const std::string& path) override { destinations.push_back(path); }
    void showFile(const std::string& path) override { files.push_back(path); }
    void showPercentage(int percent, const std::string& caption) override {
        percentages.emplace_back(percent, caption);
    }
    void showRemainingTime(const std::string& caption) override {
        remainingTimes.push_back(caption);
    }
    void showRate(const std::string& caption) override { rates.push_back(caption); }
    void showCount(const std::string& caption) override { counts.push_back(caption); }
    void addToComparison(const std::string& line) override { comparison.push_back(line); }
    void AjouteECTxt(const std::string& text) override {
        journal.push_back(text);
        order.push_back(text);
    }
    void MajErreurImg() override {
        ++firstErrors;
        order.emplace_back("first error");
    }
    void showCritical(const std::string& text) override { criticals.push_back(text); }
    int DemandeRemplacement(const std::string& fileName) override;
    void runPendingEvents() override {
        ++events;
        if (onEvents) onEvents();
    }
};

inline int RecordingWindow::DemandeRemplacement(const std::string& fileName) {
    questions.push_back(fileName);
    if (answers.empty()) {
        ADD_FAILURE() << "question not expected: " << fileName;
        return 3;
    }
    const int answer = answers.front();
    answers.pop_front();
    return answer;
}

/// One operation on a disk of its own: C: to be read, F: to be written, the settings on H:. Every
/// call of the disk goes through `faulty`. Compares dates, keeps file dates, asks nothing.
class EngineBench {
  public:
    explicit EngineBench(MemoryDisk::Names names = MemoryDisk::Names::caseSensitive)
        : memory(names), faulty(memory.files()), platform(memory.platform(faulty)) {
        memory.disk().volume("C:\\");
        memory.disk().volume("F:\\");
        system.Modifie = 1;
        system.options.SynchroDate = -1;
        statistics.tallies.resize(12);
        statistics.askBeforeReplacing = false;
    }

    MemoryPlatform memory;
    FaultyFiles faulty;
    Platform platform;
    SystemMod system{platform, {"", "H:\\Coffrelune", 3, 5}};
    RunStatistics statistics;
    RecordingWindow window;
    CopieMod engine{system, statistics, window};

    MemoryDisk& disk() { return memory.disk(); }

    /// One pass over one line, as the operation window starts it.
    void analyse(const std::string& source, const std::string& destination, int line = 0) {
        pass(lineRoots(source, destination, Layout::normal), true, line);
    }
    void act(const std::string& source, const std::string& destination, int line = 0) {
        pass(lineRoots(source, destination, Layout::normal), false, line);
    }
    void makeTree(const std::string& source, const std::string& destination, int line = 0) {
        system.options.ArbreMode = -1;
        analyse(source, destination, line);
        system.options.ArbreMode = 0;
    }

    /// All passes of a backup over one line: tree, analysis, and the copy if there are bytes.
    void run(const std::string& source, const std::string& destination, int line = 0) {
        statistics.interruptionRequested = false;
        makeTree(source, destination, line);
        statistics.totalBytes = 0;
        statistics.bytesDone = 0;
        if (!statistics.interruptionRequested) analyse(source, destination, line);
        if (statistics.interruptionRequested || statistics.totalBytes <= 0) return;
        act(source, destination, line);
    }

    void pass(const LineRoots& roots, bool analysisPass, int line = 0) {
        statistics.currentLine = line;
        engine.walkLine(roots, analysisPass);
    }
};

/// Base of the tests that walk.
class Engine : public testing::Test, protected EngineBench {};

inline constexpr std::uint64_t oneSecond = 10'000'000;  // in units of 100 ns
inline constexpr std::uint64_t oneHour = 3600 * oneSecond;

}  // namespace coffrelune
