// New directories whose files are copied on a second thread, seen from the batch that lends them.
#include "platform/posix/copy_worker.h"

#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "platform/at_first_chunk.h"
#include "platform/names.h"
#include "platform/posix/posix_platform.h"
#include "platform/posix/temporary_directory.h"
#include "platform/posix/usable_cores.h"

namespace coffrelune {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr int fileCount = 40;

/// As long as it lives, a file that this process writes ends at `bytes` (EFBIG).
class ShortFiles {
  public:
    explicit ShortFiles(rlim_t bytes) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
        EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &before_), 0);
        const rlimit fewer{bytes, before_.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &fewer), 0);
    }
    ShortFiles(const ShortFiles&) = delete;
    ShortFiles& operator=(const ShortFiles&) = delete;
    ~ShortFiles() {
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &before_), 0);
        (void)std::signal(SIGXFSZ, signal_);
    }

  private:
    rlimit before_{};
    void (*signal_)(int);
};

/// Copies directories of "de" into new ones of "vers", as a walk does.
class LentDirectory : public testing::Test, private CopyEvents {
  protected:
    void SetUp() override {
        if (usableCores() < 2) GTEST_SKIP() << "a second thread needs a core";
        disk_.makeDirectory("de");
        disk_.makeDirectory("vers");
    }

    static std::string nameOf(int i) { return "f" + std::to_string(100 + i); }
    static std::string joined(std::string path, const std::string& directory,
                              const std::string& name) {
        return path.append("/").append(directory).append("/").append(name);
    }
    void fill(const std::string& directory, int count = fileCount) {
        disk_.makeDirectory("de/" + directory);
        for (int i = 0; i < count; ++i) {
            const std::string name = "de/" + directory + "/" + nameOf(i);
            disk_.write(name, name);
        }
    }

    void start(AfterFailure afterFailure = AfterFailure::goOn) {
        ASSERT_TRUE(files().hold("D:\\vers", held_).ok());
        batch_ = files().startBatch("D:\\vers", afterFailure, *this);
    }

    /// Codes of the files that got no ticket.
    std::vector<std::uint32_t> copy(const std::string& directory) {
        const std::string to = "D:\\vers\\" + directory;
        const Status made = files().createDirectory(to, DirectoryAccess::usual);
        EXPECT_TRUE(made.ok() || made.code() == error_number::alreadyExists);
        std::unique_ptr<Directory> source;
        std::unique_ptr<Directory> target;
        const std::string from = "D:\\de\\" + directory;
        EXPECT_TRUE(files().openDirectory(from, LinkRule::refuse, Wanted::files, source).ok());
        EXPECT_TRUE(files().openDirectory(to, LinkRule::refuse, Wanted::nothing, target).ok());
        std::vector<std::uint32_t> refused;
        for (FileEntry file; source->next(file);) {
            FileEntry old;
            const bool found = target->lookUp(file.name, old);
            const std::string sourcePath = from + "\\" + file.name;
            const std::string targetPath = to + "\\" + file.name;
            CopyRequest request{*source, *target, file, sourcePath, targetPath};
            request.isNew = !found;
            AtFirstChunk observer([&] {
                if (whenAdded_) whenAdded_(joined("de", directory, file.name));
            });
            request.observer = &observer;
            std::uint64_t ticket = 0;
            const Status added = batch_->add(request, ticket);
            if (!added.ok()) refused.push_back(added.code());
            if (added.ok()) names_[ticket] = directory + "/" + file.name;
            if (added.code() == error_number::requestAborted) break;
        }
        return refused;
    }

    void expectCopied(const std::string& directory) {
        const std::vector<std::string> names = disk_.names("de/" + directory);
        EXPECT_EQ(disk_.names("vers/" + directory), names);
        for (const std::string& name : names) {
            const std::string original = joined("de", directory, name);
            const std::string copy = joined("vers", directory, name);
            const bool same = disk_.read(copy) == disk_.read(original);
            EXPECT_TRUE(same) << copy;
            EXPECT_EQ(disk_.stat(copy).st_mtim.tv_nsec, disk_.stat(original).st_mtim.tv_nsec)
                << copy;
        }
    }

    /// Nothing of the program's own is left anywhere.
    void expectClean() {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(disk_.at("vers"))) {
            EXPECT_FALSE(isTemporaryName(entry.path().filename().string())) << entry.path();
        }
    }

    std::vector<std::string> failed() const {
        std::vector<std::string> found;
        for (const auto& [ticket, code] : told_) {
            if (code != 0) found.push_back(names_.at(ticket));
        }
        return found;
    }

    void committed(std::uint64_t ticket, const Status& status) override {
        EXPECT_EQ(ticket, told_.size() + 1);
        told_.emplace_back(ticket, status.code());
    }
    void waiting() override {}

    FileService& files() { return platform_.files(); }

    TemporaryDirectory disk_;
    PosixPlatform platform_{std::vector<PathRoot>{PathRoot::drive('D', disk_.at())}};
    std::unique_ptr<HeldTree> held_;
    std::vector<std::pair<std::uint64_t, std::uint32_t>> told_;
    std::map<std::uint64_t, std::string> names_;
    std::unique_ptr<CopyBatch> batch_;
    std::function<void(const std::string& original)> whenAdded_;
};

