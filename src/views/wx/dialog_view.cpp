#include "views/wx/dialog_view.h"

#include <wx/app.h>
#include <wx/button.h>
#include <wx/sizer.h>

#include <algorithm>

#include "views/wx/accessible.h"
#include "views/wx/text.h"

namespace coffrelune {

DialogView::DialogView(wxWindow* parent, ViewContext& context, Window& model, bool resizable)
    : wxDialog(parent, wxID_ANY, toWx(model.caption()), wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | (resizable ? wxRESIZE_BORDER | wxMAXIMIZE_BOX : 0)),
      peers(context),
      model_(model) {
    // Escape and Enter press what the window says, not what the toolkit finds.
    SetEscapeId(wxID_NONE);
    if (auto* above = dynamic_cast<wxTopLevelWindow*>(parent); above != nullptr)
        SetIcons(above->GetIcons());
    presentWindow(*this, WindowRole::dialog);
    bindEvents();
}

DialogView::~DialogView() {
    peers.context.refresher.unwatch(this);
    peers.context.refresher.forgetWindow(this);
}

void DialogView::bindEvents() {
    Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent& event) {
        model_.closeBox();
        if (event.CanVeto()) event.Veto();
        wxWakeUpIdle();
    });
    Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
        if (event.GetKeyCode() == WXK_ESCAPE && !event.HasAnyModifiers()) {
            pressEscape();
        } else {
            event.Skip();
        }
    });
}

void DialogView::pressEscape() {
    if (Button* cancel = model_.cancelButton(); cancel != nullptr) {
        cancel->click();
    } else {
        model_.closeBox();
    }
    wxWakeUpIdle();
}

void DialogView::endWhenClosed() {
    if (!model_.open() && IsModal()) EndModal(wxID_CLOSE);
}

void DialogView::run() {
    Refresher& refresher = peers.context.refresher;
    refresher.watch(this, [this] {
        endWhenClosed();
        focus_.keep();
    });
    refresher.flush();
    CallAfter([this] { model_.activated(); });
    if (model_.open()) ShowModal();
}

void DialogView::arrange(wxSizer* contents, wxButton* defaultButton) {
    auto* whole = new wxBoxSizer(wxVERTICAL);
    whole->Add(contents, wxSizerFlags(1).Expand().Border(wxALL, wide()));
    SetSizerAndFit(whole);
    if (defaultButton != nullptr) defaultButton->SetDefault();
    CentreOnParent();
}

wxSizer* DialogView::buttonRow(const std::vector<wxButton*>& buttons) {
    wxSize size(0, 0);
    for (const wxButton* button : buttons) size.IncTo(button->GetBestSize());
    auto* row = new wxBoxSizer(wxHORIZONTAL);
    row->AddStretchSpacer();
    for (wxButton* button : buttons) {
        button->SetMinSize(size);
        constexpr int between = 8;
        const int space = button == buttons.front() ? 0 : button->FromDIP(between);
        row->Add(button, wxSizerFlags().Border(wxLEFT, space));
    }
    return row;
}

int DialogView::wide() const {
    constexpr int pixels = 12;
    return FromDIP(pixels);
}

int DialogView::narrow() const {
    constexpr int pixels = 6;
    return FromDIP(pixels);
}

}  // namespace coffrelune
