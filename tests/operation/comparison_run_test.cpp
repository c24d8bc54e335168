// A comparison: its list, its summary, and how it ends.
#include "operation/operation_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Comparison : public OperationTest {
  protected:
    Comparison() { system.operationKind = OperationKind::comparison; }

    RunEnd compare() {
        if (!launcher) launcher = std::make_unique<OperationLauncher>(system, host, stage);
        return launcher->launchComparison();
    }
    Events list() {
        Events lines;
        for (std::size_t i = 0; i < host.comparisonList().lineCount(); ++i) {
            lines.emplace_back(host.comparisonList().line(i));
        }
        return lines;
    }
    const std::string& summary() { return host.comparisonSummary().caption(); }
};

TEST_F(Comparison, ListsEachLineUnderItsNumberAndCopiesNothing) {
    compare();
    EXPECT_THAT(list(),
                ElementsAre("***** Sauvegarde n°1", R"(F:\Save\Docs\a.txt n'existe pas)",
                            R"(F:\Save\Docs\Sub\b.txt n'existe pas)", "***** Sauvegarde n°2",
                            R"(G:\Save\Photos\c.jpg n'existe pas)", "***** Fin de la comparaison"));
    EXPECT_EQ(summary(), "3 fichier(s) à copier soit 16 octets (16 octets)");
    EXPECT_FALSE(disk().exists(R"(F:\Save\Docs)"));
}

TEST_F(Comparison, HeadingsBearTheLinesOwnNumbers) {
    selectOnly({1});
    compare();
    EXPECT_EQ(list().front(), "***** Sauvegarde n°2");
}

TEST_F(Comparison, WithoutALineSaysThatThereIsNothing) {
    selectOnly({});
    compare();
    EXPECT_THAT(list(), ElementsAre("***** Fin de la comparaison"));
    EXPECT_EQ(summary(), "Aucun fichier à sauvegarder");
    system.comparisonReversed = true;
    compare();
    EXPECT_EQ(summary(), "Aucun fichier à restaurer");
}

TEST_F(Comparison, EmptyFilesAloneAreListedButAreNothingToCopy) {
    selectOnly({0});
    disk().remove(R"(C:\Docs\Sub)");
    disk().file(R"(C:\Docs\a.txt)", "");
    compare();
    EXPECT_THAT(list(), testing::Contains(R"(F:\Save\Docs\a.txt n'existe pas)"));
    EXPECT_EQ(summary(), "Aucun fichier à sauvegarder");
    EXPECT_EQ(system.errorCount, 1);
}

TEST_F(Comparison, FromDestinationToSourceListsWhatARestoreWouldCopy) {
    selectOnly({0});
    disk().file(R"(F:\Save\Docs\a.txt)", "changed", fileTimeAt(2024, 4, 1));
    disk().file(R"(F:\Save\Docs\gone.txt)", "12");
    system.comparisonReversed = true;
    compare();
    EXPECT_THAT(list(),
                ElementsAre("***** Restauration n°1", R"(C:\Docs\a.txt est plus ancien)",
                            R"(C:\Docs\gone.txt n'existe pas)", "***** Fin de la comparaison"));
    EXPECT_EQ(summary(), "2 fichier(s) à copier soit 9 octets (9 octets)");
}

TEST_F(Comparison, TotalIsInGroupsOfThreeDigits) {
    selectOnly({0});
    disk().file(R"(C:\Docs\big.bin)", std::string(1'234'567, 'x'));
    compare();
    EXPECT_THAT(summary(), HasSubstr("(1 234 575 octets)"));
}

TEST_F(Comparison, AlwaysClosesAndRecordsTheCopiesFound) {
    compare();
    EXPECT_THAT(user().messages(), IsEmpty());
    EXPECT_EQ(setting("Travail", "LastCompNbErr"), "3");
    EXPECT_NE(setting("Travail", "LastCompErr"), "");
    EXPECT_EQ(setting("Travail", "LastComp"), "");
    EXPECT_THAT(errorList("C_Travail.err"),
                HasSubstr("***** Fin de la comparaison\r\n3 fichier(s)"));
    EXPECT_THAT(errorList("C_Travail.err"), HasSubstr("Comparaison ... : 00:00:"));
}

TEST_F(Comparison, ThatFindsNothingIsRecordedAsClean) {
    selectOnly({});
    compare();
    EXPECT_NE(setting("Travail", "LastComp"), "");
    EXPECT_EQ(setting("Travail", "LastCompErr"), "");
}

TEST_F(Comparison, ThatCouldNotReadEverythingIsNotRecordedAsClean) {
    selectOnly({1});
    disk().file(R"(G:\Save\Photos\c.jpg)", "cccccccc", fileTimeAt(2024, 3, 1));
    disk().file(R"(D:\Photos\Secret\s.jpg)", "s");
    disk().setUnreadable(R"(D:\Photos\Secret)");
    compare();
    EXPECT_EQ(setting("Travail", "LastComp"), "");
    EXPECT_EQ(setting("Travail", "LastCompNbErr"), "0");
    EXPECT_NE(setting("Travail", "LastCompErr"), "");
}

TEST_F(Comparison, InterruptedKeepsTheErrorCountAndTheDurationOfTheRunBefore) {
    compare();
    ASSERT_EQ(system.errorCount, 3);
    system.duration = "00:09:59";
    whenEventsRun([](Copie& window) { return !window.Lbl[3].caption().empty(); },
                  [](Copie& window) { window.requestInterruption(); });
    EXPECT_EQ(compare(), RunEnd::interrupted);
    EXPECT_EQ(list().back(), "***** Comparaison interrompue");
    EXPECT_EQ(system.errorCount, 3);
    EXPECT_EQ(system.duration, "00:09:59");
    EXPECT_EQ(summary(), "1 fichier(s) à copier soit 5 octets (5 octets)");
}

TEST_F(Comparison, ClearsTheListOfTheOneBefore) {
    compare();
    selectOnly({1});
    compare();
    EXPECT_EQ(list().size(), 3U);
}

TEST_F(Comparison, DisablesTheLaunchButtonWhileItRuns) {
    compare();
    EXPECT_EQ(events.front(), "launch off");
    EXPECT_EQ(events.back(), "launch on");
}

TEST_F(Comparison, IgnoresThatModifiedFilesAloneAreCopied) {
    selectOnly({0});
    system.Modifie = 0;
    disk().file(R"(F:\Save\Docs\a.txt)", "aaaaa", fileTimeAt(2024, 3, 1));
    disk().file(R"(F:\Save\Docs\Sub\b.txt)", "bbb", fileTimeAt(2024, 3, 1));
    compare();
    EXPECT_EQ(list().size(), 2U);
}

}  // namespace
}  // namespace coffrelune
