#include "operation/run_report.h"

#include "operation/operation_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RunReport : public OperationTest {
  protected:
    static constexpr const char* settings = R"(C:\Coffrelune\Coffrelune.ini)";
};

TEST_F(RunReport, ExitsWithZeroWhenAllWentWellOrNothingWasToDo) {
    EXPECT_EQ(exitStatus(RunEnd::finished, statistics), ExitStatus::clean);
    EXPECT_EQ(exitStatus(RunEnd::nothing, statistics), ExitStatus::clean);
    EXPECT_EQ(static_cast<int>(ExitStatus::clean), 0);
}

TEST_F(RunReport, ExitsWithOneAfterErrors) {
    statistics.errorCount = 1;
    EXPECT_EQ(exitStatus(RunEnd::finished, statistics), ExitStatus::errors);
    EXPECT_EQ(exitStatus(RunEnd::nothing, statistics), ExitStatus::errors);
    EXPECT_EQ(static_cast<int>(ExitStatus::errors), 1);
}

TEST_F(RunReport, ExitsWithOneWhenASourceWasNotThere) {
    statistics.tallies.resize(2);
    statistics.tallies[1].sourceMissing = true;
    EXPECT_EQ(exitStatus(RunEnd::nothing, statistics), ExitStatus::errors);
}

TEST_F(RunReport, ExitsWithThreeWhenInterruptedOrRefused) {
    EXPECT_EQ(exitStatus(RunEnd::interrupted, statistics), ExitStatus::interrupted);
    EXPECT_EQ(exitStatus(RunEnd::cancelled, statistics), ExitStatus::interrupted);
    statistics.errorCount = 1;
    EXPECT_EQ(exitStatus(RunEnd::interrupted, statistics), ExitStatus::interrupted);
    EXPECT_EQ(static_cast<int>(ExitStatus::wrongUse), 2);
    EXPECT_EQ(static_cast<int>(ExitStatus::interrupted), 3);
}

TEST_F(RunReport, FindsTheCurrentConfiguration) {
    disk().file(settings, "[Travail]\r\nSource0=x\r\n");
    EXPECT_TRUE(settingsUsable(system));
    EXPECT_THAT(user().notices(), IsEmpty());
}

TEST_F(RunReport, NamesTheConfigurationsWhenTheCurrentOneDoesNotExist) {
    disk().file(settings, "[Position]\r\n[General]\r\n[Maison]\r\n");
    EXPECT_FALSE(settingsUsable(system));
    EXPECT_THAT(user().notices(),
                ElementsAre("La configuration « Travail » n'existe pas.\n"
                            "Configurations enregistrées : General, Maison\n"
                            "Fichier de réglages : C:\\Coffrelune\\Coffrelune.ini"));
}

TEST_F(RunReport, NamesTheReservedNameThatWasAskedFor) {
    disk().file(settings, "[Position]\r\n[Travail]\r\nSource0=x\r\n");
    system.askedConfiguration = "Position";
    EXPECT_FALSE(settingsUsable(system));
    EXPECT_THAT(user().notices(),
                ElementsAre("La configuration « Position » n'existe pas.\n"
                            "Configurations enregistrées : Travail\n"
                            "Fichier de réglages : C:\\Coffrelune\\Coffrelune.ini"));
}

TEST_F(RunReport, SaysThatThereIsNoConfigurationAtAll) {
    EXPECT_FALSE(settingsUsable(system));
    EXPECT_THAT(user().notices(),
                ElementsAre("La configuration « Travail » n'existe pas.\n"
                            "Aucune configuration n'est enregistrée.\n"
                            "Fichier de réglages : C:\\Coffrelune\\Coffrelune.ini"));
}

TEST_F(RunReport, SaysThatTheSettingsCannotBeRead) {
    disk().file(settings, "[Travail]\r\n");
    disk().setUnreadable(settings);
    EXPECT_FALSE(settingsUsable(system));
    EXPECT_THAT(user().notices(),
                ElementsAre(R"(Le fichier de réglages C:\Coffrelune\Coffrelune.ini ne peut )"
                            "pas être lu (erreur 5). Il est laissé tel quel."));
    EXPECT_EQ(disk().content(settings), "[Travail]\r\n");
}

