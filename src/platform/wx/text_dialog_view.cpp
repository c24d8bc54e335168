#include "platform/wx/text_dialog_view.h"

#include <wx/sizer.h>

#include "platform/wx/basic_widgets.h"
#include "platform/wx/input_widgets.h"

namespace coffrelune {

TextDialogView::TextDialogView(wxWindow* parent, ViewContext& context, TextDialog& form)
    : DialogView(parent, context, form, false) {
    constexpr int textWidth = 420;
    auto* whole = new wxBoxSizer(wxVERTICAL);
    for (Label* label : form.labels())
        whole->Add(makeText(peers, this, *label), wxSizerFlags().Border(wxBOTTOM, narrow()));
    auto* line = new wxBoxSizer(wxHORIZONTAL);
    wxTextCtrl* field = makeField(peers, this, form.Txt, form.Txt.caption());
    field->SetMinSize(FromDIP(wxSize(textWidth, -1)));
    line->Add(field, wxSizerFlags(1).CentreVertical());
    line->AddSpacer(narrow());
    line->Add(makeIconButton(peers, this, form.Cmd[2], "vider"), wxSizerFlags().CentreVertical());
    whole->Add(line, wxSizerFlags().Expand().Border(wxBOTTOM, wide()));
    wxButton* accept = makeButton(peers, this, form.Cmd[0]);
    wxButton* cancel = makeButton(peers, this, form.Cmd[1]);
    whole->Add(buttonRow({accept, cancel}), wxSizerFlags().Expand());
    arrange(whole, accept);
    field->SetFocus();
    field->SetInsertionPointEnd();
}

}  // namespace coffrelune
