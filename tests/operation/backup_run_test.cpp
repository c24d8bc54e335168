// A backup's passes without any window: their order, what they cost, and when a line is complete.
#include "operation/backup_run.h"

#include "operation/launch_fixture.h"
#include "platform/names.h"
#include "system/paths.h"

namespace coffrelune {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

/// Writes down the phases with the mode of the tree at that moment, and the journal.
class RecordedDisplay final : public RunDisplay {
  public:
    RecordedDisplay(SystemMod& system, Events& shown) : system_(system), shown_(shown) {}

    void showPhase(const std::string& phase, const std::string&) override { add(phase); }
    void offerAnalysisDetail() override {}
    void showCopyPhase(const std::string&) override { add("copy"); }
    void showComparisonPhase(const std::string& phase) override { add(phase); }
    void showSource(const std::string&) override {}
    void showDestination(const std::string&) override {}
    void showFile(const std::string&) override {}
    void showPercentage(int, const std::string&) override {}
    void showRemainingTime(const std::string&) override {}
    void showRate(const std::string&) override {}
    void showCount(const std::string&) override {}
    void showLineDone(int line) override { add("done " + std::to_string(line)); }
    void addToComparison(const std::string&) override {}
    void showComparisonSummary(const std::string&) override {}
    void AjouteECTxt(const std::string& text) override { journal.push_back(text); }
    void MajErreurImg() override {}
    void showCritical(const std::string& text) override { journal.push_back(text); }
    ReplacementAnswer DemandeRemplacement(const Replacement&) override {
        return ReplacementAnswer::no;
    }
    void runPendingEvents() override {
        EXPECT_EQ(system_.options.ArbreMode, treeMode) << "changed by the run";
    }

    Events journal;
    std::int32_t treeMode = 0;

  private:
    void add(const std::string& text) { shown_.push_back(text); }

