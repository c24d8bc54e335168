#include "settings/configurations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The shared state over C:\Coffrelune\Coffrelune.ini, loaded as a program loads it.
class ConfigurationsTest : public testing::Test {
  protected:
    void load(const std::string& content) {
        memory.disk().file(R"(C:\Coffrelune\Coffrelune.ini)", content);
        system.LoadSettings();
    }
    std::string settings() {
        return memory.disk().content(R"(C:\Coffrelune\Coffrelune.ini)").value_or("(none)");
    }
    std::string file(const std::string& name) {
        return memory.disk().content(R"(C:\Coffrelune\)" + name).value_or("(none)");
    }
    ConfigurationRefusal toAdd(const std::string& name) {
        return refusalToAdd(system, listConfigurations(system), name);
    }

    MemoryPlatform memory;
    Platform platform = memory.platform();
    SystemMod system{platform, {"", R"(C:\Coffrelune)", 3, 5}};
};

TEST_F(ConfigurationsTest, AreListedWithTheirDescription) {
    load("[Position]\n[Travail]\nDescription=\"Bureau\"\n[Photos]\nModifie=1\n");
    std::vector<std::string> entries;
    for (const auto& listed : listConfigurations(system)) entries.push_back(listed.entry);
    EXPECT_THAT(entries, ElementsAre("Travail (Bureau)", "Photos"));
    EXPECT_EQ(chosenName("Travail (Bureau)"), "Travail");
    EXPECT_EQ(chosenName("Photos"), "Photos");
}

TEST_F(ConfigurationsTest, AreNotAddedUnderAReservedOrTakenName) {
    load("[Travail]\nModifie=1\n");
    EXPECT_EQ(toAdd(""), ConfigurationRefusal::noName);
    EXPECT_EQ(toAdd("Position"), ConfigurationRefusal::reserved);
    EXPECT_EQ(toAdd("Position (b)"), ConfigurationRefusal::reserved);
    EXPECT_EQ(toAdd("TRAVAIL"), ConfigurationRefusal::taken);
    EXPECT_EQ(toAdd("Tra"), ConfigurationRefusal::taken);
    EXPECT_EQ(toAdd("Photos"), ConfigurationRefusal::none);
}

// The list has no room for it, the file has.
TEST_F(ConfigurationsTest, ANameBeyondTheListIsTakenToo) {
    load("[" + std::string(SettingsFile::longestValue, 'x') +
         "]\nModifie=1\n[Photos]\nModifie=1\n");
    ASSERT_THAT(listConfigurations(system), IsEmpty());
    EXPECT_EQ(toAdd("Photos"), ConfigurationRefusal::taken);
}

TEST_F(ConfigurationsTest, ARenamedOneIsNotInItsOwnWay) {
    load("[Travail]\nModifie=1\n[Trésors]\nModifie=1\n");
    EXPECT_EQ(refusalToRename(system, "Travail", "Trav"), ConfigurationRefusal::none);
    EXPECT_EQ(refusalToRename(system, "Travail", "Tr"), ConfigurationRefusal::taken);
    EXPECT_EQ(refusalToRename(system, "Travail", "Trésors"), ConfigurationRefusal::taken);
    EXPECT_EQ(refusalToRename(system, "Travail", "Position"), ConfigurationRefusal::reserved);
    EXPECT_EQ(refusalToRename(system, "Travail", ""), ConfigurationRefusal::noName);
}

TEST_F(ConfigurationsTest, TheOneInUseIsListedWithoutASection) {
    load("[Photos]\nModifie=1\n");
    system.configurationName = "Nouvelle";
    EXPECT_EQ(listWithCurrent(system).back().name, "Nouvelle");
    system.configurationName = "photos";
    EXPECT_EQ(listWithCurrent(system).size(), 1U);
}

TEST_F(ConfigurationsTest, ACopyIsGivenAFreeName) {
    load("[Photos]\nModifie=1\n[Photos 2]\nModifie=1\n");
    EXPECT_EQ(nameForCopy(system, "Photos"), "Photos 3");
    EXPECT_EQ(nameForCopy(system, "Nouvelle"), "Nouvelle 2");
}

TEST_F(ConfigurationsTest, AreErasedWithTheirErrorLists) {
    load("[General]\nModifie=1\n[Photos]\nModifie=1\n");
    memory.disk().file(R"(C:\Coffrelune\S_Photos.err)", "x");
    memory.disk().file(R"(C:\Coffrelune\S_General.err)", "y");
    EXPECT_EQ(refusalToErase(system, "general"), ConfigurationRefusal::inUse);
    EXPECT_EQ(refusalToErase(system, "position"), ConfigurationRefusal::reserved);
    EXPECT_EQ(refusalToErase(system, ""), ConfigurationRefusal::noName);
    EXPECT_EQ(refusalToErase(system, "Photos"), ConfigurationRefusal::none);
    EXPECT_TRUE(eraseConfiguration(system, "Photos").ok());
    EXPECT_EQ(settings(), "[General]\nModifie=1\n");
    EXPECT_EQ(file("S_Photos.err"), "(none)");
    EXPECT_EQ(file("S_General.err"), "y");
}

