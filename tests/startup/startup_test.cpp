#include "startup/startup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "operation/copie.h"
#include "platform/memory/memory_platform.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* home = R"(C:\Coffrelune)";
constexpr const char* settings = R"(C:\Coffrelune\Coffrelune.ini)";

class StartUp : public testing::Test {
  protected:
    StartUp() {
        memory.disk().file(
            settings,
            "[Position]\r\nConfig=Maison\r\n"
            "[Travail]\r\nSource0=C:\\Docs\r\nDestination0=F:\\Save\r\nSelect0=1\r\n"
            "[Maison]\r\nSource0=C:\\Photos\r\nDestination0=F:\\Save\r\nSelect0=1\r\n"
            "[General]\r\nDescription=x\r\n");
        memory.disk().file(R"(C:\Docs\a.txt)", "a");
        memory.disk().file(R"(C:\Photos\p.jpg)", "p");
        memory.disk().directory(R"(F:\Save)");
    }
    void TearDown() override { EXPECT_THAT(memory.windows().problems(), IsEmpty()); }

    bool start(const std::string& commandLine) {
        system = std::make_unique<SystemMod>(platform, ProgramContext{commandLine, home, 3, 5});
        return startUp(*system, memory.guard());
    }
    ExitStatus runAuto() {
        WindowStage stage(*system);
        return coffrelune::runAuto(*system, stage);
    }
    const std::vector<std::string>& notices() { return memory.windows().notices(); }

    MemoryPlatform memory;
    Platform platform = memory.platform();
    std::unique_ptr<SystemMod> system;
};

// ---- one process --------------------------------------------------------------------------------

TEST_F(StartUp, ClaimsTheDirectoryOfTheSettings) {
    EXPECT_TRUE(start(""));
    EXPECT_THAT(memory.guard().claims(), ElementsAre(home));
}

TEST_F(StartUp, RefusesASecondProcessWithItsMessage) {
    memory.guard().setHeldByAnother(home);
    memory.windows().answer(Answer::ok);
    EXPECT_FALSE(start("/Travail"));
    EXPECT_THAT(notices(), IsEmpty());
    ASSERT_EQ(memory.windows().messages().size(), 1U);
    const MessageBoxText& message = memory.windows().messages()[0];
    EXPECT_EQ(message.text,
              "LE PROGRAMME EST DEJA EN MEMOIRE !\r\n     (Regardez la barre des taches)");
    EXPECT_EQ(message.title, "Coffrelune Version 3.05");
    EXPECT_EQ(message.icon, MessageIcon::exclamation);
    EXPECT_EQ(message.buttons, MessageButtons::ok);
}

TEST_F(StartUp, RefusesASecondUnattendedProcessWithoutABoxToClose) {
    for (const char* arguments : {"/Auto", "/Travail /auto"}) {
        memory.guard().setHeldByAnother(home);
        EXPECT_FALSE(start(arguments));
    }
    const std::string text =
        "LE PROGRAMME EST DEJA EN MEMOIRE !\r\n     (Regardez la barre des taches)";
    EXPECT_THAT(notices(), ElementsAre(text, text));
    EXPECT_THAT(memory.windows().messages(), IsEmpty());
}

TEST_F(StartUp, RefusesASecondProcessBeforeItReadsTheSettings) {
    memory.guard().setHeldByAnother(home);
    EXPECT_FALSE(start("/Auto /Travail"));
    EXPECT_THAT(memory.files().calls(), IsEmpty());
    EXPECT_EQ(system->configurationName, "");
    EXPECT_FALSE(system->AutoMode);
}

// ---- the command line ---------------------------------------------------------------------------

TEST_F(StartUp, WithoutArgumentsTakesTheConfigurationUsedLast) {
    EXPECT_TRUE(start(""));
    EXPECT_EQ(system->configurationName, "Maison");
    EXPECT_EQ(system->lines[0].source, R"(C:\Photos)");
    EXPECT_FALSE(system->AutoMode);
}

TEST_F(StartUp, WithoutAnythingElseTakesGeneral) {
    memory.disk().file(settings, "[General]\r\nSource0=C:\\Docs\r\n");
    EXPECT_TRUE(start(""));
    EXPECT_EQ(system->configurationName, "General");
    EXPECT_EQ(system->lines[0].source, R"(C:\Docs)");
}

struct Arguments {
    const char* text;
    const char* configuration;
    bool automatic;
};

class CommandLineArguments : public StartUp, public testing::WithParamInterface<Arguments> {};

TEST_P(CommandLineArguments, ChooseConfigurationAndMode) {
    EXPECT_TRUE(start(GetParam().text));
    EXPECT_EQ(system->configurationName, GetParam().configuration);
    EXPECT_EQ(system->AutoMode, GetParam().automatic);
}

INSTANTIATE_TEST_SUITE_P(
    StartUp, CommandLineArguments,
    testing::Values(
        Arguments{"/Auto", "Maison", true}, Arguments{"/auto", "Maison", true},
        Arguments{"/AUTO /TRAVAIL", "Travail", true}, Arguments{"/Auto /Travail", "Travail", true},
        Arguments{"/Travail /Auto", "Travail", true}, Arguments{"/travail", "Travail", false},
        Arguments{"Travail", "Travail", false}, Arguments{"x/Auto", "Maison", true},
        Arguments{"/Auto/", "Maison", true}, Arguments{"/Travail/", "Maison", false},
        Arguments{"/Travail /Maison /Auto", "Maison", true},
        Arguments{"/ travail ", "Travail", false}, Arguments{" travail", " travail", false},
        Arguments{"/Inconnue", "Inconnue", false}));

