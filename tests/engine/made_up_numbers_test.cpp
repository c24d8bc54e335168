// Volumes that make up the numbers of their entries, for each name or at each question: what a run
// keeps does not hang on them.
#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

// C:\Docs copied to F:\, which makes up its numbers.
class MadeUpNumbers : public Engine, public testing::WithParamInterface<Numbering> {
  protected:
    MadeUpNumbers() {
        system.options.SynchroCopie = -1;
        system.options.ContinueOnError = -1;
        disk().directory("H:\\Coffrelune");  // for the settings
        disk().volume("F:\\").numbering = GetParam();
        for (const char* name : {"a", "Sous\\b", "Sous\\Plus bas\\c", "Été.txt"}) {
            disk().file(std::string("C:\\Docs\\") + name, name);
        }
    }
    bool backUp() {
        window.journal.clear();
        startAgain();
        return run("C:\\Docs", "F:\\");
    }
    bool kept(const std::string& path) { return disk().exists(path); }
};

INSTANTIATE_TEST_SUITE_P(Volumes, MadeUpNumbers,
                         testing::Values(Numbering::byName, Numbering::anew), [](const auto& told) {
                             return told.param == Numbering::byName ? "ByName" : "Anew";
                         });

TEST_P(MadeUpNumbers, DeleteNoCopyOfAnOriginal) {
    for (int times = 0; times < 3; ++times) {
        EXPECT_TRUE(backUp()) << times;
        EXPECT_EQ(statistics.filesRemoved, 0) << times;
        EXPECT_THAT(window.journal, IsEmpty()) << times;
        EXPECT_EQ(list("C:\\Docs").size(), list("F:\\Docs").size()) << times;
    }
}

TEST_P(MadeUpNumbers, LetWhatHasGoneBeDeletedAndNothingElse) {
    EXPECT_TRUE(backUp());
    disk().remove("C:\\Docs\\Sous\\b");
    disk().file("C:\\Docs\\a", "changed", fileTimeAt(2024, 5, 1));
    EXPECT_TRUE(backUp());
    EXPECT_FALSE(kept("F:\\Docs\\Sous\\b"));
    EXPECT_EQ(statistics.filesRemoved, 1);
    EXPECT_EQ(disk().content("F:\\Docs\\a"), "changed");
    EXPECT_EQ(disk().content("F:\\Docs\\Sous\\Plus bas\\c"), "Sous\\Plus bas\\c");
}

TEST_P(MadeUpNumbers, KeepACopyThatIsListedInAnotherCase) {
    disk().volume("F:\\").foldsCase = true;
    disk().file("F:\\Docs\\ÉTÉ.TXT", "Été.txt");
    disk().file("F:\\Docs\\SOUS\\B", "Sous\\b");
    for (int times = 0; times < 2; ++times) {
        (void)backUp();
        EXPECT_EQ(statistics.filesRemoved, 0) << times;
        EXPECT_EQ(disk().content("F:\\Docs\\Été.txt"), "Été.txt");
        EXPECT_EQ(disk().content("F:\\Docs\\Sous\\b"), "Sous\\b");
    }
}

TEST_P(MadeUpNumbers, KeepTheCopyOfTheFirstOfTwoNamesThatAreOneThere) {
    disk().volume("F:\\").foldsCase = true;
    disk().file("C:\\Docs\\ÉTÉ.TXT", "the second", fileTimeAt(2024, 6, 1));
    for (int times = 0; times < 2; ++times) {
        EXPECT_FALSE(backUp());
        EXPECT_EQ(disk().content("F:\\Docs\\Été.txt"), "Été.txt") << times;
        EXPECT_THAT(window.journal, Contains("Erreur: 183 - Fichier: C:\\Docs\\ÉTÉ.TXT")) << times;
        EXPECT_EQ(statistics.filesRemoved, 0) << times;
    }
}

