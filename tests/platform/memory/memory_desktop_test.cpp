#include "platform/memory/memory_desktop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace coffrelune {
namespace {

using Root = RegistryService::Root;
using testing::ElementsAre;

TEST(MemoryDesktop, ShellWritesDownWhatItIsAskedFor) {
    MemoryDesktop memory;
    const Desktop desktop = memory.desktop();
    desktop.shell.open(R"(C:\a.exe)", "/b");
    desktop.shell.showProperties(R"(C:\Docs)");
    desktop.shell.openTaskScheduler();
    desktop.shell.playSystemSound("SystemStart");
    EXPECT_THAT(memory.shell().opened(), ElementsAre(MemoryShell::Opened{R"(C:\a.exe)", "/b"}));
    EXPECT_THAT(memory.shell().properties(), ElementsAre(R"(C:\Docs)"));
    EXPECT_EQ(memory.shell().schedulerOpenings(), 1);
    EXPECT_THAT(memory.shell().systemSounds(), ElementsAre("SystemStart"));
}

TEST(MemoryDesktop, DriveIsFoundInEitherCase) {
    MemoryDriveInformation drives;
    drives.set(R"(d:\)", {"DATA", {"DATA (D:)", "Disque", "disque"}, 100, 40});
    std::string label;
    std::uint64_t total = 0;
    std::uint64_t free = 0;
    EXPECT_TRUE(drives.volumeLabel(R"(D:\)", label).ok());
    EXPECT_TRUE(drives.sizes(R"(d:\)", total, free).ok());
    EXPECT_EQ(label, "DATA");
    EXPECT_EQ(total, 100U);
    EXPECT_EQ(free, 40U);
    EXPECT_EQ(drives.describe(R"(D:\)").displayName, "DATA (D:)");
}

TEST(MemoryDesktop, DriveWithoutAMediumIsDescribedAndNotReady) {
    MemoryDriveInformation drives;
    drives.set(R"(D:\)", {"DATA", {"DATA (D:)", "Disque", "disque"}, 100, 40});
    drives.takeMediumOut(R"(D:\)");
    std::string label;
    EXPECT_EQ(drives.volumeLabel(R"(D:\)", label).code(), error_number::notReady);
    EXPECT_EQ(drives.describe(R"(D:\)").typeName, "Disque");
    std::uint64_t total = 0;
    std::uint64_t free = 0;
    EXPECT_FALSE(drives.sizes(R"(E:\)", total, free).ok());
}

TEST(MemoryDesktop, RegistryHoldsValuesOfTheKeysThatExist) {
    MemoryRegistry registry;
    registry.addKey(Root::currentUser, "Key");
    EXPECT_TRUE(registry.setText(Root::currentUser, "Key", "A", "a").ok());
    EXPECT_EQ(registry.setText(Root::localMachine, "Key", "A", "a").code(),
              error_number::fileNotFound);
    EXPECT_EQ(registry.value(Root::currentUser, "Key", "A"), "a");
    EXPECT_TRUE(registry.deleteValue(Root::currentUser, "Key", "A").ok());
    EXPECT_FALSE(registry.deleteValue(Root::currentUser, "Key", "A").ok());
    EXPECT_EQ(registry.value(Root::currentUser, "Key", "A"), "");
    EXPECT_THAT(registry.calls(),
                ElementsAre(R"(setText HKCU\Key A a)", R"(setText HKLM\Key A a)",
                            R"(deleteValue HKCU\Key A)", R"(deleteValue HKCU\Key A)"));
}

}  // namespace
}  // namespace coffrelune
