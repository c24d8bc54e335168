// Pairs of directories that are only looked at: what the system is asked, and what is never passed.
#include <gtest/gtest.h>

#include "platform/win32/intercepted_calls.h"
#include "platform/win32/test_disk.h"
#include "platform/win32/win32_files.h"

namespace coffrelune {
namespace {

class Win32LookWalk : public testing::Test {
  protected:
    Win32LookWalk() {
        for (const std::string& side : {source_, target_}) disk::makeDirectory(side);
    }

    void makeBoth(const std::string& name, int files) {
        for (const std::string& side : {source_, target_}) {
            disk::makeDirectory(side + name);
            for (int i = 0; i < files; ++i) disk::makeFile(side + name + "\\" + file(i), "abc");
        }
    }
    static std::string file(int number) { return "fichier " + std::to_string(number) + ".txt"; }

    OpenedPair open(const std::string& name = {}, LinkRule links = LinkRule::refuse) {
        return walk_->open({source_ + name, links, target_ + name, links});
    }
    /// As a walk looks at a pair: each file of the original, and the directories met. How many
    /// files have a copy.
    static int lookAt(OpenedPair& pair) {
        int found = 0;
        FileEntry copy;
        for (FileEntry entry; pair.source->next(entry);) {
            found += pair.target->lookUp(entry.name, copy) ? 1 : 0;
        }
        (void)pair.source->takeDirectories();
        EXPECT_TRUE(pair.source->status().ok());
        EXPECT_TRUE(pair.target->status().ok());
        return found;
    }
    /// The root, which what lies below it is listed in.
    void lookAtRoot() {
        OpenedPair root = open();
        ASSERT_TRUE(root.sourceStatus.ok() && root.targetStatus.ok());
        (void)lookAt(root);
    }

