#include "platform/posix/staged_directory.h"

#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/xattr.h>

#include <cerrno>

#include "platform/at_first_chunk.h"
#include "platform/names.h"
#include "platform/posix/native_path.h"
#include "platform/posix/own_files.h"
#include "platform/posix/posix_platform.h"
#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int fileCount = 40;

/// Copies "de" with its many files into the empty "arbre/vers", below a hold of "arbre".
class StagedCopy : public testing::Test, private CopyEvents {
  protected:
    void SetUp() override {
        disk_.makeDirectory("de");
        disk_.makeDirectory("arbre");
        ASSERT_TRUE(files().createDirectory("D:\\arbre\\vers", DirectoryAccess::usual).ok());
        for (int i = 0; i < fileCount; ++i) disk_.write("de/" + nameOf(i), nameOf(i));
        const UniqueFd fd(::open(disk_.at().c_str(), O_RDONLY | O_DIRECTORY));
        if (!replacesDirectories(fd.get())) GTEST_SKIP() << "volume without such directories";
    }

    static std::string nameOf(int i) { return "f" + std::to_string(10 + i); }
    static std::vector<std::string> allNames() {
        std::vector<std::string> names(fileCount);
        for (int i = 0; i < fileCount; ++i) names[static_cast<std::size_t>(i)] = nameOf(i);
        return names;
    }

    FileService& files() { return platform_->files(); }

    /// What stands beside the target under names of our own.
    std::vector<std::string> unfinished() const {
        std::vector<std::string> found = disk_.names("arbre");
        std::erase_if(found, [](const std::string& name) { return !isTemporaryName(name); });
        return found;
    }

    /// Adds every file; `during` happens while the first is copied.
    void addAll(CopyBatch& batch, std::function<void()> during = {}) {
        std::unique_ptr<Directory> source;
        std::unique_ptr<Directory> target;
        const auto open = [&](const char* path, Wanted wanted, std::unique_ptr<Directory>& into) {
            ASSERT_TRUE(files().openDirectory(path, LinkRule::refuse, wanted, into).ok());
        };
        open("D:\\de", Wanted::files, source);
        open("D:\\arbre\\vers", Wanted::nothing, target);
        AtFirstChunk observer(std::move(during));
        for (FileEntry file; source->next(file);) {
            FileEntry existing;
            EXPECT_FALSE(target->lookUp(file.name, existing)) << file.name;
            const std::string from = "D:\\de\\" + file.name;
            const std::string to = "D:\\arbre\\vers\\" + file.name;
            CopyRequest request{*source, *target, file, from, to};
            request.isNew = true;
            request.observer = &observer;
            std::uint64_t ticket = 0;
            EXPECT_TRUE(batch.add(request, ticket).ok()) << file.name;
        }
    }

    void copyAll(std::function<void()> during = {}) {
        const auto batch = start();
        addAll(*batch, std::move(during));
        EXPECT_TRUE(batch->finish().ok());
    }

    std::unique_ptr<CopyBatch> start() {
        EXPECT_TRUE(files().hold("D:\\arbre", held_).ok());
        return files().startBatch("D:\\arbre", AfterFailure::goOn, *this);
    }

    void committed(std::uint64_t, const Status& status) override {
        codes_.push_back(status.code());
    }
    void waiting() override {}

    TemporaryDirectory disk_;
    PosixPlatform own_{std::vector<PathRoot>{PathRoot::drive('D', disk_.at())}};
    PosixPlatform* platform_ = &own_;
    std::unique_ptr<HeldTree> held_;
    std::vector<std::uint32_t> codes_;
};

TEST_F(StagedCopy, FilesAreMadeBesideAnEmptyDirectoryAndAppearTogether) {
    std::vector<std::string> beside;
    std::vector<std::string> inPlace = {"?"};
    copyAll([&] {
        beside = unfinished();
        inPlace = disk_.names("arbre/vers");
    });
    EXPECT_EQ(beside.size(), 1U);
    EXPECT_THAT(inPlace, IsEmpty());
    EXPECT_THAT(unfinished(), IsEmpty());
    EXPECT_EQ(disk_.names("arbre/vers"), allNames());
    for (const std::string& name : allNames()) EXPECT_EQ(disk_.read("arbre/vers/" + name), name);
    EXPECT_THAT(codes_, testing::AllOf(testing::SizeIs(fileCount), testing::Each(0U)));
}

