#include "settings/system_mod.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "platform/memory/memory_platform.h"
#include "settings/setting_names.h"
#include "system/text.h"

namespace coffrelune {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::FieldsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string path = "C:\\Program\\Coffrelune.ini";

class SystemModTest : public testing::Test {
  protected:
    SystemModTest() { memory.disk().directory("C:\\Program"); }

    void put(const std::string& bytes) { memory.disk().file(path, bytes); }
    std::string onDisk() { return memory.disk().content(path).value_or("(absent)"); }

    /// A fresh start of the program.
    SystemMod& start(const std::string& commandLine = {}) {
        state =
            std::make_unique<SystemMod>(services, ProgramContext{commandLine, "C:\\Program", 3, 5});
        state->LoadSettings();
        return *state;
    }

    MemoryPlatform memory;
    Platform services = memory.platform();
    std::unique_ptr<SystemMod> state;
};

TEST_F(SystemModTest, WritesTheMinorVersionInTwoDigits) {
    EXPECT_EQ(start().programTitle, "Coffrelune Version 3.05");
    EXPECT_EQ(SystemMod(services, {"", "C:\\", 3, 12}).programTitle, "Coffrelune Version 3.12");
    EXPECT_EQ(SystemMod(services, {"", "C:\\", 10, 0}).programTitle, "Coffrelune Version 10.00");
}

TEST_F(SystemModTest, FindsItsFileBesideTheProgram) {
    SystemMod direct(services, {"", "C:\\Program\\", 3, 5});
    EXPECT_TRUE(direct.WriteSetting("A", "x", "1").ok());
    EXPECT_EQ(onDisk(), "[A]\r\nx=1\r\n");
    SystemMod root(services, {"", "C:\\", 3, 5});
    EXPECT_TRUE(root.WriteSetting("A", "x", "1").ok());
    EXPECT_TRUE(memory.disk().exists("C:\\Coffrelune.ini"));
}

TEST_F(SystemModTest, NeverDeletesTheReservedSection) {
    memory.disk().file(path, "[Position]\r\nRepertMax=3\r\n");
    EXPECT_EQ(start().WriteSetting("POSITION", "", "").code(), error_number::accessDenied);
    EXPECT_EQ(onDisk(), "[Position]\r\nRepertMax=3\r\n");
    EXPECT_EQ(start().WriteSetting(" position ", "", "").code(), error_number::accessDenied);
    EXPECT_FALSE(start().configurationExists("position"));
}

TEST_F(SystemModTest, TakesTheReservedNameOfTheCommandLineForNone) {
    put("[Position]\nConfig=Photos\n");
    for (const char* commandLine : {"/position", "POSITION", " position", "/Auto /Position"}) {
        EXPECT_EQ(start(commandLine).configurationName, "Photos") << commandLine;
        EXPECT_TRUE(isReserved(state->askedConfiguration));
    }
    put("[Position]\nConfig=\" position\"\n");
    EXPECT_EQ(start("/position").configurationName, "General");
}

TEST_F(SystemModTest, RemembersEveryConfigurationButOneThatWasOnlyTried) {
    put("[Position]\nConfig=Photos\n[Travail]\nSource0=x\n");
    const auto remembered = [this] {
        state->rememberConfiguration();
        return state->ReadSetting("Position", "Config");
    };
    start("/travial");
    EXPECT_EQ(remembered(), "Photos");
    start("/travail");
    EXPECT_EQ(remembered(), "Travail");
    start("/travial").configurationName = "Nouvelle";
    EXPECT_EQ(remembered(), "Nouvelle");
    start("/travial").configurationName = "Travail";
    EXPECT_EQ(remembered(), "Travail");
}

TEST_F(SystemModTest, TakesTheReservedNameForNoRememberedConfiguration) {
    memory.disk().file(path, "[Position]\r\nConfig=Position\r\n");
    EXPECT_EQ(start().configurationName, "General");
}

TEST_F(SystemModTest, StartsWithDefaultsWithoutAFile) {
    const SystemMod& mod = start();
    EXPECT_EQ(mod.maximumIndex, 5);
    EXPECT_EQ(mod.pendingMaximumIndex, 5);
    EXPECT_THAT(mod.lines, AllOf(SizeIs(6), Each(FieldsAre("", "", 0))));
    EXPECT_EQ(mod.configurationName, "General");
    EXPECT_FALSE(mod.AutoMode);
    EXPECT_EQ(mod.AutoTime, "00:00");
    EXPECT_THAT(mod.soundNames, ElementsAre("Ok", "Erreur"));
    EXPECT_EQ(mod.options.RecentSeul, 0);
    EXPECT_EQ(mod.options.SynchroCopie, 0);
    EXPECT_EQ(mod.SuiviAnalyse, 0);
    EXPECT_EQ(mod.OsLevel, 2);
    EXPECT_EQ(onDisk(), "(absent)") << "reading creates nothing";
}

TEST_F(SystemModTest, TakesTheLevelOfTheSystemWhenItLoads) {
    ProgramContext context{"", "C:\\Program", 3, 5};
    for (const int level : {0, 1, 2}) {
        context.systemLevel = static_cast<std::int16_t>(level);
        SystemMod mod(services, context);
        mod.LoadSettings();
        EXPECT_EQ(mod.OsLevel, level);
    }
}

TEST_F(SystemModTest, ReadsTheNumberOfLines) {
    const std::vector<std::pair<std::string, int>> cases = {
        {"0", 5},   {"abc", 5}, {"-3", 5},        {"", 5},           {"1", 0},
        {"12", 11}, {" 7x", 6}, {"99999", 32767}, {"-2147483648", 5}};
    for (const auto& [value, expected] : cases) {
        put("[Position]\nRepertMax=" + value + "\n");
        const SystemMod& mod = start();
        EXPECT_EQ(mod.maximumIndex, expected) << value;
        EXPECT_THAT(mod.lines, SizeIs(static_cast<std::size_t>(expected) + 1)) << value;
    }
}

TEST_F(SystemModTest, TakesTheConfigurationFromTheCommandLineFirst) {
    put("[Position]\nConfig=Photos\n");
    EXPECT_EQ(start("/travail").configurationName, "Travail");
    EXPECT_FALSE(state->AutoMode);
    EXPECT_EQ(start(" travail").configurationName, " travail");
    EXPECT_EQ(start("/Auto /Travail").configurationName, "Travail");
    EXPECT_TRUE(state->AutoMode);
}

TEST_F(SystemModTest, TakesTheLastConfigurationWhenTheCommandLineNamesNone) {
    put("[Position]\nConfig=Photos\n");
    for (const char* commandLine : {"", "/Auto", "x/Auto", "/Auto/"}) {
        EXPECT_EQ(start(commandLine).configurationName, "Photos") << commandLine;
    }
    put("[Position]\nConfig=\n");
    EXPECT_EQ(start("/Auto/").configurationName, "General");
    EXPECT_TRUE(state->AutoMode);
}

TEST_F(SystemModTest, TellsALeadingBlankApart) {
    put("[Travail]\nDescription=a\n[ travail]\nDescription=b\n");
    EXPECT_EQ(start("Travail").description, "a");
    EXPECT_EQ(start(" travail").description, "b");
}

TEST_F(SystemModTest, LoadsAConfigurationWithoutASectionAsEmpty) {
    put("[General]\nDescription=x\nSource0=C:\\A\n");
    const SystemMod& mod = start("/Absente");
    EXPECT_EQ(mod.description, "");
    EXPECT_THAT(mod.lines, Each(FieldsAre("", "", 0)));
    EXPECT_FALSE(state->configurationExists("Absente"));
    EXPECT_TRUE(state->configurationExists("General"));
}

TEST_F(SystemModTest, LoadsTheOptions) {
    put("[Position]\nRecentSeul=-1\nDelReadOnly=1\nArbreMode=-1\nSignalSonore=2\nSynchroDate=-1\n"
        "ContinueOnError=-1\nAltCopie=99999\nCorrectEteOff=-1\nSynchroCopie=0\nSuiviAnalyse=1\n"
        "SignalOk=Cloche\nSignalErreur=\nDatesArrondies=-1\n");
    const CopyOptions& options = start().options;
    EXPECT_EQ(options.RecentSeul, -1);
    EXPECT_EQ(options.DelReadOnly, 1);
    EXPECT_EQ(options.ArbreMode, -1);
    EXPECT_EQ(options.SignalSonore, 2);
    EXPECT_EQ(options.SynchroDate, -1);
    EXPECT_EQ(options.ContinueOnError, -1);
    EXPECT_EQ(options.AltCopie, 99999);
    EXPECT_EQ(options.CorrectEteOff, -1);
    EXPECT_EQ(options.SynchroCopie, 0);
    EXPECT_EQ(options.DatesArrondies, -1);
    EXPECT_EQ(state->SuiviAnalyse, 1);
    EXPECT_THAT(state->soundNames, ElementsAre("Cloche", "Erreur"));
}

TEST_F(SystemModTest, TakesAnEmptySoundNameAsAbsent) {
    put("[Position]\nSignalOk=\nSignalErreur=Bip\n");
    EXPECT_THAT(start().soundNames, ElementsAre("Ok", "Bip"));
}

TEST_F(SystemModTest, LoadsTheLinesAndTheSchedule) {
    put("[Position]\nRepertMax=3\n[General]\nDescription=\" Mes photos \"\n"
        "Source0=\" C:\\Data \"\nDestination0=\"F:\\\"\nSelect0=1\n"
        "Source2=C:\\B\nSelect2=-1\nSource3=C:\\trop\nSelect1=0\n"
        "SelectP=1\nProgToRun=C:\\p.exe\nPrmToRun=\"\"a\" \"b\"\"\n"
        "Confirmation=1\nModifie=1\nAutoSave=1\nAutoTime=12:30\n");
    const SystemMod& mod = start();
    EXPECT_EQ(mod.description, " Mes photos ");
    EXPECT_THAT(mod.lines, ElementsAre(FieldsAre(" C:\\Data ", "F:\\", 1), FieldsAre("", "", 0),
                                       FieldsAre("C:\\B", "", 1)));
    EXPECT_EQ(mod.SelectP, 1);
    EXPECT_EQ(mod.ProgToRun, "C:\\p.exe");
    EXPECT_EQ(mod.PrmToRun, "\"a\" \"b\"");
    EXPECT_EQ(mod.Confirmation, 1);
    EXPECT_EQ(mod.Modifie, 1);
    EXPECT_EQ(mod.AutoSave, 1);
    EXPECT_EQ(mod.AutoTime, "12:30");
}

TEST_F(SystemModTest, NumbersLinesInDecimalWithoutZeros) {
    put("[Position]\nRepertMax=12\n[General]\nSource10=C:\\dix\nSource01=C:\\non\n");
    const SystemMod& mod = start();
    EXPECT_EQ(mod.lines[10].source, "C:\\dix");
    EXPECT_EQ(mod.lines[1].source, "");
}

TEST_F(SystemModTest, LoadsTheLastResultsOfEachKind) {
    put("[General]\nLastSave=01/03/2025 08:00:00\nLastSaveErr=02/03/2025 08:00:00\n"
        "LastSaveNbErr=3\nLastDureeSave=00:01:00\nLastDureeSaveErr=00:02:00\n"
        "LastRest=03/03/2025 08:00:00\nLastRestErr=04/03/2025 08:00:00\nLastRestNbErr=4\n"
        "LastDureeRest=00:03:00\nLastDureeRestErr=00:04:00\nLastComp=05/03/2025 08:00:00\n"
        "LastCompErr=06/03/2025 08:00:00\nLastCompNbErr=5\nLastDureeComp=00:05:00\n"
        "LastDureeCompErr=00:06:00\n");
    SystemMod& mod = start();
    const LastResult& backup = mod.lastResult(OperationKind::backup);
    EXPECT_EQ(backup.cleanDate, "01/03/2025 08:00:00");
    EXPECT_EQ(backup.errorDate, "02/03/2025 08:00:00");
    EXPECT_EQ(backup.errorCount, 3);
    EXPECT_EQ(backup.cleanDuration, "00:01:00");
    EXPECT_EQ(backup.errorDuration, "00:02:00");
    EXPECT_EQ(mod.lastResult(OperationKind::restore).cleanDate, "03/03/2025 08:00:00");
    EXPECT_EQ(mod.lastResult(OperationKind::restore).errorCount, 4);
    EXPECT_EQ(mod.lastResult(OperationKind::restore).errorDuration, "00:04:00");
    EXPECT_EQ(mod.lastResult(OperationKind::comparison).errorDate, "06/03/2025 08:00:00");
    EXPECT_EQ(mod.lastResult(OperationKind::comparison).cleanDuration, "00:05:00");
}

TEST_F(SystemModTest, ReplacesEverythingWhenAnotherConfigurationIsLoaded) {
    put("[General]\nDescription=d\nSource0=C:\\A\nSelect0=1\nAutoTime=12:00\nLastSaveNbErr=3\n");
    SystemMod& mod = start();
    mod.configurationName = "Vide";
    mod.LoadConfiguration();
    EXPECT_EQ(mod.description, "");
    EXPECT_THAT(mod.lines, Each(FieldsAre("", "", 0)));
    EXPECT_EQ(mod.AutoTime, "00:00");
    EXPECT_EQ(mod.lastResult(OperationKind::backup).errorCount, 0);
}

TEST_F(SystemModTest, ArmsTheScheduleFromTheClock) {
    put("[General]\nAutoTime=12:00\n");
    memory.clock().set({2025, 3, 3, 11, 0, 0, 0});
    EXPECT_EQ(start().nextDate, "03/03/2025");
    memory.clock().set({2024, 12, 31, 13, 0, 0, 0});
    EXPECT_EQ(start().nextDate, "01/01/2025");
}

TEST_F(SystemModTest, TestsWhatToWriteInAFixedOrder) {
    put("[A]\nx=1\ny=2\n[B]\nz=3\n");
    SystemMod& mod = start();
    EXPECT_TRUE(mod.WriteSetting("", "x", "v").ok());
    EXPECT_TRUE(mod.WriteSetting("", "", "").ok());
    EXPECT_EQ(onDisk(), "[A]\nx=1\ny=2\n[B]\nz=3\n") << "no section: nothing to flush";
    EXPECT_TRUE(mod.WriteSetting("A", "x", "").ok());
    EXPECT_EQ(onDisk(), "[A]\ny=2\n[B]\nz=3\n") << "no value: the key goes";
    EXPECT_TRUE(mod.WriteSetting("A", "x", "4").ok());
    EXPECT_EQ(mod.ReadSetting("A", "x"), "4");
    EXPECT_TRUE(mod.WriteSetting("A", "", "5").ok());
    EXPECT_EQ(onDisk(), "[B]\nz=3\n") << "no key: the section goes";
}

TEST_F(SystemModTest, TellsThatTheFileCannotBeUsed) {
    put(std::string("\0", 1));
    EXPECT_EQ(start().configurationName, "General");
    EXPECT_EQ(state->settingsStatus().code(), 13U);
    EXPECT_EQ(state->WriteSetting("A", "x", "1").code(), 13U);
    EXPECT_EQ(onDisk(), std::string("\0", 1));
}

TEST_F(SystemModTest, KeepsBlanksOfAPathAfterAReload) {
    SystemMod& mod = start();
    EXPECT_TRUE(mod.WriteSetting("General", "Source0", QuoteValue(" C:\\Data ")).ok());
    EXPECT_EQ(start().lines[0].source, " C:\\Data ");
}

TEST_F(SystemModTest, ListsConfigurationsInFileOrderWithoutPosition) {
    put("[Travail]\n[Position]\n[General]\n[POSITION]\n");
    std::vector<std::string> list = {"avant"};
    start().ListConfigurations(list);
    EXPECT_THAT(list, ElementsAre("avant", "Travail", "General", "POSITION"));
}

TEST_F(SystemModTest, StopsTheListAtAnEmptyName) {
    put("[A]\n[]\n[B]\n");
    std::vector<std::string> list;
    start().ListConfigurations(list);
    EXPECT_THAT(list, ElementsAre("A"));
    put("[]\n[A]\n");
    list.clear();
    start().ListConfigurations(list);
    EXPECT_THAT(list, IsEmpty());
}

// Eleven names of 92 characters and one separator each come to 1023.
TEST_F(SystemModTest, ListsTheNamesThatFit1023Characters) {
    std::string bytes;
    for (char c = 'a'; c < 'a' + 11; ++c) bytes += "[" + std::string(92, c) + "]\n";
    put(bytes + "[x]\n");
    std::vector<std::string> list;
    start().ListConfigurations(list);
    EXPECT_THAT(list, SizeIs(11));
    put("[Position]\n" + bytes);
    list.clear();
    start().ListConfigurations(list);
    EXPECT_THAT(list, SizeIs(10)) << "the reserved name takes its room as well";
}

TEST_F(SystemModTest, CountsCharactersNotBytesAndListsNothingBehindWhatDoesNotFit) {
    std::string bytes;
    for (char c = 'a'; c < 'a' + 10; ++c) bytes += "[" + std::string(91, '\xE9') + c + "]\n";
    std::vector<std::string> list;
    put(bytes + "[" + std::string(92, 'z') + "]\n");
    start().ListConfigurations(list);
    EXPECT_THAT(list, SizeIs(11));
    put(bytes + "[" + std::string(93, 'z') + "]\n[y]\n");
    list.clear();
    start().ListConfigurations(list);
    EXPECT_THAT(list, SizeIs(10));
}

TEST_F(SystemModTest, FindsTheLastUsedLine) {
    SystemMod& mod = start();
    EXPECT_EQ(mod.LastUsedLine(), 0);
    mod.lines[0].source = "C:\\A";
    EXPECT_EQ(mod.LastUsedLine(), 0);
    mod.lines[2].destination = "F:\\";
    EXPECT_EQ(mod.LastUsedLine(), 2);
    mod.lines[5].source = "C:\\B";
    EXPECT_EQ(mod.LastUsedLine(), 5);
}

TEST_F(SystemModTest, KeepsTheLinesWhenTheirNumberChanges) {
    SystemMod& mod = start();
    mod.lines[1].source = "C:\\A";
    mod.lines[1].destination = "F:\\";
    mod.lines[1].selected = 1;
    mod.resizeLines(11);
    EXPECT_EQ(mod.maximumIndex, 11);
    EXPECT_THAT(mod.lines, SizeIs(12));
    mod.resizeLines(1);
    EXPECT_THAT(mod.lines, ElementsAre(FieldsAre("", "", 0), FieldsAre("C:\\A", "F:\\", 1)));
    mod.resizeLines(-4);
    EXPECT_THAT(mod.lines, SizeIs(1));
}

TEST_F(SystemModTest, LivesBesideAnother) {
    SystemMod first(services, {"/A", "C:\\Program", 3, 5});
    SystemMod second(services, {"/B", "C:\\Program", 3, 5});
    first.LoadSettings();
    second.LoadSettings();
    EXPECT_TRUE(first.WriteSetting("A", "x", "1").ok());
    EXPECT_TRUE(second.WriteSetting("B", "x", "2").ok());
    EXPECT_EQ(first.ReadSetting("B", "x"), "2");
    EXPECT_EQ(first.configurationName, "A");
    EXPECT_EQ(second.configurationName, "B");
}

}  // namespace
}  // namespace coffrelune
