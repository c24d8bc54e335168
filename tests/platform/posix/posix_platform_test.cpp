#include "platform/posix/posix_platform.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace coffrelune {
namespace {

TEST(ProgramPlace, TheExecutableIsTheRunningProgramsOwnFile) {
    const std::string path = executablePath();
    ASSERT_TRUE(path.starts_with('/')) << path;
    EXPECT_TRUE(std::filesystem::is_regular_file(path)) << path;
    EXPECT_TRUE(std::filesystem::equivalent(path, "/proc/self/exe"));
    EXPECT_TRUE(path.ends_with("/posix_tests")) << path;
}

}  // namespace
}  // namespace coffrelune
