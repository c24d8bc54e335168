#include "settings/registres.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/memory_desktop.h"

namespace coffrelune {
namespace {

using Root = RegistryService::Root;
using testing::ElementsAre;
using testing::IsEmpty;

class RegistresTest : public testing::Test {
  protected:
    RegistresTest() { registry.addKey(Root::currentUser, Registres::runKey); }

    std::string runValue() {
        return registry.value(Root::currentUser, Registres::runKey, "Coffrelune");
    }

    MemoryRegistry registry;
    Registres registres{registry};
};

TEST_F(RegistresTest, AutoStartIsTheProgramsFileWithoutQuotesOrSwitch) {
    registres.setAutoStart(true, R"(C:\Program Files\Coffrelune\coffrelune.exe)");
    EXPECT_THAT(registry.calls(),
                ElementsAre(R"(setText HKCU\SOFTWARE\Microsoft\Windows\CurrentVersion\Run )"
                            R"(Coffrelune C:\Program Files\Coffrelune\coffrelune.exe)"));
}

TEST_F(RegistresTest, AutoStartFollowsARenamedProgram) {
    registres.setAutoStart(true, R"(D:\Outils\Copie.EXE)");
    EXPECT_EQ(runValue(), R"(D:\Outils\Copie.exe)");
}

TEST_F(RegistresTest, AutoStartOfAProgramInADriveRootHasOneBackslash) {
    registres.setAutoStart(true, R"(D:\Copie.exe)");
    EXPECT_EQ(runValue(), R"(D:\Copie.exe)");
}

TEST_F(RegistresTest, AutoStartKeepsANameThatNeedsNoExtension) {
    registres.setAutoStart(true, R"(C:\opt\coffrelune\coffrelune-3.05)");
    EXPECT_EQ(runValue(), R"(C:\opt\coffrelune\coffrelune-3.05)");
}

TEST_F(RegistresTest, AutoStartOfAnUnknownProgramWritesNothing) {
    registres.setAutoStart(true, "");
    EXPECT_THAT(registry.calls(), IsEmpty());
}

TEST_F(RegistresTest, AutoStartOffDeletesTheUsersValueThenTheMachines) {
    registres.setAutoStart(true, R"(C:\Coffrelune\coffrelune.exe)");
    registres.setAutoStart(false, R"(C:\Coffrelune\coffrelune.exe)");
    EXPECT_EQ(runValue(), "");
    ASSERT_EQ(registry.calls().size(), 3U);
    EXPECT_EQ(registry.calls()[1],
              R"(deleteValue HKCU\SOFTWARE\Microsoft\Windows\CurrentVersion\Run Coffrelune)");
    EXPECT_EQ(registry.calls()[2],
              R"(deleteValue HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\Run Coffrelune)");
}

}  // namespace
}  // namespace coffrelune
