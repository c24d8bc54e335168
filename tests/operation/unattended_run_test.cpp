// A run that nobody watches.
#include "operation/launch_fixture.h"

namespace coffrelune {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class UnattendedRun : public LaunchTest {
  protected:
    RunEnd launchUnattended() { return launch(RunMode::unattended); }
};

TEST_F(UnattendedRun, SaysNothingWhenAllWentWell) {
    system.Confirmation = 0;
    placeOldCopy();
    EXPECT_EQ(launchUnattended(), RunEnd::finished);
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "aaaaa");
    EXPECT_THAT(user().messages(), IsEmpty());
    EXPECT_THAT(user().notices(), IsEmpty());
    EXPECT_EQ(setting("Travail", "LastSave"), "15/03/2024 10:00:00");
}

TEST_F(UnattendedRun, SaysNothingWhenThereWasNothingToDo) {
    selectOnly({});
    EXPECT_EQ(launchUnattended(), RunEnd::nothing);
    EXPECT_THAT(user().messages(), IsEmpty());
    EXPECT_THAT(user().notices(), IsEmpty());
}

TEST_F(UnattendedRun, RecordsErrorsAndGivesANotice) {
    system.AutoMode = true;
    system.options.ContinueOnError = -1;
    failCopyOf(R"(C:\Docs\a.txt)", 5);
    EXPECT_EQ(launchUnattended(), RunEnd::finished);
    EXPECT_THAT(user().messages(), IsEmpty());
    EXPECT_THAT(user().notices(),
                ElementsAre("Sauvegarde terminée, nombre d'erreur(s): 1\r\n\r\nDurée : 00:00:00"));
    EXPECT_EQ(setting("Travail", "LastSaveErr"), "15/03/2024 10:00:00");
}

TEST_F(UnattendedRun, WaitsAtFermerWithErrorsUnlessTheProgramRunsUnattended) {
    system.options.ContinueOnError = -1;
    failCopyOf(R"(C:\Docs\a.txt)", 5);
    closeAtFermer();  // a step that was not taken would be a problem
    EXPECT_EQ(launchUnattended(), RunEnd::finished);
}

TEST_F(UnattendedRun, GivesANoticeOfAnAbsentDestination) {
    disk().volume(R"(F:\)").present = false;
    EXPECT_EQ(launchUnattended(), RunEnd::interrupted);
    EXPECT_THAT(user().notices(),
                ElementsAre("Rien à sauvegarder !\n\nLe disque destination n'existe pas."));
    EXPECT_THAT(user().messages(), IsEmpty());
}

TEST_F(UnattendedRun, GivesANoticeOfACopyThatCouldNotEvenBegin) {
    system.AutoMode = true;
    system.options.ContinueOnError = -1;
    faults.fail("createDirectory", "", 5);
    EXPECT_EQ(launchUnattended(), RunEnd::nothing);
    EXPECT_THAT(user().notices(), ElementsAre("Rien à sauvegarder !\n\nNombre d'erreur(s): 2"));
    EXPECT_THAT(user().messages(), IsEmpty());
}

TEST_F(UnattendedRun, GivesANoticeOfAMissingSourceAndStops) {
    system.lines[1].source = R"(D:\Absent)";
    system.AutoMode = true;
    EXPECT_EQ(launchUnattended(), RunEnd::interrupted);
    EXPECT_THAT(user().messages(), IsEmpty());
    EXPECT_THAT(user().notices(), Contains(R"(Répertoire source 'D:\Absent\' non trouvé.)"));
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "aaaaa");
}

TEST_F(UnattendedRun, DoesNotAskBeforeCopyingTheTreeAlone) {
    system.options.ArbreMode = -1;
    EXPECT_EQ(launchUnattended(), RunEnd::finished);
    EXPECT_TRUE(disk().exists(R"(F:\Save\Docs\Sub)"));
    EXPECT_THAT(user().messages(), IsEmpty());
    EXPECT_THAT(user().notices(), IsEmpty());
}

}  // namespace
}  // namespace coffrelune