    SystemMod& system_;
    Events& shown_;
};

class BackupRunTest : public OperationTest {
  protected:
    BackupRunTest() {
        system.Confirmation = 1;
        system.options.ContinueOnError = -1;
    }
    void runBackup() {
        statistics = RunStatistics();
        statistics.tallies.resize(system.lines.size());
        control = RunControl();
        display.treeMode = system.options.ArbreMode;
        RunState state{system, display, switches, control, statistics};
        BackupRun(state).LanceCopie();
    }
    Events callsNamed(const std::string& name) const {
        Events chosen;
        for (const std::string& call : faults.calls()) {
            if (call.rfind(name + ' ', 0) == 0) chosen.push_back(call.substr(name.size() + 1));
        }
        return chosen;
    }
    /// When the certificates of the first line's copy were to be safe.
    Events certificatesWritten() {
        Events found;
        for (const std::string& call : memory.files().calls("writeWhole")) {
            if (call.find(R"(F:\Save\Docs\)") == std::string::npos) continue;
            found.emplace_back(call.ends_with(" nextFlush") ? "nextFlush" : "now");
        }
        return found;
    }
    Events shown;
    RecordedDisplay display{system, shown};
};

// ---- passes -------------------------------------------------------------------------------------

TEST_F(BackupRunTest, GoesThroughItsPassesInTheirOrder) {
    system.options.SynchroCopie = -1;
    runBackup();
    EXPECT_THAT(
        shown, ElementsAre("Copie de l'arborescence...", "Effacement des fichiers excédentaires...",
                           "Analyse de la copie...", "copy", "done 0", "done 1"));
    EXPECT_TRUE(statistics.copyPassStarted);
}

TEST_F(BackupRunTest, DeletesOnlyWhenThatIsAsked) {
    runBackup();
    EXPECT_THAT(shown, ElementsAre("Copie de l'arborescence...", "Analyse de la copie...", "copy",
                                   "done 0", "done 1"));
}

TEST_F(BackupRunTest, InTreeModeMakesTheTreeAloneAndLeavesTheOptionAsItIs) {
    system.options.SynchroCopie = -1;
    system.options.ArbreMode = -1;
    runBackup();
    EXPECT_THAT(shown, ElementsAre("Copie de l'arborescence..."));
    EXPECT_EQ(system.options.ArbreMode, -1);
    EXPECT_THAT(copies(), IsEmpty());
}

// ---- when a copy is complete --------------------------------------------------------------------

TEST_F(BackupRunTest, ACopyIsCompleteOnlyWhenItIsSafeOnTheDisk) {
    runBackup();
    const auto at = [&](const std::string& text) {
        const auto& calls = faults.calls();
        return std::find_if(calls.begin(), calls.end(),
                            [&](const std::string& call) { return call.rfind(text, 0) == 0; });
    };
    const auto lastCertificate = [&] {
        const auto& calls = faults.calls();
        auto found = calls.end();
        for (auto call = calls.begin(); call != calls.end(); ++call) {
            if (call->rfind(R"(writeWhole F:\Save\Docs\.~coffrelune-)", 0) == 0) found = call;
        }
        return found;
    }();
    ASSERT_NE(lastCertificate, faults.calls().end());
    const auto flushed = at(R"(flush F:\Save\Docs)");
    ASSERT_NE(flushed, faults.calls().end());
    EXPECT_LT(at(R"(copyFile C:\Docs\Sub\b.txt)"), flushed);
    EXPECT_LT(flushed, lastCertificate);
    EXPECT_TRUE(isComplete(R"(F:\Save\Docs)"));
    EXPECT_TRUE(isComplete(R"(G:\Save\Photos)"));
}

TEST_F(BackupRunTest, AVolumeThatCannotBeFlushedCountsAnErrorAndLeavesTheCopyOpen) {
    faults.fail("flush", R"(F:\Save\Docs)", 1117);
    runBackup();
    EXPECT_TRUE(isOpen(R"(F:\Save\Docs)"));
    EXPECT_TRUE(isComplete(R"(G:\Save\Photos)"));
    ASSERT_THAT(statistics.errors, SizeIs(1));
    EXPECT_EQ(statistics.errors[0].number, 1117U);
    EXPECT_EQ(statistics.errors[0].path, R"(F:\Save\Docs)");
    EXPECT_EQ(statistics.errors[0].line, 0);
    EXPECT_TRUE(statistics.tallies[0].incomplete);
    EXPECT_THAT(display.journal, Contains(R"(Erreur: 1117 - Fichier: F:\Save\Docs)"));
    faults.restart();
    runBackup();
    EXPECT_EQ(statistics.errorCount, 0);
    EXPECT_TRUE(isComplete(R"(F:\Save\Docs)"));
}

TEST_F(BackupRunTest, FlushesAVolumeOnceForAllOfItsLines) {
    system.lines[1].destination = R"(F:\Save)";
    runBackup();
    // Once for the files, and once for the certificates that say so.
    EXPECT_THAT(callsNamed("flush"), SizeIs(2));
    EXPECT_TRUE(isComplete(R"(F:\Save\Docs)"));
    EXPECT_TRUE(isComplete(R"(F:\Save\Photos)"));
}

TEST_F(BackupRunTest, AFailedFlushIsAnErrorOfEveryLineOfTheVolume) {
    system.lines[1].destination = R"(F:\Save)";
    faults.fail("flush", "", 1117);
    runBackup();
    EXPECT_EQ(statistics.errorCount, 2);
    EXPECT_TRUE(isOpen(R"(F:\Save\Docs)"));
    EXPECT_TRUE(isOpen(R"(F:\Save\Photos)"));
    EXPECT_THAT(callsNamed("flush"), SizeIs(1));
}

TEST_F(BackupRunTest, FlushesNothingWhenThereIsNothingToSay) {
    runBackup();
    faults.restart();
    runBackup();
    EXPECT_THAT(callsNamed("flush"), IsEmpty());
    EXPECT_THAT(callsNamed("writeWhole"), IsEmpty());
}

// Only a copy that somebody may trust has to lose that on the disk before it is changed.
TEST_F(BackupRunTest, OnlyATrustedCopyIsMarkedOnTheDiskBeforeItChanges) {
    runBackup();
    EXPECT_THAT(certificatesWritten(), ElementsAre("nextFlush", "nextFlush"));
    disk().file(R"(C:\Docs\later.txt)", "later");
    runBackup();
    EXPECT_THAT(certificatesWritten(), ElementsAre("nextFlush", "nextFlush", "now", "nextFlush"));
}

TEST_F(BackupRunTest, WhatNobodyCanReadThereMayBeAClaim) {
    disk().file(R"(F:\Save\Docs\)" + ownFileName(OwnFile::certificate, 7), "?");
    runBackup();
    EXPECT_THAT(certificatesWritten(), ElementsAre("now", "nextFlush"));
}

// ---- one run on a tree --------------------------------------------------------------------------

TEST_F(BackupRunTest, RefusesTheLineWhoseTreeAnotherRunWorksOnAndRunsTheOthers) {
    system.options.SynchroCopie = -1;
    disk().file(R"(F:\Save\Docs\gone.txt)", "gone");
    disk().setUsedByAnother(R"(F:\Save\Docs)", TreeUse::write);
    runBackup();
    EXPECT_THAT(display.journal,
                ElementsAre(R"(Ligne 1 refusée : une autre opération est en cours sur )"
                            R"(F:\Save\Docs.)",
                            R"(Erreur: 33 - Fichier: C:\Docs)"));
    EXPECT_THAT(filesBelow(R"(F:\Save\Docs)"), ElementsAre(R"(F:\Save\Docs\gone.txt)"));
    EXPECT_EQ(disk().content(R"(G:\Save\Photos\c.jpg)"), "cccccccc");
    EXPECT_FALSE(certificateIn(R"(F:\Save\Docs)").has_value());
    EXPECT_TRUE(isComplete(R"(G:\Save\Photos)"));
}

TEST_F(BackupRunTest, RefusesAnOriginalThatAnotherRunWritesButNotOneThatItReads) {
    disk().setUsedByAnother(R"(C:\Docs)", TreeUse::read);
    disk().setUsedByAnother(R"(D:\Photos)", TreeUse::write);
    runBackup();
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "aaaaa");
    EXPECT_THAT(display.journal, Contains("Ligne 2 refusée : une autre opération est en cours sur "
                                          "D:\\Photos."));
    EXPECT_FALSE(disk().exists(R"(G:\Save\Photos\c.jpg)"));
}