TEST_F(StagedCopy, WhatSomebodyPutsIntoTheEmptyDirectoryMeanwhileStays) {
    copyAll([&] {
        disk_.write("arbre/vers/theirs", "theirs");
        disk_.write("arbre/vers/f12", "theirs");
    });
    std::vector<std::string> expected = allNames();
    expected.emplace_back("theirs");
    EXPECT_EQ(disk_.names("arbre/vers"), expected);
    EXPECT_EQ(disk_.read("arbre/vers/f12"), "theirs");
    EXPECT_EQ(disk_.read("arbre/vers/f13"), "f13");
    EXPECT_EQ(std::count(codes_.begin(), codes_.end(), error_number::alreadyExists), 1);
    EXPECT_EQ(std::count(codes_.begin(), codes_.end(), 0U), fileCount - 1);
    EXPECT_THAT(unfinished(), IsEmpty());
}

TEST_F(StagedCopy, EmptyDirectoryThatBecomesALinkIsNotReplaced) {
    disk_.makeDirectory("ailleurs");
    copyAll([&] {
        std::filesystem::rename(disk_.at("arbre/vers"), disk_.at("arbre/autre"));
        ASSERT_EQ(symlink(disk_.at("ailleurs").c_str(), disk_.at("arbre/vers").c_str()), 0);
    });
    EXPECT_TRUE(S_ISLNK(disk_.stat("arbre/vers").st_mode));
    EXPECT_THAT(disk_.names("ailleurs"), IsEmpty());
    EXPECT_EQ(disk_.names("arbre/autre"), allNames());  // the directory that was opened
    EXPECT_THAT(unfinished(), IsEmpty());
}

TEST_F(StagedCopy, BatchThatIsGivenUpLeavesNothing) {
    {
        const auto batch = start();
        addAll(*batch);
        EXPECT_EQ(unfinished().size(), 1U);
    }
    EXPECT_THAT(unfinished(), IsEmpty());
    EXPECT_THAT(disk_.names("arbre/vers"), IsEmpty());
}

TEST_F(StagedCopy, ClearingLeftoversTakesNoneOfWhatWaits) {
    PosixPlatform other{std::vector<PathRoot>{PathRoot::drive('D', disk_.at())}};
    copyAll([&] {
        EXPECT_TRUE(other.files().removeLeftovers("D:\\arbre").ok());
        EXPECT_TRUE(files().removeLeftovers("D:\\arbre").ok());
        EXPECT_EQ(unfinished().size(), 1U);
    });
    EXPECT_EQ(disk_.names("arbre/vers"), allNames());
}

TEST_F(StagedCopy, DirectoryIsTheOneThatWasThereForAllThatShows) {
    const std::string target = disk_.at("arbre/vers");
    ASSERT_EQ(chmod(target.c_str(), 02751), 0);
    const struct stat before = disk_.stat("arbre/vers");
    copyAll();
    const struct stat after = disk_.stat("arbre/vers");
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_EQ(after.st_gid, before.st_gid);
    EXPECT_EQ(disk_.names("arbre/vers"), allNames());
}

TEST_F(StagedCopy, DirectoryWithAttributesOfItsOwnIsFilledInItsPlace) {
    const std::string target = disk_.at("arbre/vers");
    if (setxattr(target.c_str(), "user.note", "x", 1, 0) != 0) GTEST_SKIP() << "no attributes";
    std::vector<std::string> beside = {"?"};
    copyAll([&] { beside = unfinished(); });
    EXPECT_THAT(beside, IsEmpty());
    EXPECT_EQ(getxattr(target.c_str(), "user.note", nullptr, 0), 1);
    EXPECT_EQ(disk_.names("arbre/vers"), allNames());
}

TEST_F(StagedCopy, DirectoryThatWasThereBeforeIsFilledInItsPlace) {
    ASSERT_EQ(rmdir(disk_.at("arbre/vers").c_str()), 0);
    disk_.makeDirectory("arbre/autre");  // so that no number is used again
    disk_.makeDirectory("arbre/vers");
    const ino_t before = disk_.stat("arbre/vers").st_ino;
    PosixPlatform later{std::vector<PathRoot>{PathRoot::drive('D', disk_.at())}};
    platform_ = &later;
    std::vector<std::string> beside = {"?"};
    copyAll([&] { beside = unfinished(); });
    EXPECT_THAT(beside, IsEmpty());
    EXPECT_EQ(disk_.stat("arbre/vers").st_ino, before);
    EXPECT_EQ(disk_.names("arbre/vers"), allNames());
    held_.reset();
}

