#include "platform/posix/commit_thread.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

/// A volume that refuses to be flushed until it is mended.
class FailingFlush : public testing::Test {
  protected:
    FailingFlush() {
        FlushPoint point;
        point.fd.reset(open(disk_.at().c_str(), O_PATH | O_CLOEXEC));
        volume_ = point.fd.get();
        thread_.addVolume(std::move(point));
        UniqueFd directory(open(disk_.at().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        target_ = std::make_shared<CopyTarget>(std::move(directory), disk_.stat().st_dev, Place());
    }

    void mend() {
        const UniqueFd good(open(disk_.at().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        ASSERT_EQ(dup3(good.get(), volume_, O_CLOEXEC), volume_);
    }

    WaitingCopy written(const std::string& name) {
        disk_.write("." + name, name);
        WaitingCopy copy;
        copy.begun = thread_.failedFlushes();
        copy.target = target_;
        copy.temporary = "." + name;
        copy.name = name;
        return copy;
    }

    int commit(WaitingCopy copy) {
        std::vector<WaitingCopy> group;
        group.push_back(std::move(copy));
        thread_.commit(std::move(group), false);
        while (!thread_.wait()) {
        }
        const std::vector<WaitingCopy> done = thread_.takeDone();
        EXPECT_EQ(done.size(), 1U);
        return done.empty() ? -1 : done.front().error;
    }

    TemporaryDirectory disk_;
    int volume_ = -1;
    std::shared_ptr<CopyTarget> target_;
    CommitThread thread_{AfterFailure::goOn};
};

TEST_F(FailingFlush, GivesNoNameToItsOwnFiles) {
    EXPECT_NE(commit(written("a")), 0);
    EXPECT_TRUE(disk_.names().empty());
}

TEST_F(FailingFlush, GivesNoNameToAFileThatWasBegunBeforeItFailed) {
    WaitingCopy begun = written("b");
    const int failure = commit(written("a"));
    mend();
    EXPECT_EQ(commit(std::move(begun)), failure);
    EXPECT_TRUE(disk_.names().empty());
}

TEST_F(FailingFlush, LetsLaterFilesHaveTheirNames) {
    EXPECT_NE(commit(written("a")), 0);
    mend();
    EXPECT_EQ(commit(written("c")), 0);
    EXPECT_EQ(disk_.names(), std::vector<std::string>{"c"});
}

}  // namespace
}  // namespace coffrelune