TEST_F(BackupRunTest, LetsGoOfItsTreesWhenItIsOver) {
    runBackup();
    MemoryFiles other(disk(), clock());
    std::unique_ptr<HeldTree> tree;
    ASSERT_TRUE(other.hold(R"(F:\Save\Docs)", tree).ok());
    EXPECT_TRUE(tree->claim(TreeUse::write).ok());
}

// ---- many lines ---------------------------------------------------------------------------------

class ManyLines : public BackupRunTest {
  protected:
    /// Calls of a run over so many lines, of one file each.
    std::uint64_t callsOf(int count) {
        disk().file(R"(C:\Coffrelune\Coffrelune.ini)",
                    "[Position]\r\nRepertMax=" + std::to_string(count) + "\r\n");
        SystemMod loaded(platform, {"", home, 3, 5});
        loaded.LoadSettings();
        EXPECT_EQ(loaded.maximumIndex, count - 1);
        loaded.configurationName = "Travail";
        loaded.Confirmation = 1;
        loaded.Modifie = 1;
        loaded.options.SynchroCopie = -1;
        for (int i = 0; i < count; ++i) {
            const std::string name = std::to_string(count) + "_" + std::to_string(i);
            disk().file("C:\\Many\\" + name + "\\f.txt", "f", fileTimeAt(2024, 3, 1));
            loaded.lineAt(i) = {"C:\\Many\\" + name, R"(F:\Save)", 1};
        }
        faults.restart();
        statistics = RunStatistics();
        statistics.tallies.resize(loaded.lines.size());
        control = RunControl();
        RecordedDisplay quiet(loaded, shown);
        RunState state{loaded, quiet, switches, control, statistics};
        BackupRun(state).LanceCopie();
        EXPECT_EQ(statistics.errorCount, 0);
        const std::string last = std::to_string(count) + "_" + std::to_string(count - 1);
        EXPECT_EQ(disk().content("F:\\Save\\" + last + "\\f.txt"), "f");
        return faults.callCount();
    }
};