// The program's own tables hold them apart.
class OtherAlphabet : public MadeUpNumbers {
  protected:
    OtherAlphabet() {
        disk().volume("F:\\").foldsCase = true;
        first("first", 1);
        second("the second", 2);
    }
    void first(const std::string& text, int month) { put("C:\\Docs\\Երևան.txt", text, month); }
    void second(const std::string& text, int month) { put("C:\\Docs\\երևան.txt", text, month); }
    void put(const std::string& path, const std::string& text, int month) {
        disk().file(path, text, fileTimeAt(2024, month, 1));
    }
    std::optional<std::string> copy() { return disk().content("F:\\Docs\\Երևան.txt"); }
    void expectTheSecondIsTold() {
        EXPECT_FALSE(backUp());
        EXPECT_THAT(window.journal, ElementsAre("Erreur: 183 - Fichier: C:\\Docs\\երևան.txt"));
        EXPECT_EQ(statistics.filesRemoved, 0);
    }
};

INSTANTIATE_TEST_SUITE_P(Volumes, OtherAlphabet, testing::Values(Numbering::byName));

TEST_P(OtherAlphabet, LetsTheTwoNotReplaceEachOther) {
    for (int times = 0; times < 3; ++times) {
        expectTheSecondIsTold();
        EXPECT_EQ(copy(), "first") << times;
    }
    second("the second, changed", 3);
    expectTheSecondIsTold();
    EXPECT_EQ(copy(), "first");
    first("first, changed", 4);
    expectTheSecondIsTold();
    EXPECT_EQ(copy(), "first, changed");
}

// The copy pass finds what the analysis could not tell of.
TEST_P(OtherAlphabet, LetsTheTwoNotReplaceEachOtherAfterALookUpThatFailed) {
    expectTheSecondIsTold();
    for (const std::uint32_t code : {error_number::ioDevice, error_number::fileNotFound}) {
        startAgain();
        faulty.fail("find", "F:\\Docs\\երևան.txt", code, 1);
        EXPECT_FALSE(run("C:\\Docs", "F:\\"));
        EXPECT_EQ(faulty.failureCount(), 1) << code;
        EXPECT_EQ(copy(), "first") << code;
        EXPECT_EQ(statistics.errorCount, 1) << code;
    }
}

// Nobody can tell whose copy that is.
TEST_P(OtherAlphabet, LetsNoneBeReplacedWhereTheCopyCannotBeListed) {
    expectTheSecondIsTold();
    first("first, changed", 4);
    for (const char* call : {"openDirectory", "next"}) {
        startAgain();
        faulty.fail(call, "F:\\Docs\\", error_number::ioDevice);
        EXPECT_FALSE(run("C:\\Docs", "F:\\"));
        EXPECT_EQ(copy(), "first") << call;
        EXPECT_GT(statistics.errorCount, 0) << call;
    }
}

TEST_P(OtherAlphabet, LetsTheOtherOneIntoItsPlaceOnceTheFirstHasGone) {
    expectTheSecondIsTold();
    disk().remove("C:\\Docs\\Երևան.txt");
    EXPECT_TRUE(backUp());
    EXPECT_EQ(copy(), "the second");
}

TEST_P(OtherAlphabet, DoubtsNoneThatOnlyLookAlike) {
    disk().remove("C:\\Docs\\երևան.txt");
    put("C:\\Docs\\Ծաղիկ.txt", "first", 1);
    EXPECT_TRUE(backUp());
    // Listed by the volume in a spelling of its own.
    disk().remove("F:\\Docs\\Ծաղիկ.txt");
    put("F:\\Docs\\ծաղիկ.txt", "first", 1);
    put("C:\\Docs\\Ծաղիկ.txt", "other", 5);
    first("again", 5);
    EXPECT_TRUE(backUp());
    EXPECT_EQ(disk().content("F:\\Docs\\ծաղիկ.txt"), "other");
    EXPECT_EQ(copy(), "again");
}

