#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "mainwindow/main_dialogs.h"
#include "platform/commands.h"
#include "platform/desktop_services.h"
#include "platform/input_controls.h"

namespace coffrelune {

/// The automatic backup of the current configuration, once a day at a time while the program runs,
/// and the three options beside it.
class Schedule {
  public:
    static constexpr int tickInterval = 10'000;  // milliseconds

    /// `taskScheduler` is the button "Planificateur de tâches".
    Schedule(SystemMod& system, Desktop& desktop, MainDialogs& dialogs, Button& taskScheduler);

    enum OptIndex : std::size_t { overwriteOpt, modifiedOpt, automaticOpt, optCount };

    Frame CadrePla{"Planifier la sauvegarde"};
    std::array<CheckBox, optCount> Opt;
    TextBox AutoHr;  // "hh:nn"
    Label NextLbl;   // when the next backup comes, or what holds it back
    Timer Timer1;

    /// An unattended backup; returns when it is over.
    std::function<void()> runBackup;

    /// Shows the values of the current configuration; stores nothing.
    void show();
    /// The schedule belongs to backups: its frame is disabled, with what it holds, on other tabs.
    void setKind(OperationKind kind);

    /// Stores the typed time. One that is none is refused with a message, the field keeps the old
    /// one and takes the focus: false. False as well, without a second message, when the field has
    /// just refused one because the focus was leaving it: the command that took the focus away is
    /// the one that comes now, and it must not go on.
    bool commit();
    /// The same while the window closes: a time that is none is dropped without a word.
    void commitAtClose();

    /// Sets the day of the next backup: today, or tomorrow when today's time has passed; after a
    /// run the day after the one that was due.
    void Arm(bool afterRun);

  private:
    void tick();
    void clickOption(std::size_t index);
    void openTaskScheduler();
    void offerPlan();
    void tellPlan(const Status& status, const std::string& done);
    void leaveField();
    bool storeTypedTime();
    bool refuseTypedTime();
    bool isDue();
    void showTime(const std::string& time);
    void showNext();

    SystemMod& system_;
    Desktop& desktop_;
    MainDialogs& dialogs_;
    Button& taskScheduler_;
    std::string shownTime_;  // what the field held before anything was typed
    // When leaving the field refused a time, on the monotonic clock, until a command is cancelled.
    std::optional<std::int64_t> refusedAt_;
};

}  // namespace coffrelune
