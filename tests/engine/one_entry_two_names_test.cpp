// Originals whose copies are one: exactly one of them keeps the copy up to date.
#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

// C:\Docs copied to F:\, which takes names for one without their case.
class OneEntryTwoNames : public Engine, public testing::WithParamInterface<Numbering> {
  protected:
    OneEntryTwoNames() {
        system.options.SynchroCopie = -1;
        system.options.ContinueOnError = -1;
        disk().directory("H:\\Coffrelune");  // for the settings
        disk().volume("F:\\").foldsCase = true;
        disk().volume("F:\\").numbering = GetParam();
    }
    void put(const std::string& name, const std::string& text, int month) {
        disk().file("C:\\Docs\\" + name, text, fileTimeAt(2024, month, 1));
    }
    bool backUp() {
        window.journal.clear();
        startAgain();
        return run("C:\\Docs", "F:\\");
    }
};

std::string nameOf(const testing::TestParamInfo<Numbering>& told) {
    if (told.param == Numbering::kept) return "Kept";
    return told.param == Numbering::byName ? "ByName" : "Anew";
}

INSTANTIATE_TEST_SUITE_P(Volumes, OneEntryTwoNames,
                         testing::Values(Numbering::kept, Numbering::byName, Numbering::anew),
                         nameOf);

TEST_P(OneEntryTwoNames, KeepOneFileUpToDateWhereTheOtherCameLaterAndIsReadFirst) {
    disk().directory("C:\\Docs");
    put("Été", "old", 1);
    EXPECT_TRUE(backUp());
    disk().remove("C:\\Docs\\Été");
    put("ÉTÉ", "new", 2);
    put("Été", "old", 1);
    for (int times = 0; times < 2; ++times) {
        EXPECT_FALSE(backUp());
        EXPECT_THAT(window.journal, ElementsAre("Erreur: 183 - Fichier: C:\\Docs\\Été"));
    }
    put("ÉTÉ", "new, changed", 4);
    put("Été", "old, changed", 3);
    EXPECT_FALSE(backUp());
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 183 - Fichier: C:\\Docs\\Été"));
    EXPECT_EQ(disk().content("F:\\Docs\\Été"), "new, changed");
}

TEST_P(OneEntryTwoNames, KeepOneDirectoryOfThoseThatDifferInTheirCaseAlone) {
    put("Été\\a", "old", 1);
    put("Twin\\x", "x", 1);
    put("Twin too\\x", "x", 1);
    EXPECT_TRUE(backUp());
    disk().remove("C:\\Docs\\Été");
    put("ÉTÉ\\b", "other", 1);
    put("Été\\a", "old", 1);
    (void)backUp();
    put("Été\\a", "changed", 3);
    put("ÉTÉ\\b", "changed", 3);
    EXPECT_FALSE(backUp());
    EXPECT_EQ(statistics.errorCount, 1);
    EXPECT_EQ(disk().content("F:\\Docs\\Été\\a"), "old");
    EXPECT_EQ(disk().content("F:\\Docs\\Été\\b"), "changed");
}

// A damaged entry of the copy.
TEST_P(OneEntryTwoNames, CostNoOtherFileItsCopyWhereOneEntryCannotBeLookedAt) {
    for (const char* name : {"Été", "plan", "damaged", "same"}) put(name, name, 1);
    EXPECT_TRUE(backUp());
    disk().find("F:\\Docs\\damaged")->nameAlone = true;
    put("Été", "changed", 3);
    put("plan", "changed", 3);
    window.journal.clear();
    startAgain();
    faulty.fail("find", "F:\\Docs\\damaged", error_number::ioDevice);
    faulty.fail("lookUp", "F:\\Docs\\damaged", error_number::ioDevice);
    (void)run("C:\\Docs", "F:\\");
    EXPECT_EQ(disk().content("F:\\Docs\\Été"), "changed");
    EXPECT_EQ(disk().content("F:\\Docs\\plan"), "changed");
    EXPECT_THAT(window.journal, Each(HasSubstr("damaged")));
}

}  // namespace
}  // namespace coffrelune
