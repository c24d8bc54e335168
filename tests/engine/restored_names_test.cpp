// Originals whose copies a volume lists under the names of others, and what a restore makes of
// them.
#include "engine/restored_names.h"

#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::Contains;
using testing::IsEmpty;

// F: takes the two names for one, lists it as the second, and holds the copy of the first.
class NamesOfCopies : public Engine {
  protected:
    NamesOfCopies() {
        disk().volume("F:\\").foldsCase = true;
        disk().file("C:\\Docs\\Երևան.txt", "first", fileTimeAt(2024, 5, 1));
        disk().file("C:\\Docs\\երևան.txt", "second", fileTimeAt(2024, 6, 1));
        disk().file("C:\\Docs\\plan", "newer", fileTimeAt(2024, 6, 1));
        disk().file("F:\\Docs\\երևան.txt", "first", fileTimeAt(2024, 5, 1));
        disk().file("F:\\Docs\\plan", "plan", fileTimeAt(2024, 5, 1));
        system.options.ContinueOnError = -1;
    }
    bool bringBack() { return restore("C:\\Docs", "F:\\"); }
    bool told(const std::string& words) {
        return std::any_of(window.journal.begin(), window.journal.end(),
                           [&](const auto& line) { return line.find(words) != std::string::npos; });
    }
};

TEST_F(NamesOfCopies, TakeNoOriginalsPlaceThatIsNowhereElse) {
    (void)bringBack();
    EXPECT_EQ(disk().content("C:\\Docs\\երևան.txt"), "second");
    EXPECT_EQ(disk().content("C:\\Docs\\Երևան.txt"), "first");
    EXPECT_EQ(disk().content("C:\\Docs\\plan"), "plan") << "its own";
    EXPECT_THAT(window.journal, Contains("Erreur: 183 - Fichier: C:\\Docs\\երևան.txt"));
    EXPECT_TRUE(
        told("C:\\Docs\\երևան.txt est conservé : ce que la copie montre sous ce nom est "
             "peut-être celle de C:\\Docs\\Երևան.txt"));
    EXPECT_EQ(statistics.errorCount, 1);
    EXPECT_EQ(window.journal.size(), 2U) << "told once";
}

class LooksOfCopies : public NamesOfCopies, public testing::WithParamInterface<Numbering> {};

INSTANTIATE_TEST_SUITE_P(MadeUpNumbers, LooksOfCopies,
                         testing::Values(Numbering::byName, Numbering::anew), [](const auto& told) {
                             return told.param == Numbering::byName ? "ByName" : "Anew";
                         });

TEST_P(LooksOfCopies, CountWhereNumbersSayNothing) {
    disk().volume("F:\\").numbering = GetParam();
    (void)bringBack();
    EXPECT_EQ(disk().content("C:\\Docs\\երևան.txt"), "second");
    EXPECT_EQ(disk().content("C:\\Docs\\plan"), "plan") << "its own";
}

TEST_F(NamesOfCopies, AreDoubtedOfDirectoriesAsWell) {
    disk().file("C:\\Docs\\Ծաղիկ\\Sous\\a", "of the first", fileTimeAt(2024, 5, 1));
    disk().file("C:\\Docs\\ծաղիկ\\Sous\\a", "of the second", fileTimeAt(2024, 6, 1));
    disk().file("F:\\Docs\\ծաղիկ\\Sous\\a", "of the first", fileTimeAt(2024, 5, 1));
    disk().file("F:\\Docs\\ծաղիկ\\Sous\\b", "b");
    (void)bringBack();
    EXPECT_EQ(disk().content("C:\\Docs\\ծաղիկ\\Sous\\a"), "of the second");
    EXPECT_EQ(disk().content("C:\\Docs\\ծաղիկ\\Sous\\b"), "b") << "in nobody's place";
    EXPECT_TRUE(told("celle de C:\\Docs\\Ծաղիկ"));
}

TEST_F(NamesOfCopies, AreTrustedWhereTheOriginalsAreOneAsWell) {
    disk().remove("C:\\Docs");
    disk().volume("D:\\").foldsCase = true;
    disk().file("D:\\Docs\\Երևան.txt", "newer", fileTimeAt(2024, 6, 1));
    EXPECT_TRUE(restore("D:\\Docs", "F:\\"));
    EXPECT_EQ(disk().content("D:\\Docs\\Երևան.txt"), "first");
    EXPECT_THAT(window.journal, IsEmpty());
}

TEST_F(NamesOfCopies, AreTrustedOnAVolumeThatTellsThemApart) {
    disk().file("G:\\Docs\\երևան.txt", "of its own", fileTimeAt(2024, 5, 1));
    EXPECT_TRUE(restore("C:\\Docs", "G:\\"));
    EXPECT_EQ(disk().content("C:\\Docs\\երևան.txt"), "of its own");
    EXPECT_THAT(window.journal, IsEmpty());
}

TEST_F(NamesOfCopies, AreDoubtedWhenTheyCannotBeLookedUpOrListed) {
    disk().remove("F:\\Docs\\երևան.txt");
    disk().file("C:\\Docs\\later", "in no copy");
    faulty.fail("lookUp", "F:\\Docs\\later", error_number::ioDevice);
    (void)bringBack();
    EXPECT_EQ(disk().content("C:\\Docs\\plan"), "newer");
    EXPECT_THAT(window.journal, Contains("Erreur: 1117 - Fichier: F:\\Docs\\plan"));
}

TEST_F(NamesOfCopies, AreTrustedBesideNamesThatTheVolumeCannotHold) {
    disk().remove("F:\\Docs\\երևան.txt");
    for (const std::uint32_t refusal : {error_number::invalidName, error_number::nameTooLong}) {
        disk().file("C:\\Docs\\odd", "in no copy");
        disk().file("C:\\Docs\\plan", "newer", fileTimeAt(2024, 6, 1));
        faulty.fail("lookUp", "F:\\Docs\\odd", refusal);
        EXPECT_TRUE(bringBack());
        EXPECT_EQ(disk().content("C:\\Docs\\plan"), "plan");
    }
}

}  // namespace
}  // namespace coffrelune
