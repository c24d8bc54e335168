#include "platform/win32/data_copier.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "platform/win32/test_disk.h"
#include "platform/win32/unique_handle.h"
#include "platform/win32/wide_text.h"

namespace coffrelune {
namespace {

class Readings final : public CopyObserver {
  public:
    void chunkFinished(std::uint64_t transferred) override { values.push_back(transferred); }
    std::vector<std::uint64_t> values;
};

class DataCopierTest : public testing::Test {
  protected:
    std::uint32_t copy(const std::string& content, std::uint64_t size, bool sparse) {
        disk::makeFile(base_.at("source"), content);
        disk::makeFile(base_.at("copie"), "");
        const UniqueHandle input(open("source", GENERIC_READ));
        const UniqueHandle output(open("copie", GENERIC_WRITE));
        return DataCopier(abandoned_).copy(input.get(), size, output.get(), sparse, &readings_);
    }
    std::optional<std::string> copied() { return disk::content(base_.at("copie")); }

    std::atomic<bool> abandoned_ = false;
    Readings readings_;

  private:
    void* open(const std::string& name, DWORD access) {
        return CreateFileW(wide(base_.at(name)).c_str(), access, FILE_SHARE_READ, nullptr,
                           OPEN_EXISTING, 0, nullptr);
    }

    disk::Temporary base_;
};

std::string block(char c, std::size_t kibibytes) {
    return std::string(kibibytes << 10, c);
}

TEST_F(DataCopierTest, SkippedZerosComeBackAsZeros) {
    const std::string content = block('a', 64) + block('\0', 192) + "odd" + block('\0', 3000) +
                                block('b', 1) + block('\0', 130);
    ASSERT_EQ(copy(content, content.size(), true), 0U);
    EXPECT_TRUE(copied() == content);
}

TEST_F(DataCopierTest, FileOfZerosAloneKeepsItsLength) {
    const std::string content = block('\0', 2500);
    ASSERT_EQ(copy(content, content.size(), true), 0U);
    EXPECT_TRUE(copied() == content);
}

TEST_F(DataCopierTest, LeavesWhatCameAfterTheCopyBegan) {
    ASSERT_EQ(copy("abcdef", 3, false), 0U);
    EXPECT_EQ(copied(), "abc");
}

TEST_F(DataCopierTest, SourceThatEndsTooEarlyFails) {
    EXPECT_EQ(copy("abc", 10'000'000, false), error_number::handleEof);
    EXPECT_EQ(readings_.values, std::vector<std::uint64_t>{3});
}

TEST_F(DataCopierTest, StopsAtTheNextChunkWhenAbandoned) {
    abandoned_ = true;
    EXPECT_EQ(copy(block('a', 5000), 5000 << 10, false), 1235U);
    EXPECT_EQ(readings_.values.size(), 1U);
}

}  // namespace
}  // namespace coffrelune
