#include "platform/win32/win32_batch.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <future>
#include <limits>

#include "platform/names.h"
#include "platform/win32/beside.h"
#include "platform/win32/test_disk.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/win32_files.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

constexpr std::uint64_t oldTime = 133330464001234567;
constexpr std::uint64_t newTime = oldTime + 36'000'000'000;
constexpr std::uint64_t never = std::numeric_limits<std::uint64_t>::max();

/// A batch from one directory to another with limits of its own, and what it tells.
class Win32BatchTest : public testing::Test, protected CopyEvents {
  protected:
    Win32BatchTest() {
        disk::makeDirectory(at("de"));
        disk::makeDirectory(at("vers"));
    }

    std::string at(const std::string& name) const { return base_.at(name); }
    std::string from(const std::string& name) const { return at("de\\" + name); }
    std::string to(const std::string& name) const { return at("vers\\" + name); }
    void original(const std::string& name) { disk::makeFile(from(name), "new", newTime); }

    void hold() { ASSERT_TRUE(places_.holds().take(at("vers"), held_).ok()); }
    void start(const GroupLimits& limits) {
        ASSERT_TRUE(
            files_.openDirectory(at("de"), LinkRule::refuse, Wanted::nothing, source_).ok());
        ASSERT_TRUE(
            files_.openDirectory(at("vers"), LinkRule::refuse, Wanted::nothing, target_).ok());
        CopyEvents& events = *this;
        batch_ = std::make_unique<Win32Batch>(places_, copier_, at("vers"), AfterFailure::goOn,
                                              events, limits);
    }
    /// Without a limit that a test comes near to.
    void start() { start({1000, never, never}); }

    FileEntry seen(const std::string& name) {
        FileEntry entry;
        EXPECT_TRUE(source_->lookUp(name, entry)) << name;
        return entry;
    }
    std::uint32_t add(const std::string& name, bool isNew = true) { return add(seen(name), isNew); }
    std::uint32_t add(const FileEntry& entry, bool isNew) {
        const std::string source = from(entry.name);
        const std::string target = to(entry.name);
        std::uint64_t ticket = 0;
        return batch_->add({*source_, *target_, entry, source, target, isNew}, ticket).code();
    }
    void finish() { EXPECT_TRUE(batch_->finish().ok()); }

    int temporaries() const {
        int count = 0;
        for (const std::string& name : disk::names(at("vers"))) count += isTemporaryName(name);
        return count;
    }

    void committed(std::uint64_t ticket, const Status& status) override {
        told.emplace_back(ticket, status.code());
    }
    void waiting() override {}

    disk::Temporary base_;
    Win32Files files_;
    Win32Places places_;
    Win32FileCopier copier_;
    std::unique_ptr<HeldTree> held_;
    std::unique_ptr<Directory> source_;
    std::unique_ptr<Directory> target_;
    std::unique_ptr<CopyBatch> batch_;
    std::vector<std::pair<std::uint64_t, std::uint32_t>> told;
};

// The group before must have its names when the next one is handed over.
TEST_F(Win32BatchTest, FlushesAGroupOfSoManyFiles) {
    for (const char* name : {"a", "b", "c", "d", "e"}) original(name);
    start({2, never, never});
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(add("b"), 0U);
    EXPECT_EQ(temporaries(), 2);
    EXPECT_EQ(add("c"), 0U);
    EXPECT_THAT(told, IsEmpty());
    EXPECT_EQ(add("d"), 0U);
    EXPECT_EQ(add("e"), 0U);
    EXPECT_THAT(told, ElementsAre(Pair(1, 0U), Pair(2, 0U)));
    EXPECT_EQ(temporaries(), 3);
    finish();
    EXPECT_THAT(told, SizeIs(5));
    EXPECT_THAT(disk::names(at("vers")), ElementsAre("a", "b", "c", "d", "e"));
}

TEST_F(Win32BatchTest, FlushesAGroupOfSoManyBytes) {
    for (const char* name : {"a", "b", "c"}) original(name);
    start({1000, 3, never});
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(add("b"), 0U);
    EXPECT_THAT(told, IsEmpty());
    EXPECT_EQ(add("c"), 0U);
    EXPECT_THAT(told, ElementsAre(Pair(1, 0U)));
}

