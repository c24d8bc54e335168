#include "views/wx/message_view.h"

#include <wx/button.h>
#include <wx/sizer.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>

#include "views/wx/accessible.h"
#include "views/wx/basic_widgets.h"
#include "views/wx/pictures.h"
#include "views/wx/text.h"

namespace coffrelune {
namespace {

constexpr int border = 12;  // density-independent pixels

const char* pictureOf(MessageIcon icon) {
    switch (icon) {
        case MessageIcon::information:
            return "message-information";
        case MessageIcon::exclamation:
            return "attention";
        case MessageIcon::critical:
            return "message-erreur";
        case MessageIcon::question:
            break;
    }
    return "message-question";
}

Answer refusal(MessageButtons buttons) {
    switch (buttons) {
        case MessageButtons::okCancel:
            return Answer::cancel;
        case MessageButtons::yesNo:
            return Answer::no;
        case MessageButtons::ok:
            break;
    }
    return Answer::ok;
}

}  // namespace

MessageView::MessageView(wxWindow* parent, Pictures& pictures, const MessageBoxText& message)
    : wxDialog(parent, wxID_ANY, toWx(message.title), wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE),
      answer_(refusal(message.buttons)) {
    presentWindow(*this, WindowRole::message);
    SetEscapeId(wxID_NONE);
    if (auto* above = dynamic_cast<wxTopLevelWindow*>(parent); above != nullptr)
        SetIcons(above->GetIcons());
    Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent&) { EndModal(wxID_CLOSE); });
    Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
        if (event.GetKeyCode() == WXK_ESCAPE) {
            EndModal(wxID_CLOSE);
        } else {
            event.Skip();
        }
    });
    auto* whole = new wxBoxSizer(wxVERTICAL);
    whole->Add(makeText(pictures, message),
               wxSizerFlags(1).Expand().Border(wxALL, FromDIP(border)));
    whole->Add(makeButtons(message),
               wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(border)));
    SetSizerAndFit(whole);
    CentreOnParent();
}

wxSizer* MessageView::makeText(Pictures& pictures, const MessageBoxText& message) {
    constexpr int pictureSize = 48;
    constexpr int textWidth = 520;
    std::string lines = message.text;
    std::erase(lines, '\r');
    auto* picture =
        new wxStaticBitmap(this, wxID_ANY, pictures.find(pictureOf(message.icon), pictureSize));
    wxStaticText* text = plainText(this, wxEmptyString);
    text->SetLabelText(toWx(lines));
    text->Wrap(FromDIP(textWidth));
    auto* sizer = new wxBoxSizer(wxHORIZONTAL);
    sizer->Add(picture, wxSizerFlags().Top());
    sizer->AddSpacer(FromDIP(border));
    sizer->Add(text, wxSizerFlags(1).CentreVertical());
    return sizer;
}

wxSizer* MessageView::makeButtons(const MessageBoxText& message) {
    auto* row = new wxBoxSizer(wxHORIZONTAL);
    row->AddStretchSpacer();
    wxButton* usual = nullptr;
    wxButton* refusing = nullptr;
    switch (message.buttons) {
        case MessageButtons::ok:
            usual = addButton(*row, "OK", Answer::ok);
            break;
        case MessageButtons::okCancel:
            usual = addButton(*row, "OK", Answer::ok);
            refusing = addButton(*row, "&Annuler", Answer::cancel);
            break;
        case MessageButtons::yesNo:
            usual = addButton(*row, "&Oui", Answer::yes);
            refusing = addButton(*row, "&Non", Answer::no);
            break;
    }
    if (message.harmful && refusing != nullptr) usual = refusing;
    usual->SetDefault();
    usual->SetFocus();
    return row;
}

wxButton* MessageView::addButton(wxSizer& row, const char* caption, Answer answer) {
    constexpr int between = 8;
    auto* button = new wxButton(this, wxID_ANY, toWx(caption));
    button->Bind(wxEVT_BUTTON, [this, answer](wxCommandEvent&) {
        answer_ = answer;
        EndModal(wxID_OK);
    });
    row.Add(button, wxSizerFlags().Border(wxLEFT, FromDIP(between)));
    return button;
}

Answer MessageView::ask() {
    ShowModal();
    return answer_;
}

}  // namespace coffrelune
