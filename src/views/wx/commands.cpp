#include "views/wx/commands.h"

#include <wx/bmpbuttn.h>
#include <wx/dnd.h>
#include <wx/hyperlink.h>
#include <wx/settings.h>
#include <wx/sizer.h>
#include <wx/timer.h>

#include <algorithm>
#include <utility>

#include "views/wx/accessible.h"
#include "views/wx/desktop.h"
#include "views/wx/pictures.h"
#include "views/wx/text.h"

namespace coffrelune {
namespace {

constexpr int toolSize = 24;  // density-independent pixels
constexpr int menuSize = 16;

class Tool final : public wxBitmapButton {
  public:
    Tool(wxWindow* parent, const CommandBar::Command& command, const wxBitmapBundle& picture)
        : wxBitmapButton(parent, wxID_ANY, picture, wxDefaultPosition, wxDefaultSize,
                         wxBORDER_NONE | wxBU_AUTODRAW | wxBU_NOTEXT),
          key(command.key) {
        constexpr int size = 36;
        SetMinSize(FromDIP(wxSize(size, size)));
        SetLabel(toWx(command.toolTip));
        SetToolTip(toWx(command.toolTip));
        nameForReaders(*this, command.toolTip);
    }
    bool AcceptsFocusFromKeyboard() const override {
        return inTabOrder && wxBitmapButton::AcceptsFocusFromKeyboard();
    }

    std::string key;
    bool inTabOrder = false;
};

class ToolbarPeer final : public Peer {
  public:
    ToolbarPeer(ViewContext& context, CommandBar& bar, wxPanel& widget)
        : Peer(context, bar, widget), bar_(bar), widget_(widget) {
        auto* sizer = new wxBoxSizer(wxHORIZONTAL);
        for (const CommandBar::Command& command : bar.commands()) addTool(*sizer, command);
        widget.SetSizer(sizer);
        if (!tools_.empty()) tools_.front()->inTabOrder = true;
    }

  private:
    void addTool(wxSizer& sizer, const CommandBar::Command& command) {
        auto* tool = new Tool(&widget_, command,
                              context().pictures.find("commande-" + command.key, toolSize));
        drawDisabled(*tool, context().pictures.findFaint("commande-" + command.key, toolSize));
        // After the event, as for every button.
        tool->Bind(wxEVT_BUTTON, [this, tool](wxCommandEvent&) {
            makeCurrent(*tool);
            if (std::exchange(picked_, true)) return;
            widget_.CallAfter([this, tool] {
                picked_ = false;
                bar_.pick(tool->key);
            });
        });
        tool->Bind(wxEVT_CHAR_HOOK, [this, tool](wxKeyEvent& event) {
            if (event.GetKeyCode() == WXK_LEFT) {
                step(*tool, -1);
            } else if (event.GetKeyCode() == WXK_RIGHT) {
                step(*tool, 1);
            } else {
                event.Skip();
            }
        });
        sizer.Add(tool, wxSizerFlags().CentreVertical());
        tools_.push_back(tool);
    }

    void makeCurrent(const Tool& current) {
        for (Tool* tool : tools_) tool->inTabOrder = tool == &current;
    }

    void step(const Tool& from, int direction) {
        const auto count = static_cast<int>(tools_.size());
        int position =
            static_cast<int>(std::find(tools_.begin(), tools_.end(), &from) - tools_.begin());
        for (position += direction; position >= 0 && position < count; position += direction) {
            Tool* tool = tools_[static_cast<std::size_t>(position)];
            if (!tool->IsEnabled() || !tool->IsShown()) continue;
            makeCurrent(*tool);
            tool->SetFocus();
            return;
        }
    }

    void show() override {
        for (Tool* tool : tools_) {
            const CommandBar::Command* command = bar_.find(tool->key);
            if (command == nullptr) continue;
            tool->Enable(command->enabled);
            tool->Show(command->visible);
        }
        // The one that is reached by Tab must be one that can take the focus.
        const auto usable = [](const Tool* tool) { return tool->IsEnabled() && tool->IsShown(); };
        const auto current = std::find_if(tools_.begin(), tools_.end(),
                                          [](const Tool* tool) { return tool->inTabOrder; });
        if (current != tools_.end() && usable(*current)) return;
        const auto first = std::find_if(tools_.begin(), tools_.end(), usable);
        if (first != tools_.end()) makeCurrent(**first);
    }

    CommandBar& bar_;
    wxPanel& widget_;
    bool picked_ = false;
    std::vector<Tool*> tools_;  // the widget's
};

// Dropping something on a link opens it as a click does, whatever it is.
class LinkDrop final : public wxDropTarget {
  public:
    explicit LinkDrop(LinkLabel& link) : link_(link) {
        auto* any = new wxDataObjectComposite();
        any->Add(new wxTextDataObject(), true);
        any->Add(new wxFileDataObject());
        SetDataObject(any);
    }
    wxDragResult OnData(wxCoord, wxCoord, wxDragResult result) override {
        link_.drop();
        return result;
    }