TEST_F(LentDirectory, SeveralOfThemAreCopiedAsTheyAre) {
    start();
    for (const char* directory : {"a", "b", "c", "d"}) {
        fill(directory);
        EXPECT_THAT(copy(directory), IsEmpty());
    }
    EXPECT_TRUE(batch_->finish().ok());
    for (const char* directory : {"a", "b", "c", "d"}) expectCopied(directory);
    EXPECT_THAT(told_, SizeIs(4 * fileCount));
    EXPECT_THAT(failed(), IsEmpty());
    expectClean();
}

TEST_F(LentDirectory, MoreFilesThanWaitAtOnceAreAllCopied) {
    constexpr int many = 3000;
    fill("a", many);
    start();
    EXPECT_THAT(copy("a"), IsEmpty());
    EXPECT_TRUE(batch_->finish().ok());
    expectCopied("a");
    EXPECT_THAT(told_, SizeIs(many));
    expectClean();
}

TEST_F(LentDirectory, LargeFilesAndLinksAmongTheSmallOnesAreCopied) {
    fill("a");
    disk_.write("de/a/f110", std::string(3 << 20, 'x'));
    std::filesystem::remove(disk_.at("de/a/f120"));
    ASSERT_EQ(symlink("f121", disk_.at("de/a/f120").c_str()), 0);
    start();
    EXPECT_THAT(copy("a"), IsEmpty());
    EXPECT_TRUE(batch_->finish().ok());
    expectCopied("a");
    EXPECT_TRUE(S_ISLNK(disk_.stat("vers/a/f120").st_mode));
    EXPECT_THAT(failed(), IsEmpty());
}

TEST_F(LentDirectory, FileThatCannotBeWrittenFailsAloneInItsTurn) {
    fill("a");
    fill("b");
    disk_.write("de/a/f117", std::string(8192, 'x'));
    start();
    {
        const ShortFiles limit(4096);
        EXPECT_THAT(copy("a"), IsEmpty());
        EXPECT_THAT(copy("b"), IsEmpty());
        EXPECT_TRUE(batch_->finish().ok());
    }
    EXPECT_THAT(failed(), testing::ElementsAre("a/f117"));
    EXPECT_THAT(told_, SizeIs(2 * fileCount));
    EXPECT_THAT(disk_.names("vers/a"), SizeIs(fileCount - 1));
    expectCopied("b");
    expectClean();
}

TEST_F(LentDirectory, WhatCameAfterAFailureIsNotCommittedWhenThatWasAsked) {
    fill("a");
    fill("b");
    disk_.write("de/a/f117", std::string(8192, 'x'));
    start(AfterFailure::stop);
    {
        const ShortFiles limit(4096);
        if (copy("a").empty()) (void)copy("b");
        EXPECT_TRUE(batch_->finish().ok());
    }
    const auto first =
        std::find_if(told_.begin(), told_.end(), [](const auto& told) { return told.second != 0; });
    ASSERT_NE(first, told_.end());
    EXPECT_EQ(names_.at(first->first), "a/f117");
    for (auto later = first + 1; later != told_.end(); ++later) {
        EXPECT_EQ(later->second, error_number::requestAborted);
    }
    EXPECT_THAT(disk_.names("vers/a"), SizeIs(static_cast<std::size_t>(first - told_.begin())));
    if (std::filesystem::exists(disk_.at("vers/b"))) {
        EXPECT_THAT(disk_.names("vers/b"), IsEmpty());
    }
    expectClean();
}

TEST_F(LentDirectory, FailureIsToldBeforeThatOfALaterFile) {
    fill("a");
    disk_.write("de/a/f117", std::string(8192, 'x'));
    fill("b", 1);  // too few to be lent
    disk_.write("de/b/f100", std::string(8192, 'x'));
    start();
    const ShortFiles limit(4096);
    EXPECT_THAT(copy("a"), IsEmpty());
    EXPECT_THAT(failed(), IsEmpty());
    EXPECT_THAT(copy("b"), SizeIs(1));
    EXPECT_THAT(failed(), testing::ElementsAre("a/f117"));
}

TEST_F(LentDirectory, OriginalThatIsCutOffWhileItWaitsIsCopiedAsItIsThen) {
    fill("a");
    whenAdded_ = [this](const std::string& original) {
        ASSERT_EQ(truncate(disk_.at(original).c_str(), 3), 0);
    };
    start();
    EXPECT_THAT(copy("a"), IsEmpty());
    EXPECT_TRUE(batch_->finish().ok());
    EXPECT_THAT(failed(), IsEmpty());
    for (const std::string& name : disk_.names("de/a")) {
        EXPECT_THAT(disk_.read("vers/a/" + name), testing::AnyOf("de/", "de/a/" + name));
    }
}

