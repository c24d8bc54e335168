#include "platform/posix/data_copier.h"

#include <fcntl.h>
#include <gmock/gmock.h>

#include <cerrno>
#include <functional>

#include "platform/posix/temporary_directory.h"
#include "platform/posix/unique_fd.h"

namespace coffrelune {
namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20;

class Readings final : public CopyObserver {
  public:
    void chunkFinished(std::uint64_t transferred) override {
        values.push_back(transferred);
        if (onChunk) onChunk();
    }
    std::vector<std::uint64_t> values;
    std::function<void()> onChunk;
};

std::string pattern(std::size_t size) {
    std::string text(size, '\0');
    std::uint32_t state = 1;
    for (char& c : text) c = static_cast<char>((state = state * 1664525U + 1013904223U) >> 24);
    return text;
}

class DataCopierTest : public testing::Test {
  protected:
    int copy() {
        const UniqueFd from(open(disk_.at("source").c_str(), O_RDONLY | O_CLOEXEC));
        const UniqueFd to(
            open(disk_.at("copie").c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
        struct stat information {};
        EXPECT_EQ(fstat(from.get(), &information), 0);
        return copier_.copy(from.get(), information, to.get(), &readings_);
    }

    void expectCopied(std::size_t size) {
        const std::string content = pattern(size);
        disk_.write("source", content);
        readings_.values.clear();
        EXPECT_EQ(copy(), 0) << size;
        EXPECT_TRUE(disk_.read("copie") == content) << size;
        ASSERT_FALSE(readings_.values.empty());
        EXPECT_EQ(readings_.values.back(), size);
        std::uint64_t last = 0;
        for (const std::uint64_t value : readings_.values) {
            EXPECT_LE(value - last, 16 * mebibyte);
            last = value;
        }
    }

    TemporaryDirectory disk_;
    std::atomic<bool> abandoned_ = false;
    DataCopier copier_{abandoned_};
    Readings readings_;
};

TEST_F(DataCopierTest, CopiesEverySizeAroundItsLimits) {
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, std::size_t{131071}, std::size_t{131072},
          std::size_t{131073}, std::size_t{262144}, std::size_t{262145}, 4 * mebibyte,
          4 * mebibyte + 1, 20 * mebibyte + 7}) {
        expectCopied(size);
    }
}

TEST_F(DataCopierTest, NotifiesOnceForASmallOrEmptyFile) {
    expectCopied(0);
    EXPECT_THAT(readings_.values, testing::ElementsAre(0U));
    expectCopied(1000);
    EXPECT_THAT(readings_.values, testing::ElementsAre(1000U));
}

TEST_F(DataCopierTest, KeepsHoles) {
    const std::uint64_t size = 4 * mebibyte;
    {
        const UniqueFd file(open(disk_.at("source").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
        ASSERT_EQ(pwrite(file.get(), "start", 5, 0), 5);
        ASSERT_EQ(pwrite(file.get(), "middle", 6, 2 * mebibyte), 6);
        ASSERT_EQ(ftruncate(file.get(), static_cast<off_t>(size)), 0);
    }
    if (disk_.stat("source").st_blocks * 512 > 1 << 20) GTEST_SKIP() << "no holes on this volume";
    ASSERT_EQ(copy(), 0);
    EXPECT_TRUE(disk_.read("copie") == disk_.read("source"));
    EXPECT_LE(disk_.stat("copie").st_blocks * 512, 1 << 20);
    EXPECT_EQ(readings_.values.back(), size);
}

TEST_F(DataCopierTest, NeverSharesBlocksWithTheSource) {
    // What is written to the source afterwards is no part of the copy.
    expectCopied(mebibyte);
    const std::string content = disk_.read("copie");
    disk_.write("source", std::string(mebibyte, 'x'));
    EXPECT_TRUE(disk_.read("copie") == content);
}

TEST_F(DataCopierTest, LeavesWhatIsAppendedMeanwhileToTheNextRun) {
    const std::string content = pattern(5 * mebibyte);
    disk_.write("source", content);
    readings_.onChunk = [&] {
        std::ofstream(disk_.at("source"), std::ios::app | std::ios::binary) << "more";
    };
    ASSERT_EQ(copy(), 0);
    EXPECT_TRUE(disk_.read("copie") == content);
}

TEST_F(DataCopierTest, SourceThatIsCutOffMeanwhileIsNoCompleteOne) {
    disk_.write("source", pattern(9 * mebibyte));
    readings_.onChunk = [&] { ASSERT_EQ(truncate(disk_.at("source").c_str(), 100), 0); };
    EXPECT_EQ(copy(), ENODATA);
}

TEST_F(DataCopierTest, SourceThatIsCutOffIsNotTakenForOneThatEndsInAHole) {
    {
        const UniqueFd file(open(disk_.at("source").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
        ASSERT_EQ(pwrite(file.get(), "start", 5, 0), 5);
        ASSERT_EQ(pwrite(file.get(), "end", 3, 8 * mebibyte), 3);
    }
    readings_.onChunk = [&] { ASSERT_EQ(truncate(disk_.at("source").c_str(), mebibyte), 0); };
    EXPECT_EQ(copy(), ENODATA);
}

TEST_F(DataCopierTest, FilesOfTheKernelThatHaveNoSizeAreCopied) {
    const UniqueFd from(open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC));
    const UniqueFd to(open(disk_.at("copie").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    struct stat information {};
    ASSERT_EQ(fstat(from.get(), &information), 0);
    ASSERT_EQ(information.st_size, 0);
    EXPECT_EQ(copier_.copy(from.get(), information, to.get(), nullptr), 0);
    EXPECT_THAT(disk_.read("copie"), testing::HasSubstr(" / "));
}

TEST_F(DataCopierTest, StopsAtTheNextChunkWhenAbandoned) {
    disk_.write("source", pattern(20 * mebibyte));
    readings_.onChunk = [&] { abandoned_ = true; };
    EXPECT_EQ(copy(), ECANCELED);
    EXPECT_THAT(readings_.values, testing::SizeIs(1));
}

}  // namespace
}  // namespace coffrelune