  private:
    LinkLabel& link_;
};

class LinkPeer final : public Peer {
  public:
    LinkPeer(ViewContext& context, LinkLabel& link, wxHyperlinkCtrl& widget)
        : Peer(context, link, widget), link_(link), widget_(widget) {
        // A link that the toolkit draws has a colour of its own from the start.
        if (widget.UseForegroundColour()) colour_ = widget.GetForegroundColour();
        widget.SetDropTarget(new LinkDrop(link));
        hideMissingAddress();
        widget.Bind(wxEVT_HYPERLINK,
                    [this](wxHyperlinkEvent&) { widget_.CallAfter([this] { link_.click(); }); });
        widget.Bind(wxEVT_ENTER_WINDOW, [this](wxMouseEvent& event) {
            link_.hover(true);
            event.Skip();
        });
        widget.Bind(wxEVT_LEAVE_WINDOW, [this](wxMouseEvent& event) {
            link_.hover(false);
            event.Skip();
        });
    }

  private:
    // What stands in for an address is not for the user: left to itself, the toolkit shows it as a
    // tool tip, and has a menu that copies it.
    void hideMissingAddress() {
        if (!link_.address().empty()) return;
        widget_.Bind(wxEVT_CONTEXT_MENU, [](wxContextMenuEvent&) {});
        // Only a tool tip that there is can be taken away.
        widget_.SetToolTip(widget_.GetLabel());
        widget_.UnsetToolTip();
    }

    void show() override {
        // Where the desktop draws links itself, its own style answers to the pointer.
        widget_.SetForegroundColour(
            link_.hovered() ? wxSystemSettings::GetColour(wxSYS_COLOUR_BTNTEXT) : colour_);
        const wxString caption = toWx(link_.caption());
        if (caption.empty() || caption == widget_.GetLabel()) return;
        widget_.SetLabel(caption);
        sizeChanged();
    }

    LinkLabel& link_;
    wxHyperlinkCtrl& widget_;
    wxColour colour_;  // none where the desktop draws links itself
};

// A timer shows nothing, so nothing waits for the screen.
class TimerPeer final : public ControlPeer {
  public:
    TimerPeer(ViewContext&, Timer& timer) : timer_(&timer) {
        timer.attach(this);
        clock_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { timer_->tick(); });
    }
    TimerPeer(const TimerPeer&) = delete;
    TimerPeer& operator=(const TimerPeer&) = delete;
    ~TimerPeer() override {
        if (timer_ != nullptr) timer_->attach(nullptr);
    }

    void controlChanged(Control&) override { refresh(); }
    void controlGone(Control&) override {
        clock_.Stop();
        timer_ = nullptr;
    }

    void refresh() {
        if (!timer_->enabled()) {
            clock_.Stop();
        } else if (!clock_.IsRunning() || clock_.GetInterval() != timer_->interval()) {
            clock_.Start(timer_->interval());
        }
    }

  private:
    Timer* timer_;
    wxTimer clock_;
};

// Under the widget with the focus, unless the pointer is over it.
wxPoint menuPlace(const wxWindow& owner) {
    const wxWindow* focused = wxWindow::FindFocus();
    if (focused == nullptr || focused->GetScreenRect().Contains(wxGetMousePosition()))
        return wxDefaultPosition;
    return owner.ScreenToClient(focused->GetScreenRect().GetBottomLeft());
}

}  // namespace

wxWindow* makeToolbar(Peers& peers, wxWindow* parent, CommandBar& bar) {
    auto* widget = new wxPanel(parent);
    peers.add<ToolbarPeer>(bar, *widget);
    return widget;
}

void popUp(wxWindow& owner, CommandBar& bar, Pictures& pictures) {
    wxMenu menu;
    std::vector<std::string> keys;
    for (const CommandBar::Command& command : bar.commands()) {
        if (!command.visible) continue;
        auto* item = new wxMenuItem(&menu, wxID_ANY, toWx(command.caption));
        item->SetBitmap(pictures.find("commande-" + command.key, menuSize));
        menu.Append(item);
        item->Enable(command.enabled);
        // The command runs when the menu is gone: it may open a window.
        menu.Bind(
            wxEVT_MENU,
            [&owner, &bar, key = command.key](wxCommandEvent&) {
                owner.CallAfter([&bar, key] { bar.pick(key); });
            },
            item->GetId());
    }
    owner.PopupMenu(&menu, menuPlace(owner));
}

wxHyperlinkCtrl* makeLink(Peers& peers, wxWindow* parent, LinkLabel& link) {
    const std::string caption = link.caption().empty() ? "..." : link.caption();
    const std::string address = link.address().empty() ? "coffrelune:" : link.address();
    auto* widget = new wxHyperlinkCtrl(parent, wxID_ANY, toWx(caption), toWx(address));
    // The colour of a link that has been followed says nothing here.
    widget->SetVisitedColour(widget->GetNormalColour());
    peers.add<LinkPeer>(link, *widget);
    return widget;
}

void driveTimer(Peers& peers, Timer& timer) {
    peers.add<TimerPeer>(timer);
}

}  // namespace coffrelune