TEST_F(RunReport, SaysThatARunWasStoppedBeforeItCopiedAnything) {
    interruptAtLabel(3, "1 répertoire(s) lu(s), 1 répertoire(s) créé(s)");
    user().answer(Answer::ok);
    const RunEnd end = launch(RunMode::startedByUser);
    reportInterruption(system, *launcher, end);
    EXPECT_THAT(user().notices(),
                ElementsAre("Sauvegarde interrompue avant la copie : rien n'a été copié."));
}

TEST_F(RunReport, SaysNothingMoreOfAStopThatHasTold) {
    disk().volume(R"(F:\)").present = false;
    const RunEnd end = launch(RunMode::unattended);
    reportInterruption(system, *launcher, end);
    EXPECT_THAT(user().notices(),
                ElementsAre("Rien à sauvegarder !\n\nLe disque destination n'existe pas."));
}

TEST_F(RunReport, NamesEveryErrorOnALineOfItsOwn) {
    statistics.errors = {{5, R"(C:\Docs\a.txt)", 0}, {32, "C:\\Docs\\b\n\x1b[2J", 0}};
    reportErrors(system, statistics);
    EXPECT_THAT(user().notices(), ElementsAre(R"(Erreur: 5 - Fichier: C:\Docs\a.txt)",
                                              R"(Erreur: 32 - Fichier: C:\Docs\b␊␛[2J)"));
}

TEST_F(RunReport, NamesEveryLineWithoutItsSource) {
    system.lines[1].source = "D:\\Absent\x1b[2J";
    statistics.tallies.resize(2);
    statistics.tallies[1].sourceMissing = true;
    reportErrors(system, statistics);
    EXPECT_THAT(user().notices(),
                ElementsAre(R"(Ligne 2 : la source D:\Absent␛[2J est introuvable.)"));
}

TEST_F(RunReport, SaysNothingOnAScreenOfAFolderThatWindowsHasMade) {
    system.lines[0].source = "D:\\Mes images";
    system.lines[1].source = "D:\\Absent";
    statistics.tallies.resize(2);
    for (LineTally& tally : statistics.tallies) tally.sourceMissing = true;
    reportMissingSources(system, statistics, MissingSources::unexpected);
    EXPECT_THAT(user().notices(), ElementsAre("Ligne 2 : la source D:\\Absent est introuvable."));
    reportErrors(system, statistics);
    EXPECT_EQ(user().notices().size(), 3U) << "where the result is read, both are named";
    EXPECT_EQ(exitStatus(RunEnd::nothing, statistics), ExitStatus::errors);
}

TEST_F(RunReport, TellsTheDesktopHowARunHasEnded) {
    const auto told = [&](ExitStatus status) {
        const RunNotice notice = noticeOf(system, status, statistics);
        return notice.title + " | " + notice.text;
    };
    statistics.tallies.resize(2);
    EXPECT_EQ(told(ExitStatus::clean), "Sauvegarde terminée | Travail : tout est à jour.");
    statistics.tallies[0].files = 3;
    EXPECT_EQ(told(ExitStatus::clean), "Sauvegarde terminée | Travail : 3 fichier(s) copié(s).");
    statistics.errors.resize(2);
    EXPECT_EQ(told(ExitStatus::errors),
              "Sauvegarde terminée avec des erreurs | Travail : 2 erreur(s).");
    statistics.tallies[1].sourceMissing = true;
    EXPECT_EQ(told(ExitStatus::errors),
              "Sauvegarde terminée avec des erreurs | Travail : 2 erreur(s), une source est "
              "introuvable.");
    statistics.errors.clear();
    EXPECT_EQ(told(ExitStatus::errors),
              "Sauvegarde incomplète | Travail : une source est introuvable.");
    EXPECT_EQ(told(ExitStatus::wrongUse),
              "Sauvegarde impossible | Travail : les réglages ne le permettent pas.");
    EXPECT_EQ(told(ExitStatus::interrupted),
              "Sauvegarde interrompue | Travail : elle n'est pas complète.");
}

}  // namespace
}  // namespace coffrelune
