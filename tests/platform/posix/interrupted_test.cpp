#include "platform/posix/interrupted.h"

#include <gtest/gtest.h>

namespace coffrelune {
namespace {

/// A call that is interrupted a few times, and counts how often it is made.
struct Call {
    int interruptions;
    int made = 0;

    int operator()() {
        errno = ++made > interruptions ? EIO : EINTR;
        return made > interruptions ? 7 : -1;
    }
};

TEST(InterruptedCall, IsMadeAgainUntilItIsThrough) {
    for (const int interruptions : {0, 1, 99}) {
        Call call{interruptions};
        EXPECT_EQ(uninterrupted([&] { return call(); }), 7) << interruptions;
        EXPECT_EQ(call.made, interruptions + 1);
    }
}

TEST(InterruptedCall, IsGivenUpWhenItNeverEnds) {
    Call call{1 << 30};
    EXPECT_EQ(uninterrupted([&] { return call(); }), -1);
    EXPECT_EQ(errno, EINTR);
    EXPECT_EQ(call.made, 100);
}

TEST(InterruptedCall, FailsAtOnceForAnyOtherReason) {
    int made = 0;
    const int answer = uninterrupted([&] {
        ++made;
        errno = EIO;
        return -1;
    });
    EXPECT_EQ(answer, -1);
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(made, 1);
}

}  // namespace
}  // namespace coffrelune
