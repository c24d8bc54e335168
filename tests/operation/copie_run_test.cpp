// The passes of a backup, in their order.
#include "operation/operation_fixture.h"

namespace coffrelune {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

using CopieRun = OperationTest;

TEST_F(CopieRun, CopiesEverySelectedLineAndCloses) {
    runCopie();
    EXPECT_FALSE(copie->open());
    EXPECT_FALSE(copie->finished());
    EXPECT_THAT(copies(), ElementsAre(R"(C:\Docs\a.txt F:\Save\Docs\a.txt)",
                                      R"(C:\Docs\Sub\b.txt F:\Save\Docs\Sub\b.txt)",
                                      R"(D:\Photos\c.jpg G:\Save\Photos\c.jpg)"));
    EXPECT_EQ(disk().content(R"(G:\Save\Photos\c.jpg)"), "cccccccc");
    EXPECT_TRUE(statistics.copyPassStarted);
}

TEST_F(CopieRun, RunsAtTheFirstActivationOnly) {
    whenEventsRun([](Copie& window) { return window.Lbl[1].caption() == "Analyse de la copie..."; },
                  [](Copie& window) { window.activated(); });
    runCopie();
    copie->activated();
    EXPECT_EQ(copies().size(), 3U);
    EXPECT_EQ(journal().size(), 1U);
}

TEST_F(CopieRun, DoesNotRunBeforeItIsActivated) {
    makeCopie();
    EXPECT_THAT(faults.calls(), IsEmpty());
}

TEST_F(CopieRun, NamesEachPassAndThenTheDirectories) {
    runCopie();
    EXPECT_THAT(windows.changesOf("Lbl1"),
                ElementsAre("Copie de l'arborescence...", "Analyse de la copie...",
                            R"(De: C:\Docs\)", R"(De: C:\Docs\Sub\)", R"(De: D:\Photos\)"));
}

TEST_F(CopieRun, DetailsEachPassUnderItsName) {
    selectOnly({0});
    runCopie();
    EXPECT_THAT(
        windows.changesOf("Lbl3"),
        ElementsAre("Aucun répertoire créé", "1 répertoire(s) lu(s), 1 répertoire(s) créé(s)",
                    "2 répertoire(s) lu(s), 2 répertoire(s) créé(s)",
                    "Analyse de :", R"(Vers: F:\Save\Docs\)", R"(Vers: F:\Save\Docs\Sub\)"));
}

TEST_F(CopieRun, CountsThePercentageAndSaysThatTheRemainingTimeIsNotKnownUntilTheEnd) {
    selectOnly({0});
    runCopie();
    EXPECT_THAT(windows.changesOf("Lbl0"),
                ElementsAre("0% copiés (0 octet de 8 octets)", "62% copiés (5 octets de 8 octets)",
                            "100% copiés (8 octets de 8 octets)"));
    EXPECT_THAT(windows.changesOf("Lbl2"), ElementsAre("Temps restant: Calcul en cours ...", ""));
}

TEST_F(CopieRun, TheBarIsIndeterminateUntilTheCopyBegins) {
    selectOnly({0});
    runCopie();
    EXPECT_THAT(windows.changesOf("ProgBar"), ElementsAre("marquee", "0", "62", "100"));
    EXPECT_THAT(windows.changes(),
                AllOf(Contains("Lbl1: Analyse de la copie..."), Contains("ProgBar: 0")));
    const auto at = [&](const char* change) {
        return std::find(windows.changes().begin(), windows.changes().end(), change);
    };
    EXPECT_LT(at("ProgBar: marquee"), at("Lbl1: Copie de l'arborescence..."));
    EXPECT_LT(at("Lbl1: Analyse de la copie..."), at("ProgBar: 0"));
}

TEST_F(CopieRun, TheFollowBoxIsThereDuringTheAnalysisOnly) {
    runCopie();
    EXPECT_THAT(windows.changesOf("AnalyseChk"), ElementsAre("visible", "hidden"));
    const auto at = [&](const char* change) {
        return std::find(windows.changes().begin(), windows.changes().end(), change);
    };
    EXPECT_LT(at("Lbl3: 3 répertoire(s) lu(s), 3 répertoire(s) créé(s)"),
              at("AnalyseChk: visible"));
    EXPECT_LT(at("AnalyseChk: visible"), at("AnalyseChk: hidden"));
    EXPECT_LT(at("AnalyseChk: hidden"), at(R"(Lbl1: De: C:\Docs\)"));
}

TEST_F(CopieRun, NamesTheFilesThatAreCopiedAndThoseOfTheAnalysisWhenAsked) {
    placeOldCopy();
    system.Confirmation = 1;
    runCopie();
    EXPECT_THAT(windows.changesOf("Lbl4"),
                ElementsAre("Fichier: a.txt", "Fichier: b.txt", "Fichier: c.jpg"));
    disk().file(R"(C:\Docs\a.txt)", "newer", fileTimeAt(2024, 3, 2));
    system.SuiviAnalyse = -1;
    runCopie();
    EXPECT_THAT(
        windows.changesOf("Lbl4"),
        ElementsAre("Fichier: a.txt", "Fichier: b.txt", "Fichier: c.jpg", R"(C:\Docs\a.txt)",
                    R"(C:\Docs\Sub\b.txt)", R"(D:\Photos\c.jpg)", "", "Fichier: a.txt"));
}

TEST_F(CopieRun, MarksEachLineWhenItIsDone) {
    runCopie();
    EXPECT_THAT(eventsThat("done "), ElementsAre("done 0", "done 1"));
}

TEST_F(CopieRun, LinesThatAreNotSelectedAreLeftAlone) {
    selectOnly({1});
    runCopie();
    EXPECT_THAT(eventsThat("done "), ElementsAre("done 1"));
    EXPECT_THAT(filesBelow(R"(F:\)"), ElementsAre(R"(F:\Save)"));
}

TEST_F(CopieRun, EachLineFollowsItsOwnExclusionsInEveryPass) {
    disk().file(R"(D:\Photos\Ete\d.jpg)", "dd");
    ASSERT_TRUE(system.WriteSetting("Travail", "RepExclu0_Mode", "1").ok());
    runCopie();
    EXPECT_THAT(filesBelow(R"(F:\Save)"), ElementsAre(R"(F:\Save\Docs)", R"(F:\Save\Docs\a.txt)"));
    EXPECT_EQ(disk().content(R"(G:\Save\Photos\Ete\d.jpg)"), "dd");
    EXPECT_EQ(statistics.totalBytes, 15);
}

TEST_F(CopieRun, TheEstimateStartsWithTheCopyAndNotWithTheAnalysis) {
    whenEventsRun([](Copie& window) { return window.Lbl[1].caption() == "Analyse de la copie..."; },
                  [this](Copie&) { clock().advanceSeconds(20); });
    runCopie();
    EXPECT_EQ(statistics.baselineTime, 10 * 3600 + 20);
}

// ---- nothing to do ------------------------------------------------------------------------------

TEST_F(CopieRun, WithNoSelectedLineTheEngineIsNotCalled) {
    selectOnly({});
    runCopie();
    EXPECT_FALSE(copie->open());
    EXPECT_THAT(memory.files().calls("openDirectory"), IsEmpty());
    EXPECT_FALSE(statistics.copyPassStarted);
}

TEST_F(CopieRun, LinesWithoutSourceOrDestinationTakeNoPart) {
    system.lines[0].source.clear();
    system.lines[1].destination.clear();
    runCopie();
    EXPECT_FALSE(copie->open());
    EXPECT_THAT(memory.files().calls("openDirectory"), IsEmpty());
    EXPECT_THAT(copies(), IsEmpty());
    EXPECT_FALSE(statistics.copyPassStarted);
}

TEST_F(CopieRun, EmptyFilesAloneAreNotCopied) {
    disk().file(R"(C:\Vides\z.txt)", "");
    system.lines[0].source = R"(C:\Vides)";
    selectOnly({0});
    runCopie();
    EXPECT_THAT(copies(), IsEmpty());
    EXPECT_FALSE(statistics.copyPassStarted);
    EXPECT_TRUE(disk().exists(R"(F:\Save\Vides)"));
}

TEST_F(CopieRun, EmptyFilesAreCopiedBesideOthers) {
    disk().file(R"(C:\Docs\z.txt)", "");
    selectOnly({0});
    runCopie();
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\z.txt)"), "");
}