TEST_F(Win32BatchTest, FlushesAGroupThatHasWaitedLongEnough) {
    for (const char* name : {"a", "b", "c"}) original(name);
    start({1000, never, 0});
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(add("b"), 0U);
    EXPECT_THAT(told, IsEmpty());
    EXPECT_EQ(add("c"), 0U);
    EXPECT_THAT(told, ElementsAre(Pair(1, 0U)));
}

TEST_F(Win32BatchTest, LeavesNothingOfAGroupThatIsFlushedWhenItIsDestroyed) {
    original("a");
    original("b");
    start({1, never, never});
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(add("b"), 0U);
    batch_.reset();
    EXPECT_THAT(told, IsEmpty());
    EXPECT_THAT(disk::names(at("vers")), IsEmpty());
}

/// A volume that refuses to be flushed as a whole until the first file that it has cost is told.
class FailingFlush : public Win32BatchTest {
  protected:
    FailingFlush() {
        for (const char* name : {"a", "b", "c"}) original(name);
        hold();
        Win32Place place;
        EXPECT_TRUE(places_.reach(at("vers"), place).ok());
        hold_ = place.hold;
        // Nothing of that kind can be flushed, whoever asks.
        *hold_->flush = VolumeFlush(UniqueHandle(CreateEventW(nullptr, FALSE, FALSE, nullptr)));
        start({1, never, never});
    }

    void committed(std::uint64_t ticket, const Status& status) override {
        Win32BatchTest::committed(ticket, status);
        if (isMended_ || status.ok()) return;
        isMended_ = true;
        disk::makeFile(at("sain"), "");
        *hold_->flush = VolumeFlush(openShared(wide(at("sain")), GENERIC_WRITE, 0));
    }

    static constexpr std::uint32_t failure = ERROR_INVALID_HANDLE;
    std::shared_ptr<Win32Hold> hold_;
    bool isMended_ = false;
};

TEST_F(FailingFlush, GivesNoNameToItsOwnFiles) {
    EXPECT_EQ(add("a"), 0U);
    finish();
    EXPECT_THAT(told, ElementsAre(Pair(1, failure)));
    EXPECT_THAT(disk::names(at("vers")), IsEmpty());
}

TEST_F(FailingFlush, GivesNoNameToAFileThatWasBegunBeforeItFailed) {
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(add("b"), 0U);
    EXPECT_THAT(told, IsEmpty());
    finish();
    EXPECT_THAT(told, ElementsAre(Pair(1, failure), Pair(2, failure)));
    EXPECT_THAT(disk::names(at("vers")), IsEmpty());
}

TEST_F(FailingFlush, LetsLaterFilesHaveTheirNames) {
    EXPECT_EQ(add("a"), 0U);
    finish();
    EXPECT_EQ(add("c"), 0U);
    finish();
    EXPECT_THAT(told, ElementsAre(Pair(1, failure), Pair(2, 0U)));
    EXPECT_THAT(disk::names(at("vers")), ElementsAre("c"));
}

TEST_F(Win32BatchTest, MakesFilesSafeBelowAHold) {
    for (const char* name : {"a", "b"}) original(name);
    disk::makeFile(to("b"), "old", oldTime);
    hold();
    start();
    EXPECT_EQ(add("a"), 0U);
    EXPECT_EQ(add("b", false), 0U);
    finish();
    EXPECT_THAT(told, ElementsAre(Pair(1, 0U), Pair(2, 0U)));
    EXPECT_EQ(disk::content(to("b")), "new");
    EXPECT_TRUE(held_->flush().ok());
    EXPECT_THAT(disk::names(at("vers")), ElementsAre("a", "b"));
}

TEST_F(Win32BatchTest, GivesNoNameBehindALinkThatTookThePlaceOfADirectory) {
    disk::makeDirectory(to("Sous"));
    disk::makeDirectory(at("ailleurs"));
    original("a");
    hold();
    start();
    const std::string source = from("a");
    const std::string target = to("Sous\\a");
    std::uint64_t ticket = 0;
    const FileEntry entry = seen("a");
    ASSERT_TRUE(batch_->add({*source_, *target_, entry, source, target, true}, ticket).ok());
    // Another way, so that nothing but the file itself keeps the directory.
    Win32Place place;
    ASSERT_TRUE(places_.reach(to("x"), place).ok());
    if (MoveFileExW(wide(to("Sous")).c_str(), wide(at("parti")).c_str(), 0) == 0) {
        finish();
        EXPECT_EQ(disk::content(target), "new");
        return;
    }
    if (!disk::makeDirectoryLink(to("Sous"), "..\\ailleurs")) {
        GTEST_SKIP() << "this user may not make links";
    }
    finish();
    EXPECT_THAT(told, ElementsAre(Pair(1, error_number::cannotResolveName)));
    EXPECT_THAT(disk::names(at("ailleurs")), IsEmpty());
}

