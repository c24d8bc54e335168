#pragma once

#include "operation/operation_fixture.h"

namespace coffrelune {

/// The title of every message of the launcher.
inline constexpr const char* title = "Coffrelune Version 3.05";

/// The lines of the fixture and nothing else; overwriting does not ask; the end sound is there.
class LaunchTest : public OperationTest {
  protected:
    LaunchTest() {
        system.resizeLines(1);
        system.Confirmation = 1;
        disk().file(R"(C:\Coffrelune\Ok.wav)", "RIFF");
    }
    /// Runs as the user who presses OK at the final message.
    RunEnd launchAndRead() {
        user().answer(Answer::ok);
        return launch(RunMode::startedByUser);
    }
    void closeAtFermer() {
        user().stepIn<Copie>([](Copie& window) { window.Cmd.click(); });
    }
    const MessageBoxText& message() { return user().messages().back(); }
};

}  // namespace coffrelune
