// Planned runs, with a service manager and a crontab that a test brings along.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/posix/desktop/planned_texts.h"
#include "platform/posix/desktop/posix_task_scheduler.h"
#include "platform/posix/desktop/programs.h"
#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

PlannedTask someTask() {
    return {"Travail",
            R"(C:\usr\bin\coffrelune-console)",
            {"sauvegarder", "--config", "Travail"},
            "08:05",
            {}};
}

TEST(PlannedTexts, OfAServiceTakeNothingForASpecifierOrAVariable) {
    const std::string text =
        serviceText({"100 %", "", {}, "08:05", {}}, {"/opt/a b/c", "x\"y\\z", "$HOME%d"}, "/h%");
    EXPECT_EQ(unitValue(text, "ExecStart"), R"("/opt/a b/c" "x\"y\\z" "$$HOME%%d")");
    EXPECT_EQ(unitValue(text, "Environment"), R"("COFFRELUNE_HOME=/h%%")");
}

TEST(PlannedTexts, OfATimerNameTheDays) {
    PlannedTask task = someTask();
    EXPECT_EQ(unitValue(timerText(task), "OnCalendar"), "*-*-* 08:05:00");
    task.days = {1, 7};
    EXPECT_EQ(unitValue(timerText(task), "OnCalendar"), "Mon,Sun *-*-* 08:05:00");
    EXPECT_EQ(unitValue(timerText(task), "Persistent"), "true");
}

TEST(PlannedTexts, NameUnitsOfAnyConfiguration) {
    EXPECT_EQ(unitName("Travail"), "coffrelune-Travail");
    EXPECT_EQ(unitName("A/b é"), "coffrelune-A_2fb_20_c3_a9");
}

TEST(PlannedTexts, OfACrontabKeepWhatIsThere) {
    const std::string others = "# mine\n0 1 * * * ls\n";
    PlannedTask task = someTask();
    const std::string with = crontabWith(others, task, {"/bin/it's 5%", "--config", "Travail"}, "");
    EXPECT_EQ(crontabLine(with, "Travail"),
              R"(5 8 * * * '/bin/it'\''s 5'\%'' '--config' 'Travail')");
    task.days = {1, 4};
    task.time = "23:59";
    const std::string again = crontabWith(with, task, {"/bin/c", "--config", "Travail"}, "/home/h");
    EXPECT_EQ(crontabLine(again, "Travail"),
              "59 23 * * 1,4 COFFRELUNE_HOME='/home/h' '/bin/c' '--config' 'Travail'");
    EXPECT_EQ(crontabWithout(again, "Travail"), others);
    EXPECT_EQ(crontabWithout(again, "Trav"), again);
}

TEST(PlannedTexts, OfACrontabAreOnlyThoseThatNameTheConfiguration) {
    const std::string mark = "# Coffrelune, sauvegarde planifiée de : ";
    const std::string own = "0 5 * * * /usr/local/bin/mon-travail\n";
    const std::string photos = mark + "Photos\n5 8 * * * '/bin/c' '/Auto' '/Photos'\n";
    const std::string stale = mark + "Vieux\n";
    for (const std::string& below : {own, photos}) {
        EXPECT_EQ(crontabLine(stale + below, "Vieux"), "");
        EXPECT_EQ(crontabWithout(stale + below, "Vieux"), below);
    }
    EXPECT_EQ(crontabLine(photos, "Photos"), "5 8 * * * '/bin/c' '/Auto' '/Photos'");
    EXPECT_EQ(crontabWithout(photos, "Photos"), "");
}

TEST(PlannedTexts, OfAServiceKeepTheCommandsOfTheUser) {
    const std::string service =
        "[Service]\nExecStart=/bin/mount /disque\nExecStart=\"/bin/c\" \"--config\" \"Travail\"\n"
        "ExecStart=/bin/umount /disque\n";
    EXPECT_EQ(
        serviceRenamed(service, "Travail", "Bureau",
                       {{{"--config", "Travail"}, {"--config", "Bureau"}}}),
        "[Service]\nExecStart=/bin/mount /disque\nExecStart=\"/bin/c\" \"--config\" \"Bureau\"\n"
        "ExecStart=/bin/umount /disque\n");
    EXPECT_EQ(serviceRenamed("[Service]\nExecStart=/bin/mount\n", "Travail", "Bureau",
                             {{{"--config", "Travail"}, {"--config", "Bureau"}}}),
              "");
}

