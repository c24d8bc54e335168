// What an account of a run says of each file, and which run counts as a good backup.
#include <array>

#include "operation/operation_fixture.h"
#include "operation/results.h"

namespace coffrelune {
namespace {

using testing::Contains;
using testing::UnorderedElementsAre;

class RunRecordTest : public OperationTest, private RunRecord {
  protected:
    RunRecordTest() {
        system.Confirmation = 1;
        system.Modifie = 1;
        system.AutoMode = true;  // the window closes, errors or not
    }
    RunEnd run(RunMode mode = RunMode::unattended) {
        lines_.clear();
        launcher = std::make_unique<OperationLauncher>(system, host, stage);
        launcher->recordInto(this);
        return launcher->LanceOperation(mode);
    }
    const Events& lines() const { return lines_; }
    std::string good() { return setting("Travail", "LastSaveOk"); }

  private:
    void add(const FileRecord& file) override {
        constexpr std::array words = {"copied", "replaced", "deleted", "skipped",
                                      "failed", "differs",  "verified"};
        std::string line = words.at(static_cast<std::size_t>(file.outcome)) + (" " + file.path);
        if (file.number != 0) line += " " + std::to_string(file.number);
        if (!file.reason.empty()) line += " (" + std::string(file.reason) + ")";
        lines_.push_back(line);
    }

    Events lines_;
};

TEST_F(RunRecordTest, NamesWhatIsCopiedReplacedAndLeftAlone) {
    (void)run();
    EXPECT_THAT(lines(),
                UnorderedElementsAre(R"(copied C:\Docs\a.txt)", R"(copied C:\Docs\Sub\b.txt)",
                                     R"(copied D:\Photos\c.jpg)"));
    disk().file(R"(C:\Docs\a.txt)", "other", 99);
    (void)run();
    EXPECT_THAT(lines(), UnorderedElementsAre(R"(replaced C:\Docs\a.txt)",
                                              R"(skipped C:\Docs\Sub\b.txt (à jour))",
                                              R"(skipped D:\Photos\c.jpg (à jour))"));
}

TEST_F(RunRecordTest, NamesWhatIsDeleted) {
    system.options.SynchroCopie = -1;
    (void)run();
    disk().remove(R"(C:\Docs\a.txt)");
    (void)run();
    EXPECT_THAT(lines(), Contains(R"(deleted F:\Save\Docs\a.txt)"));
}

TEST_F(RunRecordTest, NamesWhatFailedWithItsNumber) {
    system.options.ContinueOnError = -1;
    failCopyOf(R"(C:\Docs\a.txt)", error_number::accessDenied);
    (void)run();
    EXPECT_THAT(lines(), Contains(R"(failed C:\Docs\a.txt 5)"));
}

TEST_F(RunRecordTest, TakesARunWithNothingToCopyForAGoodOne) {
    (void)run();
    const std::string first = good();
    EXPECT_NE(first, "");
    clock().set({2030, 1, 2, 3, 4, 5, 0});
    EXPECT_EQ(run(), RunEnd::nothing);
    EXPECT_EQ(good(), "02/01/2030 03:04:05");
}

TEST_F(RunRecordTest, TakesNoRunForGoodThatLacksSomething) {
    disk().remove(R"(D:\Photos)");
    (void)run();
    EXPECT_EQ(good(), "") << "a source is missing";
    system.options.ContinueOnError = -1;
    disk().file(R"(C:\Docs\a.txt)", "other", 99);
    failCopyOf(R"(C:\Docs\a.txt)", error_number::accessDenied);
    selectOnly({0});
    (void)run();
    EXPECT_EQ(good(), "") << "an error";
    selectOnly({});
    (void)run();
    EXPECT_EQ(good(), "") << "no line was run";
    selectOnly({0});
    system.operationKind = OperationKind::restore;
    (void)run();
    EXPECT_EQ(good(), "") << "a restore";
}

TEST_F(RunRecordTest, KnowsHowOldTheLastGoodBackupIs) {
    clock().set({2026, 11, 22, 12, 0, 0, 0});
    EXPECT_TRUE(ageOfBackup(system, 7).tooOld);
    EXPECT_EQ(staleBackup(system, 7), "") << "a configuration that has never run";
    system.lastGoodBackup = "15/11/2026 12:00:00";
    EXPECT_EQ(ageOfBackup(system, 7).days, 7);
    EXPECT_FALSE(ageOfBackup(system, 7).tooOld);
    system.lastGoodBackup = "15/11/2026 11:59:59";
    EXPECT_TRUE(ageOfBackup(system, 7).tooOld);
    system.lastGoodBackup = "24/11/2026 12:00:00";
    EXPECT_TRUE(ageOfBackup(system, 7).tooOld) << "a clock that was set back says nothing";
    system.lastGoodBackup.clear();
    system.lastResults[0].cleanDate = "21/11/2026 12:00:00";
    EXPECT_FALSE(ageOfBackup(system, 7).tooOld) << "settings that know no such date yet";
}

}  // namespace
}  // namespace coffrelune
