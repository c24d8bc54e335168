#pragma once

#include <memory>

#include "platform/file_service.h"

namespace coffrelune {

/// Turns Ctrl-C, SIGTERM and the loss of the terminal into requests: the first asks the run to stop
/// after the file in progress, the second gives that file up, the third ends the process at once.
/// On Windows Ctrl-Break counts as Ctrl-C; closing the window, which leaves a few seconds, counts
/// as two. Logging off and shutting down would too, but the system tells them by this way only to
/// services: another process is ended with its session, and what it was writing never takes its
/// final name. A signal that whoever started the process ignores stays ignored. One object at a
/// time; with its end the signals mean again what they meant before, unless the window is closing:
/// then the process has only its end before it.
class InterruptSignals {
  public:
    explicit InterruptSignals(FileService& files);
    ~InterruptSignals();
    InterruptSignals(const InterruptSignals&) = delete;
    InterruptSignals& operator=(const InterruptSignals&) = delete;

    /// Requests received so far.
    int count() const;

  private:
    struct Before;  // what the signals meant
    std::unique_ptr<Before> before_;
};

}  // namespace coffrelune
