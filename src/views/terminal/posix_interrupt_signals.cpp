#include <array>
#include <atomic>
#include <csignal>

#include "views/terminal/interrupt_signals.h"

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

struct InterruptSignals::Before {
    std::array<struct sigaction, watched.size()> watchedOnes{};
    struct sigaction readerGoneOne {};
};

InterruptSignals::InterruptSignals(FileService& files) : before_(std::make_unique<Before>()) {
    requests = 0;
    abandoned = &files;
    struct sigaction action {};
    action.sa_handler = onInterrupt;  // without SA_RESTART: a question being read must end
    for (std::size_t i = 0; i < watched.size(); ++i) {
        struct sigaction& before = before_->watchedOnes[i];
        sigaction(watched[i], nullptr, &before);
        // nohup, or a shell that starts a job in the background, ignores it on purpose.
        if (before.sa_handler != SIG_IGN) sigaction(watched[i], &action, nullptr);
    }
    action.sa_handler = SIG_IGN;
    sigaction(readerGone, &action, &before_->readerGoneOne);
}

InterruptSignals::~InterruptSignals() {
    for (std::size_t i = 0; i < watched.size(); ++i) {
        sigaction(watched[i], &before_->watchedOnes[i], nullptr);
    }
    sigaction(readerGone, &before_->readerGoneOne, nullptr);
    abandoned = nullptr;
}

int InterruptSignals::count() const {
    return requests;
}

}  // namespace coffrelune