TEST_F(StagedCopy, RightsThatItGetsMeanwhileStay) {
    copyAll([&] { ASSERT_EQ(chmod(disk_.at("arbre/vers").c_str(), 0700), 0); });
    EXPECT_EQ(disk_.stat("arbre/vers").st_mode & 07777, 0700U);
    EXPECT_EQ(disk_.names("arbre/vers"), allNames());
    EXPECT_THAT(unfinished(), IsEmpty());
}

TEST_F(StagedCopy, WhatCannotBeTakenAwayNeverGetsItsPlaceWithTheOthers) {
    const auto hold = std::make_shared<Hold>();
    hold->native = disk_.at("arbre");
    hold->device = disk_.stat("arbre").st_dev;
    hold->replacesDirectories = true;
    Place place;
    place.native = disk_.at("arbre/vers");
    place.hold = hold;
    UniqueFd fd(::open(place.native.c_str(), O_RDONLY | O_DIRECTORY));
    CopyTarget target(std::move(fd), hold->device, place);
    NewDirectories ours;
    ours.add(disk_.stat("arbre/vers"));
    target.stage(ours, 1);
    ASSERT_TRUE(target.givesNames());
    ASSERT_EQ(mkdirat(target.directory(), "half", 0700), 0);  // no unlink removes it
    target.discard("half");
    EXPECT_FALSE(target.takePlace());
    EXPECT_THAT(disk_.names("arbre/vers"), IsEmpty());
    ASSERT_EQ(unlinkat(target.directory(), "half", AT_REMOVEDIR), 0);
}

TEST_F(StagedCopy, FewFilesAreCopiedInTheirPlace) {
    for (int i = 8; i < fileCount; ++i) unlink(disk_.at("de/" + nameOf(i)).c_str());
    std::vector<std::string> beside = {"?"};
    copyAll([&] { beside = unfinished(); });
    EXPECT_THAT(beside, IsEmpty());
    EXPECT_EQ(disk_.names("arbre/vers").size(), 8U);
}

TEST_F(StagedCopy, RootOfTheTreeStaysTheDirectoryThatIsHeld) {
    const ino_t before = disk_.stat("arbre").st_ino;
    ASSERT_EQ(rmdir(disk_.at("arbre/vers").c_str()), 0);
    EXPECT_TRUE(files().hold("D:\\arbre", held_).ok());
    Place place;
    place.core = "D:\\arbre";
    place.native = disk_.at("arbre");
    const auto hold = std::make_shared<Hold>();
    hold->native = place.native;
    hold->device = disk_.stat("arbre").st_dev;
    hold->replacesDirectories = true;
    place.hold = hold;
    const UniqueFd fd(::open(place.native.c_str(), O_RDONLY | O_DIRECTORY));
    NewDirectories ours;
    ours.add(disk_.stat("arbre"));
    EXPECT_EQ(StagedDirectory::beside(fd.get(), place, ours, 1), nullptr);
    EXPECT_EQ(disk_.stat("arbre").st_ino, before);
    EXPECT_THAT(disk_.names("arbre"), IsEmpty());
}

TEST(StagedLeftover, GoesWithItsFilesUnlessSomebodyFillsItOrItHasDirectories) {
    const TemporaryDirectory disk;
    const UniqueFd parent(::open(disk.at().c_str(), O_RDONLY | O_DIRECTORY));
    disk.makeDirectory("reste");
    disk.write("reste/a", "half");
    ASSERT_EQ(symlink("x", disk.at("reste/lien").c_str()), 0);
    {
        const UniqueFd busy(::open(disk.at("reste").c_str(), O_RDONLY | O_DIRECTORY));
        ASSERT_EQ(flock(busy.get(), LOCK_EX), 0);
        EXPECT_EQ(removeStaged(parent.get(), "reste"), 0);
        EXPECT_THAT(disk.names("reste"), ElementsAre("a", "lien"));
    }
    disk.makeDirectory("reste/sous");
    EXPECT_EQ(removeStaged(parent.get(), "reste"), 0);
    EXPECT_THAT(disk.names("reste"), ElementsAre("a", "lien", "sous"));
    rmdir(disk.at("reste/sous").c_str());
    EXPECT_EQ(removeStaged(parent.get(), "reste"), 0);
    EXPECT_THAT(disk.names(), IsEmpty());
    EXPECT_EQ(removeStaged(parent.get(), "reste"), 0);
}

}  // namespace
}  // namespace coffrelune
