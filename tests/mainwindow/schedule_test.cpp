// The automatic backup: arming, ticks, and the options beside it.
#include "mainwindow/main_form_fixture.h"

namespace coffrelune {
namespace {

using testing::IsEmpty;

constexpr const char* atNoon = "AutoSave=1\nAutoTime=12:00\n";
constexpr const char* atNoonSavedYesterday =
    "AutoSave=1\nAutoTime=12:00\nLastSave=13/03/2025 12:00:10\n";

class ScheduleTest : public MainFormTest {
  protected:
    Timer& Timer1() { return form->schedule.Timer1; }
};

TEST_F(ScheduleTest, TicksEveryTenSecondsOnlyWhileSwitchedOn) {
    startWithLine();
    EXPECT_EQ(Timer1().interval(), 10'000);
    EXPECT_FALSE(Timer1().enabled());
    startWithLine(atNoon);
    EXPECT_TRUE(Timer1().enabled());
}

// ---- the day -------------------------------------------------------------------------------

TEST_F(ScheduleTest, RunsAtTheFirstTickAfterTheTimeAndNotAgainThatDay) {
    setClock(2025, 3, 14, 11);
    startWithLine(atNoonSavedYesterday);
    EXPECT_EQ(system->nextDate, "14/03/2025");
    EXPECT_EQ(tickUntil(2025, 3, 14, 12, 0, 0), 0) << "not before, nor at the very second";
    EXPECT_EQ(tickUntil(2025, 3, 14, 12, 0, 10), 1);
    EXPECT_EQ(stored("LastSave"), "14/03/2025 12:00:10");
    EXPECT_EQ(system->nextDate, "15/03/2025");
    EXPECT_EQ(tickUntil(2025, 3, 14, 23, 59, 50), 0);
}

TEST_F(ScheduleTest, RunsOnceADayOnTheFollowingDays) {
    setClock(2025, 3, 14, 11);
    startWithLine(atNoonSavedYesterday);
    EXPECT_EQ(tickUntil(2025, 3, 17, 11, 0), 3);
    EXPECT_EQ(system->nextDate, "17/03/2025");
}

TEST_F(ScheduleTest, StartedAfterTheTimeWaitsUntilTomorrow) {
    setClock(2025, 3, 14, 13);
    startWithLine(atNoonSavedYesterday);
    EXPECT_EQ(system->nextDate, "15/03/2025");
    EXPECT_EQ(tickUntil(2025, 3, 15, 12, 0, 0), 0);
    EXPECT_EQ(tick(), 0);
    EXPECT_EQ(tickUntil(2025, 3, 15, 12, 0, 10), 1);
}

TEST_F(ScheduleTest, ABackupMadeByHandAfterTheTimeStandsForTheAutomaticOne) {
    setClock(2025, 3, 14, 11);
    startWithLine(atNoonSavedYesterday);
    setClock(2025, 3, 14, 12, 30);
    user().answer(Answer::ok);
    form->Cmd.at(1).click();
    EXPECT_EQ(stored("LastSave"), "14/03/2025 12:30:00");
    EXPECT_EQ(tick(), 0);
    EXPECT_EQ(system->nextDate, "15/03/2025") << "the day counts as done";
}

TEST_F(ScheduleTest, ABackupMadeByHandBeforeTheTimeDoesNot) {
    setClock(2025, 3, 14, 11);
    startWithLine(atNoonSavedYesterday);
    user().answer(Answer::ok);
    form->Cmd.at(1).click();
    EXPECT_EQ(tickUntil(2025, 3, 14, 12, 0, 10), 1);
}

TEST_F(ScheduleTest, RunsWhenNoBackupWasEverMade) {
    setClock(2025, 3, 14, 11);
    startWithLine(atNoon);
    EXPECT_EQ(tickUntil(2025, 3, 14, 13, 0), 1);
}

TEST_F(ScheduleTest, ALastBackupThatIsNoDateCountsAsNone) {
    setClock(2025, 3, 14, 11);
    startWithLine("AutoSave=1\nAutoTime=12:00\nLastSave=hier\n");
    EXPECT_EQ(tickUntil(2025, 3, 14, 12, 0, 10), 1);
}

TEST_F(ScheduleTest, DaysThatTheComputerSleptThroughGiveOneBackup) {
    setClock(2025, 3, 10, 11);
    startWithLine("AutoSave=1\nAutoTime=12:00\nLastSave=09/03/2025 12:00:10\n");
    setClock(2025, 3, 13, 9);
    EXPECT_EQ(tick(), 1) << "at once, though today's time is still to come";
    EXPECT_EQ(system->nextDate, "11/03/2025");
    EXPECT_EQ(tick() + tick() + tick(), 0);
    EXPECT_EQ(system->nextDate, "13/03/2025") << "one day a tick";
    EXPECT_EQ(tickUntil(2025, 3, 13, 12, 0, 0), 0);
    EXPECT_EQ(tickUntil(2025, 3, 13, 12, 0, 10), 1) << "today's own";
}

TEST_F(ScheduleTest, ARunWithErrorsIsRepeatedUntilTheDaysAreCaughtUpWith) {
    setClock(2025, 3, 10, 11);
    startWithLine("AutoSave=1\nAutoTime=12:00\nLastSave=09/03/2025 12:00:10\n");
    system->options.ContinueOnError = -1;
    disk().setInUse(R"(C:\Docs\a.txt)");
    setClock(2025, 3, 12, 13);
    user().step([](Window& window) { window.closeBox(); });
    user().step([](Window& window) { window.closeBox(); });
    user().step([](Window& window) { window.closeBox(); });
    EXPECT_EQ(tick(), 1);
    EXPECT_EQ(tick(), 1);
    EXPECT_EQ(tick(), 1);
    EXPECT_EQ(system->nextDate, "13/03/2025");
    EXPECT_EQ(tick(), 0);
}

TEST_F(ScheduleTest, TheSecondTheTimeStrikesIsNotYetLater) {
    setClock(2025, 3, 14, 11, 59, 50);
    startWithLine(atNoonSavedYesterday);
    clock().set({2025, 3, 14, 12, 0, 0, 999});
    EXPECT_EQ(tick(), 0);
    setClock(2025, 3, 14, 12, 0, 1);
    EXPECT_EQ(tick(), 1);
}

TEST_F(ScheduleTest, MidnightIsTheFirstSecondsOfTheNextDay) {
    setClock(2025, 3, 14, 23, 59);
    startWithLine("AutoSave=1\nLastSave=14/03/2025 00:00:10\n");
    EXPECT_EQ(tickUntil(2025, 3, 15, 0, 0, 0), 0);
    EXPECT_EQ(tickUntil(2025, 3, 15, 0, 0, 10), 1);
    EXPECT_EQ(tickUntil(2025, 3, 15, 23, 59, 50), 0);
}

TEST_F(ScheduleTest, CrossesTheEndOfAMonth) {
    setClock(2025, 4, 30, 13);
    startWithLine("AutoSave=1\nAutoTime=12:00\nLastSave=30/04/2025 12:00:10\n");
    EXPECT_EQ(system->nextDate, "01/05/2025");
    EXPECT_EQ(tickUntil(2025, 5, 1, 12, 0, 0), 0);
    EXPECT_EQ(tickUntil(2025, 5, 1, 12, 0, 10), 1);
    EXPECT_EQ(system->nextDate, "02/05/2025");
}

TEST_F(ScheduleTest, CrossesTheEndOfAYear) {
    setClock(2025, 12, 31, 22);
    startWithLine("AutoSave=1\nAutoTime=23:30\nLastSave=30/12/2025 23:30:10\n");
    EXPECT_EQ(tickUntil(2025, 12, 31, 23, 59, 50), 1);
    EXPECT_EQ(system->nextDate, "01/01/2026");
    EXPECT_EQ(tickUntil(2026, 1, 1, 23, 30, 0), 0);
    EXPECT_EQ(tickUntil(2026, 1, 1, 23, 30, 10), 1);
}

TEST_F(ScheduleTest, HoldsTheLeapDay) {
    setClock(2024, 2, 28, 11);
    startWithLine("AutoSave=1\nAutoTime=12:00\nLastSave=27/02/2024 12:00:10\n");
    EXPECT_EQ(tickUntil(2024, 2, 28, 13, 0), 1);
    EXPECT_EQ(system->nextDate, "29/02/2024");
    EXPECT_EQ(tickUntil(2024, 2, 29, 13, 0), 1);
    EXPECT_EQ(system->nextDate, "01/03/2024");
    EXPECT_EQ(tickUntil(2024, 3, 1, 13, 0), 1);
}

TEST_F(ScheduleTest, FebruaryOfAnyOtherYearEndsOnThe28th) {
    setClock(2025, 2, 28, 11);
    startWithLine("AutoSave=1\nAutoTime=12:00\nLastSave=27/02/2025 12:00:10\n");
    EXPECT_EQ(tickUntil(2025, 2, 28, 13, 0), 1);
    EXPECT_EQ(system->nextDate, "01/03/2025");
}

TEST_F(ScheduleTest, AClockSetBackOneHourAfterTheBackupRunsItNoSecondTime) {
    setClock(2025, 10, 26, 1, 50);
    startWithLine("AutoSave=1\nAutoTime=02:30\nLastSave=25/10/2025 02:30:10\n");
    EXPECT_EQ(tickUntil(2025, 10, 26, 2, 59, 50), 1);
    setClock(2025, 10, 26, 2, 0);
    EXPECT_EQ(tickUntil(2025, 10, 26, 23, 59, 50), 0);
    EXPECT_EQ(system->nextDate, "27/10/2025");
}

TEST_F(ScheduleTest, AClockSetForwardOverTheTimeRunsIt) {
    setClock(2025, 3, 30, 1, 59, 50);
    startWithLine("AutoSave=1\nAutoTime=02:30\nLastSave=29/03/2025 02:30:10\n");
    setClock(2025, 3, 30, 3, 0);
    EXPECT_EQ(tick(), 1);
}

TEST_F(ScheduleTest, AClockSetBackByDaysIsNotWaitedFor) {
    setClock(2025, 3, 20, 11);
    startWithLine("AutoSave=1\nAutoTime=12:00\nLastSave=19/03/2025 12:00:10\n");
    EXPECT_EQ(tickUntil(2025, 3, 20, 13, 0), 1);
    EXPECT_EQ(system->nextDate, "21/03/2025");
    disk().file(R"(C:\Docs\b.txt)", "b", fileTimeAt(2025, 3, 14));
    setClock(2025, 3, 14, 11);
    EXPECT_EQ(tick(), 0);
    EXPECT_EQ(system->nextDate, "14/03/2025") << "armed afresh";
    EXPECT_EQ(tickUntil(2025, 3, 14, 12, 0, 10), 1)
        << "the backup of the 20th has not been made yet, whatever its date says";
    EXPECT_EQ(stored("LastSave"), "14/03/2025 12:00:10");
    EXPECT_EQ(tickUntil(2025, 3, 15, 11, 0), 0);
}

// ---- when it does not run ------------------------------------------------------------------

TEST_F(ScheduleTest, NothingRunsWhileAnotherTabIsShown) {
    for (const char* tab : {"R", "C"}) {
        setClock(2025, 3, 14, 11);
        startWithLine(atNoonSavedYesterday);
        pickTab(tab);
        EXPECT_EQ(tickUntil(2025, 3, 14, 12, 30), 0);
        EXPECT_EQ(system->nextDate, "14/03/2025") << "nor does the day go by";
        pickTab("S");
        EXPECT_EQ(tick(), 1) << "made up for on return";
    }
}

TEST_F(ScheduleTest, UntickingStopsTheTimerAtOnce) {
    setClock(2025, 3, 14, 11);
    startWithLine(atNoonSavedYesterday);
    form->schedule.Opt[2].click();
    EXPECT_FALSE(Timer1().enabled());
    EXPECT_EQ(stored("AutoSave"), "0");
    EXPECT_EQ(tickUntil(2025, 3, 14, 13, 0), 0);
    form->schedule.Opt[2].click();
    EXPECT_TRUE(Timer1().enabled());
    EXPECT_EQ(stored("AutoSave"), "1");
    EXPECT_EQ(tick(), 1);
}

TEST_F(ScheduleTest, NoTickActsWhileSomethingIsOpen) {
    setClock(2025, 3, 14, 11);
    startWithLine(atNoonSavedYesterday);
    setClock(2025, 3, 14, 12, 30);
    int opened = 0;
    windows.whileOpen = [&] {
        ++opened;
        EXPECT_EQ(tick(), 0);
    };
    user().chooseNextFolder("");
    row(0).CmdS.click();
    user().answer(Answer::cancel);
    command("DeleteLigne", 0);
    user().stepIn<Window>([](Window& window) { window.closeBox(); });
    command("Description", 0);
    user().chooseNextFile("");
    form->program.CmdP[0].click();
    EXPECT_EQ(opened, 4);
    EXPECT_EQ(system->nextDate, "14/03/2025");
    windows.whileOpen = nullptr;
    EXPECT_EQ(tick(), 1);
}

TEST_F(ScheduleTest, NoTickActsDuringARunNorDuringItsMessages) {
    setClock(2025, 3, 14, 11);
    startWithLine(atNoonSavedYesterday);
    setClock(2025, 3, 14, 12, 30);
    int opened = 0;
    windows.whileOpen = [&] {
        ++opened;
        Timer1().setEnabled(true);
        EXPECT_EQ(tick(), 0);
    };
    user().answer(Answer::ok);
    form->Cmd.at(1).click();
    EXPECT_EQ(opened, 2) << "the operation and its final message";
}

TEST_F(ScheduleTest, AnAutomaticBackupAsksTellsAndStartsNothing) {
    setClock(2025, 3, 14, 11);
    startWithLine("AutoSave=1\nAutoTime=12:00\nSelectP=1\nProgToRun=C:\\fin.exe\n");
    EXPECT_EQ(tickUntil(2025, 3, 14, 12, 0, 10), 1);
    EXPECT_THAT(user().messages(), IsEmpty());
    EXPECT_THAT(shell().opened(), IsEmpty());
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "aaaaa");
    EXPECT_TRUE(Timer1().enabled());
}

TEST_F(ScheduleTest, ClosingTheWindowStopsTheTimer) {
    startWithLine(atNoonSavedYesterday);
    form->closeBox();
    EXPECT_FALSE(Timer1().enabled());
}

// ---- options and the task scheduler --------------------------------------------------------

TEST_F(ScheduleTest, StoresEachOptionAtOnceAsItsOwnState) {
    start();
    auto& Opt = form->schedule.Opt;
    EXPECT_EQ(Opt[0].caption(), "&Ecrasement sans confirmation");
    EXPECT_EQ(Opt[1].caption(), "Seulement les fichiers &Modifiés");
    EXPECT_EQ(Opt[2].caption(), "Sauvegarde &Automatique :");
    const Texts keys = {"Confirmation", "Modifie", "AutoSave"};
    for (std::size_t i = 0; i < Opt.size(); ++i) {
        Opt[i].click();
        EXPECT_EQ(stored(keys[i]), "1");
    }
    EXPECT_EQ(system->Confirmation, 1);
    EXPECT_EQ(system->Modifie, 1);
    EXPECT_EQ(system->AutoSave, 1);
    for (std::size_t i = 0; i < Opt.size(); ++i) {
        Opt[i].click();
        EXPECT_EQ(stored(keys[i]), "0");
    }
    EXPECT_EQ(system->Confirmation, 0);
    EXPECT_EQ(system->Modifie, 0);
    EXPECT_EQ(system->AutoSave, 0);
}

TEST_F(ScheduleTest, ShowsTheStoredOptionsAsTheyAreUnderstood) {
    start("[General]\nConfirmation=1\nModifie=1\nAutoSave=1\n");
    auto& Opt = form->schedule.Opt;
    EXPECT_TRUE(Opt[0].checked() && Opt[1].checked() && Opt[2].checked());
    start("[General]\nConfirmation=-1\nModifie=-1\nAutoSave=7\n");
    auto& other = form->schedule.Opt;
    EXPECT_FALSE(other[0].checked()) << "only 1 switches the question off";
    EXPECT_TRUE(other[1].checked());
    EXPECT_FALSE(other[2].checked());
    EXPECT_FALSE(Timer1().enabled());
}

TEST_F(ScheduleTest, BelongsToTheBackupTab) {
    start();
    EXPECT_EQ(form->schedule.CadrePla.caption(), "Planifier la sauvegarde");
    for (const char* tab : {"R", "C", "S"}) {
        pickTab(tab);
        const bool backup = std::string(tab) == "S";
        EXPECT_EQ(form->schedule.CadrePla.enabled(), backup);
        EXPECT_EQ(form->schedule.AutoHr.enabled(), backup);
        EXPECT_EQ(form->schedule.Opt[2].enabled(), backup);
        EXPECT_EQ(form->Cmd.at(3).enabled(), backup);
        EXPECT_TRUE(form->schedule.Opt[0].enabled() && form->schedule.Opt[1].enabled());
    }
}

TEST_F(ScheduleTest, ExplainsTheTaskSchedulerAndOpensIt) {
    start();
    EXPECT_EQ(form->Cmd.at(3).caption(), "Planificateur de tâches");
    user().answer(Answer::ok);
    form->Cmd.at(3).click();
    EXPECT_THAT(
        lastMessage(),
        IsMessage(
            "Pour créer une nouvelle planification de Sauvegarde, cliquez sur créer une tâche "
            "de base et inscrivez les paramétres de planification.\r\n\r\nPour modifier une "
            "planification existante, cliquez sur son nom, sélectionnez Propriétés, et "
            "inscrivez vos modifications.",
            "Planificateur de Tâches", MessageIcon::information));
    EXPECT_EQ(shell().schedulerOpenings(), 1);
}

TEST_F(ScheduleTest, PlansTheBackupItselfWhereNoProgramShowsPlans) {
    start("[General]\nAutoTime=08:05\n");
    shell().setTaskScheduler(false);
    user().answer(Answer::yes);
    user().answer(Answer::ok);
    form->Cmd.at(3).click();
    const auto& tasks = memoryDesktop.tasks().tasks();
    ASSERT_EQ(tasks.size(), 1U);
    EXPECT_EQ(tasks.at("General").time, "08:05");
    EXPECT_THAT(tasks.at("General").arguments, testing::ElementsAre("/Auto", "/General"));
    EXPECT_EQ(shell().schedulerOpenings(), 0);
    user().answer(Answer::yes);
    user().answer(Answer::ok);
    form->Cmd.at(3).click();
    EXPECT_TRUE(tasks.empty()) << "planned already, it offers to take that back";
}

TEST_F(ScheduleTest, PlansNothingUnasked) {
    start();
    shell().setTaskScheduler(false);
    user().answer(Answer::no);
    form->Cmd.at(3).click();
    EXPECT_TRUE(memoryDesktop.tasks().tasks().empty());
}

TEST_F(ScheduleTest, SaysWhenNothingCanBePlanned) {
    start();
    shell().setTaskScheduler(false);
    memoryDesktop.tasks().fail(error_number::notSupported);
    user().answer(Answer::yes);
    user().answer(Answer::ok);
    form->Cmd.at(3).click();
    EXPECT_EQ(lastMessage().text, "Ce système n'a ni gestionnaire systemd de session ni crontab.");
}

}  // namespace
}  // namespace coffrelune
