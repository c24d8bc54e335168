#include "platform/posix/tree_locks.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/wait.h>

#include "platform/posix/posix_platform.h"
#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

constexpr std::uint32_t taken = error_number::lockViolation;

class TreeLocksTest : public testing::Test {
  protected:
    std::vector<PathRoot> roots() const { return {PathRoot::drive('D', disk_.at())}; }

    std::unique_ptr<HeldTree> hold() {
        std::unique_ptr<HeldTree> held;
        EXPECT_TRUE(platform_.files().hold("D:\\", held).ok());
        return held;
    }

    /// What another process is told.
    std::uint32_t elsewhere(TreeUse use) const {
        const pid_t child = fork();
        EXPECT_GE(child, 0);
        if (child == 0) {
            PosixPlatform platform(roots());
            std::unique_ptr<HeldTree> held;
            if (!platform.files().hold("D:\\", held).ok()) _exit(255);
            _exit(static_cast<int>(held->claim(use).code()));
        }
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status));
        return static_cast<std::uint32_t>(WEXITSTATUS(status));
    }

    TemporaryDirectory disk_;
    PosixPlatform platform_{roots()};
};

TEST_F(TreeLocksTest, ReaderLetsReadersInAndAWriterNobody) {
    const auto held = hold();
    EXPECT_EQ(elsewhere(TreeUse::write), 0U);
    ASSERT_TRUE(held->claim(TreeUse::read).ok());
    EXPECT_EQ(elsewhere(TreeUse::read), 0U);
    EXPECT_EQ(elsewhere(TreeUse::write), taken);
    ASSERT_TRUE(held->claim(TreeUse::write).ok());
    EXPECT_EQ(elsewhere(TreeUse::read), taken);
}

TEST_F(TreeLocksTest, RefusedWriterStaysTheReaderThatItWas) {
    const auto held = hold();
    ASSERT_TRUE(held->claim(TreeUse::read).ok());
    PosixPlatform other(roots());
    std::unique_ptr<HeldTree> reader;
    ASSERT_TRUE(other.files().hold("D:\\", reader).ok());
    ASSERT_TRUE(reader->claim(TreeUse::read).ok());
    EXPECT_EQ(held->claim(TreeUse::write).code(), taken);
    reader.reset();
    EXPECT_EQ(elsewhere(TreeUse::write), taken);
    EXPECT_EQ(elsewhere(TreeUse::read), 0U);
    EXPECT_TRUE(held->claim(TreeUse::write).ok());
}

TEST_F(TreeLocksTest, WriterThatGoesLeavesTheReadersTheirLock) {
    auto reader = hold();
    auto writer = hold();
    ASSERT_TRUE(reader->claim(TreeUse::read).ok());
    ASSERT_TRUE(writer->claim(TreeUse::write).ok());
    EXPECT_EQ(elsewhere(TreeUse::read), taken);
    writer.reset();
    EXPECT_EQ(elsewhere(TreeUse::read), 0U);
    EXPECT_EQ(elsewhere(TreeUse::write), taken);
    reader.reset();
    EXPECT_EQ(elsewhere(TreeUse::write), 0U);
}

TEST_F(TreeLocksTest, ProgramMayWorkOnTheDirectoryThatItGuards) {
    ASSERT_TRUE(platform_.guard().claim("D:\\"));
    const auto held = hold();
    EXPECT_TRUE(held->claim(TreeUse::read).ok());
    EXPECT_TRUE(held->claim(TreeUse::write).ok());
    EXPECT_EQ(elsewhere(TreeUse::read), taken);
}

TEST_F(TreeLocksTest, NothingIsLeftBehind) {
    {
        const auto held = hold();
        ASSERT_TRUE(held->claim(TreeUse::write).ok());
        EXPECT_TRUE(held->flush().ok());
    }
    EXPECT_THAT(disk_.names(), testing::IsEmpty());
}

}  // namespace
}  // namespace coffrelune
