#pragma once

#include <array>
#include <csignal>
#include <cstddef>

namespace coffrelune {

/// For its lifetime the signals mean what they mean to a process started by hand, however the tests
/// themselves were started: nohup or a background job would have them ignored.
class DefaultSignals {
  public:
    DefaultSignals() {
        for (std::size_t i = 0; i < signals.size(); ++i) {
            before_.at(i) = std::signal(signals.at(i), SIG_DFL);
        }
    }
    ~DefaultSignals() {
        for (std::size_t i = 0; i < signals.size(); ++i) std::signal(signals.at(i), before_.at(i));
    }
    DefaultSignals(const DefaultSignals&) = delete;
    DefaultSignals& operator=(const DefaultSignals&) = delete;

  private:
    static constexpr std::array<int, 4> signals = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};
    std::array<void (*)(int), 4> before_{};
};

}  // namespace coffrelune
