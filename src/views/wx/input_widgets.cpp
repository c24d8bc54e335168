#include "views/wx/input_widgets.h"

#include <wx/panel.h>
#include <wx/toplevel.h>

#include <algorithm>

#include "views/wx/accessible.h"
#include "views/wx/desktop.h"
#include "views/wx/list_entry.h"
#include "views/wx/text.h"

namespace coffrelune {
namespace {

class FieldPeer final : public Peer {
  public:
    FieldPeer(ViewContext& context, TextBox& box, wxTextCtrl& widget)
        : Peer(context, box, widget), box_(box), widget_(widget) {
        widget.Bind(wxEVT_TEXT, [this](wxCommandEvent&) { box_.type(fromWx(widget_.GetValue())); });
        widget.Bind(wxEVT_SET_FOCUS, [this](wxFocusEvent& event) {
            event.Skip();
            if (!box_.focused()) box_.enter();
        });
        widget.Bind(wxEVT_KILL_FOCUS, [this](wxFocusEvent& event) {
            event.Skip();
            // Where the focus has gone is known only when it has arrived. The widget may be gone by
            // then, with its pending events.
            widget_.CallAfter([this] { focusMoved(); });
        });
    }

  private:
    // Only another control of the same window counts: not another program, nor a message box.
    void focusMoved() {
        const wxWindow* now = wxWindow::FindFocus();
        if (now == nullptr || now == &widget_) return;
        if (wxGetTopLevelParent(const_cast<wxWindow*>(now)) == wxGetTopLevelParent(&widget_))
            box_.leave();
    }

    void show() override {
        const wxString text = toWx(box_.text());
        if (text != widget_.GetValue()) widget_.ChangeValue(text);
        widget_.SetEditable(!box_.readOnly());
        if (box_.focused() && !widget_.HasFocus()) takeFocus();
    }

    // A window behind a message box gets the focus when it is in front again.
    void takeFocus() {
        auto* window = dynamic_cast<wxTopLevelWindow*>(wxGetTopLevelParent(&widget_));
        if (window == nullptr || !window->IsActive()) {
            context().refresher.later(*this);
            return;
        }
        widget_.SetFocus();
        widget_.SelectAll();
    }

    TextBox& box_;
    wxTextCtrl& widget_;
};

// The toolkit tells a selection only when it is another one than it told last, and remembers that
// one longer than its entry is there.
class EntryList final : public wxListBox {
  public:
    using wxListBox::wxListBox;

    void forgetTold(int selection) { (void)DoChangeSingleSelection(selection); }
};

// A list and a drop-down list differ in nothing that matters here.
template <typename Widget>
class ListPeer final : public Peer {
  public:
    ListPeer(ViewContext& context, ListBox& list, Widget& widget)
        : Peer(context, list, widget), list_(list), widget_(widget) {
        const auto pick = [this](wxCommandEvent& event) {
            if (!showing_) list_.pick(event.GetSelection());
        };
        if constexpr (std::is_same_v<Widget, EntryList>) {
            enterByKey(
                widget, [&list] { return list.selection() >= 0 || list.entries().empty(); },
                [&list] { list.pick(0); });
            widget.Bind(wxEVT_LISTBOX, pick);
            widget.Bind(wxEVT_LISTBOX_DCLICK,
                        [this](wxCommandEvent& event) { list_.doubleClick(event.GetSelection()); });
        } else {
            // After the event: what a choice starts may show a message.
            widget.Bind(wxEVT_CHOICE, [this](wxCommandEvent& event) {
                widget_.CallAfter([this, chosen = event.GetSelection()] { list_.pick(chosen); });
            });
            // The page scrolls under the pointer; nothing else is chosen by that.
            widget.Bind(wxEVT_MOUSEWHEEL, [this](wxMouseEvent& event) {
                wxMouseEvent passed(event);
                widget_.GetParent()->ProcessWindowEvent(passed);
            });
            if (!list.spokenName().empty()) nameForReaders(widget, list.spokenName());
        }
    }

