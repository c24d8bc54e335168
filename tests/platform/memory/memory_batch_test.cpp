#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include "platform/memory/faulty_files.h"
#include "platform/memory/memory_platform.h"
#include "platform/names.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// A batch from C:\Docs to F:\Docs, and what it tells.
class MemoryBatchTest : public testing::Test, protected CopyEvents {
  protected:
    MemoryBatchTest() {
        for (const char* name : {"a", "b", "c"}) system.disk().file(from(name), "new");
        system.disk().directory("F:\\Docs");
    }

    static std::string from(const std::string& name) { return "C:\\Docs\\" + name; }
    static std::string to(const std::string& name) { return "F:\\Docs\\" + name; }

    void start(FileService& files, AfterFailure afterFailure = AfterFailure::goOn) {
        ASSERT_TRUE(files.openDirectory("C:\\Docs", LinkRule::refuse, Wanted::files, source_).ok());
        ASSERT_TRUE(
            files.openDirectory("F:\\Docs", LinkRule::refuse, Wanted::nothing, target_).ok());
        batch_ = files.startBatch("F:\\Docs", afterFailure, *this);
    }

    std::uint32_t add(const std::string& name, bool isNew = true) {
        FileEntry entry;
        EXPECT_TRUE(source_->lookUp(name, entry));
        const std::string source = from(name);
        const std::string target = to(name);
        std::uint64_t ticket = 0;
        const Status status =
            batch_->add({*source_, *target_, entry, source, target, isNew}, ticket);
        EXPECT_EQ(ticket, status.ok() ? ++last_ : 0) << name;
        return status.code();
    }
    std::uint32_t finish() { return batch_->finish().code(); }

    /// Of those that have their names.
    std::vector<std::string> files() { return system.disk().list("F:\\Docs"); }
    int temporaries() {
        int count = 0;
        for (const std::string& path : files()) {
            if (isTemporaryName(path.substr(path.rfind('\\') + 1))) ++count;
        }
        return count;
    }

    void committed(std::uint64_t ticket, const Status& status) override {
        told.emplace_back(ticket, status.code());
    }
    void waiting() override {}

    MemoryPlatform system;
    std::vector<std::pair<std::uint64_t, std::uint32_t>> told;

    std::unique_ptr<Directory> source_;
    std::unique_ptr<Directory> target_;
    std::unique_ptr<CopyBatch> batch_;
    std::uint64_t last_ = 0;
};

TEST_F(MemoryBatchTest, GivesEachNameAtTheNextCallUnlessToldOtherwise) {
    start(system.files());
    EXPECT_EQ(add("a"), 0U);
    EXPECT_FALSE(system.disk().exists(to("a")));
    EXPECT_EQ(add("b"), 0U);
    EXPECT_EQ(system.disk().content(to("a")), "new");
    EXPECT_FALSE(system.disk().exists(to("b")));
    EXPECT_THAT(told, ElementsAre(Pair(1, 0U)));
    EXPECT_EQ(finish(), 0U);
    EXPECT_THAT(files(), ElementsAre(to("a"), to("b")));
    EXPECT_THAT(told, ElementsAre(Pair(1, 0U), Pair(2, 0U)));
}

TEST_F(MemoryBatchTest, GivesNamesToAsManyAsItIsTold) {
    system.files().setBatchSize(2);
    start(system.files());
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(add("b"), 0U);
    EXPECT_THAT(told, IsEmpty());
    EXPECT_EQ(temporaries(), 2);
    EXPECT_EQ(add("c"), 0U);
    EXPECT_THAT(told, ElementsAre(Pair(1, 0U), Pair(2, 0U)));
    EXPECT_EQ(temporaries(), 1);
    batch_.reset();
    EXPECT_THAT(files(), ElementsAre(to("a"), to("b")));
    EXPECT_THAT(told, ElementsAre(Pair(1, 0U), Pair(2, 0U)));
}

TEST_F(MemoryBatchTest, RecordsACopyWhenItIsAdded) {
    system.files().setBatchSize(10);
    start(system.files());
    system.files().clearCalls();
    EXPECT_EQ(add("a"), 0U);
    EXPECT_THAT(system.files().writes(), ElementsAre("copyFile C:\\Docs\\a F:\\Docs\\a"));
    EXPECT_EQ(finish(), 0U);
    EXPECT_THAT(system.files().writes(), ElementsAre("copyFile C:\\Docs\\a F:\\Docs\\a"));
}

TEST_F(MemoryBatchTest, FlushThatFailsFailsTheWholeGroupAndKeepsTheOldFiles) {
    system.disk().file(to("b"), "old");
    system.files().setBatchSize(10);
    start(system.files());
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(add("b", false), 0U);
    system.disk().volume("F:\\").flushError = error_number::ioDevice;
    EXPECT_EQ(finish(), 0U);
    EXPECT_THAT(told,
                ElementsAre(Pair(1, error_number::ioDevice), Pair(2, error_number::ioDevice)));
    EXPECT_THAT(files(), ElementsAre(to("b")));
    EXPECT_EQ(system.disk().content(to("b")), "old");

    system.disk().volume("F:\\").flushError = 0;
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(finish(), 0U);
    EXPECT_EQ(system.disk().content(to("a")), "new");
}

