#include "views/wx/refresher.h"

#include <wx/app.h>
#include <wx/window.h>

#include <algorithm>
#include <utility>

#include "views/wx/peer.h"

namespace coffrelune {

void Refresher::mark(Peer& peer) {
    if (dirty_.insert(&peer).second) wxWakeUpIdle();
}

void Refresher::forget(Peer& peer) {
    dirty_.erase(&peer);
    deferred_.erase(&peer);
}

void Refresher::watch(const void* owner, std::function<void()> afterFlush) {
    watchers_.push_back({owner, std::move(afterFlush)});
}

void Refresher::unwatch(const void* owner) {
    std::erase_if(watchers_, [owner](const Watcher& watcher) { return watcher.owner == owner; });
}

void Refresher::flush() {
    // Showing a change may raise events that come back here.
    if (flushing_) return;
    flushing_ = true;
    dirty_.merge(std::exchange(deferred_, {}));
    while (!dirty_.empty()) {
        Peer* peer = *dirty_.begin();
        dirty_.erase(dirty_.begin());
        peer->refresh();
    }
    for (wxWindow* window : std::exchange(stale_, {})) {
        window->Layout();
        // What has moved leaves its old picture behind on Windows.
        window->Refresh();
    }
    flushing_ = false;
    // A window may go away while it is told: copies are called.
    for (const Watcher& watcher : std::vector<Watcher>(watchers_)) {
        const bool present =
            std::any_of(watchers_.begin(), watchers_.end(),
                        [&](const Watcher& other) { return other.owner == watcher.owner; });
        if (present) watcher.afterFlush();
    }
}

}  // namespace coffrelune
