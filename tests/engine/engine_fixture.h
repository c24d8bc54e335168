#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/copie_mod.h"
#include "engine/excess_walk.h"
#include "platform/memory/faulty_files.h"
#include "platform/memory/memory_platform.h"
#include "platform/names.h"
#include "system/paths.h"

namespace coffrelune {

/// The display of a test: keeps everything it is shown, answers questions as prepared. A question
/// that no test prepared is a failure, answered with cancel.
class RecordingDisplay final : public RunDisplay {
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
    std::vector<std::array<std::string, 3>> facts;  // of those questions
    std::vector<std::string> order;                 // journal lines and "first error", as they came
    int firstErrors = 0;
    int events = 0;
    std::deque<ReplacementAnswer> answers;
    std::function<void()> onEvents;

    // Shown by the operation, not by the engine.
    void showPhase(const std::string&, const std::string&) override {}
    void offerAnalysisDetail() override {}
    void showCopyPhase(const std::string&) override {}
    void showComparisonPhase(const std::string&) override {}
    void showComparisonSummary(const std::string&) override {}
    void showLineDone(int) override {}

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
    ReplacementAnswer DemandeRemplacement(const Replacement& replacement) override;
    void runPendingEvents() override {
        ++events;
        if (onEvents) onEvents();
    }
};

inline ReplacementAnswer RecordingDisplay::DemandeRemplacement(const Replacement& replacement) {
    questions.push_back(replacement.fileName);
    facts.push_back(replacement.facts);
    if (answers.empty()) {
        ADD_FAILURE() << "question not expected: " << replacement.fileName;
        return ReplacementAnswer::cancel;
    }
    const ReplacementAnswer answer = answers.front();
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
        begin();
    }

    /// The same on other disks; nothing of `memory` but its clock and windows counts then.
    EngineBench(FileService& files, DriveService& drives)
        : faulty(files), platform{faulty,
                                  drives,
                                  memory.clock(),
                                  memory.locale(),
                                  memory.platform().ansi,
                                  memory.sounds(),
                                  memory.windows()} {
        begin();
    }

    MemoryPlatform memory;
    FaultyFiles faulty;
    Platform platform;
    SystemMod system{platform, {"", "H:\\Coffrelune", 3, 5}};
    RunSwitches switches;
    RunControl control;
    RunStatistics statistics;
    RecordingDisplay window;
    RunState state{system, window, switches, control, statistics};
    CopyErrors errors{state};
    CopieMod engine{state, errors};
    ExclusionList exclusions;  // of every line

    MemoryDisk& disk() { return memory.disk(); }

    /// What lies below a place, without the program's own certificates and marks.
    std::vector<std::string> list(const std::string& path) {
        std::vector<std::string> paths = disk().list(path);
        std::erase_if(paths, [](const std::string& found) {
            const auto kind = ownFileKind(splitPath(found).last);
            return kind && *kind != OwnFile::temporary;
        });
        return paths;
    }

    /// One pass over one line of a backup.
    void analyse(const std::string& source, const std::string& destination, int line = 0) {
        pass(lineRoots(source, destination, Layout::normal), Pass::analysis, line);
    }
    void act(const std::string& source, const std::string& destination, int line = 0) {
        pass(lineRoots(source, destination, Layout::normal), Pass::copy, line);
    }
    void makeTree(const std::string& source, const std::string& destination, int line = 0) {
        pass(lineRoots(source, destination, Layout::normal), Pass::tree, line);
    }
    void pass(const LineRoots& roots, Pass pass, int line = 0) { walk(trees(roots, line), pass); }
    Pass passing = Pass::tree;  // the pass in progress, or the last one

    /// All passes over one line, from its first examination to the end that its trees are told.
    /// True when all of it has been copied.
    bool run(const std::string& source, const std::string& destination, int line = 0) {
        return run(lineRoots(source, destination, Layout::normal), line);
    }
    bool restore(const std::string& source, const std::string& destination, int line = 0) {
        return run(lineRoots(source, destination, Layout::reversed), line);
    }
    bool run(const LineRoots& roots, int line = 0);

    /// The deletion alone; `others`: the roots of the other lines. True when a file and a directory
    /// of one name have been set right.
    bool clean(const LineRoots& roots, const std::vector<LineRoots>& others = {}, int line = 0);
    /// The exclusions loaded last, in a deletion.
    ExclusionList loadedLast;

    /// The trees of a line, held from here on. Kept as long as the line stays what it is.
    LineTrees& trees(const LineRoots& roots, int line = 0);
    /// The run is over: what it held is let go of.
    void letGo() { lines_.clear(); }

    /// Another operation on the same disk, which knows nothing of the one before.
    void startAgain();

    /// The certificates in a directory, by the names of their files.
    std::map<std::string, Certificate> certificates(const std::string& directory);
    /// The only certificate there; a failure and an empty one when there is none, or another.
    Certificate certificate(const std::string& directory);
    /// Puts one there as an earlier run did, and gives its path.
    std::string putCertificate(const std::string& directory, const Certificate& certificate);
    /// How many marks of unfinished restores lie in a directory.
    std::size_t restoreMarks(const std::string& directory);

  private:
    void begin() {
        system.Modifie = 1;
        system.options.SynchroDate = -1;
        statistics.tallies.resize(20);
        control.askBeforeReplacing = false;
    }
    void walk(LineTrees& line, Pass pass) {
        passing = pass;
        engine.walkLine(line, pass);
    }
    bool passesOver(LineTrees& line, ExcessWalk& excess);
    void conclude(LineTrees& line, bool settled);