// ---- unattended ---------------------------------------------------------------------------------

TEST_F(StartUp, AutoSavesTheNamedConfiguration) {
    ASSERT_TRUE(start("/Auto /Travail"));
    EXPECT_EQ(runAuto(), ExitStatus::clean);
    EXPECT_EQ(memory.disk().content(R"(F:\Save\Docs\a.txt)"), "a");
    EXPECT_FALSE(memory.disk().exists(R"(F:\Save\Photos)"));
    EXPECT_THAT(notices(), IsEmpty());
    EXPECT_EQ(system->ReadSetting("Travail", "LastSave"), "15/03/2024 10:00:00");
}

TEST_F(StartUp, AutoSavesTheConfigurationUsedLast) {
    ASSERT_TRUE(start("/Auto"));
    EXPECT_EQ(runAuto(), ExitStatus::clean);
    EXPECT_EQ(memory.disk().content(R"(F:\Save\Photos\p.jpg)"), "p");
}

TEST_F(StartUp, AutoReplacesWithoutAsking) {
    memory.disk().file(R"(F:\Save\Docs\a.txt)", "old");
    ASSERT_TRUE(start("/Auto /Travail"));
    EXPECT_EQ(runAuto(), ExitStatus::clean);
    EXPECT_EQ(memory.disk().content(R"(F:\Save\Docs\a.txt)"), "a");
}

TEST_F(StartUp, AutoRefusesAConfigurationThatDoesNotExist) {
    ASSERT_TRUE(start("/Auto /Travial"));
    EXPECT_EQ(runAuto(), ExitStatus::wrongUse);
    EXPECT_THAT(notices(), ElementsAre("La configuration « Travial » n'existe pas.\n"
                                       "Configurations enregistrées : Travail, Maison, General\n"
                                       "Fichier de réglages : C:\\Coffrelune\\Coffrelune.ini"));
    EXPECT_THAT(memory.disk().list(R"(F:\Save)"), IsEmpty());
    EXPECT_THAT(memory.files().writes(), ElementsAre(R"(removeLeftovers C:\Coffrelune)"));
}

TEST_F(StartUp, AutoRefusesSettingsThatCannotBeRead) {
    memory.disk().setUnreadable(settings);
    ASSERT_TRUE(start("/Auto"));
    EXPECT_EQ(runAuto(), ExitStatus::wrongUse);
    EXPECT_EQ(notices().size(), 1U);
    EXPECT_THAT(memory.files().writes(), ElementsAre(R"(removeLeftovers C:\Coffrelune)"));
}

TEST_F(StartUp, AutoNamesEveryErrorAndTellsTheScript) {
    memory.disk().file(R"(C:\Docs\b.txt)", "b");
    memory.disk().setInUse(R"(C:\Docs\a.txt)");
    ASSERT_TRUE(start("/Auto /Travail"));
    system->options.ContinueOnError = -1;
    EXPECT_EQ(runAuto(), ExitStatus::errors);
    EXPECT_THAT(notices(),
                ElementsAre("Sauvegarde terminée, nombre d'erreur(s): 1\r\n\r\nDurée : 00:00:00",
                            R"(Erreur: 32 - Fichier: C:\Docs\a.txt)"));
    EXPECT_EQ(memory.disk().content(R"(F:\Save\Docs\b.txt)"), "b");
}

TEST_F(StartUp, AutoTellsTheScriptThatTheDestinationIsAbsent) {
    memory.disk().volume(R"(F:\)").present = false;
    ASSERT_TRUE(start("/Auto /Travail"));
    EXPECT_EQ(runAuto(), ExitStatus::interrupted);
    EXPECT_THAT(notices(),
                ElementsAre("Rien à sauvegarder !\n\nLe disque destination n'existe pas."));
}

// ---- the name remembered ------------------------------------------------------------------------

TEST_F(StartUp, TheConfigurationInUseIsRemembered) {
    ASSERT_TRUE(start("/Travail"));
    rememberConfiguration(*system);
    EXPECT_EQ(system->ReadSetting("Position", "Config"), "Travail");
}

TEST_F(StartUp, TheReservedSectionIsNoConfiguration) {
    ASSERT_TRUE(start("/Auto /position"));
    EXPECT_EQ(runAuto(), ExitStatus::wrongUse);
    rememberConfiguration(*system);
    EXPECT_EQ(system->ReadSetting("Position", "Config"), "Maison");
}

TEST_F(StartUp, TheReservedSectionIsNeverWorkedOn) {
    ASSERT_TRUE(start("/position"));
    EXPECT_EQ(system->configurationName, "Maison");
    EXPECT_EQ(system->lines[0].source, R"(C:\Photos)");
}

TEST_F(StartUp, ARememberedConfigurationWithoutASectionStaysRemembered) {
    memory.disk().file(settings, "[Position]\r\nConfig=Nouvelle\r\n");
    ASSERT_TRUE(start(""));
    rememberConfiguration(*system);
    EXPECT_EQ(system->ReadSetting("Position", "Config"), "Nouvelle");
}

TEST_F(StartUp, AMistypedConfigurationIsNotRemembered) {
    ASSERT_TRUE(start("/Travial"));
    rememberConfiguration(*system);
    EXPECT_EQ(system->ReadSetting("Position", "Config"), "Maison");
    EXPECT_THAT(memory.files().writes(), ElementsAre(R"(removeLeftovers C:\Coffrelune)"));
}

}  // namespace
}  // namespace coffrelune