// The first is in the copy by the time that the second is looked for.
TEST_P(MadeUpNumbers, KeepTheCopyOfTheFirstOfTwoThatCameTogether) {
    disk().volume("F:\\").foldsCase = true;
    EXPECT_TRUE(backUp());
    disk().file("C:\\Docs\\Երևան.txt", "first", fileTimeAt(2024, 1, 1));
    disk().file("C:\\Docs\\between", "x");
    disk().file("C:\\Docs\\between too", "x");
    disk().file("C:\\Docs\\երևան.txt", "the second", fileTimeAt(2024, 2, 1));
    for (int times = 0; times < 2; ++times) {
        EXPECT_FALSE(backUp());
        EXPECT_EQ(disk().content("F:\\Docs\\Երևան.txt"), "first") << times;
        EXPECT_THAT(window.journal, ElementsAre("Erreur: 183 - Fichier: C:\\Docs\\երևան.txt"));
    }
}

TEST_P(MadeUpNumbers, TakeTheNewNameOfAnOriginalForNoOther) {
    EXPECT_TRUE(backUp());
    disk().remove("C:\\Docs\\a");
    disk().file("C:\\Docs\\moved", "a");
    disk().file("C:\\Docs\\between", "x");
    disk().file("C:\\Docs\\a", "written anew", fileTimeAt(2024, 2, 1));
    EXPECT_TRUE(backUp());
    EXPECT_THAT(window.journal, IsEmpty());
    EXPECT_EQ(disk().content("F:\\Docs\\moved"), "a");
    EXPECT_EQ(disk().content("F:\\Docs\\a"), "written anew");
}

// Found by look-ups of names that it does not list, whatever their numbers.
TEST_P(MadeUpNumbers, KeepWhatIsListedUnderANameOfItsOwn) {
    disk().volume("F:\\").foldsCase = true;
    disk().file("C:\\Docs\\Երևան.txt", "x");
    disk().file("F:\\Docs\\երևան.txt", "x");
    disk().file("C:\\Docs\\Ծաղիկ\\a", "a");
    disk().file("F:\\Docs\\ծաղիկ\\a", "a");
    (void)backUp();
    EXPECT_TRUE(kept("F:\\Docs\\երևան.txt"));
    EXPECT_TRUE(kept("F:\\Docs\\ծաղիկ\\a"));
    EXPECT_EQ(statistics.filesRemoved, 0);
}

TEST_P(MadeUpNumbers, KeepTheCopyThatAnotherLineHasThere) {
    EXPECT_TRUE(backUp());
    disk().file("C:\\lettre.txt", "letter");
    disk().file("F:\\Docs\\lettre.txt", "letter");
    disk().file("F:\\Docs\\gone", "x");
    startAgain();
    (void)clean(lineRoots("C:\\Docs", "F:\\", Layout::normal),
                {lineRoots("C:\\lettre.txt", "F:\\Docs", Layout::normal)});
    EXPECT_TRUE(kept("F:\\Docs\\lettre.txt"));
    EXPECT_FALSE(kept("F:\\Docs\\gone"));
}

TEST_P(MadeUpNumbers, KeepTheSettings) {
    EXPECT_TRUE(backUp());
    system.homeDirectory = "F:\\Docs\\Programme";
    disk().file("F:\\Docs\\Programme\\Coffrelune.ini", "[Position]");
    disk().file("F:\\Docs\\Autre\\gone", "x");
    EXPECT_TRUE(backUp());
    EXPECT_TRUE(kept("F:\\Docs\\Programme\\Coffrelune.ini"));
    EXPECT_FALSE(kept("F:\\Docs\\Autre\\gone"));
}

TEST_P(MadeUpNumbers, LetNoRunEnterItsOwnCopy) {
    disk().file("F:\\Tout\\a", "a");
    disk().directory("F:\\Tout\\Sauve");
    for (int times = 0; times < 2; ++times) {
        startAgain();
        EXPECT_TRUE(run("F:\\Tout", "F:\\Tout\\Sauve"));
        EXPECT_TRUE(kept("F:\\Tout\\Sauve\\Tout\\a"));
        EXPECT_FALSE(kept("F:\\Tout\\Sauve\\Tout\\Sauve\\Tout")) << times;
    }
}

}  // namespace
}  // namespace coffrelune