    std::map<int, std::unique_ptr<LineTrees>> lines_;
};

inline LineTrees& EngineBench::trees(const LineRoots& roots, int line) {
    std::unique_ptr<LineTrees>& kept = lines_[line];
    const auto isSame = [&] {
        const LineRoots& old = kept->roots();
        return old.source == roots.source && old.target == roots.target &&
               old.destination == roots.destination && old.layout == roots.layout &&
               kept->line().exclusions == exclusions;
    };
    if (kept == nullptr || !isSame()) {
        kept.reset();
        kept = std::make_unique<LineTrees>(state, errors, RunLine{line, roots, exclusions});
    }
    return *kept;
}

inline void EngineBench::startAgain() {
    letGo();
    faulty.restart();
    memory.files().clearCalls();
    control = {};
    control.askBeforeReplacing = false;
    statistics = {};
    statistics.tallies.resize(20);
    std::destroy_at(&errors);
    std::construct_at(&errors, state);
    std::destroy_at(&engine);
    std::construct_at(&engine, state, errors);
}

inline bool EngineBench::run(const LineRoots& roots, int line) {
    letGo();
    control.interruptionRequested = false;
    statistics.tallies[static_cast<std::size_t>(line)] = {};
    statistics.totalBytes = statistics.bytesDone = 0;
    LineTrees& held = trees(roots, line);
    std::unique_ptr<HeldTree> destination;
    // One that is not there is told by the pass that looks for it.
    if (held.backsUp()) (void)state.files().hold(roots.destination, destination);
    errors.startLine(line);
    ExcessWalk excess(state, errors);
    excess.protect({{line, roots, {}}});
    if (held.take()) {
        const Status accepted = switches.acceptOriginal ? held.accept() : Status();
        if (!accepted.ok()) errors.unread(accepted.code(), roots.source);
        if (mayDeleteExcess(state)) excess.prepare(held);
    }
    const bool settled = passesOver(held, excess) && !state.tally(line).incomplete;
    conclude(held, settled);
    letGo();
    return settled;
}

inline bool EngineBench::passesOver(LineTrees& line, ExcessWalk& excess) {
    LineTally& tally = state.tally(line.line().index);
    walk(line, Pass::tree);
    if (system.options.ArbreMode != 0 || state.stopped()) return false;
    errors.startLine(line.line().index);
    if (mayDeleteExcess(state) && excess.cleanLine(line, line.line().exclusions) &&
        !state.stopped()) {
        walk(line, Pass::tree);
    }
    statistics.totalBytes = 0;
    if (!state.stopped()) walk(line, Pass::analysis);
    const bool lacksNothing = tally.filesToCopy == 0 && !tally.incomplete && !tally.sourceMissing;
    if (!lacksNothing) line.leaveOpen();
    if (state.stopped() || statistics.totalBytes <= 0) return lacksNothing && !state.stopped();
    walk(line, Pass::copy);
    return !state.stopped() && !tally.sourceMissing;
}

inline void EngineBench::conclude(LineTrees& line, bool settled) {
    if (!line.mustConclude(settled)) return;
    Status status = line.flush();
    if (status.ok()) status = line.conclude();
    if (status.ok()) status = line.flush();
    if (!status.ok()) errors.failed(status.code(), line.roots().target, line.roots().target);
}

inline bool EngineBench::clean(const LineRoots& roots, const std::vector<LineRoots>& others,
                               int line) {
    ExcessWalk excess(state, errors);
    std::vector<RunLine> all = {{line, roots, {}}};
    for (const LineRoots& other : others) {
        all.push_back({line + static_cast<int>(all.size()), other, {}});
    }
    excess.protect(all);
    errors.startLine(line);
    return excess.cleanLine(trees(roots, line), loadedLast);
}

inline std::map<std::string, Certificate> EngineBench::certificates(const std::string& directory) {
    DirectoryMarks marks;
    EXPECT_TRUE(readMarks(memory.files(), directory, marks).ok()) << directory;
    EXPECT_THAT(marks.unreadable, testing::IsEmpty());
    std::map<std::string, Certificate> found;
    for (const auto& one : marks.certificates) found[one.name] = one.certificate;
    return found;
}

inline Certificate EngineBench::certificate(const std::string& directory) {
    const auto found = certificates(directory);
    EXPECT_EQ(found.size(), 1U) << "certificates in " << directory;
    return found.size() == 1 ? found.begin()->second : Certificate();
}

inline std::string EngineBench::putCertificate(const std::string& directory,
                                               const Certificate& certificate) {
    const std::uint64_t number = placeNumber(certificate.original);
    std::string path = joinPath(directory, ownFileName(OwnFile::certificate, number));
    disk().file(path, certificateText(certificate));
    return path;
}

inline std::size_t EngineBench::restoreMarks(const std::string& directory) {
    DirectoryMarks marks;
    EXPECT_TRUE(readMarks(memory.files(), directory, marks).ok()) << directory;
    return marks.restoreMarks.size();
}

/// Base of the tests that walk.
class Engine : public testing::Test, protected EngineBench {};

inline constexpr std::uint64_t oneSecond = 10'000'000;  // in units of 100 ns
inline constexpr std::uint64_t oneHour = 3600 * oneSecond;

}  // namespace coffrelune
