// The time of the automatic backup: how it is typed, refused and stored.
#include "mainwindow/main_form_fixture.h"

namespace coffrelune {
namespace {

using testing::IsEmpty;

constexpr const char* atNoonSavedYesterday =
    "AutoSave=1\nAutoTime=12:00\nLastSave=13/03/2025 12:00:10\n";

class TimeFieldTest : public MainFormTest {
  protected:
    TextBox& AutoHr() { return form->schedule.AutoHr; }
};

struct TimeEntry {
    const char* typed;
    const char* time;
};

TEST_F(TimeFieldTest, FillsATypedTimeOnTheRight) {
    for (const TimeEntry& entry :
         {TimeEntry{"08:3", "08:30"}, TimeEntry{"08:30", "08:30"}, TimeEntry{"08", "08:00"},
          TimeEntry{"1", "10:00"}, TimeEntry{"08h45", "08:45"}, TimeEntry{"08é45", "08:45"},
          TimeEntry{"0845", "08:50"}, TimeEntry{"23:59:59", "23:59"}, TimeEntry{"", "00:00"}}) {
        startWithLine("AutoTime=12:00\n");
        typeInto(AutoHr(), entry.typed);
        EXPECT_EQ(stored("AutoTime"), entry.time) << entry.typed;
        EXPECT_EQ(AutoHr().text(), entry.time);
        EXPECT_EQ(system->AutoTime, entry.time);
    }
}

TEST_F(TimeFieldTest, RefusesWhatIsNoTime) {
    for (const char* typed : {"25:00", "ab", "8", "12:60", "24:00", "-1:00", " 8:00", "é"}) {
        startWithLine("AutoTime=12:00\n");
        const std::string before = settings();
        user().answer(Answer::ok);
        typeInto(AutoHr(), typed);
        EXPECT_THAT(lastMessage(), IsMessage("L'heure de sauvegarde saisie est incorrecte !",
                                             "Coffrelune Version 3.05", MessageIcon::information));
        EXPECT_EQ(AutoHr().text(), "12:00");
        EXPECT_TRUE(AutoHr().focused());
        EXPECT_EQ(system->AutoTime, "12:00");
        EXPECT_EQ(settings(), before);
    }
}

TEST_F(TimeFieldTest, LeavingTheFieldUnchangedDoesNothing) {
    setClock(2025, 3, 14, 11);
    startWithLine(atNoonSavedYesterday);
    setClock(2025, 3, 14, 12, 30);
    const std::size_t writes = writeCount();
    typeInto(AutoHr(), "12:00");
    EXPECT_EQ(writeCount(), writes);
    EXPECT_EQ(system->nextDate, "14/03/2025") << "the backup that is due stays due";
    EXPECT_EQ(tick(), 1);
}

TEST_F(TimeFieldTest, ANewTimeStillToComeIsHonouredTheSameDay) {
    setClock(2025, 3, 14, 13);
    startWithLine(atNoonSavedYesterday);
    typeInto(AutoHr(), "14:00");
    EXPECT_EQ(system->nextDate, "14/03/2025");
    EXPECT_EQ(tickUntil(2025, 3, 14, 14, 0, 10), 1);
}

TEST_F(TimeFieldTest, ANewTimeThatHasPassedBeginsTomorrow) {
    setClock(2025, 3, 14, 13);
    startWithLine("AutoSave=1\nAutoTime=14:00\nLastSave=13/03/2025 12:00:10\n");
    typeInto(AutoHr(), "12:30");
    EXPECT_EQ(system->nextDate, "15/03/2025");
    EXPECT_EQ(tick(), 0);
}

TEST_F(TimeFieldTest, ATimeSpoiltInTheSettingsCountsAsMidnightAndStaysThere) {
    startWithLine("AutoSave=1\nAutoTime=99:99\nLastSave=14/03/2025 00:00:10\n");
    const std::string before = settings();
    EXPECT_EQ(AutoHr().text(), "00:00");
    AutoHr().enter();
    AutoHr().leave();
    EXPECT_EQ(settings(), before);
    EXPECT_EQ(tickUntil(2025, 3, 15, 0, 0, 0), 0);
    EXPECT_EQ(tickUntil(2025, 3, 15, 0, 0, 10), 1);
}

TEST_F(TimeFieldTest, WhatIsStillInTheFieldIsStoredBeforeALaunch) {
    startWithLine("AutoTime=12:00\n");
    AutoHr().enter();
    AutoHr().type("13:1");
    user().answer(Answer::ok);
    form->Cmd.at(1).click();
    EXPECT_EQ(stored("AutoTime"), "13:10");
    EXPECT_EQ(user().shown(), Texts{"Sauvegarde ..."});
}

TEST_F(TimeFieldTest, AWrongTimeCancelsTheLaunch) {
    startWithLine("AutoTime=12:00\n");
    AutoHr().enter();
    AutoHr().type("99");
    user().answer(Answer::ok);
    form->Cmd.at(1).click();
    EXPECT_THAT(user().shown(), IsEmpty());
    EXPECT_EQ(user().messages().size(), 1U);
    EXPECT_EQ(AutoHr().text(), "12:00");
}

// In a toolkit, the press on the button first takes the focus out of the field and then clicks.
TEST_F(TimeFieldTest, AWrongTimeCancelsTheLaunchWhosePressTookTheFocusAway) {
    startWithLine("AutoTime=12:00\n");
    user().answer(Answer::ok);
    typeInto(AutoHr(), "99");
    form->Cmd.at(1).click();
    EXPECT_THAT(user().shown(), IsEmpty());
    EXPECT_EQ(user().messages().size(), 1U) << "told once";
    user().answer(Answer::ok);
    form->Cmd.at(1).click();
    EXPECT_EQ(user().shown(), Texts{"Sauvegarde ..."}) << "clicked again on purpose";
}

TEST_F(TimeFieldTest, AWrongTimeCancelsTheTabChangeWhosePressTookTheFocusAway) {
    startWithLine("AutoTime=12:00\n");
    user().answer(Answer::ok);
    typeInto(AutoHr(), "99");
    pickTab("R");
    EXPECT_EQ(form->launch.Onglet.selectedKey(), "S");
    pickTab("R");
    EXPECT_EQ(form->launch.Onglet.selectedKey(), "R");
}

TEST_F(TimeFieldTest, ARefusalIsForgottenOnceAnotherTimeIsTyped) {
    startWithLine("AutoTime=12:00\n");
    user().answer(Answer::ok);
    typeInto(AutoHr(), "99");
    AutoHr().type("13:00");
    pickTab("R");
    EXPECT_EQ(form->launch.Onglet.selectedKey(), "R");
    EXPECT_EQ(stored("AutoTime"), "13:00");
}

TEST_F(TimeFieldTest, ARefusalIsForgottenWhenTheFieldIsLeftAgain) {
    startWithLine("AutoTime=12:00\n");
    user().answer(Answer::ok);
    typeInto(AutoHr(), "99");
    AutoHr().leave();
    pickTab("R");
    EXPECT_EQ(form->launch.Onglet.selectedKey(), "R");
}

// The toolkit may have lost the press to the message; what the user does later is meant.
TEST_F(TimeFieldTest, ARefusalCancelsNoCommandGivenLater) {
    startWithLine("AutoTime=12:00\n");
    windows.whileOpen = [&] { clock().advance(60'000); };
    user().answer(Answer::ok);
    typeInto(AutoHr(), "99");
    clock().advance(1'000);
    pickTab("R");
    EXPECT_EQ(form->launch.Onglet.selectedKey(), "S") << "the time of the message does not count";
    user().answer(Answer::ok);
    AutoHr().leave();
    typeInto(AutoHr(), "99");
    clock().advance(1'001);
    pickTab("R");
    EXPECT_EQ(form->launch.Onglet.selectedKey(), "R");
}

TEST_F(TimeFieldTest, ATickStoresATimeTypedInFullWithoutAWord) {
    setClock(2025, 3, 14, 11);
    startWithLine(atNoonSavedYesterday);
    AutoHr().enter();
    AutoHr().type("12:10");
    EXPECT_EQ(tickUntil(2025, 3, 14, 12, 10, 0), 0) << "put off at the last moment";
    EXPECT_EQ(stored("AutoTime"), "12:10");
    EXPECT_EQ(tickUntil(2025, 3, 14, 12, 10, 10), 1);
}

TEST_F(TimeFieldTest, ATickLeavesATimeThatIsBeingTypedAlone) {
    for (const char* typed : {"1", "99", "12:3"}) {
        setClock(2025, 3, 14, 11);
        startWithLine(atNoonSavedYesterday);
        AutoHr().enter();
        AutoHr().type(typed);
        disk().file(R"(C:\Docs\a.txt)", "aaaaa", fileTimeAt(2025, 3, 2));
        EXPECT_EQ(tickUntil(2025, 3, 14, 12, 0, 10), 1);
        EXPECT_EQ(AutoHr().text(), typed);
        EXPECT_EQ(stored("AutoTime"), "12:00");
    }
    EXPECT_THAT(user().messages(), IsEmpty());
}

TEST_F(TimeFieldTest, AWrongTimeCancelsTheTabChange) {
    startWithLine("AutoTime=12:00\n");
    AutoHr().enter();
    AutoHr().type("99");
    user().answer(Answer::ok);
    pickTab("R");
    EXPECT_EQ(form->launch.Onglet.selectedKey(), "S");
    EXPECT_EQ(system->operationKind, OperationKind::backup);
    pickTab("R");
    EXPECT_EQ(form->launch.Onglet.selectedKey(), "R");
}

TEST_F(TimeFieldTest, ATypedTimeIsStoredBeforeATabChangeAndADialog) {
    startWithLine("AutoTime=12:00\n");
    AutoHr().enter();
    AutoHr().type("13:10");
    pickTab("R");
    EXPECT_EQ(stored("AutoTime"), "13:10");
    pickTab("S");
    AutoHr().enter();
    AutoHr().type("14:10");
    user().chooseNextFolder("");
    row(0).CmdD.click();
    EXPECT_EQ(stored("AutoTime"), "14:10");
}

TEST_F(TimeFieldTest, ClosingStoresATypedTimeAndDropsAWrongOneWithoutAWord) {
    startWithLine("AutoTime=12:00\n");
    AutoHr().enter();
    AutoHr().type("13:10");
    form->closeBox();
    EXPECT_FALSE(form->open());
    EXPECT_EQ(stored("AutoTime"), "13:10");
    startWithLine("AutoTime=12:00\n");
    AutoHr().enter();
    AutoHr().type("99");
    form->closeBox();
    EXPECT_FALSE(form->open());
    EXPECT_EQ(stored("AutoTime"), "12:00");
    EXPECT_THAT(user().messages(), IsEmpty());
}

}  // namespace
}  // namespace coffrelune
