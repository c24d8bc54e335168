#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"
#include "settings/system_mod.h"

namespace coffrelune {
namespace {

/// The last line in use anywhere, with ten lines on view and this settings file.
int lastUsedLine(const std::string& content, const std::string& global = "[Position]\n") {
    MemoryPlatform memory;
    memory.disk().file(R"(C:\Coffrelune\Coffrelune.ini)",
                       global + "RepertMax=10\nConfig=Travail\n" + content);
    Platform platform = memory.platform();
    SystemMod system(platform, {"", R"(C:\Coffrelune)", 3, 5});
    system.LoadSettings();
    return system.lastUsedLineAnywhere();
}

TEST(LineCount, NoConfigurationUsesALine) {
    EXPECT_EQ(lastUsedLine(""), 0);
}

TEST(LineCount, CountsTheCurrentConfiguration) {
    EXPECT_EQ(lastUsedLine("[Travail]\nSource3=C:\\A\n[Photos]\nSource1=C:\\B\n"), 3);
}

TEST(LineCount, CountsEveryOtherConfiguration) {
    EXPECT_EQ(lastUsedLine("[Travail]\nSource1=C:\\A\n[Photos]\nSource4=C:\\B\n"
                           "[Musique]\ndestination6=F:\\\n"),
              6);
}

TEST(LineCount, CountsNoEmptyValueAndNoOtherKey) {
    EXPECT_EQ(lastUsedLine("[Photos]\nSource5=\nDestination6=\"\"\nSelect7=1\nRepExclu8_Mode=2\n"
                           "Source=C:\\\nSource09=C:\\\nSource8x=C:\\\n"),
              0);
}

TEST(LineCount, CountsNoReservedSection) {
    EXPECT_EQ(lastUsedLine("", "[POSITION]\nSource5=C:\\A\n"), 0);
}

TEST(LineCount, CountsNoLineThatIsOutOfSightAlready) {
    EXPECT_EQ(lastUsedLine("[Photos]\nSource9=C:\\B\nSource10=C:\\C\nSource99999999999=C:\\D\n"),
              9);
}

TEST(LineCount, CountsConfigurationsThatTheListHasNoRoomFor) {
    std::string content;
    for (int i = 0; i < 60; ++i) {
        content += "[Une configuration au nom bien long " + std::to_string(i) + "]\nSource0=C:\\\n";
    }
    EXPECT_EQ(lastUsedLine(content + "[Photos]\nSource7=C:\\B\n"), 7);
}

}  // namespace
}  // namespace coffrelune
