// Files and directories that nobody can change, whatever their rights.
#include "engine/locked_entries.h"

#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;

class LockedEntries : public Engine {
  protected:
    LockedEntries() {
        disk().file(R"(C:\Docs\a.txt)", "new");
        disk().file(R"(C:\Docs\Sub\b.txt)", "b");
        disk().file(R"(F:\Docs\a.txt)", "old", MemoryDisk::defaultTime - oneHour);
        disk().directory("H:\\Coffrelune");
        system.options.ContinueOnError = -1;
    }
    void lock(const std::string& path, Lock how) {
        MemoryNode& node = *disk().find(path);
        node.lock = how;
        node.writeError = error_number::accessDenied;
    }
    static auto saysChattr(const std::string& subject, const std::string& flag) {
        return Contains(AllOf(HasSubstr(subject), HasSubstr("« chattr " + flag + " »")));
    }
};

TEST_F(LockedEntries, AreTheReasonWhyACopyIsNotReplaced) {
    lock(R"(F:\Docs\a.txt)", Lock::immutable);
    EXPECT_FALSE(run("C:\\Docs", "F:\\"));
    EXPECT_EQ(disk().content(R"(F:\Docs\a.txt)"), "old");
    EXPECT_THAT(window.journal, saysChattr(R"(F:\Docs\a.txt est immuable : )", "-i"));
    EXPECT_EQ(statistics.errors.at(0).number, error_number::accessDenied);
}

TEST_F(LockedEntries, AreToldOnceForADirectory) {
    disk().file(R"(F:\Docs\Sub\b.txt)", "old", MemoryDisk::defaultTime - oneHour);
    disk().file(R"(C:\Docs\Sub\c.txt)", "c");
    lock(R"(F:\Docs\Sub)", Lock::additionsOnly);
    EXPECT_FALSE(run("C:\\Docs", "F:\\"));
    const auto told =
        std::count_if(window.journal.begin(), window.journal.end(), [](const std::string& line) {
            return line.starts_with(R"(Le répertoire F:\Docs\Sub n'accepte que des ajouts)");
        });
    EXPECT_EQ(told, 1);
}

TEST_F(LockedEntries, AreTheReasonWhyAnExcessFileStays) {
    system.options.SynchroCopie = -1;
    disk().file(R"(F:\Docs\gone.txt)", "gone");
    lock(R"(F:\Docs\gone.txt)", Lock::additionsOnly);
    (void)run("C:\\Docs", "F:\\");
    EXPECT_TRUE(disk().exists(R"(F:\Docs\gone.txt)"));
    EXPECT_THAT(window.journal,
                saysChattr(R"(F:\Docs\gone.txt n'accepte que des ajouts : )", "-a"));
}

TEST_F(LockedEntries, AreNotSuspectedBehindOtherRefusals) {
    disk().find(R"(F:\Docs\a.txt)")->writeError = error_number::accessDenied;
    EXPECT_FALSE(run("C:\\Docs", "F:\\"));
    EXPECT_THAT(window.journal, testing::Not(Contains(HasSubstr("chattr"))));
    EXPECT_EQ(lockOn(memory.files(), R"(F:\Absent\x)"), "");
}

}  // namespace
}  // namespace coffrelune
