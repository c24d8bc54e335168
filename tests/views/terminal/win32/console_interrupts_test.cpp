#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <thread>

#include "platform/memory/memory_platform.h"
#include "views/terminal/interrupt_signals.h"
#include "views/terminal/win32/own_console.h"

namespace coffrelune {
namespace {

template <typename Condition>
bool comes(Condition condition) {
    constexpr int looks = 200'000'000;  // about a minute
    for (int i = 0; i < looks && !condition(); ++i) std::this_thread::yield();
    return condition();
}

// The system calls the handler on a thread of its own.
bool arrived(const InterruptSignals& signals, int count) {
    return comes([&] { return signals.count() >= count; }) && signals.count() == count;
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

// In a process of its own, which is closing from there on.
TEST_F(ConsoleInterruptsTest, AClosingWindowLetsTheRunEndWithItsStatus) {
    constexpr int ownStatus = 3;
    const auto close = [this] {
        auto signals = std::make_unique<InterruptSignals>(memory.files());
        if (!OwnConsole::closeWindow() || !arrived(*signals, 2)) std::_Exit(1);
        if (copy().code() != error_number::requestAborted) std::_Exit(1);
        // Elsewhere, as it would be for ever when it waited for the handler.
        std::atomic<bool> gone{false};
        std::thread([&] {
            signals.reset();
            gone = true;
        }).detach();
        if (!comes([&] { return gone.load(); })) std::_Exit(1);
        std::exit(ownStatus);
    };
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(close(), testing::ExitedWithCode(ownStatus), "");
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
