#include "views/wx/path_view.h"

#include <wx/clipbrd.h>
#include <wx/dcbuffer.h>
#include <wx/dnd.h>
#include <wx/settings.h>
#include <wx/textcompleter.h>

#include <utility>

#include "system/path_caption.h"
#include "system/text.h"
#include "views/wx/accessible.h"
#include "views/wx/text.h"
#include "views/wx/text_width.h"

namespace coffrelune {
namespace {

constexpr int margin = 4;  // density-independent pixels, left and right of the text

// Takes text or a list of files; the label decides what becomes of them.
class PathDrop final : public wxDropTarget {
  public:
    explicit PathDrop(PathLabel& label) : label_(label) {
        auto* both = new wxDataObjectComposite();
        both->Add(files_, true);
        both->Add(text_);
        SetDataObject(both);
    }

    wxDragResult OnData(wxCoord, wxCoord, wxDragResult result) override {
        if (!GetData()) return wxDragNone;
        PathLabel::Dragged dragged;
        const auto* both = static_cast<wxDataObjectComposite*>(GetDataObject());
        dragged.isText = both->GetReceivedFormat().GetType() != wxDF_FILENAME;
        if (dragged.isText) {
            dragged.text = fromWx(text_->GetText());
        } else {
            for (const wxString& file : files_->GetFilenames())
                dragged.files.push_back(fromWx(file));
        }
        label_.drop(dragged);
        return result;
    }

  private:
    PathLabel& label_;
    // Owned by the data object.
    wxFileDataObject* files_ = new wxFileDataObject();
    wxTextDataObject* text_ = new wxTextDataObject();
};

// Offers the directories that the path may lead to.
class PathCompleter final : public wxTextCompleterSimple {
  public:
    explicit PathCompleter(const PathLabel& label) : label_(label) {}

    void GetCompletions(const wxString& typed, wxArrayString& found) override {
        for (const std::string& path : label_.complete(fromWx(typed))) found.push_back(toWx(path));
    }

  private:
    const PathLabel& label_;
};

class PathPeer final : public Peer {
  public:
    PathPeer(ViewContext& context, PathLabel& label, PathView& view)
        : Peer(context, label, view), label_(label), view_(view) {
        view.Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
            event.Skip();
            // The frame round what has the focus is as wide as the label, whatever its text does.
            view_.Refresh();
            controlChanged(label_);
        });
    }

  private:
    void show() override {
        TextWidth measure(view_);
        const int room = view_.GetClientSize().x - 2 * view_.FromDIP(margin);
        const PathCaption shown =
            pathCaption(context().drives, label_.path(), measure, std::max(room, 0));
        label_.show(shown.caption, shown.toolTip);
        view_.display(shown.caption, visibleControls(label_.path()));
    }

    PathLabel& label_;
    PathView& view_;
};

}  // namespace

PathView::PathView(wxWindow* parent, PathLabel& label, const std::string& name)
    : wxWindow(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
               wxBORDER_THEME | wxFULL_REPAINT_ON_RESIZE),
      label_(label),
      name_(name) {
    SetBackgroundStyle(wxBG_STYLE_PAINT);
    SetDropTarget(new PathDrop(label));
    Bind(wxEVT_PAINT, [this](wxPaintEvent&) { paint(); });
    const auto focusMoves = [this](wxFocusEvent& event) {
        event.Skip();
        // What has the focus is what the toolbar's commands are about.
        if (event.GetEventType() == wxEVT_SET_FOCUS) label_.press();
        Refresh();
    };
    Bind(wxEVT_SET_FOCUS, focusMoves);
    Bind(wxEVT_KILL_FOCUS, focusMoves);
    Bind(wxEVT_CONTEXT_MENU, [this](wxContextMenuEvent&) { label_.rightClick(); });
    bindMouse();
    bindKeys();
}

void PathView::bindMouse() {
    Bind(wxEVT_LEFT_DOWN, [this](wxMouseEvent& event) {
        pressedAt_ = event.GetPosition();
        SetFocus();
        label_.press();
    });
    Bind(wxEVT_LEFT_DCLICK, [this](wxMouseEvent&) { beginEdit(toWx(label_.path()), true); });
    Bind(wxEVT_RIGHT_DOWN, [this](wxMouseEvent& event) {
        SetFocus();
        event.Skip();
    });
    Bind(wxEVT_MOTION, [this](wxMouseEvent& event) {
        const wxPoint moved = event.GetPosition() - pressedAt_;
        constexpr int threshold = 5;
        const int far = FromDIP(threshold);
        if (event.LeftIsDown() && (std::abs(moved.x) > far || std::abs(moved.y) > far)) startDrag();
    });
}

void PathView::bindKeys() {
    Bind(wxEVT_KEY_DOWN, [this](wxKeyEvent& event) {
        const int key = event.GetKeyCode();
        const bool opensMenu = key == WXK_RETURN || key == WXK_NUMPAD_ENTER;
        if (opensMenu && label_.onRightClick) {
            label_.rightClick();
        } else if (key == 'C' && event.ControlDown()) {
            copy();
        } else if (key == 'V' && event.ControlDown()) {
            paste();
        } else if (key == WXK_F2) {
            beginEdit(toWx(label_.path()), true);
        } else if (key == WXK_DELETE || key == WXK_NUMPAD_DELETE) {
            CallAfter([this] { label_.empty(); });
        } else {
            event.Skip();
        }
    });
    Bind(wxEVT_CHAR, [this](wxKeyEvent& event) {
        const wxUniChar typed = event.GetUnicodeKey();
        constexpr wxUint32 deleteSign = 0x7F;
        const bool text = typed.GetValue() > 0x20 && typed.GetValue() != deleteSign;
        const int command = event.GetModifiers() & (wxMOD_CONTROL | wxMOD_ALT);
        if (text && command == 0 && label_.editable()) {
            beginEdit(typed, false);
        } else {
            event.Skip();
        }
    });
}

