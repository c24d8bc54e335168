// Pairs of directories that are only looked at, in the order of a walk.
#include "contract/contract_fixture.h"

namespace coffrelune {
namespace {

class WalkContract : public Contract {
  protected:
    void SetUp() override {
        Contract::SetUp();
        if (IsSkipped()) return;
        for (const char* side : {"Docs", "Copie"}) system().makeDirectory(at(side));
        walk_ = files().startWalk();
    }

    void makeBoth(const std::string& name, int count = 0) {
        for (const std::string side : {"Docs\\", "Copie\\"}) {
            system().makeDirectory(at(side + name));
            for (int i = 0; i < count; ++i) make(side + name + "\\" + file(i), "abc");
        }
    }
    static std::string file(int number) { return "fichier " + std::to_string(number) + ".txt"; }

    OpenedPair open(const std::string& name = {}) {
        const LinkRule links = name.empty() ? LinkRule::follow : LinkRule::refuse;
        return walk_->open({at("Docs\\") + name, links, at("Copie\\") + name, links});
    }
    /// Each file of the original is looked up, then the directories are gathered. How many files
    /// have a copy.
    static int lookAt(OpenedPair& pair) {
        int found = 0;
        FileEntry copy;
        for (FileEntry entry; pair.source->next(entry);) {
            if (entry.isDirectory()) continue;
            found += pair.target->lookUp(entry.name, copy) ? 1 : 0;
        }
        (void)pair.source->takeDirectories();
        EXPECT_TRUE(pair.source->status().ok());
        EXPECT_TRUE(pair.target->status().ok());
        return found;
    }
    /// The root, which those below it are listed in, and what the walk is told comes next.
    void lookAtRoot(const std::vector<std::string>& next) {
        OpenedPair root = open();
        ASSERT_TRUE(root.sourceStatus.ok() && root.targetStatus.ok());
        (void)lookAt(root);
        std::vector<DirectoryPair> pairs;
        pairs.reserve(next.size());
        for (const std::string& name : next) {
            pairs.push_back(
                {at("Docs\\") + name, LinkRule::refuse, at("Copie\\") + name, LinkRule::refuse});
        }
        walk_->announce(pairs);
    }

    std::unique_ptr<WalkAhead> walk_;
};
class LinkWalkContract : public WalkContract {};

INSTANTIATE_TEST_SUITE_P(On, WalkContract, testing::ValuesIn(contractSystems()), contractName);
INSTANTIATE_TEST_SUITE_P(On, LinkWalkContract,
                         testing::ValuesIn(contractSystems(Capability::treeLinks)), contractName);

TEST_P(WalkContract, FindsEveryFileWhateverTheDirectoryHolds) {
    for (const int count : {0, 1, 5, 1100}) {
        makeBoth("d" + std::to_string(count), count);
        makeBoth("d" + std::to_string(count) + "\\sous", count);
    }
    lookAtRoot({"d0\\", "d1\\", "d5\\", "d1100\\"});
    for (const int count : {0, 1, 5, 1100}) {
        for (const char* below : {"\\", "\\sous\\"}) {
            OpenedPair pair = open("d" + std::to_string(count) + below);
            ASSERT_TRUE(pair.sourceStatus.ok() && pair.targetStatus.ok());
            EXPECT_EQ(lookAt(pair), count);
        }
    }
}

TEST_P(WalkContract, TellsWhatTheCopyOfAFileIs) {
    makeBoth("d");
    make("Docs\\d\\a.txt", "abc", newTime);
    make("Docs\\d\\b.txt", "abc", newTime);
    make("Docs\\d\\c", "abc");
    make("Copie\\d\\a.txt", "older", oldTime);
    system().makeDirectory(at("Copie\\d\\c"));
    lookAtRoot({"d\\"});
    OpenedPair pair = open("d\\");
    FileEntry copy;
    ASSERT_TRUE(pair.target->lookUp("a.txt", copy));
    EXPECT_EQ(copy.size, 5U);
    EXPECT_EQ(copy.times.lastWrite, oldTime);
    EXPECT_FALSE(pair.target->lookUp("b.txt", copy));
    ASSERT_TRUE(pair.target->lookUp("c", copy));
    EXPECT_TRUE(copy.isDirectory());
    EXPECT_TRUE(pair.target->status().ok());
}

TEST_P(WalkContract, TellsADirectoryThatTheCopyLacks) {
    system().makeDirectory(at("Docs\\nouveau"));
    make("Docs\\nouveau\\a.txt", "abc");
    lookAtRoot({"nouveau\\"});
    OpenedPair pair = open("nouveau\\");
    EXPECT_TRUE(pair.sourceStatus.ok());
    EXPECT_TRUE(pair.targetStatus.saysAbsent());
    EXPECT_EQ(pair.target, nullptr);
}

// It was listed, and nothing has been announced.
TEST_P(WalkContract, TellsADirectoryThatWentMeanwhile) {
    makeBoth("d");
    lookAtRoot({});
    ASSERT_TRUE(system().rename(at("Copie\\d"), at("Copie\\parti")));
    OpenedPair pair = open("d\\");
    EXPECT_TRUE(pair.sourceStatus.ok());
    EXPECT_TRUE(pair.targetStatus.saysAbsent());
}

TEST_P(WalkContract, TellsAFileInThePlaceOfADirectory) {
    system().makeDirectory(at("Docs\\nom"));
    make("Copie\\nom", "un fichier");
    lookAtRoot({"nom\\"});
    EXPECT_EQ(open("nom\\").targetStatus.code(), error_number::notADirectory);
}

TEST_P(LinkWalkContract, PassesNoLinkInTheCopy) {
    makeBoth("a");
    makeBoth("b");
    for (const char* name : {"Docs\\a\\nom", "Copie\\a\\nom", "Docs\\b\\nom", "Copie\\b\\autre"}) {
        system().makeDirectory(at(name));
    }
    // A directory of the same name elsewhere is none here.
    system().makeLink(at("Copie\\b\\nom"), "autre");
    lookAtRoot({"a\\", "b\\"});
    for (const char* name : {"a\\", "a\\nom\\", "b\\"}) {
        OpenedPair pair = open(name);
        ASSERT_TRUE(pair.sourceStatus.ok() && pair.targetStatus.ok()) << name;
        (void)lookAt(pair);
    }
    OpenedPair pair = open("b\\nom\\");
    EXPECT_TRUE(pair.sourceStatus.ok());
    EXPECT_EQ(pair.targetStatus.code(), error_number::notADirectory);
}

TEST_P(LinkWalkContract, PassesNoLinkOnTheWayBelowAHold) {
    makeBoth("b");
    for (const char* name :
         {"Docs\\b\\nom", "Docs\\b\\nom\\bas", "Copie\\b\\autre", "Copie\\b\\autre\\bas"}) {
        system().makeDirectory(at(name));
    }
    system().makeLink(at("Copie\\b\\nom"), "autre");
    std::unique_ptr<HeldTree> held;
    ASSERT_TRUE(files().hold(at("Copie"), held).ok());
    lookAtRoot({"b\\"});
    for (const char* name : {"b\\", "b\\nom\\"}) (void)open(name);
    EXPECT_EQ(open("b\\nom\\bas\\").targetStatus.code(), error_number::cannotResolveName);
}

}  // namespace
}  // namespace coffrelune
