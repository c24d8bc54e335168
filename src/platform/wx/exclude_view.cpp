#include "platform/wx/exclude_view.h"

#include <wx/sizer.h>

#include "platform/wx/basic_widgets.h"
#include "platform/wx/input_widgets.h"
#include "platform/wx/path_view.h"

namespace coffrelune {

ExcludeView::ExcludeView(wxWindow* parent, ViewContext& context, ExcludeForm& form)
    : DialogView(parent, context, form, true), form_(form) {
    auto* whole = new wxBoxSizer(wxVERTICAL);
    const auto part = wxSizerFlags().Expand().Border(wxBOTTOM, wide());
    whole->Add(makeSource(), part);
    whole->Add(makeModes(), part);
    whole->Add(makeExcluded(), wxSizerFlags(1).Expand().Border(wxBOTTOM, wide()));
    wxButton* accept = makeButton(peers, this, form.Cmd[0]);
    wxButton* cancel = makeButton(peers, this, form.Cmd[1]);
    whole->Add(buttonRow({accept, cancel}), wxSizerFlags().Expand());
    arrange(whole, accept);
    firstFocus_->SetFocus();
}

wxSizer* ExcludeView::makeSource() {
    wxStaticBox* frame = makeFrame(peers, this, form_.SourceFrame);
    auto* box = new wxStaticBoxSizer(frame, wxVERTICAL);
    box->Add(makePath(peers, frame, form_.SourceLbl, form_.SourceFrame.caption()),
             wxSizerFlags().Expand().Border(wxALL, narrow()));
    return box;
}

wxSizer* ExcludeView::makeModes() {
    wxStaticBox* frame = makeFrame(peers, this, form_.ModeFrame);
    auto* box = new wxStaticBoxSizer(frame, wxVERTICAL);
    for (OptionButton& option : form_.OptExclu) {
        wxRadioButton* button = makeOption(peers, frame, option, &option == &form_.OptExclu[0]);
        box->Add(button, wxSizerFlags().Border(wxALL, narrow()));
        if (firstFocus_ == nullptr || option.checked()) firstFocus_ = button;
    }
    return box;
}

wxSizer* ExcludeView::makeExcluded() {
    wxStaticBox* frame = makeFrame(peers, this, form_.ListeFrame);
    auto* box = new wxStaticBoxSizer(frame, wxHORIZONTAL);
    wxListBox* list = makeList(peers, frame, form_.Liste, form_.ListeFrame.caption());
    list->SetMinSize(FromDIP(wxSize(360, 160)));
    box->Add(list, wxSizerFlags(1).Expand().Border(wxALL, narrow()));
    auto* buttons = new wxBoxSizer(wxVERTICAL);
    for (const std::size_t i : {2, 3, 4}) {
        buttons->Add(makeButton(peers, frame, form_.Cmd.at(i)),
                     wxSizerFlags().Expand().Border(wxBOTTOM, narrow()));
    }
    box->Add(buttons, wxSizerFlags().Border(wxALL, narrow()));
    return box;
}

}  // namespace coffrelune