TEST_F(CopieRun, ASecondRunFindsNothingToCopy) {
    runCopie();
    runCopie();
    EXPECT_EQ(copies().size(), 3U);
    EXPECT_FALSE(statistics.copyPassStarted);
    EXPECT_EQ(statistics.totalBytes, 0);
}

// ---- the tree alone -----------------------------------------------------------------------------

class TreeOnlyRun : public OperationTest {
  protected:
    TreeOnlyRun() { system.options.ArbreMode = -1; }
};

TEST_F(TreeOnlyRun, MakesTheDirectoriesAndCopiesNothing) {
    runCopie();
    EXPECT_THAT(filesBelow(R"(F:\Save)"), ElementsAre(R"(F:\Save\Docs)", R"(F:\Save\Docs\Sub)"));
    EXPECT_THAT(filesBelow(R"(G:\Save)"), ElementsAre(R"(G:\Save\Photos)"));
    EXPECT_THAT(copies(), IsEmpty());
    EXPECT_FALSE(statistics.copyPassStarted);
    EXPECT_FALSE(copie->open());
}

TEST_F(TreeOnlyRun, ShowsTheTextsOfTheTreeAndNoAnalysis) {
    selectOnly({0});
    runCopie();
    EXPECT_THAT(windows.changesOf("Lbl1"), ElementsAre("Copie de l'arborescence..."));
    EXPECT_THAT(
        windows.changesOf("Lbl3"),
        ElementsAre("Aucun répertoire créé", "1 répertoire(s) lu(s), 1 répertoire(s) créé(s)",
                    "2 répertoire(s) lu(s), 2 répertoire(s) créé(s)"));
    EXPECT_THAT(windows.changesOf("ProgBar"), ElementsAre("marquee"));
    EXPECT_THAT(windows.changesOf("AnalyseChk"), IsEmpty());
    EXPECT_THAT(windows.changesOf("Lbl2"), IsEmpty());
}

TEST_F(TreeOnlyRun, LeavesTheOptionOn) {
    runCopie();
    EXPECT_EQ(system.options.ArbreMode, -1);
}

TEST_F(TreeOnlyRun, CreatesNothingTheSecondTime) {
    runCopie();
    runCopie();
    EXPECT_EQ(copie->Lbl[3].caption(), "3 répertoire(s) lu(s), 0 répertoire(s) créé(s)");
    EXPECT_EQ(statistics.directoriesRead, 3);
    EXPECT_EQ(statistics.directoriesCreated, 0);
}

}  // namespace
}  // namespace coffrelune
