// The launch of an operation: what happens in which order, what the user is told at the end.
#include "operation/lance_operation.h"

#include "operation/launch_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using LanceOperation = LaunchTest;

TEST_F(LanceOperation, DoesEverythingInItsOrder) {
    system.AutoSave = 1;
    system.options.SignalSonore = -1;
    EXPECT_EQ(launchAndRead(), RunEnd::finished);
    EXPECT_THAT(events,
                ElementsAre("timer off", "launch off", "shown Sauvegarde ...", "done 0", "done 1",
                            "closed Sauvegarde ...", "stored 0", R"(sound C:\Coffrelune\Ok.wav)",
                            "message Sauvegarde terminée sans erreur.\r\n\r\nDurée : 00:00:00",
                            "not done 0", "not done 1", "launch on", "timer on"));
}

TEST_F(LanceOperation, TheTimerStaysOffWithoutTheScheduledBackup) {
    system.AutoSave = 0;
    launchAndRead();
    EXPECT_EQ(events.back(), "timer off");
}

TEST_F(LanceOperation, TheTimerNeedsExactlyOne) {
    system.AutoSave = -1;
    launchAndRead();
    EXPECT_EQ(events.back(), "timer off");
}

TEST_F(LanceOperation, TheErrorListIsWrittenBeforeTheResultIsRecorded) {
    system.options.ContinueOnError = -1;
    failCopyOf(R"(C:\Docs\a.txt)", 5);
    closeAtFermer();
    launchAndRead();
    Events writes;
    for (const std::string& call : faults.calls()) {
        const bool atHome = call.rfind(R"(writeWhole C:\Coffrelune\)", 0) == 0;
        if (atHome) writes.push_back(call.substr(11));
    }
    // Before the list: the check box of the analysis. After it: date, duration and count of the
    // result.
    const std::string settings = R"(C:\Coffrelune\Coffrelune.ini)";
    EXPECT_THAT(writes, ElementsAre(settings, R"(C:\Coffrelune\S_Travail.err)", settings, settings,
                                    settings));
    EXPECT_EQ(setting("Travail", "LastSaveNbErr"), "1");
}

// ---- what the final message says ----------------------------------------------------------------