TEST_F(ManyLines, CostNoCallsForEachPairOfLines) {
    const std::uint64_t few = callsOf(100);
    const std::uint64_t many = callsOf(300);
    EXPECT_LE(many, 3 * few + few / 10);
    EXPECT_THAT(callsNamed("flush"), SizeIs(2));
}

// ---- the launcher's part ------------------------------------------------------------------------

class LauncherOfRuns : public LaunchTest {
  protected:
    LauncherOfRuns() {
        system.options.SynchroCopie = -1;
        system.options.ContinueOnError = -1;
        system.AutoMode = true;
        selectOnly({0});
        launcher = std::make_unique<OperationLauncher>(system, host, stage);
    }
    RunEnd runKind(OperationKind kind) {
        system.operationKind = kind;
        return launcher->LanceOperation(RunMode::unattended);
    }
    /// The original has moved to another volume and lost a file.
    void putInDoubt() {
        disk().volume(R"(C:\)").identity += "x";
        disk().file(R"(F:\Save\Docs\gone.txt)", "gone");
    }
    bool isKept() { return disk().exists(R"(F:\Save\Docs\gone.txt)"); }
};

TEST_F(LauncherOfRuns, AcceptsTheOriginalForOneRunAlone) {
    runKind(OperationKind::backup);
    putInDoubt();
    runKind(OperationKind::backup);
    EXPECT_TRUE(isKept());
    EXPECT_TRUE(launcher->statistics().originalInDoubt);
    launcher->acceptOriginal();
    runKind(OperationKind::backup);
    EXPECT_FALSE(isKept());
    EXPECT_FALSE(launcher->statistics().originalInDoubt);
    putInDoubt();
    runKind(OperationKind::backup);
    EXPECT_TRUE(isKept());
}

TEST_F(LauncherOfRuns, KeepsTheAcceptanceThroughAComparisonButNotThroughARestore) {
    runKind(OperationKind::backup);
    putInDoubt();
    launcher->acceptOriginal();
    system.operationKind = OperationKind::comparison;
    launcher->launchComparison();
    runKind(OperationKind::backup);
    EXPECT_FALSE(isKept());
    launcher->acceptOriginal();
    runKind(OperationKind::restore);
    putInDoubt();
    runKind(OperationKind::backup);
    EXPECT_TRUE(isKept());
}

TEST_F(LauncherOfRuns, TellsWhatStoppedTheLastRun) {
    system.options.ContinueOnError = 0;
    failCopyOf(R"(C:\Docs\a.txt)", error_number::sharingViolation);
    EXPECT_EQ(runKind(OperationKind::backup), RunEnd::interrupted);
    EXPECT_TRUE(launcher->control().interruptionRequested);
    EXPECT_EQ(launcher->control().lastErrorNumber, error_number::sharingViolation);
    EXPECT_EQ(launcher->control().sharingPath, R"(C:\Docs\)");
    faults.restart();
    EXPECT_EQ(runKind(OperationKind::backup), RunEnd::finished);
    EXPECT_FALSE(launcher->control().interruptionRequested);
    EXPECT_EQ(launcher->control().lastErrorNumber, 0U);
}

TEST_F(LauncherOfRuns, WritesTheDeletionsIntoTheJournal) {
    runKind(OperationKind::backup);
    disk().file(R"(F:\Save\Docs\gone.txt)", "gone");
    runCopie();
    EXPECT_THAT(journal(), Contains(R"(Effacé : F:\Save\Docs\gone.txt)"));
    EXPECT_THAT(user().notices(), Not(Contains(HasSubstr("gone.txt"))));
}

}  // namespace
}  // namespace coffrelune