class TaskSchedulerTest : public testing::Test {
  protected:
    TaskSchedulerTest() {
        disk_.makeDirectory("bin");
        install("crontab", "case $1 in -l) cat '" + disk_.at("table") + "' ;; -) cat >'" +
                               disk_.at("table") + "' ;; esac");
        options_.searchPath = disk_.at("bin") + ":/usr/bin:/bin";
        options_.configurationDirectory = disk_.at("config");
    }
    void install(const std::string& name, const std::string& script) {
        chmod(disk_.write("bin/" + name, "#!/bin/sh\n" + script + "\n").c_str(), 0755);
    }
    void installManager(const std::string& script) { install("systemctl", script); }
    Status write(const PlannedTask& task) {
        std::string advice;
        return scheduler().write(task, advice);
    }
    PosixTaskScheduler scheduler() { return {table_, options_}; }
    PlannedEntry entry() {
        PlannedEntry found;
        EXPECT_TRUE(scheduler().read("Travail", found).ok());
        return found;
    }
    bool isPlanned() {
        PlannedEntry found;
        return scheduler().read("Travail", found).ok();
    }

    TemporaryDirectory disk_;
    SchedulerOptions options_;
    DriveTable table_{{PathRoot::drive('C', "/")}};
};

TEST_F(TaskSchedulerTest, WritesATimerWhereAManagerRuns) {
    installManager("exit 0");
    ASSERT_TRUE(write(someTask()).ok());
    EXPECT_EQ(entry().when, "*-*-* 08:05:00");
    EXPECT_EQ(entry().command,
              R"("/usr/bin/coffrelune-console" "sauvegarder" "--config" "Travail")");
    EXPECT_TRUE(scheduler().remove("Travail").ok());
    EXPECT_FALSE(isPlanned());
    EXPECT_EQ(scheduler().remove("Travail").code(), error_number::fileNotFound);
}

TEST_F(TaskSchedulerTest, WritesALineOfTheCrontabElse) {
    disk_.write("table", "0 1 * * * ls\n");
    installManager("exit 1");
    ASSERT_TRUE(write(someTask()).ok());
    EXPECT_EQ(entry().place, "crontab");
    EXPECT_EQ(entry().when, "5 8 * * *");
    ASSERT_TRUE(scheduler().remove("Travail").ok());
    EXPECT_EQ(disk_.read("table"), "0 1 * * * ls\n");
}

TEST_F(TaskSchedulerTest, LeavesNoTimerThatTheManagerRefuses) {
    installManager("case \"$*\" in *enable*) exit 1 ;; esac");
    EXPECT_EQ(write(someTask()).code(), error_number::generalFailure);
    EXPECT_FALSE(isPlanned());
}

TEST_F(TaskSchedulerTest, WritesOverNoCrontabThatCannotBeRead) {
    disk_.write("table", "0 1 * * * ls\n");
    install("crontab", "case $1 in -l) echo 'cannot lock' >&2; exit 1 ;; -) cat >'" +
                           disk_.at("table") + "' ;; esac");
    installManager("exit 1");
    EXPECT_EQ(write(someTask()).code(), error_number::notSupported);
    EXPECT_EQ(disk_.read("table"), "0 1 * * * ls\n");
}

std::vector<WordChange> toBureau() {
    return {{{"--config", "Travail"}, {"--config", "Bureau"}}};
}

TEST(PlannedTexts, AreRenamedWithoutTouchingWhatElseTheUserWrote) {
    const std::string service =
        "# mine\nDescription=Coffrelune, sauvegarde de Travail\nNice=5\n"
        "ExecStart=\"/bin/Travail\" \"--config\" \"Travail\" \"--rapport\" \"Travail\"\n";
    EXPECT_EQ(serviceRenamed(service, "Travail", "Bureau", toBureau()),
              "# mine\nDescription=Coffrelune, sauvegarde de Bureau\nNice=5\n"
              "ExecStart=\"/bin/Travail\" \"--config\" \"Bureau\" \"--rapport\" \"Travail\"\n");
    EXPECT_EQ(
        serviceRenamed("ExecStart=/bin/c --config Travail\n", "Travail", "Bureau", toBureau()), "");
    EXPECT_EQ(serviceRenamed("[Service]\n", "Travail", "Bureau", toBureau()), "");
    EXPECT_EQ(timerRenamed("Description=Coffrelune, sauvegarde de Travail\nOnCalendar=hourly\n",
                           "Travail", "Bureau"),
              "Description=Coffrelune, sauvegarde de Bureau\nOnCalendar=hourly\n");
}

