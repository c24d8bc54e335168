#include <windows.h>

#include <atomic>
#include <mutex>

#include "views/terminal/interrupt_signals.h"

namespace coffrelune {
namespace {

// A handler, which the system calls on a thread of its own, reaches nothing but globals: these are
// the only ones of the program.
std::atomic<int> requests{0};
std::atomic<bool> closing{false};
std::mutex use;  // of the files, which the handler must not outlive
FileService* abandoned = nullptr;

// Whoever sees the second request counted finds the copies given up: that comes first. False when
// nobody watches.
bool request(int count) {
    const std::lock_guard lock(use);
    if (abandoned == nullptr) return false;
    if (requests + count >= 2) abandoned->abandonCopies();
    requests += count;
    return true;
}

BOOL WINAPI onControl(DWORD event) {
    if (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT) {
        // The third one is not answered for: the system ends the process.
        return requests < 2 && request(1) ? TRUE : FALSE;
    }
    closing = true;
    if (!request(2)) return FALSE;
    // The system ends the process as soon as this returns, or after a few seconds: no time to
    // finish a large file, but enough for the run to give it up and for the process to end by
    // itself, with its own status.
    Sleep(INFINITE);
    return TRUE;
}

}  // namespace

struct InterruptSignals::Before {};

InterruptSignals::InterruptSignals(FileService& files) {
    {
        const std::lock_guard lock(use);
        requests = 0;
        abandoned = &files;
    }
    // This and its counterpart wait for a handler that runs.
    if (!closing) SetConsoleCtrlHandler(onControl, TRUE);
}

// The handler of a closing window never returns. Waiting for it would be waiting to be ended from
// outside, and the status of the run would be lost.
InterruptSignals::~InterruptSignals() {
    {
        const std::lock_guard lock(use);
        abandoned = nullptr;
    }
    if (!closing) SetConsoleCtrlHandler(onControl, FALSE);
}

int InterruptSignals::count() const {
    return requests;
}

}  // namespace coffrelune
