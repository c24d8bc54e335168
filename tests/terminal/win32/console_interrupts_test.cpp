#include <gtest/gtest.h>

#include <thread>

#include "platform/memory/memory_platform.h"
#include "platform/terminal/interrupt_signals.h"
#include "terminal/win32/own_console.h"

namespace coffrelune {
namespace {

// The system calls the handler on a thread of its own.
bool arrived(const InterruptSignals& signals, int count) {
    constexpr int looks = 20'000'000;
    for (int i = 0; i < looks && signals.count() < count; ++i) std::this_thread::yield();
    return signals.count() == count;
}

class ConsoleInterruptsTest : public testing::Test {
  protected:
    ConsoleInterruptsTest() {
        memory.disk().file(R"(C:\a.txt)", "new");
        memory.disk().file(R"(F:\a.txt)", "old");
    }
    Status copy() {
        return memory.files().copyFile(R"(C:\a.txt)", R"(F:\a.txt)", LinkRule::refuse, nullptr);
    }
    OwnConsole console;
    MemoryPlatform memory;
};

TEST_F(ConsoleInterruptsTest, TheFirstLetsTheFileInProgressFinish) {
    const InterruptSignals signals(memory.files());
    EXPECT_EQ(signals.count(), 0);
    ASSERT_TRUE(OwnConsole::interrupt());
    ASSERT_TRUE(arrived(signals, 1));
    EXPECT_TRUE(copy().ok());
    EXPECT_EQ(memory.disk().content(R"(F:\a.txt)"), "new");
}

TEST_F(ConsoleInterruptsTest, TheSecondGivesTheFileInProgressUp) {
    const InterruptSignals signals(memory.files());
    bool both = false;
    memory.files().copyHook = [&](const CopyMoment&) {
        both = OwnConsole::interrupt() && arrived(signals, 1) && OwnConsole::interrupt() &&
               arrived(signals, 2);
    };
    EXPECT_EQ(copy().code(), error_number::requestAborted);
    EXPECT_TRUE(both);
    EXPECT_EQ(memory.disk().content(R"(F:\a.txt)"), "old");
}

TEST_F(ConsoleInterruptsTest, EachRunCountsItsOwn) {
    {
        const InterruptSignals signals(memory.files());
        ASSERT_TRUE(OwnConsole::interrupt());
        ASSERT_TRUE(arrived(signals, 1));
    }
    const InterruptSignals signals(memory.files());
    EXPECT_EQ(signals.count(), 0);
}

}  // namespace
}  // namespace coffrelune
