#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/posix/place.h"
#include "platform/walk_ahead.h"

namespace coffrelune {

class PosixDirectory;

/// Where the two directories of a pair lie, found out by the thread that asks.
struct PlacedPair {
    DirectoryPair pair;
    Place source;
    Place target;
};

/// Reads announced pairs on a second thread: each directory costs the system a call per file, and
/// what one core asks the other can use. Results are handed over in the order of the walk; who
/// would have to wait reads another pair meanwhile.
class PosixWalk final : public WalkAhead {
  public:
    using Locate = std::function<bool(const DirectoryPair& pair, PlacedPair& placed)>;
    using Read = std::function<OpenedPair(const PlacedPair& placed)>;

    /// `locate` finds the places, on the calling thread, false when there are none; `read` opens
    /// the two directories and looks at their first files, on any thread; `plain` does the same for
    /// what cannot be read ahead.
    PosixWalk(Locate locate, Read read, std::unique_ptr<WalkAhead> plain);
    PosixWalk(const PosixWalk&) = delete;
    PosixWalk& operator=(const PosixWalk&) = delete;
    ~PosixWalk() override;

    void announce(std::vector<DirectoryPair> pairs) override;
    OpenedPair open(const DirectoryPair& pair) override;

  private:
    enum class State { waiting, running, done };
    struct Job {
        PlacedPair placed;
        State state = State::waiting;
        OpenedPair opened;
    };
    using Lock = std::unique_lock<std::mutex>;

    void startThread();
    void run();
    std::shared_ptr<Job> take(const DirectoryPair& pair);
    std::shared_ptr<Job> nextWaiting() const;
    std::size_t waitingWithinReach() const;
    void wakeReader(Lock& lock, std::size_t fewest);
    void work(Job& job, Lock& lock);

    Locate locate_;
    Read read_;
    std::unique_ptr<WalkAhead> plain_;
    bool readsAhead_;
    std::mutex mutex_;
    std::condition_variable more_;            // the thread waits for it
    std::condition_variable ready_;           // the walk does
    std::vector<std::shared_ptr<Job>> jobs_;  // the next one last
    bool readerSleeps_ = false;
    bool ending_ = false;
    std::thread thread_;  // last: it uses all the others
};

}  // namespace coffrelune
