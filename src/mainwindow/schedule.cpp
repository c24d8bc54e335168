#include "mainwindow/schedule.h"

#include <utility>

#include "platform/characters.h"
#include "settings/choices.h"
#include "system/date_time.h"
#include "system/planned_runs.h"

namespace coffrelune {
namespace {

// How long after a refused time the command may come whose press took the focus out of the field. A
// toolkit may also lose that press to the message; a command given later is meant.
constexpr std::int64_t pressLasts = 1'000;  // milliseconds

// The field expects "hh:nn": what is missing is filled with zeros on the right, and whatever stands
// between hours and minutes counts as the colon ("08h30"). So "8" is 80:00, and no time.
std::string asTime(const std::string& typed) {
    constexpr std::size_t length = 5;
    std::u32string characters;
    for (std::size_t position = 0; position < typed.size() && characters.size() < length;) {
        characters.push_back(utf8::next(typed, position));
    }
    characters.resize(length, U'0');
    characters[2] = U':';
    std::string time;
    for (const char32_t character : characters) utf8::append(time, character);
    return time;
}

}  // namespace

Schedule::Schedule(SystemMod& system, Desktop& desktop, MainDialogs& dialogs, Button& taskScheduler)
    : system_(system), desktop_(desktop), dialogs_(dialogs), taskScheduler_(taskScheduler) {
    for (std::size_t i = 0; i < Opt.size(); ++i) {
        Opt[i].setCaption(switchTable.at(i).caption);
        Opt[i].onClick = [this, i] { clickOption(i); };
    }
    AutoHr.setToolTip("Heure de la sauvegarde automatique (hh:mm)");
    AutoHr.onLeave = [this] { leaveField(); };
    AutoHr.onType = [this] { refusedAt_.reset(); };
    taskScheduler_.setCaption("Planificateur de tâches");
    taskScheduler_.setToolTip("Ouvrir le planificateur de tâches");
    taskScheduler_.onClick = [this] { openTaskScheduler(); };
    Timer1.setInterval(tickInterval);
    Timer1.onTick = [this] { tick(); };
}

void Schedule::show() {
    for (std::size_t i = 0; i < Opt.size(); ++i) {
        Opt[i].setChecked(isOn(system_, switchTable.at(i)));
    }
    // A time spoilt by hand in the settings file counts as midnight, and stays there until another
    // one is typed.
    showTime(isTimeOfDay(system_.AutoTime) ? system_.AutoTime : "00:00");
    Timer1.setEnabled(system_.AutoSave == 1);
    showNext();
}

void Schedule::showNext() {
    NextLbl.setVisible(system_.AutoSave == 1);
    if (system_.AutoSave != 1) return;
    const LocalTime now = system_.platform.clock.now();
    const std::string text =
        "Prochaine sauvegarde : " + spokenSchedule(system_.nextDate, system_.AutoTime, now);
    const bool held = system_.operationKind != OperationKind::backup;
    // The whole reason would not fit beside the time.
    NextLbl.setCaption(text + (held ? ", pas sous cet onglet" : ""));
    NextLbl.setToolTip(held ? "Elle part quand l'onglet « Sauvegarde » est affiché." : "");
}

void Schedule::setKind(OperationKind kind) {
    const bool backup = kind == OperationKind::backup;
    CadrePla.setEnabled(backup);
    Opt[automaticOpt].setEnabled(backup);
    AutoHr.setEnabled(backup);
    taskScheduler_.setEnabled(backup);
    showNext();
}

void Schedule::showTime(const std::string& time) {
    shownTime_ = time;
    AutoHr.setText(time);
}

bool Schedule::storeTypedTime() {
    if (AutoHr.text() == shownTime_) return true;
    const std::string time = asTime(AutoHr.text());
    if (!isTimeOfDay(time)) return false;
    system_.AutoTime = time;
    system_.keep(system_.configurationName, "AutoTime", time);
    showTime(time);
    Arm(false);
    return true;
}

bool Schedule::commit() {
    const auto refusedAt = std::exchange(refusedAt_, std::nullopt);
    const std::int64_t now = system_.platform.clock.monotonicMilliseconds();
    if (refusedAt && now - *refusedAt <= pressLasts) return false;
    return storeTypedTime() || refuseTypedTime();
}

void Schedule::leaveField() {
    refusedAt_.reset();
    if (storeTypedTime()) return;
    (void)refuseTypedTime();
    // Taken after the message, which stays open as long as the user likes.
    refusedAt_ = system_.platform.clock.monotonicMilliseconds();
}

bool Schedule::refuseTypedTime() {
    (void)dialogs_.say("L'heure de sauvegarde saisie est incorrecte !");
    AutoHr.setText(shownTime_);
    AutoHr.takeFocus();
    return false;
}

void Schedule::commitAtClose() {
    if (!storeTypedTime()) AutoHr.setText(shownTime_);
}

void Schedule::clickOption(std::size_t index) {
    const bool state = Opt.at(index).checked();
    // What cannot be written is told by the window.
    (void)chooseSwitch(system_, switchTable.at(index), state);
    if (index != automaticOpt) return;
    Timer1.setEnabled(state);
    showNext();
}

void Schedule::Arm(bool afterRun) {
    system_.nextDate = nextScheduledDate(system_.nextDate, afterRun, afterRun, system_.AutoTime,
                                         system_.platform.clock.now());
    showNext();
}

void Schedule::tick() {
    if (dialogs_.busy() || system_.AutoMode) return;
    // No backup starts by itself while the user is busy with a restore or a comparison.
    if (system_.operationKind != OperationKind::backup) return;
    if (isScheduleLost(system_.nextDate, system_.platform.clock.now())) Arm(false);
    if (!isDue()) return;
    // A time typed in full counts before the field is left, and may put the backup off. One that is
    // being typed is left alone: filling it up would change the text under the user's hands.
    if (isTimeOfDay(AutoHr.text())) (void)storeTypedTime();
    if (!isDue()) return;
    const LocalTime now = system_.platform.clock.now();
    const std::string& lastSave = system_.lastResult(OperationKind::backup).cleanDate;
    if (isBackupMissing(lastSave, system_.AutoTime, now)) runBackup();
    // One day on whether it ran or not: days that nobody was there for are caught up with one tick
    // each, not with one backup each.
    Arm(true);
}

bool Schedule::isDue() {
    return isPastSchedule(system_.nextDate, system_.AutoTime, system_.platform.clock.now());
}

void Schedule::openTaskScheduler() {
    if (!dialogs_.ready()) return;
    if (desktop_.tasks != nullptr && !desktop_.shell.hasTaskScheduler()) return offerPlan();
    (void)dialogs_.say(
        "Pour créer une nouvelle planification de Sauvegarde, cliquez sur créer une tâche de base "
        "et inscrivez les paramétres de planification.\r\n\r\nPour modifier une planification "
        "existante, cliquez sur son nom, sélectionnez Propriétés, et inscrivez vos modifications.",
        MessageIcon::information, MessageButtons::ok, "Planificateur de Tâches");
    desktop_.shell.openTaskScheduler();
}

// Where no program shows what is planned, this one plans its own run, or takes it back.
void Schedule::offerPlan() {
    constexpr const char* title = "Planificateur de Tâches";
    const std::string& name = system_.configurationName;
    TaskScheduler& tasks = *desktop_.tasks;
    const auto ask = [&](const std::string& question) {
        return dialogs_.say(question, MessageIcon::question, MessageButtons::yesNo, title) ==
               Answer::yes;
    };
    PlannedEntry entry;
    if (tasks.read(name, entry).ok()) {
        if (!ask("« " + name + " » est planifiée (" + spokenPlan(entry.when) + "), dans :\n" +
                 entry.place + "\n\nVoulez-vous retirer cette planification ?")) {
            return;
        }
        return tellPlan(tasks.remove(name), "La planification de « " + name + " » est retirée.");
    }
    // What follows a "/" on the command line is another name.
    if (name.find('/') != std::string::npos) {
        (void)dialogs_.say(
            "Le nom de cette configuration contient « / » : planifiez-la par "
            "« coffrelune-console planifier ».",
            MessageIcon::exclamation, MessageButtons::ok, title);
        return;
    }
    const std::string time = isTimeOfDay(system_.AutoTime) ? system_.AutoTime : "00:00";
    if (!ask("Voulez-vous que le système sauvegarde « " + name + " » chaque jour à " + time +
             ", sans que ce programme soit ouvert ?\n(Pour une autre heure, changez d'abord celle "
             "de la sauvegarde automatique.)")) {
        return;
    }
    PlannedTask task = plannedWindow(system_.executablePath, name);
    task.time = time;
    std::string advice;
    const Status written = tasks.write(task, advice);
    tellPlan(written, "La sauvegarde de « " + name + " » est planifiée chaque jour à " + time +
                          "." + (advice.empty() ? "" : "\n\n" + advice));
}

void Schedule::tellPlan(const Status& status, const std::string& done) {
    const std::string failed = status.code() == error_number::notSupported
                                   ? "Ce système n'a ni gestionnaire systemd de session ni crontab."
                                   : "La planification n'a pas pu être changée (erreur " +
                                         std::to_string(status.code()) + ").";
    (void)dialogs_.say(status.ok() ? done : failed,
                       status.ok() ? MessageIcon::information : MessageIcon::exclamation,
                       MessageButtons::ok, "Planificateur de Tâches");
}

}  // namespace coffrelune
