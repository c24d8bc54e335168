#include "platform/terminal/interrupt_signals.h"

#include <array>
#include <atomic>
#include <csignal>

namespace coffrelune {
namespace {

// A signal handler reaches nothing but globals: these two are the only ones of the program, and
// both are lock-free.
std::atomic<int> requests{0};
std::atomic<FileService*> abandoned{nullptr};

constexpr std::array<int, 3> watched = {SIGINT, SIGTERM, SIGHUP};
// A reader that went away must not end a run in the middle of a file.
constexpr int readerGone = SIGPIPE;

extern "C" void onInterrupt(int signal) {
    const int count = ++requests;
    if (count == 2) {
        if (FileService* files = abandoned.load()) files->abandonCopies();
    } else if (count > 2) {
        std::signal(signal, SIG_DFL);
        std::raise(signal);
    }
}

}  // namespace

InterruptSignals::InterruptSignals(FileService& files) {
    requests = 0;
    abandoned = &files;
    struct sigaction action {};
    action.sa_handler = onInterrupt;  // without SA_RESTART: a question being read must end
    for (std::size_t i = 0; i < watched.size(); ++i) {
        sigaction(watched[i], nullptr, &before_[i]);
        // nohup, or a shell that starts a job in the background, ignores it on purpose.
        if (before_[i].sa_handler != SIG_IGN) sigaction(watched[i], &action, nullptr);
    }
    action.sa_handler = SIG_IGN;
    sigaction(readerGone, &action, &before_.back());
}

InterruptSignals::~InterruptSignals() {
    for (std::size_t i = 0; i < watched.size(); ++i) sigaction(watched[i], &before_[i], nullptr);
    sigaction(readerGone, &before_.back(), nullptr);
    abandoned = nullptr;
}

int InterruptSignals::count() const {
    return requests;
}

}  // namespace coffrelune