TEST_F(LentDirectory, NothingIsBegunOnceItIsAbandoned) {
    disk_.write("de/a", "abc");
    WaitingCopy waiting;
    UniqueFd directory(open(disk_.at("vers").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    waiting.target = std::make_shared<CopyTarget>(std::move(directory), dev_t{}, Place());
    waiting.name = "a";
    const std::atomic<bool> abandoned = true;
    std::atomic<std::uint64_t> token = 0;
    OpenOriginal original{UniqueFd(open(disk_.at("de/a").c_str(), O_RDONLY | O_CLOEXEC)), {}};
    EXPECT_EQ(CopyMaker(abandoned, token).copy(original, waiting, nullptr), ECANCELED);
    EXPECT_THAT(disk_.names("vers"), IsEmpty());
}

TEST_F(LentDirectory, OriginalThatCannotBeReadIsToldAtOnce) {
    fill("a");
    chmod(disk_.at("de/a/f117").c_str(), 0);
    chmod(disk_.at("vers").c_str(), 0777);
    {
        const WithoutPrivileges user;
        start();
        EXPECT_THAT(copy("a"), testing::ElementsAre(error_number::accessDenied));
        EXPECT_TRUE(batch_->finish().ok());
    }
    EXPECT_THAT(told_, SizeIs(fileCount - 1));
    EXPECT_THAT(failed(), IsEmpty());
    EXPECT_THAT(disk_.names("vers/a"), SizeIs(fileCount - 1));
}

TEST_F(LentDirectory, AbandonedBatchCommitsWhatIsCopiedAndNothingElse) {
    fill("a", 500);
    start();
    (void)copy("a");
    files().abandonCopies();
    EXPECT_TRUE(batch_->finish().ok());
    EXPECT_THAT(told_, SizeIs(500));
    EXPECT_THAT(disk_.names("vers/a"), SizeIs(500 - failed().size()));
    for (const std::string& name : disk_.names("vers/a")) {
        EXPECT_EQ(disk_.read("vers/a/" + name), "de/a/" + name);
    }
    expectClean();
}

TEST_F(LentDirectory, BatchThatIsGivenUpLeavesNothing) {
    fill("a", 500);
    start();
    EXPECT_THAT(copy("a"), IsEmpty());
    batch_.reset();
    EXPECT_THAT(disk_.names("vers/a"), IsEmpty());
    expectClean();
}

/// A volume of four MiB, in a table of mounts of this process's own.
class SmallVolume : public LentDirectory {
  protected:
    void SetUp() override {
        LentDirectory::SetUp();
        if (IsSkipped()) return;
        const bool mounted =
            unshare(CLONE_NEWNS) == 0 &&
            mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
            mount("tmpfs", disk_.at("vers").c_str(), "tmpfs", 0, "mode=0777,size=4m") == 0;
        if (!mounted) GTEST_SKIP() << "mounting: " << std::strerror(errno);
    }
    ~SmallVolume() override { umount2(disk_.at("vers").c_str(), MNT_DETACH); }
};

TEST_F(SmallVolume, RoomOfWhatIsReplacedIsUsedForWhatComesAfterIt) {
    disk_.makeDirectory("vers/a");
    disk_.write("vers/a/f100", std::string(3 << 20, 'x'));
    fill("a", 1);
    fill("b");
    for (int i = 0; i < fileCount; ++i)
        disk_.write("de/b/" + nameOf(i), std::string(64 << 10, 'y'));
    start();
    EXPECT_THAT(copy("a"), IsEmpty());
    EXPECT_THAT(copy("b"), IsEmpty());
    EXPECT_TRUE(batch_->finish().ok());
    EXPECT_THAT(failed(), IsEmpty());
    expectCopied("a");
    expectCopied("b");
}

TEST_F(SmallVolume, FullOneGetsWhatFitsAndTellsTheRest) {
    fill("a", 100);
    for (int i = 0; i < 100; ++i) disk_.write("de/a/" + nameOf(i), std::string(64 << 10, 'y'));
    start();
    const std::vector<std::uint32_t> refused = copy("a");
    EXPECT_TRUE(batch_->finish().ok());
    EXPECT_EQ(told_.size() + refused.size(), 100U);
    const std::size_t lost = failed().size() + refused.size();
    EXPECT_GT(lost, 0U);
    EXPECT_LT(lost, 100U);
    EXPECT_THAT(disk_.names("vers/a"), SizeIs(100 - lost));
    for (const std::string& name : disk_.names("vers/a")) {
        EXPECT_EQ(disk_.stat("vers/a/" + name).st_size, 64 << 10) << name;
    }
    expectClean();
}

}  // namespace
}  // namespace coffrelune
