#pragma once

#include <functional>
#include <set>
#include <vector>

class wxWindow;

namespace coffrelune {

class Peer;

/// Gathers what has changed and shows it at once when the event loop is idle or a run lets pending
/// events happen: a label that changes for each of a million files is drawn sixty times a second.
class Refresher {
  public:
    Refresher() = default;
    Refresher(const Refresher&) = delete;
    Refresher& operator=(const Refresher&) = delete;

    void mark(Peer& peer);
    /// To be asked again at the next flush: what the peer waits for is an event, and each ends in
    /// one.
    void later(Peer& peer) { deferred_.insert(&peer); }
    void forget(Peer& peer);

    /// The window's contents no longer fit their places: laid out again at the end of the flush.
    void relayout(wxWindow* window) { stale_.insert(window); }
    void forgetWindow(wxWindow* window) { stale_.erase(window); }

    /// Called at the end of every flush, for each window that is up.
    void watch(const void* owner, std::function<void()> afterFlush);
    void unwatch(const void* owner);

    void flush();

  private:
    struct Watcher {
        const void* owner;
        std::function<void()> afterFlush;
    };

    std::set<Peer*> dirty_;
    std::set<Peer*> deferred_;
    std::set<wxWindow*> stale_;
    std::vector<Watcher> watchers_;
    bool flushing_ = false;
};

}  // namespace coffrelune