TEST_F(TaskSchedulerTest, RenamesATimerWithItsTimes) {
    installManager("exit 0");
    PlannedTask task = someTask();
    task.days = {1, 7};
    ASSERT_TRUE(write(task).ok());
    ASSERT_TRUE(scheduler().rename("Travail", "Bureau", toBureau()).ok());
    EXPECT_FALSE(isPlanned());
    PlannedEntry moved;
    ASSERT_TRUE(scheduler().read("Bureau", moved).ok());
    EXPECT_EQ(moved.when, "Mon,Sun *-*-* 08:05:00");
    EXPECT_EQ(moved.command, R"("/usr/bin/coffrelune-console" "sauvegarder" "--config" "Bureau")");
}

TEST_F(TaskSchedulerTest, RenamesALineOfTheCrontabInThePlaceOfAnotherOne) {
    installManager("exit 1");
    disk_.write("table", "0 1 * * * ls\n");
    PlannedTask stale = someTask();
    stale.name = "Bureau";
    stale.arguments = {"sauvegarder", "--config", "Bureau"};
    ASSERT_TRUE(write(stale).ok());
    ASSERT_TRUE(write(someTask()).ok());
    ASSERT_TRUE(scheduler().rename("Travail", "Bureau", toBureau()).ok());
    EXPECT_EQ(disk_.read("table"),
              "0 1 * * * ls\n# Coffrelune, sauvegarde planifiée de : Bureau\n"
              "5 8 * * * '/usr/bin/coffrelune-console' 'sauvegarder' '--config' 'Bureau'\n");
}

TEST_F(TaskSchedulerTest, KnowsWhoseSettingsATaskWorksOn) {
    for (const char* manager : {"exit 0", "exit 1"}) {
        installManager(manager);
        for (const char* home : {"", "/h 5%"}) {
            options_.home = home;
            ASSERT_TRUE(write(someTask()).ok());
            EXPECT_TRUE(entry().sameSettings) << manager << home;
            options_.home = "/h";
            EXPECT_FALSE(entry().sameSettings) << manager << home;
        }
        options_.home = "";
        EXPECT_FALSE(entry().sameSettings) << manager;
        ASSERT_TRUE(scheduler().remove("Travail").ok());
    }
}

TEST_F(TaskSchedulerTest, KeepsWhatItCannotRename) {
    EXPECT_EQ(scheduler().rename("Travail", "Bureau", toBureau()).code(),
              error_number::fileNotFound);
    installManager("exit 0");
    ASSERT_TRUE(write(someTask()).ok());
    EXPECT_EQ(scheduler().rename("Travail", "Bureau", {}).code(), error_number::invalidData);
    installManager("case \"$*\" in *enable*) exit 1 ;; esac");
    EXPECT_EQ(scheduler().rename("Travail", "Bureau", toBureau()).code(),
              error_number::generalFailure);
    EXPECT_TRUE(isPlanned());
    PlannedEntry none;
    EXPECT_FALSE(scheduler().read("Bureau", none).ok());
}

TEST_F(TaskSchedulerTest, SaysThatThereIsNoScheduler) {
    options_.searchPath = disk_.at("nothing");
    EXPECT_EQ(write(someTask()).code(), error_number::notSupported);
}

TEST(RunProgram, GivesStatusAndOutput) {
    const ProgramEnd end = runProgram({"/bin/sh", "-c", "cat; echo ill >&2; exit 3"}, "input");
    EXPECT_EQ(end.status, 3);
    EXPECT_EQ(end.output, "input");
    EXPECT_EQ(end.errors, "ill\n");
    EXPECT_EQ(runProgram({"/nowhere"}).status, 127);
    EXPECT_EQ(runProgram({}).status, -1);
}

}  // namespace
}  // namespace coffrelune
