// How the main window comes up, starts an unattended backup, remembers its place and closes.
#include "dialogs/config_form.h"
#include "dialogs/text_dialogs.h"
#include "mainwindow/main_form_fixture.h"

namespace coffrelune {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class LifecycleTest : public MainFormTest {
  protected:
    WindowPlace& place() { return form->place; }
};

TEST_F(LifecycleTest, OpensWithItsTitleOnTheBackupTab) {
    start();
    EXPECT_EQ(form->caption(), "Coffrelune Version 3.05");
    EXPECT_TRUE(form->open());
    EXPECT_EQ(system->operationKind, OperationKind::backup);
    EXPECT_FALSE(system->comparisonReversed);
}

TEST_F(LifecycleTest, WithoutSettingsItOpensAtTheCornerInItsNormalState) {
    start();
    EXPECT_EQ(place().left, 0);
    EXPECT_EQ(place().top, 0);
    EXPECT_EQ(place().state, WindowPlace::normal);
}

TEST_F(LifecycleTest, OpensWhereItWasClosed) {
    start();
    place().left = 1500;
    place().top = -300;
    place().state = WindowPlace::maximised;
    restart();
    EXPECT_EQ(stored("Position", "Left"), "1500");
    EXPECT_EQ(place().left, 1500);
    EXPECT_EQ(place().top, -300);
    EXPECT_EQ(place().state, WindowPlace::maximised);
}

TEST_F(LifecycleTest, AFirstCloseStoresThePlaceEvenWhenItIsTheCorner) {
    start();
    form->closeBox();
    EXPECT_EQ(stored("Position", "Left"), "0");
    EXPECT_EQ(stored("Position", "Top"), "0");
    EXPECT_EQ(stored("Position", "WindowState"), "0");
}

TEST_F(LifecycleTest, OpensAsLargeAsTheUserHasMadeIt) {
    start();
    EXPECT_EQ(place().width, 0);
    place().width = 15'000;
    place().height = 9'000;
    restart();
    EXPECT_EQ(stored("Position", "Width"), "15000");
    EXPECT_EQ(stored("Position", "Height"), "9000");
    EXPECT_EQ(place().width, 15'000);
    EXPECT_EQ(place().height, 9'000);
}

TEST_F(LifecycleTest, ASizeThatTheUserHasNotChosenIsNotStored) {
    start();
    form->closeBox();
    EXPECT_EQ(stored("Position", "Width"), "");
    EXPECT_EQ(stored("Position", "Height"), "");
}

TEST_F(LifecycleTest, HalfASizeIsNone) {
    start("[Position]\nWidth=15000\nHeight=-3\n");
    EXPECT_EQ(place().width, 0);
    EXPECT_EQ(place().height, 0);
}

TEST_F(LifecycleTest, ClosedWhileMinimisedItKeepsThePlaceOfAnEarlierClose) {
    start("[Position]\nLeft=1500\nTop=300\nWindowState=0\n");
    place().state = WindowPlace::minimised;
    place().left = -48'000;
    place().top = -48'000;
    restart();
    EXPECT_EQ(place().state, WindowPlace::minimised);
    EXPECT_EQ(place().left, 1500);
    EXPECT_EQ(place().top, 300);
}

TEST_F(LifecycleTest, ReadsWhetherItStartsWithTheSystem) {
    start("[Position]\nAutoStart=-1\n");
    EXPECT_EQ(system->AutoStart, -1);
    start("[Position]\nAutoStart=abc\n");
    EXPECT_EQ(system->AutoStart, 0);
    start("[Position]\nAutoStart=99999999\n");
    EXPECT_NE(system->AutoStart, 0);
}

// ---- values that cannot be used ------------------------------------------------------------

TEST_F(LifecycleTest, OpensOnSpoiltSettingsAndOverwritesNothing) {
    const std::string spoilt =
        "[Position]\nLeft=abc\nTop=999999999\nWindowState=7\nRepertMax=x\nAutoStart=?\n"
        "[General]\nAutoTime=99:99\nLastSave=32/13/2025 99:99:99\nLastSaveErr=demain\n"
        "LastSaveNbErr=zz\nSelectP=x\nConfirmation=oui\nModifie=non\nAutoSave=x\nSelect0=q\n"
        "Source0=\"???\"\nDestination0=\"nowhere\"\n";
    start(spoilt);
    EXPECT_EQ(place().left, 0);
    EXPECT_EQ(place().top, 0);
    EXPECT_EQ(place().state, WindowPlace::normal);
    EXPECT_EQ(form->lines.count(), 6);
    EXPECT_EQ(form->schedule.AutoHr.text(), "00:00");
    EXPECT_FALSE(form->schedule.Timer1.enabled());
    EXPECT_FALSE(form->program.ChkProg.checked());
    EXPECT_EQ(left(0), "???");
    for (const char* tab : {"R", "C", "S"}) pickTab(tab);
    EXPECT_EQ(settings(), spoilt);
    form->closeBox();
    std::string closed = settings();
    const std::string remembered = "Config=General\n";
    ASSERT_NE(closed.find(remembered), std::string::npos);
    closed.erase(closed.find(remembered), remembered.size());
    EXPECT_EQ(closed, spoilt) << "what the user did not change stays as it is written";
}

TEST_F(LifecycleTest, APlaceThatTheUserChangesReplacesASpoiltOne) {
    start("[Position]\nLeft=abc\nWindowState=-1\n");
    EXPECT_EQ(place().state, WindowPlace::normal);
    place().left = 150;
    place().state = WindowPlace::maximised;
    form->closeBox();
    EXPECT_EQ(stored("Position", "Left"), "150");
    EXPECT_EQ(stored("Position", "WindowState"), "2");
}

TEST_F(LifecycleTest, AnUnreadableSettingsFileIsLeftAlone) {
    disk().file(settingsFile, "[General]\nSource0=\"C:\\Docs\"\n");
    disk().setUnreadable(settingsFile);
    start();
    EXPECT_EQ(left(0), "");
    form->closeBox();
    disk().setUnreadable(settingsFile, false);
    EXPECT_EQ(settings(), "[General]\nSource0=\"C:\\Docs\"\n");
}

// ---- closing -------------------------------------------------------------------------------

TEST_F(LifecycleTest, RemembersTheConfigurationInUse) {
    start("[General]\nModifie=1\n[Travail]\nModifie=1\n", "/travail");
    form->closeBox();
    EXPECT_FALSE(form->open());
    EXPECT_EQ(stored("Position", "Config"), "Travail");
}

TEST_F(LifecycleTest, DoesNotRememberAConfigurationThatDoesNotExist) {
    start("[Position]\nConfig=General\n[General]\nModifie=1\n", "/travial");
    form->closeBox();
    EXPECT_EQ(stored("Position", "Config"), "General");
}

TEST_F(LifecycleTest, RemembersAConfigurationThatWasJustAdded) {
    start("[General]\nModifie=1\n");
    user().stepIn<ConfigForm>([this](ConfigForm& dialog) {
        user().stepIn<ConfigNameForm>([](ConfigNameForm& name) {
            name.Txt.type("vacances");
            name.Cmd[0].click();
        });
        dialog.Cmd[2].click();
        dialog.Cmd[0].click();
    });
    form->toolbar.TB.pick("Config");
    ASSERT_EQ(system->configurationName, "Vacances");
    restart();
    EXPECT_EQ(stored("Position", "Config"), "Vacances");
    EXPECT_EQ(system->configurationName, "Vacances");
}

TEST_F(LifecycleTest, RemembersTheDefaultConfigurationBeforeItHasASection) {
    start();
    form->closeBox();
    EXPECT_EQ(stored("Position", "Config"), "General");
}

TEST_F(LifecycleTest, NeverWorksOnTheReservedSection) {
    const std::string before =
        "[Position]\nConfig=Travail\nSource0=\"C:\\Docs\"\nSelect0=1\n[Travail]\nModifie=1\n";
    start(before, "/position");
    EXPECT_EQ(form->configuration.ConfigLbl.caption(), "Travail");
    EXPECT_EQ(left(0), "");
    EXPECT_EQ(settings(), before);
    row(0).LblS.drop({true, R"(C:\Photos)", {}});
    EXPECT_EQ(stored("Travail", "Source0"), R"(C:\Photos)");
    EXPECT_EQ(stored("Position", "Source0"), R"(C:\Docs)");
}

TEST_F(LifecycleTest, QuittingFromTheToolbarCloses) {
    startWithLine();
    form->toolbar.TB.pick("Quitter");
    EXPECT_FALSE(form->open());
    EXPECT_EQ(stored("Position", "Config"), "General");
}

TEST_F(LifecycleTest, DoesNotCloseUnderAnOpenDialog) {
    startWithLine();
    windows.whileOpen = [&] { form->closeBox(); };
    user().chooseNextFolder("");
    row(0).CmdS.click();
    EXPECT_TRUE(form->open());
}

// ---- first activation ----------------------------------------------------------------------

TEST_F(LifecycleTest, StartedByHandTheFirstActivationStartsNothing) {
    startWithLine();
    form->activated();
    EXPECT_EQ(user().pendingEventsCount(), 1U);
    form->activated();
    EXPECT_EQ(user().pendingEventsCount(), 1U) << "coming back to the front is no start";
    EXPECT_THAT(user().shown(), IsEmpty());
    EXPECT_TRUE(form->open());
    EXPECT_FALSE(form->autoStatus());
}

TEST_F(LifecycleTest, AutoRunsTheBackupAndCloses) {
    startWithLine();
    start({}, "/Auto");
    bool eventsFirst = false;
    user().onPendingEvents = [&] { eventsFirst = eventsFirst || user().shown().empty(); };
    form->activated();
    EXPECT_TRUE(eventsFirst);
    EXPECT_EQ(user().shown(), Texts{"Sauvegarde ..."});
    EXPECT_EQ(disk().content(R"(F:\Save\Docs\a.txt)"), "aaaaa");
    EXPECT_THAT(user().messages(), IsEmpty());
    EXPECT_FALSE(form->open());
    EXPECT_EQ(stored("Position", "Config"), "General");
    EXPECT_EQ(stored("LastSave"), "14/03/2025 10:00:00");
    EXPECT_EQ(form->autoStatus(), ExitStatus::clean);
    EXPECT_EQ(form->statistics().errorCount, 0);
}

TEST_F(LifecycleTest, AutoRunsOnceHoweverTheWindowComesUp) {
    startWithLine();
    start({}, "/Auto");
    windows.whileOpen = [&] { form->activated(); };
    form->shown();
    form->activated();
    form->shown();
    EXPECT_EQ(user().shown(), Texts{"Sauvegarde ..."});
    EXPECT_FALSE(form->open());
}

TEST_F(LifecycleTest, AutoStartsNoProgramAfterwards) {
    startWithLine("SelectP=1\nProgToRun=C:\\fin.exe\n");
    start({}, "/Auto");
    form->activated();
    EXPECT_THAT(shell().opened(), IsEmpty());
}

TEST_F(LifecycleTest, AutoStartedMinimisedRunsTheBackupToo) {
    startWithLine("[Position]\nWindowState=1\n");
    start({}, "/Auto");
    EXPECT_EQ(place().state, WindowPlace::minimised);
    form->shown();
    EXPECT_EQ(form->autoStatus(), ExitStatus::clean);
    EXPECT_FALSE(form->open());
}

TEST_F(LifecycleTest, AutoClosedBeforeItBeganRunsNothing) {
    startWithLine();
    start({}, "/Auto");
    user().onPendingEvents = [&] { form->closeBox(); };
    form->activated();
    EXPECT_THAT(user().shown(), IsEmpty());
    EXPECT_FALSE(form->open());
    EXPECT_EQ(form->autoStatus(), ExitStatus::interrupted) << "no backup was made";
}

TEST_F(LifecycleTest, TheTimerDoesNothingInAutoMode) {
    setClock(2025, 3, 14, 11);
    startWithLine("AutoSave=1\nAutoTime=12:00\n");
    start({}, "/Auto");
    EXPECT_EQ(tickUntil(2025, 3, 14, 13, 0), 0);
}

TEST_F(LifecycleTest, AutoRefusesAConfigurationThatDoesNotExist) {
    startWithLine("[Position]\nConfig=General\n");
    start({}, "/Auto /Travial");
    form->activated();
    EXPECT_THAT(user().shown(), IsEmpty());
    EXPECT_THAT(user().messages(), IsEmpty()) << "nobody is there to answer";
    EXPECT_THAT(user().notices(),
                ElementsAre(HasSubstr("La configuration « Travial » n'existe pas.")));
    EXPECT_EQ(form->autoStatus(), ExitStatus::wrongUse);
    EXPECT_FALSE(form->open());
    EXPECT_EQ(stored("Position", "Config"), "General");
    EXPECT_EQ(stored("Travial", "LastSave"), "");
}

TEST_F(LifecycleTest, AutoRefusesTheReservedName) {
    startWithLine();
    start({}, "/Auto /position");
    form->activated();
    EXPECT_THAT(user().shown(), IsEmpty());
    EXPECT_EQ(form->autoStatus(), ExitStatus::wrongUse);
    EXPECT_FALSE(form->open());
}

TEST_F(LifecycleTest, AutoTellsThatTheDestinationIsAbsent) {
    startWithLine();
    disk().volume(R"(F:\)").present = false;
    start({}, "/Auto");
    form->activated();
    EXPECT_EQ(form->autoStatus(), ExitStatus::interrupted);
    EXPECT_FALSE(form->open());
}

TEST_F(LifecycleTest, AutoWithErrorsClosesAndKeepsTheErrorList) {
    startWithLine();
    disk().setInUse(R"(C:\Docs\a.txt)");
    (void)SystemMod(platform, {"", home, 3, 5}).WriteSetting("Position", "ContinueOnError", "-1");
    start({}, "/Auto");
    form->activated();
    EXPECT_FALSE(form->open());
    EXPECT_EQ(stored("LastSaveNbErr"), "1");
    EXPECT_TRUE(disk().exists(R"(C:\Coffrelune\S_General.err)"));
    EXPECT_EQ(form->autoStatus(), ExitStatus::errors);
    EXPECT_THAT(user().notices(), Contains(R"(Erreur: 32 - Fichier: C:\Docs\a.txt)"));
    EXPECT_EQ(form->statistics().errorCount, 1);
}

TEST_F(LifecycleTest, SettingsThatCannotBeWrittenAreToldAtTheTopOfTheWindow) {
    startWithLine();
    disk().volume(R"(C:\)").writeProtected = true;
    EXPECT_FALSE(form->notices.Lbl.at(0).visible());
    row(0).ChkS.click();
    ASSERT_TRUE(form->notices.Lbl.at(0).visible());
    EXPECT_THAT(
        form->notices.Lbl.at(0).caption(),
        testing::EndsWith("Le fichier de réglages C:\\Coffrelune\\Coffrelune.ini ne peut pas "
                          "être écrit (erreur 19) : les changements ne sont pas "
                          "enregistrés."));
    row(0).ChkS.click();
    EXPECT_FALSE(form->notices.Lbl.at(1).visible());
    form.reset();
    EXPECT_FALSE(system->WriteSetting("General", "Select0", "0").ok());
}

}  // namespace
}  // namespace coffrelune
