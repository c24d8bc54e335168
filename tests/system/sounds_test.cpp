#include "system/sounds.h"

#include <gmock/gmock.h>

#include "platform/memory/memory_desktop.h"
#include "platform/memory/memory_platform.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SoundsTest : public testing::Test {
  protected:
    SoundsTest() {
        memory.disk().directory(home);
        memory.disk().file(R"(C:\Coffrelune\Ok.wav)", "RIFF");
    }
    void playEnd(const std::string& name) {
        playEndOfCopySound(memory.sounds(), memory.platform().files, home, name);
    }

    const std::string home = R"(C:\Coffrelune)";
    MemoryPlatform memory;
    MemoryShell shell;
};

TEST_F(SoundsTest, PlayTheWavFileOfTheSettingsDirectory) {
    playEnd("Ok");
    EXPECT_THAT(memory.sounds().played(), ElementsAre(R"(C:\Coffrelune\Ok.wav)"));
    EXPECT_EQ(soundFile("C:\\", "Ok"), R"(C:\Ok.wav)");
}

TEST_F(SoundsTest, AreSilentWithoutTheirFile) {
    memory.disk().directory(R"(C:\Coffrelune\Dossier.wav)");
    playEnd("Erreur");
    playEnd("Dossier");
    playEnd("");
    EXPECT_THAT(memory.sounds().played(), IsEmpty());
}

TEST_F(SoundsTest, ExistWhereTheirFileIs) {
    memory.disk().directory(R"(C:\Coffrelune\Dossier.wav)");
    FileService& files = memory.platform().files;
    EXPECT_TRUE(soundExists(files, home, "Ok"));
    EXPECT_FALSE(soundExists(files, home, "Erreur"));
    EXPECT_FALSE(soundExists(files, home, "Dossier"));
}

TEST_F(SoundsTest, AreSilentWithoutADevice) {
    memory.sounds().setDeviceCount(0);
    playEnd("Ok");
    playSystemSound(memory.sounds(), shell, "SystemStart");
    EXPECT_THAT(memory.sounds().played(), IsEmpty());
    EXPECT_THAT(shell.systemSounds(), IsEmpty());
}

TEST_F(SoundsTest, OfTheSystemAreAskedOfTheShell) {
    playSystemSound(memory.sounds(), shell, "SystemStart");
    EXPECT_THAT(shell.systemSounds(), ElementsAre("SystemStart"));
}

}  // namespace
}  // namespace coffrelune
