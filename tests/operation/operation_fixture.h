#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/certificate.h"
#include "operation/copie.h"
#include "operation/lance_operation.h"
#include "platform/memory/faulty_files.h"
#include "platform/memory/memory_platform.h"

namespace coffrelune {

using Events = std::vector<std::string>;

/// What the operation changes in the window that launched it is written down.
class RecordingHost final : public OperationHost {
  public:
    explicit RecordingHost(Events& events) : events_(events) {}

    void showLineDone(int line, bool done) override;
    void setLaunchEnabled(bool enabled) override;
    void setTimerEnabled(bool enabled) override;
    void resultStored(OperationKind kind) override;
    TextLog& comparisonList() override { return comparison_.comparisonList(); }
    Label& comparisonSummary() override { return comparison_.comparisonSummary(); }

  private:
    SharedHost comparison_;
    Events& events_;
};

/// Forwards to the user of the test and writes down what is shown, with the changes of the
/// operation window's labels and progress bar.
class WatchedWindows final : public WindowService, public ControlPeer {
  public:
    WatchedWindows(MemoryWindows& inner, Events& events) : inner_(inner), events_(events) {}

    void showModal(Window& window) override;
    void runPendingEvents() override { inner_.runPendingEvents(); }
    Answer showMessage(const MessageBoxText& message) override;
    std::string chooseNewFile(const std::string& title, const std::string& name) override {
        return inner_.chooseNewFile(title, name);
    }
    void copyText(const std::string& text) override { inner_.copyText(text); }
    void notice(const std::string& text) override;
    void controlChanged(Control& control) override;

    /// The operation window that is open, else null.
    Copie* operation() const { return operation_; }
    /// Changes of the operation window, as "Lbl1: text", "ProgBar: 42", "ProgBar: marquee" or
    /// "AnalyseChk: visible".
    const Events& changes() const { return changes_; }
    /// The same of one control only, without its name.
    Events changesOf(const std::string& control) const;

  private:
    void watch(Copie& operation, ControlPeer* peer);

    MemoryWindows& inner_;
    Events& events_;
    Events changes_;
    std::map<const Control*, std::string> names_;
    Copie* operation_ = nullptr;
};

class WatchedSounds final : public SoundService {
  public:
    explicit WatchedSounds(Events& events) : events_(events) {}

    int deviceCount() override { return devices; }
    void play(const std::string& path) override { events_.push_back("sound " + path); }

    int devices = 1;

  private:
    Events& events_;
};

/// Two selected lines of the configuration Travail on drives in memory: C:\Docs (a.txt of 5 bytes
/// and Sub\b.txt of 3) to F:\Save, and D:\Photos (c.jpg of 8) to G:\Save. The settings file is
/// C:\Coffrelune\Coffrelune.ini. Overwriting asks, an error stops the run.
class OperationTest : public testing::Test {
  protected:
    static constexpr const char* home = R"(C:\Coffrelune)";

    OperationTest();
    void TearDown() override;

    MemoryDisk& disk() { return memory.disk(); }
    MemoryWindows& user() { return memory.windows(); }
    MemoryClock& clock() { return memory.clock(); }

    void selectOnly(const std::vector<int>& lines);
    /// An older copy of C:\Docs\a.txt lies in the destination.
    void placeOldCopy();
    /// Copying this file fails with this number, at both attempts.
    void failCopyOf(const std::string& source, std::uint32_t number);
    /// Calls `action` once, when the events run next and `when` is true of the open window.
    void whenEventsRun(std::function<bool(Copie&)> when, std::function<void(Copie&)> action);
    /// The user presses "Annuler" and answers "Oui" as soon as the label says this.
    void interruptAtLabel(std::size_t label, const std::string& text);

    /// Makes `copie`, the window of a new `operation` that `switches` were chosen for.
    void makeCopie();
    /// Shows the window until it closes; `statistics` and `control` are those of its operation.
    void showCopie();
    /// Both: the operation window alone, without its launcher. Everything stays.
    void runCopie();
    RunEnd launch(RunMode mode);
    Events journal() const;
    /// Everything below a directory but the program's own files, as MemoryDisk::list.
    Events filesBelow(const std::string& directory);
    /// The one certificate in the root of a copy; nothing when there is none, or there are more.
    std::optional<Certificate> certificateIn(const std::string& copy);
    bool isComplete(const std::string& copy);
    bool isOpen(const std::string& copy);
    /// A restore into this original is marked as unfinished, in the original itself.
    bool markedUnfinished(const std::string& original);
    std::string setting(const std::string& section, const std::string& key);
    std::string errorList(const std::string& name);
    /// "source destination" of every attempt to copy, in order.
    Events copies() const;
    /// The events that begin like this.
    Events eventsThat(const std::string& beginLike) const;

    MemoryPlatform memory;
    FaultyFiles faults{memory.files()};
    Events events;
    WatchedWindows windows{memory.windows(), events};
    WatchedSounds sounds{events};
    Windows1252 ansi;
    Platform platform{faults, memory.drives(), memory.clock(), memory.locale(),
                      ansi,   sounds,          windows};
    SystemMod system;
    RecordingHost host{events};
    WindowStage stage{system};
    RunSwitches switches;
    RunStatistics statistics;
    RunControl control;
    std::unique_ptr<Operation> operation;
    std::unique_ptr<Copie> copie;
    std::unique_ptr<OperationLauncher> launcher;
};

/// The last message that the user saw.
MATCHER_P3(IsMessage, text, title, icon, "") {
    *result_listener << "\"" << arg.text << "\" titled \"" << arg.title << "\"";
    return arg.text == text && arg.title == title && arg.icon == icon;
}

}  // namespace coffrelune