    disk::Temporary base_;
    std::string source_ = base_.at("Docs\\");
    std::string target_ = base_.at("Copie\\");
    Win32Files files_;
    std::unique_ptr<WalkAhead> walk_ = files_.startWalk();
};

TEST_F(Win32LookWalk, AsksForEachDirectoryOfAPairOnceAndForNoFile) {
    for (const int files : {0, 1, 4, 5, 60}) {
        const std::string name = "d" + std::to_string(files);
        makeBoth(name, files);
        makeBoth(name + "\\sous", files);
    }
    std::unique_ptr<HeldTree> holds[2];
    ASSERT_TRUE(files_.hold(source_, holds[0]).ok());
    ASSERT_TRUE(files_.hold(target_, holds[1]).ok());
    lookAtRoot();
    for (const int files : {0, 1, 4, 5, 60}) {
        for (const char* below : {"\\", "\\sous\\"}) {
            const std::string name = "d" + std::to_string(files) + below;
            const CallCount count;
            OpenedPair pair = open(name, LinkRule::enter);
            ASSERT_TRUE(pair.sourceStatus.ok() && pair.targetStatus.ok()) << name;
            EXPECT_EQ(lookAt(pair), files) << name;
            EXPECT_EQ(count.calls(), 2) << name;
        }
    }
}

// What is opened to be more than looked at, below a hold: each directory, what it is, its listing.
TEST_F(Win32LookWalk, AsksLittleMoreForADirectoryThatIsWrittenInto) {
    makeBoth("d", 3);
    std::unique_ptr<HeldTree> held;
    ASSERT_TRUE(files_.hold(source_, held).ok());
    const auto calls = [&](const std::string& path, LinkRule links, Wanted wanted) {
        const CallCount count;
        std::unique_ptr<Directory> opened;
        EXPECT_TRUE(files_.openDirectory(path, links, wanted, opened).ok());
        return count.calls();
    };
    EXPECT_EQ(calls(source_ + "d\\", LinkRule::enter, Wanted::directories), 3);
    disk::makeDirectory(source_ + "e");
    EXPECT_EQ(calls(source_ + "e\\", LinkRule::enter, Wanted::nothing), 2);
    // One that is open already is asked about by its path: it may have gone.
    EXPECT_EQ(calls(source_ + "e\\", LinkRule::enter, Wanted::nothing), 1);
}

TEST_F(Win32LookWalk, CountsWhatIsAskedForBesides) {
    makeBoth("d", 3);
    lookAtRoot();
    const CallCount count;
    OpenedPair pair = open("d\\");
    EXPECT_EQ(lookAt(pair), 3);
    FileEntry entry;
    EXPECT_FALSE(pair.target->lookUp("absent.txt", entry));
    EXPECT_EQ(count.calls(), 3);
}

TEST_F(Win32LookWalk, PassesNoLinkThatTheListingHasShown) {
    makeBoth("d", 1);
    disk::makeDirectory(base_.at("ailleurs"));
    disk::makeDirectory(source_ + "lien");
    disk::makeDirectory(base_.at("ailleurs\\plus bas"));
    disk::makeDirectory(source_ + "lien\\plus bas");
    if (!disk::makeDirectoryLink(target_ + "lien", "..\\ailleurs")) {
        GTEST_SKIP() << "this user can make no links";
    }
    std::unique_ptr<HeldTree> held;
    ASSERT_TRUE(files_.hold(target_, held).ok());
    lookAtRoot();
    EXPECT_EQ(open("lien\\").targetStatus.code(), error_number::notADirectory);
    // What lies below a refused link is not known from its listing either.
    EXPECT_EQ(open("lien\\plus bas\\").targetStatus.code(), error_number::cannotResolveName);
    EXPECT_TRUE(open("d\\").targetStatus.ok());
}

TEST_F(Win32LookWalk, KnowsWhichDirectoryAnEntryWasListedIn) {
    makeBoth("a", 0);
    makeBoth("b", 0);
    disk::makeDirectory(source_ + "a\\nom");
    disk::makeDirectory(target_ + "a\\nom");
    disk::makeDirectory(base_.at("ailleurs"));
    disk::makeDirectory(source_ + "b\\nom");
    if (!disk::makeDirectoryLink(target_ + "b\\nom", "..\\..\\ailleurs")) {
        GTEST_SKIP() << "this user can make no links";
    }
    lookAtRoot();
    for (const char* name : {"a\\", "a\\nom\\", "b\\"}) {
        OpenedPair pair = open(name);
        ASSERT_TRUE(pair.targetStatus.ok()) << name;
        (void)lookAt(pair);
    }
    EXPECT_EQ(open("b\\nom\\").targetStatus.code(), error_number::notADirectory);
}

TEST_F(Win32LookWalk, LooksUpByNameWhereNothingCanBeListed) {
    makeBoth("d", 6);
    lookAtRoot();
    const RefusedListings refused(L"\\Copie\\d\\*", error_number::accessDenied);
    OpenedPair pair = open("d\\");
    ASSERT_TRUE(pair.targetStatus.ok());
    EXPECT_EQ(lookAt(pair), 6);
}

TEST_F(Win32LookWalk, TellsAnOriginalThatCannotBeListed) {
    makeBoth("d", 6);
    lookAtRoot();
    const RefusedListings refused(L"\\Docs\\d\\*", error_number::accessDenied);
    OpenedPair pair = open("d\\");
    EXPECT_EQ(pair.sourceStatus.code(), error_number::accessDenied);
    EXPECT_TRUE(pair.targetStatus.ok());
}

TEST_F(Win32LookWalk, LooksUpByNameWhatABrokenListingHasNotShown) {
    makeBoth("d", 6);
    lookAtRoot();
    OpenedPair source = open("d\\");
    OpenedPair pair;
    {
        const BrokenListings broken(ERROR_IO_DEVICE);
        pair = open("d\\");
    }
    FileEntry copy;
    for (FileEntry entry; source.source->next(entry);) {
        EXPECT_TRUE(pair.target->lookUp(entry.name, copy)) << entry.name;
    }
    EXPECT_TRUE(pair.target->status().ok());
}

TEST_F(Win32LookWalk, FindsTheFileOfADirectoryLargerThanOneReading) {
    constexpr int many = 2300;
    makeBoth("d", many);
    lookAtRoot();
    const CallCount count;
    OpenedPair pair = open("d\\");
    EXPECT_EQ(lookAt(pair), many);
    EXPECT_EQ(count.calls(), 2);
}

}  // namespace
}  // namespace coffrelune
