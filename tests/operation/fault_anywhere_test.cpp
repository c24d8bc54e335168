// At whatever call a run goes wrong, the next one loses nothing.
#include <functional>
#include <set>

#include "operation/unfinished_fixture.h"

namespace coffrelune {
namespace {

/// Every call of a run fails once by itself, and once with all that follow, as when the process is
/// killed there.
class FaultAnywhere : public UnfinishedRun {
  protected:
    FaultAnywhere() {
        selectOnly({0});
        switches.unattended = true;
    }

    /// The trees as a complete backup has left them.
    void prepare() {
        faults.restart();
        for (const char* place : {R"(C:\Docs)", R"(F:\Save\Docs)"}) disk().remove(place);
        disk().file(R"(C:\Docs\a.txt)", "aaaaa", fileTimeAt(2024, 3, 1));
        disk().file(R"(C:\Docs\old.txt)", "old", fileTimeAt(2024, 3, 1));
        disk().file(R"(C:\Docs\Sub\b.txt)", "bbb", fileTimeAt(2024, 3, 1));
        backUp();
        ASSERT_TRUE(isComplete(R"(F:\Save\Docs)"));
        faults.restart();
    }
    void failAt(std::uint64_t call, bool killed, std::uint32_t code) {
        faults.failCall(call, code);
        for (std::uint64_t i = call + 1; killed && i <= callCount; ++i) faults.failCall(i, code);
    }
    /// Calls `faulty` for every call and kind of fault, then `check` with a text that names it,
    /// until a run gets through without meeting its fault.
    void sweep(const std::function<void()>& faulty, const std::function<void()>& check) {
        prepare();
        faulty();
        // A run that goes another way because of a fault makes hardly more calls.
        callCount = faults.callCount() + 20;
        for (const bool killed : {false, true}) {
            for (std::uint64_t call = 1; call <= callCount && !HasFailure(); ++call) {
                prepare();
                failAt(call, killed, error_number::accessDenied);
                faulty();
                const bool met = faults.failureCount() > 0;
                faultsMet += met ? 1 : 0;
                const std::string name = met ? faults.calls().at(call - 1) : "none";
                SCOPED_TRACE(std::to_string(call) + (killed ? " on: " : ": ") + name);
                faults.restart();
                check();
            }
        }
        EXPECT_GT(faultsMet, callCount);
    }
    std::uint64_t callCount = 0;
    std::uint64_t faultsMet = 0;
    std::set<std::string> filesOf(const std::string& root) {
        std::set<std::string> names;
        for (const std::string& path : filesBelow(root)) {
            if (disk().content(path)) names.insert(path.substr(root.size()));
        }
        return names;
    }
};

TEST_F(FaultAnywhere, OfABackupLosesNothingByTheNextRestore) {
    std::set<std::string> before;
    Events copy;
    sweep(
        [&] {
            copy = disk().list(R"(F:\Save)");
            change(R"(C:\Docs\a.txt)");
            disk().file(R"(C:\Docs\new.txt)", "new");
            disk().file(R"(C:\Docs\Sub\new.txt)", "new");
            disk().file(R"(C:\Docs\Newer\new.txt)", "new");
            disk().remove(R"(C:\Docs\old.txt)");
            before = filesOf(R"(C:\Docs)");
            backUp();
        },
        [&] {
            // The copy that no run has touched is that of the backup before.
            const bool touched = disk().list(R"(F:\Save)") != copy || isOpen(R"(F:\Save\Docs)");
            restore();
            if (!touched) return;
            const std::set<std::string> after = filesOf(R"(C:\Docs)");
            for (const std::string& name : before) EXPECT_EQ(after.count(name), 1U) << name;
        });
}

TEST_F(FaultAnywhere, ThatKeepsATreeFromBeingHeldKeepsItsFiles) {
    for (const char* tree : {R"(C:\Docs)", R"(F:\Save\Docs)"}) {
        prepare();
        disk().remove(R"(C:\Docs\old.txt)");
        faults.fail("hold", tree, error_number::accessDenied);
        backUp();
        EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\old.txt)")) << tree;
        EXPECT_EQ(statistics.errorCount, 1);
        faults.restart();
        backUp();
        EXPECT_FALSE(disk().exists(R"(F:\Save\Docs\old.txt)")) << tree;
    }
}

TEST_F(FaultAnywhere, OfABackupLosesNothingButWhatTheOriginalLacks) {
    sweep(
        [&] {
            change(R"(C:\Docs\a.txt)");
            disk().remove(R"(C:\Docs\old.txt)");
            backUp();
        },
        [&] {
            std::set<std::string> copy = filesOf(R"(F:\Save\Docs)");
            copy.insert(R"(\old.txt)");
            EXPECT_EQ(copy, (std::set<std::string>{R"(\Sub\b.txt)", R"(\a.txt)", R"(\old.txt)"}));
            const std::string kept = disk().content(R"(F:\Save\Docs\a.txt)").value_or("(none)");
            EXPECT_TRUE(kept == "aaaaa" || kept == "changed") << kept;
        });
}

TEST_F(FaultAnywhere, OfARestoreLosesNothingByTheNextBackup) {
    Events before;
    std::set<std::string> copy;
    sweep(
        [&] {
            disk().remove(R"(C:\Docs\a.txt)");
            disk().remove(R"(C:\Docs\Sub)");
            copy = filesOf(R"(F:\Save\Docs)");
            before = filesBelow(R"(C:\Docs)");
            restore();
        },
        [&] {
            EXPECT_EQ(filesOf(R"(F:\Save\Docs)"), copy);
            // What no restore has touched is what the user has made of it.
            const bool touched = filesBelow(R"(C:\Docs)") != before;
            backUp();
            if (!touched) return;
            EXPECT_EQ(filesOf(R"(F:\Save\Docs)"), copy);
        });
}

}  // namespace
}  // namespace coffrelune
