// What becomes of a planned run when its configuration gets another name, or goes.
#include "system/planned_runs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/memory_desktop.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class PlannedRunsTest : public testing::Test {
  protected:
    void plan(PlannedTask task) {
        task.time = "08:05";
        task.days = {1, 4};
        std::string advice;
        ASSERT_TRUE(scheduler_.write(task, advice).ok());
    }

    MemoryTaskScheduler scheduler_;
};

TEST(SpokenPlan, IsInWordsWhoeverWroteIt) {
    for (const char* daily : {"*-*-* 08:05:00", "5 8 * * *", "08:05"}) {
        EXPECT_EQ(spokenPlan(daily), "chaque jour à 08:05") << daily;
    }
    for (const char* two : {"Mon,Thu *-*-* 08:05:00", "5 8 * * 1,4", "08:05 Monday Thursday"}) {
        EXPECT_EQ(spokenPlan(two), "lundi et jeudi à 08:05") << two;
    }
    EXPECT_EQ(spokenPlan("0 20 * * 2,3,7"), "mardi, mercredi et dimanche à 20:00");
}

TEST(SpokenPlan, StaysAsItIsWhenItIsSomebodyElses) {
    for (const char* other : {"", "hourly", "Mon..Fri *-*-* 08:05:00", "*/5 8 * * *", "5 8 1 * *",
                              "*-*-* 08:05:30", "5 8 * * 1-5", "08:05 Someday", "25:00"}) {
        EXPECT_EQ(spokenPlan(other), other);
    }
}

TEST_F(PlannedRunsTest, GoWithTheNewName) {
    plan(plannedConsole("C:\\c", "Travail"));
    const PlanFate fate = movePlan(scheduler_, "Travail", "Le bureau");
    EXPECT_TRUE(fate.status.ok());
    EXPECT_EQ(fate.text, "La sauvegarde planifiée porte maintenant sur « Le bureau ».");
    ASSERT_EQ(scheduler_.tasks().size(), 1U);
    const PlannedTask& moved = scheduler_.tasks().at("Le bureau");
    EXPECT_EQ(moved.arguments, plannedConsole("C:\\c", "Le bureau").arguments);
    EXPECT_EQ(moved.time, "08:05");
    EXPECT_THAT(moved.days, ElementsAre(1, 4));
}

TEST_F(PlannedRunsTest, OfTheWindowsGoWithTheNewName) {
    plan(plannedWindow("C:\\w", "Travail"));
    EXPECT_TRUE(movePlan(scheduler_, "Travail", "Bureau").status.ok());
    EXPECT_THAT(scheduler_.tasks().at("Bureau").arguments, ElementsAre("/Auto", "/Bureau"));
}

TEST_F(PlannedRunsTest, OfTheWindowsStayWhereTheNewNameCannotBeWritten) {
    plan(plannedWindow("C:\\w", "Travail"));
    const PlanFate fate = movePlan(scheduler_, "Travail", "A/b");
    EXPECT_FALSE(fate.status.ok());
    EXPECT_THAT(fate.text, HasSubstr("n'a pas pu suivre le nouveau nom"));
    EXPECT_EQ(scheduler_.tasks().count("Travail"), 1U);
}

TEST_F(PlannedRunsTest, ThatWereNoneAreNoWord) {
    EXPECT_EQ(movePlan(scheduler_, "Travail", "Bureau").text, "");
    EXPECT_EQ(erasePlan(scheduler_, "Travail").text, "");
    EXPECT_TRUE(erasePlan(scheduler_, "Travail").status.ok());
}

TEST_F(PlannedRunsTest, GoWithTheirConfiguration) {
    plan(plannedConsole("C:\\c", "Travail"));
    plan(plannedConsole("C:\\c", "Photos"));
    const PlanFate fate = erasePlan(scheduler_, "Travail");
    EXPECT_EQ(fate.text, "La planification de « Travail » est retirée.");
    EXPECT_EQ(scheduler_.tasks().size(), 1U);
}

TEST_F(PlannedRunsTest, OfAnotherCopyOfTheProgramAreLeftAlone) {
    plan(plannedConsole("C:\\c", "Travail"));
    scheduler_.belongToAnother("Travail");
    EXPECT_THAT(movePlan(scheduler_, "Travail", "Bureau").text, HasSubstr("elle reste"));
    EXPECT_THAT(erasePlan(scheduler_, "Travail").text, HasSubstr("elle reste"));
    EXPECT_EQ(scheduler_.tasks().count("Travail"), 1U);
}

TEST_F(PlannedRunsTest, AreNotMovedOntoThoseOfAnotherCopyOfTheProgram) {
    plan(plannedConsole("C:\\c", "Travail"));
    plan(plannedConsole("C:\\d", "Bureau"));
    scheduler_.belongToAnother("Bureau");
    const PlanFate fate = movePlan(scheduler_, "Travail", "Bureau");
    EXPECT_EQ(fate.status.code(), error_number::alreadyExists);
    EXPECT_THAT(fate.text, HasSubstr("Celle de « Travail » n'a donc pas suivi."));
    EXPECT_EQ(scheduler_.tasks().at("Travail").program, "C:\\c");
    EXPECT_EQ(scheduler_.tasks().at("Bureau").program, "C:\\d");
}

TEST_F(PlannedRunsTest, ThatStayAreTold) {
    plan(plannedConsole("C:\\c", "Travail"));
    scheduler_.fail(error_number::accessDenied);
    const PlanFate moved = movePlan(scheduler_, "Travail", "Bureau");
    EXPECT_EQ(moved.status.code(), error_number::accessDenied);
    EXPECT_EQ(
        moved.text,
        "La planification de « Travail » n'a pas pu suivre le nouveau nom (erreur 5). Pour la "
        "retirer : coffrelune-console planifier retirer --config \"Travail\"");
    const PlanFate erased = erasePlan(scheduler_, "Travail");
    EXPECT_EQ(erased.status.code(), error_number::accessDenied);
    EXPECT_THAT(erased.text, HasSubstr("n'a pas pu être retirée (erreur 5)"));
}

}  // namespace
}  // namespace coffrelune
