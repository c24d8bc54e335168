#include "settings/choices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using Refusal = ExclusionChoice::Refusal;

class ChoicesTest : public testing::Test {
  protected:
    void load(const std::string& content) {
        memory.disk().file(R"(C:\Coffrelune\Coffrelune.ini)", content);
        system.LoadSettings();
    }
    std::string settings() {
        return memory.disk().content(R"(C:\Coffrelune\Coffrelune.ini)").value_or("(none)");
    }

    MemoryPlatform memory;
    Platform platform = memory.platform();
    SystemMod system{platform, {"", R"(C:\Coffrelune)", 3, 5}};
};

TEST_F(ChoicesTest, AnOptionIsStoredAsMinusOneAndOnlyWhenItChanges) {
    load("[Position]\nRecentSeul=0\n");
    EXPECT_TRUE(chooseOption(system, optionTable[0], true).ok());
    EXPECT_EQ(settings(), "[Position]\nRecentSeul=-1\n");
    const std::size_t writes = memory.files().calls("writeWhole").size();
    EXPECT_TRUE(chooseOption(system, optionTable[0], true).ok());
    EXPECT_TRUE(chooseOption(system, optionTable[1], false).ok());
    EXPECT_EQ(memory.files().calls("writeWhole").size(), writes);
}

TEST_F(ChoicesTest, ASwitchOfAConfigurationAndALineAreStoredAsOne) {
    load("[General]\nSource0=C:\\A\nDestination0=D:\\\n");
    EXPECT_TRUE(chooseSwitch(system, switchTable[1], true).ok());
    EXPECT_TRUE(chooseLine(system, 0, true).ok());
    EXPECT_EQ(system.Modifie, 1);
    EXPECT_EQ(system.lineAt(0).selected, 1);
    EXPECT_EQ(settings(), "[General]\nSource0=C:\\A\nDestination0=D:\\\nModifie=1\nSelect0=1\n");
    EXPECT_TRUE(chooseLine(system, 0, false).ok());
    EXPECT_EQ(system.ReadSetting("General", "Select0"), "0");
}

TEST_F(ChoicesTest, NoNumberOfLinesCutsOffOneInUse) {
    load("[General]\nSource0=C:\\A\n[Photos]\nSource4=C:\\B\n");
    EXPECT_THAT(offeredLineCounts(system), ElementsAre(5, 6, 7, 8, 9, 10, 11, 12));
    load("[Position]\nRepertMax=15\n[Photos]\nSource10=C:\\B\n");
    EXPECT_THAT(offeredLineCounts(system), ElementsAre(11, 12, 15));
}

TEST_F(ChoicesTest, ADirectoryOfTheSourceIsLeftOutByItsRest) {
    const auto choose = [](const std::string& directory, const std::vector<std::string>& listed) {
        return chooseExclusion(R"(C:\Data)", directory, listed);
    };
    EXPECT_EQ(choose(R"(c:\dATA\Tmp)", {}).entry, R"(\Tmp)");
    EXPECT_EQ(choose(R"(C:\Data)", {}).entry, "");
    EXPECT_EQ(choose(R"(C:\Data)", {}).refusal, Refusal::none);
    EXPECT_EQ(choose(R"(C:\Data\Tmp)", {R"(\Tmp)"}).refusal, Refusal::taken);
    EXPECT_EQ(choose(R"(C:\Data\tmp)", {R"(\Tmp)"}).refusal, Refusal::none);
    EXPECT_EQ(choose(R"(C:\Autre)", {}).refusal, Refusal::outside);
    EXPECT_EQ(chooseExclusion(R"(C:\)", R"(C:\Temp)", {}).entry, "Temp");
}

TEST_F(ChoicesTest, AListOfExclusionsReplacesTheOneBefore) {
    load(
        "[General]\nRepExclu1_Mode=2\nRepExclu1_Rep1=\\A\nRepExclu1_Rep2=\\B\n"
        "RepExclu1_Rep4=\\D\n");
    storeExclusionList(system, 1, {ExclusionMode::listed, {R"(\C)"}});
    EXPECT_EQ(settings(), "[General]\nRepExclu1_Mode=2\nRepExclu1_Rep1=\\C\n");
    storeExclusionList(system, 1, {static_cast<ExclusionMode>(7), {R"(\C)"}});
    EXPECT_EQ(settings(), "[General]\nRepExclu1_Mode=0\nRepExclu1_Rep1=\\C\n");
}

}  // namespace
}  // namespace coffrelune