TEST_F(Win32BatchTest, NobodyElseRemovesOrWritesWhatWaits) {
    original("a");
    start();
    EXPECT_EQ(add("a"), 0U);
    const std::vector<std::string> names = disk::names(at("vers"));
    ASSERT_THAT(names, SizeIs(1));
    EXPECT_EQ(DeleteFileW(wide(to(names[0])).c_str()), 0);
    EXPECT_EQ(GetLastError(), error_number::sharingViolation);
    EXPECT_TRUE(files_.removeLeftovers(at("vers")).ok());
    finish();
    EXPECT_EQ(disk::content(to("a")), "new");
}

TEST_F(Win32BatchTest, NameThatDiffersByCaseIsTaken) {
    original("NEUF.txt");
    start();
    disk::makeFile(to("neuf.TXT"), "theirs", oldTime);
    EXPECT_EQ(add("NEUF.txt"), 0U);
    finish();
    EXPECT_THAT(told, ElementsAre(Pair(1, error_number::alreadyExists)));
    EXPECT_EQ(disk::content(to("neuf.TXT")), "theirs");
    EXPECT_THAT(disk::names(at("vers")), ElementsAre("neuf.TXT"));
}

TEST_F(Win32BatchTest, OldFileThatAnotherProgramOpensMeanwhileStays) {
    original("a");
    disk::makeFile(to("a"), "old", oldTime);
    start();
    EXPECT_EQ(add("a", false), 0U);
    {
        const disk::Held held(to("a"));
        finish();
    }
    EXPECT_THAT(told, ElementsAre(Pair(1, error_number::sharingViolation)));
    EXPECT_EQ(disk::content(to("a")), "old");
    EXPECT_THAT(disk::names(at("vers")), ElementsAre("a"));
}

TEST_F(Win32BatchTest, OldFileThatGetsAnotherTimeMeanwhileStays) {
    original("a");
    disk::makeFile(to("a"), "old", oldTime);
    start();
    EXPECT_EQ(add("a", false), 0U);
    disk::makeFile(to("a"), "odd", oldTime + 10'000'000);
    finish();
    EXPECT_THAT(told, ElementsAre(Pair(1, error_number::sharingViolation)));
    EXPECT_EQ(disk::content(to("a")), "odd");
}

TEST_F(Win32BatchTest, SourceThatHasChangedSinceItWasListedIsCopiedAsItIs) {
    original("a");
    start();
    const FileEntry listed = seen("a");
    disk::makeFile(from("a"), "longer", oldTime);
    EXPECT_EQ(add(listed, true), 0U);
    finish();
    EXPECT_EQ(disk::content(to("a")), "longer");
    FileEntry copy;
    ASSERT_TRUE(target_->lookUp("a", copy));
    EXPECT_EQ(copy.times.lastWrite, oldTime);
}

TEST_F(Win32BatchTest, NamedStreamsGoWithTheFile) {
    original("a");
    if (disk::isWine()) GTEST_SKIP() << "Wine's host has no named streams";
    disk::makeFile(from("a:note"), "remember");
    start();
    EXPECT_EQ(add("a"), 0U);
    finish();
    EXPECT_EQ(disk::content(to("a:note")), "remember");
    EXPECT_EQ(disk::content(to("a")), "new");
}

TEST(Beside, CallsWhileTheWorkLastsAndComesBackAfterIt) {
    std::promise<void> called;
    bool done = false;
    int calls = 0;
    Beside beside;
    EXPECT_TRUE(beside.isDone());
    beside.start([&] {
        called.get_future().wait();
        done = true;
    });
    EXPECT_FALSE(beside.isDone());
    beside.wait([&] {
        if (++calls == 1) called.set_value();
    });
    EXPECT_TRUE(done);
    EXPECT_GE(calls, 1);
    EXPECT_TRUE(beside.isDone());
    beside.wait([] { FAIL() << "nothing is running"; });
}

}  // namespace
}  // namespace coffrelune
