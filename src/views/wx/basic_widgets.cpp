#include "views/wx/basic_widgets.h"

#include <wx/timer.h>

#include "views/wx/accessible.h"
#include "views/wx/desktop.h"
#include "views/wx/pictures.h"
#include "views/wx/text.h"
#include "views/wx/text_width.h"

namespace coffrelune {
namespace {

enum class TextKind { growing, line, prompt };

// Left to itself the toolkit makes every text, and the title of every frame, the label of the
// control that comes next.
class PlainText final : public wxStaticText {
  public:
    using wxStaticText::wxStaticText;
#ifdef __WXGTK__
    bool GTKWidgetNeedsMnemonic() const override {
        return false;
    }
#endif
};

class TitledBox final : public wxStaticBox {
  public:
    using wxStaticBox::wxStaticBox;
#ifdef __WXGTK__
    bool GTKWidgetNeedsMnemonic() const override {
        return false;
    }
#endif
};

class TextPeer final : public Peer {
  public:
    TextPeer(ViewContext& context, Label& label, wxStaticText& widget, TextKind kind)
        : Peer(context, label, widget), label_(label), widget_(widget), kind_(kind) {
        if (kind != TextKind::line) return;
        widget.Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
            event.Skip();
            tellWhole();
        });
    }

  private:
    void show() override {
        const wxString text = toWx(label_.caption());
        if (kind_ == TextKind::prompt) {
            if (text == widget_.GetLabel()) return;
            widget_.SetLabel(text);
        } else {
            if (text == shown_) return;
            widget_.SetLabelText(text);
        }
        shown_ = text;
        if (kind_ == TextKind::line) {
            tellWhole();
        } else {
            sizeChanged();
        }
    }

    // What the line has no room for is in its tool tip.
    void tellWhole() {
        const bool cut = widget_.GetTextExtent(shown_).x > widget_.GetClientSize().x;
        const wxString tip = cut ? shown_ : toWx(label_.toolTip());
        if (tip.empty()) {
            widget_.UnsetToolTip();
        } else {
            widget_.SetToolTip(tip);
        }
    }

    Label& label_;
    wxStaticText& widget_;
    TextKind kind_;
    wxString shown_;
};

// Shortened as paths are everywhere, its end left whole; readers are told all of it.
class PathLinePeer final : public Peer {
  public:
    PathLinePeer(ViewContext& context, Label& label, wxStaticText& widget)
        : Peer(context, label, widget), label_(label), widget_(widget) {
        widget.Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
            event.Skip();
            show();
        });
    }

  private:
    void show() override {
        const std::string& whole = label_.caption();
        TextWidth measure(widget_);
        const std::string shown = shortenedPath(measure, whole, widget_.GetClientSize().x);
        const wxString text = toWx(shown);
        if (text != widget_.GetLabelText()) widget_.SetLabelText(text);
        nameForReaders(widget_, whole);
        if (shown == whole) {
            widget_.UnsetToolTip();
        } else {
            widget_.SetToolTip(toWx(whole));
        }
    }

    Label& label_;
    wxStaticText& widget_;
};

// A button shows its caption, or a drawing for which its tool tip speaks.
class ButtonPeer final : public Peer {
  public:
    ButtonPeer(ViewContext& context, Button& button, wxButton& widget, bool drawn)
        : Peer(context, button, widget), button_(button), widget_(widget), drawn_(drawn) {
        widget.Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { press(); });
    }

  private:
    // After the event, since what a click starts may last as long as a backup: a screen reader that
    // has pressed the button waits for the event to end. And after the field that has just lost the
    // focus has been left.
    void press() {
        if (pressed_) return;
        pressed_ = true;
        widget_.CallAfter([this] {
            pressed_ = false;
            button_.click();
        });
    }

    void show() override {
        if (drawn_) {
            nameForReaders(widget_, button_.toolTip().empty() ? fromWx(spoken(button_.caption()))
                                                              : button_.toolTip());
            return;
        }
        if (!button_.spokenName().empty()) nameForReaders(widget_, button_.spokenName());
        const wxString caption = toWx(button_.caption());
        if (caption == widget_.GetLabel()) return;
        widget_.SetLabel(caption);
        sizeChanged();
    }

    Button& button_;
    wxButton& widget_;
    bool drawn_;
    bool pressed_ = false;
};

class CheckBoxPeer final : public Peer {
  public:
    CheckBoxPeer(ViewContext& context, CheckBox& box, wxCheckBox& widget)
        : Peer(context, box, widget), box_(box), widget_(widget) {
        widget.Bind(wxEVT_CHECKBOX, [this](wxCommandEvent&) {
            if (widget_.GetValue() != box_.checked()) box_.click();
        });
    }

  private:
    void show() override {
        widget_.SetValue(box_.checked());
        const wxString caption = toWx(box_.caption());
        if (caption.empty()) {
            nameForReaders(widget_, box_.toolTip());
        } else if (caption != widget_.GetLabel()) {
            widget_.SetLabel(caption);
            sizeChanged();
        }
    }

    CheckBox& box_;
    wxCheckBox& widget_;
};

class OptionPeer final : public Peer {
  public:
    OptionPeer(ViewContext& context, OptionButton& option, wxRadioButton& widget)
        : Peer(context, option, widget), option_(option), widget_(widget) {
        widget.Bind(wxEVT_RADIOBUTTON, [this](wxCommandEvent&) { option_.click(); });
    }

  private:
    void show() override {
        // Only the chosen one is set: that takes the choice away from the others of its group.
        if (option_.checked()) widget_.SetValue(true);
        const wxString caption = toWx(option_.caption());
        if (caption != widget_.GetLabel()) widget_.SetLabel(caption);
    }

