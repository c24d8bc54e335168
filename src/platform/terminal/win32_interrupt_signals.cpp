#include <windows.h>

#include <atomic>

#include "platform/terminal/interrupt_signals.h"

namespace coffrelune {
namespace {

// A handler, which the system calls on a thread of its own, reaches nothing but globals: these two
// are the only ones of the program, and both are lock-free.
std::atomic<int> requests{0};
std::atomic<FileService*> abandoned{nullptr};

void giveUpCopies() {
    if (FileService* files = abandoned.load()) files->abandonCopies();
}

// Whoever sees the second request counted finds the copies given up: that comes first. The second
// look is for two events at the same moment, each on its thread.
void request(int count) {
    if (requests + count >= 2) giveUpCopies();
    if ((requests += count) >= 2) giveUpCopies();
}

BOOL WINAPI onControl(DWORD event) {
    if (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT) {
        if (requests >= 2) return FALSE;  // the system ends the process
        request(1);
        return TRUE;
    }
    // The system ends the process as soon as this returns, or after a few seconds: no time to
    // finish a large file, but enough for the run to give it up and to end by itself.
    request(2);
    Sleep(INFINITE);
    return TRUE;
}

}  // namespace

struct InterruptSignals::Before {};

InterruptSignals::InterruptSignals(FileService& files) {
    requests = 0;
    abandoned = &files;
    SetConsoleCtrlHandler(onControl, TRUE);
}

InterruptSignals::~InterruptSignals() {
    SetConsoleCtrlHandler(onControl, FALSE);
    abandoned = nullptr;
}

int InterruptSignals::count() const {
    return requests;
}

}  // namespace coffrelune
