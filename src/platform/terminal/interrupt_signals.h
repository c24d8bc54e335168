#pragma once

#include "platform/file_service.h"

namespace coffrelune {

/// Turns Ctrl-C, SIGTERM and the loss of the terminal into requests: the first asks the run to stop
/// after the file in progress, the second gives that file up, the third ends the process at once.
/// One object at a time; the signals get their usual meaning back with its end.
class InterruptSignals {
  public:
    explicit InterruptSignals(FileService& files);
    ~InterruptSignals();
    InterruptSignals(const InterruptSignals&) = delete;
    InterruptSignals& operator=(const InterruptSignals&) = delete;

    /// Requests received so far.
    int count() const;
};

}  // namespace coffrelune
