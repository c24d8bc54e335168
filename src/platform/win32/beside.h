#pragma once

#include <functional>
#include <future>

namespace coffrelune {

/// One piece of work at a time on a thread of its own. Destroying it waits for the end of the work.
class Beside {
  public:
    /// Nothing is running. Where no thread is to be had, the work is done before this returns.
    void start(const std::function<void()>& work);

    /// Nothing is running.
    bool isDone() const;

    /// Comes back when nothing is running. `meanwhile` is called here a few times a second.
    void wait(const std::function<void()>& meanwhile);

  private:
    std::future<void> running_;
};

}  // namespace coffrelune
