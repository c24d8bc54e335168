#include "operation/launch_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class EndSound : public LaunchTest {
  protected:
    EndSound() { system.options.SignalSonore = -1; }
};

TEST_F(EndSound, IsTheConfiguredSoundOfSuccess) {
    system.soundNames = {"Cloche", "Klaxon"};
    disk().file(R"(C:\Coffrelune\Cloche.wav)", "RIFF");
    launchAndRead();
    EXPECT_THAT(eventsThat("sound"), ElementsAre(R"(sound C:\Coffrelune\Cloche.wav)"));
}

TEST_F(EndSound, IsTheSameAfterErrors) {
    disk().file(R"(C:\Coffrelune\Erreur.wav)", "RIFF");
    system.options.ContinueOnError = -1;
    failCopyOf(R"(C:\Docs\a.txt)", 5);
    closeAtFermer();
    launchAndRead();
    EXPECT_THAT(eventsThat("sound"), ElementsAre(R"(sound C:\Coffrelune\Ok.wav)"));
}

TEST_F(EndSound, IsTheSameAfterAnInterruptedCopy) {
    interruptAtLabel(0, "31% copiés (5 octets de 16 octets)");
    launchAndRead();
    EXPECT_THAT(eventsThat("sound"), ElementsAre(R"(sound C:\Coffrelune\Ok.wav)"));
}

TEST_F(EndSound, NeedsTheOption) {
    system.options.SignalSonore = 0;
    launchAndRead();
    EXPECT_THAT(eventsThat("sound"), IsEmpty());
}

TEST_F(EndSound, NeedsADevice) {
    sounds.devices = 0;
    launchAndRead();
    EXPECT_THAT(eventsThat("sound"), IsEmpty());
}

TEST_F(EndSound, NeedsTheFile) {
    disk().remove(R"(C:\Coffrelune\Ok.wav)");
    launchAndRead();
    EXPECT_THAT(eventsThat("sound"), IsEmpty());
}

TEST_F(EndSound, IsNotForUnattendedRuns) {
    EXPECT_EQ(launch(RunMode::unattended), RunEnd::finished);
    EXPECT_THAT(eventsThat("sound"), IsEmpty());
}

}  // namespace
}  // namespace coffrelune
