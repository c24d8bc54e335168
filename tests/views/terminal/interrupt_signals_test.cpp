#include "views/terminal/interrupt_signals.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <csignal>

#include "platform/memory/memory_platform.h"
#include "views/terminal/default_signals.h"

namespace coffrelune {
namespace {

// True when writing to a pipe without a reader succeeds.
bool writeToNobody() {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) return true;
    close(ends[0]);
    return write(ends[1], "x", 1) == 1;
}

class InterruptSignalsTest : public testing::Test {
  protected:
    InterruptSignalsTest() {
        memory.disk().file(R"(C:\a.txt)", "new");
        memory.disk().file(R"(F:\a.txt)", "old");
    }
    Status copy() {
        return memory.files().copyFile(R"(C:\a.txt)", R"(F:\a.txt)", LinkRule::refuse, nullptr);
    }
    DefaultSignals defaultSignals;
    MemoryPlatform memory;
};

TEST_F(InterruptSignalsTest, CountsEachSignalThatAsksToStop) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const InterruptSignals signals(memory.files());
        EXPECT_EQ(signals.count(), 0);
        std::raise(signal);
        EXPECT_EQ(signals.count(), 1);
    }
}

TEST_F(InterruptSignalsTest, TheFirstLetsTheFileInProgressFinish) {
    const InterruptSignals signals(memory.files());
    std::raise(SIGINT);
    EXPECT_TRUE(copy().ok());
    EXPECT_EQ(memory.disk().content(R"(F:\a.txt)"), "new");
}

TEST_F(InterruptSignalsTest, TheSecondGivesTheFileInProgressUp) {
    const InterruptSignals signals(memory.files());
    memory.files().copyHook = [](const CopyMoment&) {
        std::raise(SIGINT);
        std::raise(SIGTERM);
    };
    EXPECT_EQ(copy().code(), error_number::requestAborted);
    EXPECT_EQ(memory.disk().content(R"(F:\a.txt)"), "old");
    EXPECT_EQ(signals.count(), 2);
}

TEST_F(InterruptSignalsTest, TheThirdEndsTheProcess) {
    EXPECT_EXIT(
        {
            const InterruptSignals signals(memory.files());
            std::raise(SIGINT);
            std::raise(SIGINT);
            std::raise(SIGINT);
            _exit(0);
        },
        testing::KilledBySignal(SIGINT), "");
}

TEST_F(InterruptSignalsTest, GiveTheSignalsTheirMeaningBack) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        EXPECT_EXIT(
            {
                { const InterruptSignals signals(memory.files()); }
                std::raise(signal);
                _exit(0);
            },
            testing::KilledBySignal(signal), "");
    }
}

// nohup, and a shell that starts a job in the background, ignore signals on purpose.
TEST_F(InterruptSignalsTest, LeaveASignalAloneThatTheStarterIgnores) {
    EXPECT_EXIT(
        {
            std::signal(SIGHUP, SIG_IGN);
            int count = 0;
            {
                const InterruptSignals signals(memory.files());
                std::raise(SIGHUP);
                count = signals.count();
            }
            std::raise(SIGHUP);  // ignored again, or still
            _exit(count == 0 ? 7 : 8);
        },
        testing::ExitedWithCode(7), "");
}

TEST_F(InterruptSignalsTest, WritingToAReaderThatWentAwayIsNoEnd) {
    EXPECT_EXIT(
        {
            const InterruptSignals signals(memory.files());
            _exit(writeToNobody() ? 8 : 7);
        },
        testing::ExitedWithCode(7), "");
}

}  // namespace
}  // namespace coffrelune
