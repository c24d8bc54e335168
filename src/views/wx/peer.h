#pragma once

#include <wx/window.h>

#include <memory>
#include <utility>
#include <vector>

#include "platform/controls.h"
#include "views/wx/refresher.h"

namespace coffrelune {

class Pictures;
class DriveInformation;

/// What every view needs. Outlives the views.
struct ViewContext {
    Refresher& refresher;
    Pictures& pictures;
    DriveInformation& drives;
};

/// Shows one control model in one native widget: after a change, the widget is brought up to the
/// model's state at the next flush. Deriving classes forward the user's events to the model.
class Peer : public ControlPeer {
  public:
    /// The widget outlives the peer; the model may go before it.
    Peer(ViewContext& context, Control& control, wxWindow& widget);
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;
    ~Peer() override;

    void controlChanged(Control&) final { context_.refresher.mark(*this); }
    void controlGone(Control&) final;

    /// Brings the widget up to the model.
    void refresh();

  protected:
    /// What the widget shows besides being there, enabled, and explained.
    virtual void show() = 0;
    /// The widget needs more or less room than before.
    void sizeChanged();
    ViewContext& context() { return context_; }

  private:
    void showState();

    ViewContext& context_;
    Control* control_;
    wxWindow& widget_;
    std::string shownToolTip_;
};

/// The peers of one window; they go before its widgets.
class Peers {
  public:
    explicit Peers(ViewContext& shared) : context(shared) {}

    template <typename PeerType, typename... Arguments>
    PeerType& add(Arguments&&... arguments) {
        auto made = std::make_unique<PeerType>(context, std::forward<Arguments>(arguments)...);
        PeerType& peer = *made;
        peers_.push_back(std::move(made));
        peer.refresh();
        return peer;
    }
    void clear() { peers_.clear(); }

    ViewContext& context;

  private:
    std::vector<std::unique_ptr<ControlPeer>> peers_;
};

}  // namespace coffrelune