TEST_F(MemoryBatchTest, FlushThatFailsFailsASingleCopyAndAHold) {
    system.disk().file(to("b"), "old");
    system.disk().volume("F:\\").flushError = error_number::ioDevice;
    EXPECT_EQ(system.files().copyFile(from("b"), to("b"), LinkRule::refuse, nullptr).code(),
              error_number::ioDevice);
    EXPECT_EQ(system.disk().content(to("b")), "old");
    EXPECT_EQ(temporaries(), 0);
    std::unique_ptr<HeldTree> held;
    ASSERT_TRUE(system.files().hold("F:\\Docs", held).ok());
    EXPECT_EQ(held->flush().code(), error_number::ioDevice);
}

TEST_F(MemoryBatchTest, AfterAFailureThatStopsItNothingMoreIsCommitted) {
    system.disk().file(to("a"), "theirs");
    system.files().setBatchSize(2);
    start(system.files(), AfterFailure::stop);
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(add("b"), 0U);
    EXPECT_EQ(add("c"), error_number::requestAborted);
    EXPECT_THAT(told, ElementsAre(Pair(1, error_number::alreadyExists),
                                  Pair(2, error_number::requestAborted)));
    EXPECT_EQ(finish(), 0U);
    EXPECT_THAT(files(), ElementsAre(to("a")));
    EXPECT_EQ(add("c"), 0U);
    EXPECT_EQ(finish(), 0U);
    EXPECT_EQ(system.disk().content(to("c")), "new");
}

TEST_F(MemoryBatchTest, DirectoryThatIsGoneMeanwhileTakesNothing) {
    start(system.files());
    EXPECT_EQ(add("a"), 0U);
    system.disk().remove("F:\\Docs");
    EXPECT_EQ(finish(), 0U);
    EXPECT_THAT(told, ElementsAre(Pair(1, error_number::pathNotFound)));
}

TEST_F(MemoryBatchTest, VolumeThatIsGoneMeanwhileTakesNothing) {
    start(system.files());
    EXPECT_EQ(add("a"), 0U);
    system.disk().volume("F:\\").present = false;
    EXPECT_EQ(finish(), 0U);
    EXPECT_THAT(told, ElementsAre(Pair(1, error_number::deviceDoesNotExist)));
}

TEST_F(MemoryBatchTest, DirectoryWithAFileThatWaitsIsNotRemoved) {
    start(system.files());
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(system.files().removeDirectory("F:\\Docs").code(), error_number::directoryNotEmpty);
    EXPECT_EQ(finish(), 0U);
    EXPECT_EQ(system.disk().content(to("a")), "new");
}

class FaultyBatchTest : public MemoryBatchTest {
  protected:
    FaultyFiles faulty{system.files()};
};

TEST_F(FaultyBatchTest, ForwardsAndCounts) {
    start(faulty);
    faulty.restart();
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(finish(), 0U);
    EXPECT_THAT(faulty.calls(), ElementsAre("find C:\\Docs\\a", "copyFile C:\\Docs\\a F:\\Docs\\a",
                                            "commit F:\\Docs\\a", "finish F:\\Docs"));
    EXPECT_THAT(told, ElementsAre(Pair(1, 0U)));
    EXPECT_EQ(system.disk().content(to("a")), "new");
}

TEST_F(FaultyBatchTest, FailsACopyAtOnce) {
    start(faulty);
    faulty.fail("copyFile", to("b"), error_number::diskFull);
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(add("b"), error_number::diskFull);
    EXPECT_EQ(add("c"), 0U);
    EXPECT_EQ(finish(), 0U);
    EXPECT_THAT(told, ElementsAre(Pair(1, 0U), Pair(2, 0U)));
    EXPECT_THAT(files(), ElementsAre(to("a"), to("c")));
}

TEST_F(FaultyBatchTest, FailsACommitInItsTurnAndKeepsTheOldFile) {
    system.disk().file(to("b"), "old");
    system.files().setBatchSize(10);
    start(faulty);
    faulty.fail("commit", to("b"), error_number::ioDevice);
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(add("b", false), 0U);
    EXPECT_EQ(add("c"), 0U);
    EXPECT_EQ(finish(), 0U);
    EXPECT_THAT(told, ElementsAre(Pair(1, 0U), Pair(2, error_number::ioDevice), Pair(3, 0U)));
    EXPECT_EQ(system.disk().content(to("b")), "old");
    EXPECT_EQ(system.disk().content(to("c")), "new");
    EXPECT_EQ(faulty.failureCount(), 1U);
}

TEST_F(FaultyBatchTest, CommitsNothingAfterAFailureThatStopsIt) {
    start(faulty, AfterFailure::stop);
    faulty.fail("commit", to("b"), error_number::ioDevice);
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(add("b"), 0U);
    EXPECT_EQ(add("c"), 0U);
    EXPECT_EQ(finish(), 0U);
    EXPECT_THAT(told, ElementsAre(Pair(1, 0U), Pair(2, error_number::ioDevice),
                                  Pair(3, error_number::requestAborted)));
    EXPECT_THAT(files(), ElementsAre(to("a")));
}

TEST_F(FaultyBatchTest, FailsTheEnd) {
    start(faulty);
    faulty.fail("finish", "F:\\Docs", error_number::ioDevice, 1);
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(finish(), error_number::ioDevice);
    EXPECT_THAT(told, ElementsAre(Pair(1, 0U)));
    EXPECT_EQ(finish(), 0U);
}

}  // namespace
}  // namespace coffrelune
