// A verification: a comparison that reads what the files hold.
#include <algorithm>

#include "operation/memory_contents.h"
#include "operation/operation_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

class Verification : public OperationTest {
  protected:
    Verification() {
        system.Confirmation = 1;
        (void)launch(RunMode::unattended);
        system.operationKind = OperationKind::comparison;
        events.clear();
        written_ = filesBelow(R"(F:\)");
    }

    RunEnd verify() {
        launcher = std::make_unique<OperationLauncher>(system, host, stage);
        return launcher->launchVerification(contents_);
    }
    Events list() {
        Events lines;
        for (std::size_t i = 0; i < host.comparisonList().lineCount(); ++i) {
            lines.emplace_back(host.comparisonList().line(i));
        }
        return lines;
    }
    const std::string& summary() { return host.comparisonSummary().caption(); }
    bool nothingWritten() { return filesBelow(R"(F:\)") == written_; }
    /// Other bytes with the date that the file has.
    void damage(const std::string& path, const std::string& content) {
        FileEntry entry;
        ASSERT_TRUE(memory.files().lookUp(path, LinkRule::refuse, entry).ok());
        disk().file(path, content, entry.times.lastWrite);
        written_ = filesBelow(R"(F:\)");
    }

  private:
    MemoryContents contents_{memory.files()};
    Events written_;
};

TEST_F(Verification, FindsNothingInATrueCopy) {
    EXPECT_EQ(verify(), RunEnd::finished);
    EXPECT_THAT(list(), ElementsAre("***** Sauvegarde n°1", "***** Sauvegarde n°2",
                                    "***** Fin de la vérification"));
    EXPECT_EQ(summary(), "3 fichier(s) lu(s), 0 différence(s)");
    EXPECT_EQ(launcher->statistics().errorCount, 0);
}

TEST_F(Verification, FindsOtherBytesOfTheSameDateAndSize) {
    damage(R"(F:\Save\Docs\Sub\b.txt)", "b0t");
    verify();
    EXPECT_THAT(list(), ElementsAre("***** Sauvegarde n°1",
                                    R"(F:\Save\Docs\Sub\b.txt est différent, à la même date)",
                                    "***** Sauvegarde n°2", "***** Fin de la vérification"));
    EXPECT_EQ(summary(), "3 fichier(s) lu(s), 1 différence(s)");
    EXPECT_EQ(launcher->statistics().errorCount, 1);
    EXPECT_TRUE(nothingWritten());
}

TEST_F(Verification, FindsWhatIsMissing) {
    ASSERT_TRUE(memory.files().removeFile(R"(F:\Save\Docs\a.txt)").ok());
    verify();
    EXPECT_EQ(list().at(1), R"(F:\Save\Docs\a.txt n'existe pas)");
    EXPECT_EQ(summary(), "2 fichier(s) lu(s), 1 différence(s)");
}

TEST_F(Verification, TakesAnotherDateForNoDifference) {
    const std::string content = disk().content(R"(C:\Docs\a.txt)").value_or("");
    disk().file(R"(F:\Save\Docs\a.txt)", content, 1);
    verify();
    EXPECT_EQ(summary(), "3 fichier(s) lu(s), 0 différence(s)");
}

TEST_F(Verification, LeavesNoResultAndNoListOfErrors) {
    damage(R"(F:\Save\Docs\Sub\b.txt)", "b0t");
    verify();
    EXPECT_EQ(setting("Travail", "LastComp"), "");
    EXPECT_EQ(setting("Travail", "LastCompErr"), "");
    EXPECT_FALSE(disk().exists(R"(C:\Coffrelune\C_Travail.err)"));
}

TEST_F(Verification, ReadsNothingThatTheLineLeavesOut) {
    system.keep("Travail", "RepExclu0_Mode", "1");
    damage(R"(F:\Save\Docs\Sub\b.txt)", "b0t");
    verify();
    EXPECT_EQ(summary(), "2 fichier(s) lu(s), 0 différence(s)");
}

}  // namespace
}  // namespace coffrelune
