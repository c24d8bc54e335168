#include "platform/out_of_memory.h"

#include <gtest/gtest.h>

#include <new>

namespace coffrelune {
namespace {

TEST(OutOfMemoryDeathTest, IsSaidInFrenchAndEndsAnInterruptedRun) {
    EXPECT_EXIT(
        {
            endWhenMemoryEnds();
            std::get_new_handler()();
        },
        testing::ExitedWithCode(outOfMemoryStatus), "La mémoire ne suffit pas");
}

}  // namespace
}  // namespace coffrelune
