#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"
#include "settings/system_mod.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string path = "C:\\Coffrelune.ini";

class ExclusionsTest : public testing::Test {
  protected:
    ExclusionsTest() { mod.LoadSettings(); }

    void put(const std::string& keys) { memory.disk().file(path, "[General]\n" + keys, ++time); }
    std::string onDisk() { return memory.disk().content(path).value_or("(absent)"); }

    MemoryPlatform memory;
    Platform services = memory.platform();
    std::uint64_t time = MemoryDisk::defaultTime;
    MemoryNode& root = memory.disk().directory("C:\\");
    SystemMod mod{services, {"", "C:\\", 3, 5}};
};

TEST_F(ExclusionsTest, LoadsTheListOfOneLine) {
    put("RepExclu0_Mode=1\nRepExclu3_Mode=2\nRepExclu3_Rep1=\\Tmp\nRepExclu3_Rep2=\" a \"\n");
    mod.LoadExclusions(3);
    EXPECT_EQ(mod.exclusions.mode, ExclusionMode::listed);
    EXPECT_THAT(mod.exclusions.directories, ElementsAre("\\Tmp", " a "));
    mod.LoadExclusions(0);
    EXPECT_EQ(mod.exclusions.mode, ExclusionMode::all);
    EXPECT_THAT(mod.exclusions.directories, IsEmpty());
    mod.LoadExclusions(1);
    EXPECT_EQ(mod.exclusions.mode, ExclusionMode::none);
}

TEST_F(ExclusionsTest, EndsTheListAtAGap) {
    put("RepExclu0_Rep1=\\a\nRepExclu0_Rep3=\\c\n");
    mod.LoadExclusions(0);
    EXPECT_THAT(mod.exclusions.directories, ElementsAre("\\a"));
    EXPECT_EQ(mod.PackExclusions(0), "|\\a");
}

TEST_F(ExclusionsTest, BelongsToTheCurrentConfiguration) {
    memory.disk().file(path, "[General]\nRepExclu0_Mode=1\n[Travail]\nRepExclu0_Mode=2\n", ++time);
    mod.configurationName = "Travail";
    mod.LoadExclusions(0);
    EXPECT_EQ(mod.exclusions.mode, ExclusionMode::listed);
}

TEST_F(ExclusionsTest, PacksModeAndDirectories) {
    put("RepExclu0_Mode=1\nRepExclu0_Rep1=C:\\Data\\Tmp\nRepExclu0_Rep2=C:\\Data\\Old\n"
        "RepExclu1_Mode=abc\n");
    EXPECT_EQ(mod.PackExclusions(0), "1|C:\\Data\\Tmp|C:\\Data\\Old");
    EXPECT_EQ(mod.PackExclusions(1), "abc") << "the mode's raw text";
    EXPECT_EQ(mod.PackExclusions(2), "");
}

TEST_F(ExclusionsTest, StoresAPackedListInPlaceOfTheOldOne) {
    put("RepExclu4_Mode=1\nRepExclu4_Rep1=\\x\nRepExclu4_Rep2=\\y\nRepExclu4_Rep3=\\z\n");
    mod.StoreExclusions("2|\\a|\\b", 4);
    EXPECT_EQ(onDisk(), "[General]\nRepExclu4_Mode=2\nRepExclu4_Rep1=\\a\nRepExclu4_Rep2=\\b\n");
}

TEST_F(ExclusionsTest, StopsStoringAtAnEmptyElement) {
    mod.StoreExclusions("2||C:\\A", 0);
    EXPECT_EQ(onDisk(), "[General]\r\nRepExclu0_Mode=2\r\n");
}

TEST_F(ExclusionsTest, LeavesNoKeyWhenALineWithoutKeysIsStored) {
    put("RepExclu0_Mode=1\nRepExclu0_Rep1=\\x\n");
    mod.StoreExclusions(mod.PackExclusions(5), 0);
    EXPECT_EQ(onDisk(), "[General]\n");
}

TEST_F(ExclusionsTest, KeepsTheTextOfAModeThatIsNone) {
    for (const char* text : {"\"\"2\"\"", "\f'2'\f", " 2 "}) {
        mod.StoreExclusions(text, 0);
        EXPECT_EQ(mod.PackExclusions(0), text);
        mod.StoreExclusions(mod.PackExclusions(0), 1);
        EXPECT_EQ(mod.PackExclusions(1), text);
    }
}

TEST_F(ExclusionsTest, ClearsTheListAndKeepsAModeOfZero) {
    put("RepExclu0_Mode=2\nRepExclu0_Rep1=\\x\nRepExclu0_Rep2=\\y\nRepExclu1_Mode=1\n");
    mod.ClearExclusions(0);
    EXPECT_EQ(onDisk(), "[General]\nRepExclu0_Mode=0\nRepExclu1_Mode=1\n");
    mod.ClearExclusions(7);
    EXPECT_EQ(mod.ReadSetting("General", "RepExclu7_Mode"), "0");
}

TEST_F(ExclusionsTest, ClearsWhatAGapHidesAndNoOtherLine) {
    put("RepExclu1_Rep1=\\x\nrepexclu1_rep4=\\y\nRepExclu1_Rep07=\\z\nRepExclu1_Rep9=\n"
        "RepExclu1_Report=mine\nRepExclu1_Rep=mine\nRepExclu11_Rep1=\\a\nRepExclu11_Rep3=\\b\n"
        "RepExclu10_Rep1=\\c\nRepExclu_Rep1=mine\n");
    mod.ClearExclusions(1);
    EXPECT_EQ(onDisk(),
              "[General]\nRepExclu1_Report=mine\nRepExclu1_Rep=mine\nRepExclu11_Rep1=\\a\n"
              "RepExclu11_Rep3=\\b\nRepExclu10_Rep1=\\c\nRepExclu_Rep1=mine\nRepExclu1_Mode=0\n");
}

TEST_F(ExclusionsTest, DoesNotLetADuplicateKeyComeBack) {
    put("RepExclu0_Rep1=\\x\nRepExclu0_Rep1=\\y\n");
    mod.ClearExclusions(0);
    mod.LoadExclusions(0);
    EXPECT_THAT(mod.exclusions.directories, IsEmpty());
}

TEST_F(ExclusionsTest, MovesAnyDirectoryNameUnharmed) {
    const std::vector<std::string> names = {" a ",     "'q'",   "\"q\"", "a|b",  "|",
                                            "\t",      "l\nm",  "Фото",  "\xFF", "\uF07C",
                                            "\uF01B|", "\\Tmp", "a=b;c"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string key = "RepExclu0_Rep" + std::to_string(i + 1);
        ASSERT_TRUE(mod.WriteSetting("General", key, '"' + names[i] + '"').ok());
    }
    ASSERT_TRUE(mod.WriteSetting("General", "RepExclu0_Mode", "2").ok());
    mod.StoreExclusions(mod.PackExclusions(0), 1);
    mod.LoadExclusions(1);
    EXPECT_EQ(mod.exclusions.mode, ExclusionMode::listed);
    EXPECT_EQ(mod.exclusions.directories, names);
}

}  // namespace
}  // namespace coffrelune
