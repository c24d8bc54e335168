#include "platform/wx/confirm_view.h"

#include <wx/sizer.h>

#include <algorithm>

#include "platform/wx/basic_widgets.h"
#include "platform/wx/text.h"

namespace coffrelune {

ConfirmView::ConfirmView(wxWindow* parent, ViewContext& context, frmConfirm& form)
    : DialogView(parent, context, form, false) {
    constexpr int pictureSize = 48;
    constexpr int textWidth = 560;
    auto* texts = new wxBoxSizer(wxVERTICAL);
    for (Label& label : form.Lbl) {
        // A file's name may be longer than the screen is wide, and has nowhere to be wrapped.
        wxStaticText* text = makeLine(peers, this, label);
        const int whole = text->GetTextExtent(toWx(label.caption())).x;
        text->SetMinSize(wxSize(std::min(whole, FromDIP(textWidth)), -1));
        texts->Add(text, wxSizerFlags().Border(wxBOTTOM, narrow()));
    }
    auto* question = new wxBoxSizer(wxHORIZONTAL);
    question->Add(makePicture(peers, this, form.Image1, pictureSize), wxSizerFlags().Top());
    question->AddSpacer(wide());
    question->Add(texts, wxSizerFlags(1).CentreVertical());
    std::vector<wxButton*> buttons;
    for (Button& button : form.Cmd) buttons.push_back(makeButton(peers, this, button));
    auto* whole = new wxBoxSizer(wxVERTICAL);
    whole->Add(question, wxSizerFlags(1).Expand().Border(wxBOTTOM, wide()));
    whole->Add(buttonRow(buttons), wxSizerFlags().Expand());
    arrange(whole, nullptr);
}

}  // namespace coffrelune