// What is typed takes the place of the path; whatever opens the editor otherwise shows it.
void PathView::beginEdit(const wxString& text, bool select) {
    if (!label_.editable() || editor_ != nullptr) return;
    editor_ = new wxTextCtrl(this, wxID_ANY, text, wxPoint(0, 0), GetClientSize(),
                             wxTE_PROCESS_ENTER | wxBORDER_NONE);
    nameForReaders(*editor_, name_);
    editor_->AutoComplete(new PathCompleter(label_));
    editor_->SetFocus();
    if (select) {
        editor_->SelectAll();
    } else {
        editor_->SetInsertionPointEnd();
    }
    editor_->Bind(wxEVT_TEXT_ENTER, [this](wxCommandEvent&) { endEdit(true); });
    editor_->Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
        if (event.GetKeyCode() == WXK_ESCAPE) {
            endEdit(false);
        } else {
            event.Skip();
        }
    });
    editor_->Bind(wxEVT_KILL_FOCUS, [this](wxFocusEvent& event) {
        event.Skip();
        CallAfter([this] { leaveEdit(); });
    });
}

// Another control of the window has been chosen: what was typed counts, as in every field. Another
// program, or the list of completions, is not leaving.
void PathView::leaveEdit() {
    wxWindow* now = FindFocus();
    if (editor_ == nullptr || now == nullptr || now == editor_ || now == this) return;
    if (wxGetTopLevelParent(now) == wxGetTopLevelParent(this)) endEdit(true);
}

void PathView::endEdit(bool keep) {
    if (editor_ == nullptr) return;
    const std::string typed = fromWx(editor_->GetValue());
    const bool hadFocus = editor_->HasFocus();
    wxTextCtrl* editor = std::exchange(editor_, nullptr);
    editor->Hide();
    if (hadFocus) SetFocus();
    // Once its own event is over.
    CallAfter([this, editor, keep, typed] {
        editor->Destroy();
        if (keep) label_.edit(typed);
    });
}

void PathView::display(const std::string& caption, const std::string& full) {
    const wxString text = toWx(caption);
    const std::string told = name_ + " : " + full;
    SetLabel(toWx(told));
    if (label_.editable()) {
        presentAsField(*this, told);
    } else {
        presentAsLabel(*this, told);
    }
    if (text == caption_) return;
    caption_ = text;
    Refresh();
}

wxSize PathView::DoGetBestClientSize() const {
    constexpr int characters = 20;
    constexpr int above = 5;
    return {GetCharWidth() * characters, GetCharHeight() + 2 * FromDIP(above)};
}

void PathView::paint() {
    wxAutoBufferedPaintDC dc(this);
    const wxSize size = GetClientSize();
    dc.SetBackground(wxSystemSettings::GetColour(wxSYS_COLOUR_WINDOW));
    dc.Clear();
    dc.SetFont(GetFont());
    dc.SetTextForeground(
        wxSystemSettings::GetColour(IsEnabled() ? wxSYS_COLOUR_WINDOWTEXT : wxSYS_COLOUR_GRAYTEXT));
    dc.DrawText(caption_, FromDIP(margin), (size.y - dc.GetCharHeight()) / 2);
    if (!HasFocus()) return;
    constexpr int ring = 2;
    dc.SetPen(wxPen(wxSystemSettings::GetColour(wxSYS_COLOUR_HIGHLIGHT), FromDIP(ring)));
    dc.SetBrush(*wxTRANSPARENT_BRUSH);
    dc.DrawRectangle(wxRect(size).Deflate(FromDIP(ring) / 2));
}

void PathView::startDrag() {
    if (label_.path().empty()) return;
    wxTextDataObject text(toWx(label_.path()));
    wxDropSource source(text, this);
    label_.drag(true);
    // What the target made of the text is its own business: the label keeps its path.
    (void)source.DoDragDrop(wxDrag_CopyOnly);
    label_.drag(false);
}

void PathView::copy() const {
    if (label_.path().empty() || !wxTheClipboard->Open()) return;
    wxTheClipboard->SetData(new wxTextDataObject(toWx(label_.path())));
    wxTheClipboard->Close();
}

void PathView::paste() {
    if (!wxTheClipboard->Open()) return;
    wxTextDataObject text;
    const bool got = wxTheClipboard->GetData(text);
    wxTheClipboard->Close();
    if (!got) return;
    PathLabel::Dragged dragged;
    dragged.isText = true;
    dragged.text = fromWx(text.GetText());
    label_.drop(dragged);
}

PathView* makePath(Peers& peers, wxWindow* parent, PathLabel& label, const std::string& name) {
    auto* widget = new PathView(parent, label, name);
    peers.add<PathPeer>(label, *widget);
    return widget;
}

}  // namespace coffrelune