    OptionButton& option_;
    wxRadioButton& widget_;
};

class FramePeer final : public Peer {
  public:
    FramePeer(ViewContext& context, Frame& frame, wxStaticBox& widget)
        : Peer(context, frame, widget), frame_(frame), widget_(widget) {}

  private:
    void show() override {
        const wxString caption = toWx(frame_.caption());
        if (caption != widget_.GetLabel()) widget_.SetLabel(caption);
    }

    Frame& frame_;
    wxStaticBox& widget_;
};

class GaugePeer final : public Peer {
  public:
    GaugePeer(ViewContext& context, ProgressBar& bar, wxGauge& widget)
        : Peer(context, bar, widget), bar_(bar), widget_(widget) {
        pulse_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { widget_.Pulse(); });
    }

  private:
    static constexpr int pulseInterval = 60;  // milliseconds

    void show() override {
        if (bar_.indeterminate()) {
            if (!pulse_.IsRunning()) pulse_.Start(pulseInterval);
        } else {
            pulse_.Stop();
            widget_.SetValue(bar_.value());
        }
    }

    ProgressBar& bar_;
    wxGauge& widget_;
    wxTimer pulse_;
};

class PicturePeer final : public Peer {
  public:
    PicturePeer(ViewContext& context, Picture& picture, wxStaticBitmap& widget, int size)
        : Peer(context, picture, widget), picture_(picture), widget_(widget), size_(size) {}

  private:
    void show() override {
        if (picture_.image() == shown_) return;
        shown_ = picture_.image();
        widget_.SetBitmap(context().pictures.find(shown_, size_));
        nameForReaders(widget_, spokenPicture(shown_));
    }

    Picture& picture_;
    wxStaticBitmap& widget_;
    int size_;
    std::string shown_;
};

}  // namespace

wxStaticText* plainText(wxWindow* parent, const wxString& text, long style) {
    return new PlainText(parent, wxID_ANY, text, wxDefaultPosition, wxDefaultSize, style);
}

wxStaticText* makeText(Peers& peers, wxWindow* parent, Label& label) {
    wxStaticText* widget = plainText(parent, wxEmptyString);
    peers.add<TextPeer>(label, *widget, TextKind::growing);
    return widget;
}

wxStaticText* makeLine(Peers& peers, wxWindow* parent, Label& label, long ellipsis) {
    wxStaticText* widget = plainText(parent, wxEmptyString, ellipsis | wxST_NO_AUTORESIZE);
    peers.add<TextPeer>(label, *widget, TextKind::line);
    return widget;
}

wxStaticText* makePathLine(Peers& peers, wxWindow* parent, Label& label) {
    wxStaticText* widget = plainText(parent, wxEmptyString, wxST_NO_AUTORESIZE);
    peers.add<PathLinePeer>(label, *widget);
    return widget;
}

wxStaticText* makePrompt(Peers& peers, wxWindow* parent, Label& label) {
    auto* widget = new wxStaticText(parent, wxID_ANY, toWx(label.caption()));
    peers.add<TextPeer>(label, *widget, TextKind::prompt);
    return widget;
}

wxButton* makeButton(Peers& peers, wxWindow* parent, Button& button) {
    auto* widget = new wxButton(parent, wxID_ANY, toWx(button.caption()));
    peers.add<ButtonPeer>(button, *widget, false);
    return widget;
}

wxBitmapButton* makeIconButton(Peers& peers, wxWindow* parent, Button& button,
                               const std::string& picture) {
    constexpr int size = 16;
    // The caption is there for those who ask for it, and takes no room.
    auto* widget = new wxBitmapButton(parent, wxID_ANY, peers.context.pictures.find(picture, size),
                                      wxDefaultPosition, wxDefaultSize, wxBU_NOTEXT);
    drawDisabled(*widget, peers.context.pictures.findFaint(picture, size));
    widget->SetLabel(toWx(button.toolTip()));
    peers.add<ButtonPeer>(button, *widget, true);
    return widget;
}

wxCheckBox* makeCheckBox(Peers& peers, wxWindow* parent, CheckBox& box) {
    auto* widget = new wxCheckBox(parent, wxID_ANY, toWx(box.caption()));
    peers.add<CheckBoxPeer>(box, *widget);
    return widget;
}

wxRadioButton* makeOption(Peers& peers, wxWindow* parent, OptionButton& option) {
    auto* widget = new wxRadioButton(parent, wxID_ANY, toWx(option.caption()));
    peers.add<OptionPeer>(option, *widget);
    return widget;
}

wxStaticBox* makeFrame(Peers& peers, wxWindow* parent, Frame& frame) {
    auto* widget = new TitledBox(parent, wxID_ANY, toWx(frame.caption()));
    peers.add<FramePeer>(frame, *widget);
    return widget;
}

wxGauge* makeGauge(Peers& peers, wxWindow* parent, ProgressBar& bar) {
    constexpr int whole = 100;
    auto* widget = new wxGauge(parent, wxID_ANY, whole);
    nameForReaders(*widget, bar.spokenName());
    peers.add<GaugePeer>(bar, *widget);
    return widget;
}

wxStaticBitmap* makePicture(Peers& peers, wxWindow* parent, Picture& picture, int size) {
    auto* widget =
        new wxStaticBitmap(parent, wxID_ANY, peers.context.pictures.find(picture.image(), size));
    widget->SetMinSize(parent->FromDIP(wxSize(size, size)));
    peers.add<PicturePeer>(picture, *widget, size);
    return widget;
}

}  // namespace coffrelune