TEST_F(LanceOperation, TellsTheDurationOfABackupWithoutError) {
    selectOnly({0});
    memory.files().setCopyCost(41'500, 0);  // two files
    EXPECT_EQ(launchAndRead(), RunEnd::finished);
    EXPECT_THAT(message(), IsMessage("Sauvegarde terminée sans erreur.\r\n\r\nDurée : 00:01:23",
                                     title, MessageIcon::information));
    EXPECT_EQ(message().buttons, MessageButtons::ok);
}

TEST_F(LanceOperation, TellsTheNumberOfErrors) {
    system.options.ContinueOnError = -1;
    failCopyOf(R"(C:\Docs\a.txt)", 5);
    failCopyOf(R"(D:\Photos\c.jpg)", 5);
    memory.files().setCopyCost(192'000, 0);
    closeAtFermer();
    EXPECT_EQ(launchAndRead(), RunEnd::finished);
    EXPECT_THAT(message(),
                IsMessage("Sauvegarde terminée, nombre d'erreur(s): 2\r\n\r\nDurée : 00:03:12",
                          title, MessageIcon::information));
    EXPECT_EQ(system.errorCount, 2);
}

TEST_F(LanceOperation, TellsThatThereWasNothingToDo) {
    selectOnly({});
    EXPECT_EQ(launchAndRead(), RunEnd::nothing);
    EXPECT_THAT(message(), IsMessage("Rien à sauvegarder !", title, MessageIcon::exclamation));
    EXPECT_EQ(message().buttons, MessageButtons::ok);
}

TEST_F(LanceOperation, WithNothingToDoRecordsNothingAndPlaysNothing) {
    selectOnly({});
    system.options.SignalSonore = -1;
    launchAndRead();
    EXPECT_THAT(eventsThat("stored"), IsEmpty());
    EXPECT_THAT(eventsThat("sound"), IsEmpty());
    EXPECT_EQ(setting("Travail", "LastSave"), "");
    EXPECT_THAT(eventsThat("not done"), ElementsAre("not done 0", "not done 1"));
}

TEST_F(LanceOperation, TellsNothingElseOfARunStoppedByTheUserBeforeItsCopy) {
    interruptAtLabel(3, "1 répertoire(s) lu(s), 1 répertoire(s) créé(s)");
    EXPECT_EQ(launchAndRead(), RunEnd::interrupted);
    EXPECT_THAT(message(), IsMessage("Rien à sauvegarder !", title, MessageIcon::exclamation));
    EXPECT_EQ(setting("Travail", "LastSave"), "");
}

TEST_F(LanceOperation, TellsWhyNothingWasSavedWhenTheDestinationIsAbsent) {
    disk().volume(R"(F:\)").present = false;
    EXPECT_EQ(launchAndRead(), RunEnd::interrupted);
    EXPECT_THAT(message(), IsMessage("Rien à sauvegarder !\n\nLe disque destination n'existe pas.",
                                     title, MessageIcon::exclamation));
    EXPECT_THAT(filesBelow(R"(G:\Save)"), IsEmpty());
}

TEST_F(LanceOperation, TellsTheErrorsOfACopyThatCouldNotEvenBegin) {
    system.options.ContinueOnError = -1;
    faults.fail("createDirectory", "", 5);
    closeAtFermer();
    EXPECT_EQ(launchAndRead(), RunEnd::nothing);
    EXPECT_THAT(message(), IsMessage("Rien à sauvegarder !\n\nNombre d'erreur(s): 2", title,
                                     MessageIcon::exclamation));
    EXPECT_EQ(system.errorCount, 2);
    EXPECT_EQ(setting("Travail", "LastSave"), "");
    EXPECT_EQ(setting("Travail", "LastSaveOk"), "");
}

TEST_F(LanceOperation, TellsTheErrorsOfATreeOfDirectories) {
    system.options.ContinueOnError = -1;
    system.options.ArbreMode = -1;
    faults.fail("createDirectory", R"(F:\Save\Docs\Sub)", 5);
    user().answer(Answer::ok);
    closeAtFermer();
    EXPECT_EQ(launchAndRead(), RunEnd::finished);
    EXPECT_THAT(message(), IsMessage("Copie de l'arborescence terminée !\n\n"
                                     "3 répertoire(s) lu(s), 2 répertoire(s) créé(s)."
                                     "\n\nNombre d'erreur(s): 1",
                                     title, MessageIcon::information));
}

TEST_F(LanceOperation, TellsThatTheUserInterruptedTheCopy) {
    interruptAtLabel(0, "31% copiés (5 octets de 16 octets)");
    EXPECT_EQ(launchAndRead(), RunEnd::interrupted);
    EXPECT_THAT(message(),
                IsMessage("Sauvegarde interrompue !\n\n", title, MessageIcon::information));
}

TEST_F(LanceOperation, DoesNotRecordAnInterruptedRun) {
    interruptAtLabel(0, "31% copiés (5 octets de 16 octets)");
    launchAndRead();
    EXPECT_THAT(eventsThat("stored"), IsEmpty());
    EXPECT_EQ(setting("Travail", "LastSave"), "");
    EXPECT_EQ(setting("Travail", "LastSaveErr"), "");
}

struct Cause {
    std::uint32_t number;
    const char* text;
};

class InterruptedBackup : public LaunchTest, public testing::WithParamInterface<Cause> {};

TEST_P(InterruptedBackup, TellsTheCause) {
    failCopyOf(R"(C:\Docs\a.txt)", GetParam().number);
    closeAtFermer();
    EXPECT_EQ(launchAndRead(), RunEnd::interrupted);
    EXPECT_THAT(message(), IsMessage("Sauvegarde interrompue !\n\n" + std::string(GetParam().text),
                                     title, MessageIcon::information));
    EXPECT_EQ(setting("Travail", "LastSaveErr"), "");
}

INSTANTIATE_TEST_SUITE_P(
    Causes, InterruptedBackup,
    testing::Values(Cause{3, "Répertoire non trouvé."},
                    Cause{5, "Accès disque destination refusé."},
                    Cause{19,
                          "Ce disque est protégé en écriture.\n"
                          "Retirez la protection en écriture ou utilisez un autre disque."},
                    Cause{21, "Il n'y a pas de disque dans le lecteur destination."},
                    Cause{31, "Le disque destination n'est pas formaté."},
                    Cause{32,
                          "Impossible de copier: C:\\Docs\\, Violation de partage.\n"
                          "Le fichier source ou destination est peut-être en cours d'utilisation."},
                    Cause{33,
                          "Impossible de copier: C:\\Docs\\, Violation de partage.\n"
                          "Le fichier source ou destination est peut-être en cours d'utilisation."},
                    Cause{55, "Le disque destination n'existe pas."},
                    Cause{112, "Le disque destination est plein."}, Cause{2, "Erreur 2"}),
    [](const auto& tested) { return "Error" + std::to_string(tested.param.number); });

// ---- restore ------------------------------------------------------------------------------------

class LanceRestauration : public LaunchTest {
  protected:
    LanceRestauration() {
        system.operationKind = OperationKind::restore;
        disk().file(R"(F:\Save\Docs\a.txt)", "saved", fileTimeAt(2024, 3, 2));
        selectOnly({0});
    }
};

TEST_F(LanceRestauration, TellsThatItIsFinished) {
    EXPECT_EQ(launchAndRead(), RunEnd::finished);
    EXPECT_EQ(disk().content(R"(C:\Docs\a.txt)"), "saved");
    EXPECT_THAT(message(), IsMessage("Restauration terminée sans erreur.\r\n\r\nDurée : 00:00:00",
                                     title, MessageIcon::information));
    EXPECT_EQ(setting("Travail", "LastRest"), "15/03/2024 10:00:00");
}

TEST_F(LanceRestauration, TellsTheNumberOfErrors) {
    system.options.ContinueOnError = -1;
    failCopyOf(R"(F:\Save\Docs\a.txt)", 5);
    closeAtFermer();
    launchAndRead();
    EXPECT_EQ(message().text,
              "Restauration terminée, nombre d'erreur(s): 1\r\n\r\nDurée : 00:00:00");
}

TEST_F(LanceRestauration, NeverTellsTheCauseOfAnInterruption) {
    failCopyOf(R"(F:\Save\Docs\a.txt)", 5);
    closeAtFermer();
    EXPECT_EQ(launchAndRead(), RunEnd::interrupted);
    EXPECT_THAT(message(),
                IsMessage("Restauration interrompue !", title, MessageIcon::information));
}

TEST_F(LanceRestauration, TellsThatThereWasNothingToRestore) {
    selectOnly({});
    EXPECT_EQ(launchAndRead(), RunEnd::nothing);
    EXPECT_THAT(message(), IsMessage("Rien à restaurer !", title, MessageIcon::exclamation));
}

// ---- the tree alone -----------------------------------------------------------------------------

class TreeOnlyLaunch : public LaunchTest {
  protected:
    TreeOnlyLaunch() {
        system.options.ArbreMode = -1;
        system.options.SignalSonore = -1;
    }
    static constexpr const char* question =
        "Seule l'arborescence des répertoires sera copiée sur le disque destination.\n"
        "Confirmez-vous la copie ?";
};

TEST_F(TreeOnlyLaunch, AsksFirstAndTellsTheCountsAtTheEnd) {
    user().answer(Answer::ok);
    EXPECT_EQ(launchAndRead(), RunEnd::finished);
    ASSERT_EQ(user().messages().size(), 2U);
    EXPECT_THAT(user().messages()[0], IsMessage(question, title, MessageIcon::question));
    EXPECT_EQ(user().messages()[0].buttons, MessageButtons::okCancel);
    EXPECT_THAT(message(), IsMessage("Copie de l'arborescence terminée !\n\n"
                                     "3 répertoire(s) lu(s), 3 répertoire(s) créé(s).",
                                     title, MessageIcon::information));
}

TEST_F(TreeOnlyLaunch, RecordsNothingAndPlaysNothing) {
    user().answer(Answer::ok);
    launchAndRead();
    EXPECT_THAT(eventsThat("stored"), IsEmpty());
    EXPECT_THAT(eventsThat("sound"), IsEmpty());
    EXPECT_EQ(system.options.ArbreMode, -1);
}

TEST_F(TreeOnlyLaunch, CancelledRunsNothingAndLeavesTheDoneMarks) {
    system.AutoSave = 1;
    user().answer(Answer::cancel);
    EXPECT_EQ(launch(RunMode::startedByUser), RunEnd::cancelled);
    EXPECT_THAT(events, ElementsAre("timer off", "launch off", std::string("message ") + question,
                                    "launch on", "timer on"));
    EXPECT_THAT(filesBelow(R"(F:\Save)"), IsEmpty());
}

// ---- the run's record ---------------------------------------------------------------------------

TEST_F(LanceOperation, BeginsEachRunWithAFreshRecord) {
    system.AutoMode = true;
    system.options.ContinueOnError = -1;
    failCopyOf(R"(C:\Docs\a.txt)", 5);
    launcher = std::make_unique<OperationLauncher>(system, host, stage);
    EXPECT_EQ(launcher->LanceOperation(RunMode::unattended), RunEnd::finished);
    EXPECT_EQ(launcher->statistics().errorCount, 1);
    faults.restart();
    EXPECT_EQ(launcher->LanceOperation(RunMode::unattended), RunEnd::finished);
    EXPECT_EQ(launcher->statistics().errorCount, 0);
    EXPECT_THAT(launcher->statistics().errors, IsEmpty());
    EXPECT_EQ(launcher->LanceOperation(RunMode::unattended), RunEnd::nothing);
    EXPECT_FALSE(launcher->statistics().copyPassStarted);
}

TEST_F(LanceOperation, AFileGivenUpKeepsItsOldCopyAndIsNoError) {
    placeOldCopy();
    memory.files().copyHook = [this](const CopyMoment&) { memory.files().abandonCopies(); };
    EXPECT_EQ(launchAndRead(), RunEnd::interrupted);
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "old");
    EXPECT_EQ(launcher->statistics().errorCount, 0);
    EXPECT_EQ(message().text, "Sauvegarde interrompue !\n\n");
}

}  // namespace
}  // namespace coffrelune
