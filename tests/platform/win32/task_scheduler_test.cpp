#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/win32/desktop/win32_task_scheduler.h"

namespace coffrelune {
namespace {

using testing::HasSubstr;

PlannedTask someTask() {
    return {"Travail <1>", R"(C:\Program Files\C\c.exe)", {"/Auto", "/Travail & Cie"}, "08:05", {}};
}

TEST(TaskXml, IsOfEveryDayOrOfSome) {
    PlannedTask task = someTask();
    EXPECT_THAT(taskXml(task, "2026-11-22"),
                HasSubstr("<StartBoundary>2026-11-22T08:05:00</StartBoundary>"));
    EXPECT_THAT(taskXml(task, "2026-11-22"), HasSubstr("<DaysInterval>1</DaysInterval>"));
    task.days = {1, 7};
    EXPECT_THAT(taskXml(task, "2026-11-22"),
                HasSubstr("<DaysOfWeek><Monday/><Sunday/></DaysOfWeek>"));
}

TEST(TaskXml, TakesNoNameForMarkup) {
    const std::string xml = taskXml(someTask(), "2026-11-22");
    EXPECT_THAT(xml, HasSubstr("sauvegarde de Travail &lt;1&gt;<"));
    EXPECT_THAT(xml, HasSubstr(R"(<Command>"C:\Program Files\C\c.exe"</Command>)"));
    EXPECT_THAT(xml, HasSubstr(R"(<Arguments>/Auto "/Travail &amp; Cie"</Arguments>)"));
}

TEST(TaskName, HoldsNothingThatNamesAFolder) {
    EXPECT_EQ(taskName("A\\b/c%d"), "A_b_c_d");
}

TEST(ArgumentLine, ComesBackAsItsWords) {
    EXPECT_EQ(argumentLine({"a", "b c", ""}), R"(a "b c" "")");
    EXPECT_EQ(argumentLine({R"(C:\a b\)", R"(say "x")", R"(C:\)"}),
              R"("C:\a b\\" "say \"x\"" C:\)");
}

TEST(TaskXml, IsRenamedWithoutTouchingItsTimes) {
    PlannedTask task = someTask();
    const std::vector<WordChange> changes = {{{"--config", task.name}, {"--config", "Bureau"}},
                                             {{"/Auto", "/Travail & Cie"}, {"/Auto", "/À <nous>"}}};
    const std::string xml =
        taskXmlRenamed(taskXml(task, "2026-11-22"), task.name, "Bureau", changes);
    EXPECT_THAT(xml, HasSubstr("<Description>Coffrelune, sauvegarde de Bureau<"));
    EXPECT_THAT(xml, HasSubstr(R"(<Arguments>/Auto "/À &lt;nous&gt;"</Arguments>)"));
    EXPECT_THAT(xml, HasSubstr("<StartBoundary>2026-11-22T08:05:00</StartBoundary>"));
    EXPECT_EQ(taskXmlRenamed(taskXml(task, "2026-11-22"), task.name, "Bureau", {changes[0]}), "");
    task.program = R"(C:\?\c.exe)";
    EXPECT_EQ(taskXmlRenamed(taskXml(task, "2026-11-22"), task.name, "Bureau", changes), "")
        << "a character was lost";
}

TEST(Win32TaskScheduler, PlansATaskAndTakesItBack) {
    Win32TaskScheduler scheduler;
    PlannedTask task = someTask();
    task.name = "Essai de Coffrelune";
    std::string advice;
    ASSERT_TRUE(scheduler.write(task, advice).ok());
    ASSERT_TRUE(scheduler.write(task, advice).ok()) << "in the place of the first one";
    EXPECT_TRUE(scheduler.remove(task.name).ok());
    EXPECT_FALSE(scheduler.remove(task.name).ok());
}

}  // namespace
}  // namespace coffrelune