TEST_F(ConfigurationsTest, AreRenamedWithAllThatBearsTheName) {
    load("[Position]\nConfig=Photos\n; les miennes\n[Photos]\n; une note\nModifie=1\nAutre=2\n");
    memory.disk().file(R"(C:\Coffrelune\S_Photos.err)", "x");
    EXPECT_TRUE(renameConfiguration(system, "Photos", "Images").ok());
    EXPECT_EQ(settings(),
              "[Position]\nConfig=Images\n; les miennes\n[Images]\n; une note\nModifie=1\n"
              "Autre=2\n");
    EXPECT_EQ(system.configurationName, "Images");
    EXPECT_EQ(file("S_Photos.err"), "(none)");
    EXPECT_EQ(file("S_Images.err"), "x");
}

TEST_F(ConfigurationsTest, EverySectionOfTheNameIsRenamed) {
    load("[Photos]\nModifie=1\n[photos]\nModifie=0\n");
    EXPECT_TRUE(renameConfiguration(system, "Photos", "Images").ok());
    EXPECT_EQ(settings(), "[Images]\nModifie=1\n[Images]\nModifie=0\n");
}

TEST_F(ConfigurationsTest, KeepTheirSettingsWhenTheNewNameIsTaken) {
    load("[Photos]\nModifie=1\n[Travail]\nModifie=0\n");
    memory.disk().file(R"(C:\Coffrelune\S_Photos.err)", "x");
    EXPECT_EQ(renameConfiguration(system, "Photos", "Travail").code(),
              error_number::invalidParameter);
    EXPECT_EQ(system.copySection("Photos", "travail").code(), error_number::invalidParameter);
    EXPECT_EQ(settings(), "[Photos]\nModifie=1\n[Travail]\nModifie=0\n");
    EXPECT_EQ(file("S_Photos.err"), "x");
}

TEST_F(ConfigurationsTest, KeepTheOldErrorListWhenTheNewOneCannotBeWritten) {
    load("[Photos]\nModifie=1\n");
    memory.disk().file(R"(C:\Coffrelune\S_Photos.err)", "x");
    memory.disk().directory(R"(C:\Coffrelune\S_Images.err)");
    EXPECT_FALSE(renameConfiguration(system, "Photos", "Images").ok());
    EXPECT_EQ(settings(), "[Images]\nModifie=1\n");
    EXPECT_EQ(file("S_Photos.err"), "x");
}

TEST_F(ConfigurationsTest, AreCopiedWithoutTheResultsOfTheirRuns) {
    load(
        "[Photos]\nSource0=\" C:\\A \"\nDestination0=\"D:\\\"\nLastSave=01/02/2026 10:00:00\n"
        "LastDureeSave=00:00:01\nRepExclu0_Mode=2\nRepExclu0_Rep1=\\Tmp\nInconnue= deux  mots\n"
        "[Fin]\nRien=1\n");
    EXPECT_TRUE(system.copySection("Photos", "Images").ok());
    EXPECT_EQ(settings(),
              "[Photos]\nSource0=\" C:\\A \"\nDestination0=\"D:\\\"\nLastSave=01/02/2026 "
              "10:00:00\nLastDureeSave=00:00:01\nRepExclu0_Mode=2\nRepExclu0_Rep1=\\Tmp\n"
              "Inconnue= deux  mots\n[Fin]\nRien=1\n[Images]\nSource0=\" C:\\A \"\n"
              "Destination0=\"D:\\\"\nRepExclu0_Mode=2\nRepExclu0_Rep1=\\Tmp\n"
              "Inconnue= deux  mots\n");
}

// The code page cannot hold the name, and the whole file becomes one that can.
TEST_F(ConfigurationsTest, TakeANameThatTheCodePageDoesNotHold) {
    load("[Photos]\nSource0=\"C:\\\xC9t\xE9\"\n");
    EXPECT_TRUE(renameConfiguration(system, "Photos", "写真").ok());
    EXPECT_EQ(system.ReadSetting("写真", "Source0"), "C:\\Été");
    EXPECT_TRUE(system.copySection("写真", "絵").ok());
    EXPECT_EQ(system.ReadSetting("絵", "Source0"), "C:\\Été");
}

}  // namespace
}  // namespace coffrelune