  private:
    void show() override {
        showing_ = true;
        showEntries();
        if (widget_.GetSelection() != list_.selection()) widget_.SetSelection(list_.selection());
        if constexpr (std::is_same_v<Widget, EntryList>) {
            widget_.forgetTold(list_.selection());
        } else {
            tellChoice(widget_, list_.selectedText());
        }
        showing_ = false;
    }

    void showEntries() {
        if (list_.entries() != shown_) {
            shown_ = list_.entries();
            wxArrayString entries;
            for (const std::string& entry : shown_) entries.push_back(toWx(entry));
            widget_.Set(entries);
            if constexpr (std::is_same_v<Widget, EntryList>) keepUnchosen(widget_);
        }
    }

    ListBox& list_;
    Widget& widget_;
    std::vector<std::string> shown_;
    bool showing_ = false;  // what the widget selects meanwhile nobody has picked
};

class TabsPeer final : public Peer {
  public:
    TabsPeer(ViewContext& context, TabStrip& tabs, wxNotebook& widget)
        : Peer(context, tabs, widget), tabs_(tabs), widget_(widget) {
        widget.Bind(wxEVT_NOTEBOOK_PAGE_CHANGED, [this](wxBookCtrlEvent& event) {
            const auto page = static_cast<std::size_t>(event.GetSelection());
            if (page >= tabs_.tabs().size()) return;
            tabs_.pick(tabs_.tabs()[page].key);
            // A refusal has changed nothing in the model; the widget still has to come back.
            controlChanged(tabs_);
        });
    }
    TabsPeer(const TabsPeer&) = delete;
    TabsPeer& operator=(const TabsPeer&) = delete;
    ~TabsPeer() override { withdrawTabs(widget_); }

  private:
    void show() override {
        for (std::size_t i = 0; i < tabs_.tabs().size(); ++i) {
            if (tabs_.tabs()[i].key != tabs_.selectedKey()) continue;
            if (widget_.GetSelection() != static_cast<int>(i)) widget_.ChangeSelection(i);
        }
    }

    TabStrip& tabs_;
    wxNotebook& widget_;
};

}  // namespace

wxTextCtrl* makeField(Peers& peers, wxWindow* parent, TextBox& box, const std::string& name) {
    auto* widget = new wxTextCtrl(parent, wxID_ANY);
    nameForReaders(*widget, name.empty() ? box.toolTip() : name);
    // The toolkit's own measure leaves a larger text too little room.
    constexpr int around = 10;
    const int height = widget->GetCharHeight() + widget->FromDIP(around);
    widget->SetMinSize(wxSize(-1, std::max(widget->GetBestSize().y, height)));
    peers.add<FieldPeer>(box, *widget);
    return widget;
}

wxListBox* makeList(Peers& peers, wxWindow* parent, ListBox& list, const std::string& name) {
    auto* widget = new EntryList(parent, wxID_ANY);
    nameForReaders(*widget, name);
    peers.add<ListPeer<EntryList>>(list, *widget);
    return widget;
}

wxChoice* makeDropDown(Peers& peers, wxWindow* parent, ListBox& list) {
    auto* widget = new wxChoice(parent, wxID_ANY);
    peers.add<ListPeer<wxChoice>>(list, *widget);
    return widget;
}

wxNotebook* makeTabs(Peers& peers, wxWindow* parent, TabStrip& tabs) {
    auto* widget = new wxNotebook(parent, wxID_ANY);
    for (const TabStrip::Tab& tab : tabs.tabs()) {
        auto* nothing = new wxPanel(widget);
        widget->AddPage(nothing, toWx(tab.caption));
        nothing->SetCanFocus(false);
    }
    peers.add<TabsPeer>(tabs, *widget);
    return widget;
}

}  // namespace coffrelune
