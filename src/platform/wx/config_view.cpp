#include "platform/wx/config_view.h"

#include <wx/sizer.h>

#include "platform/wx/accessible.h"
#include "platform/wx/basic_widgets.h"
#include "platform/wx/input_widgets.h"

namespace coffrelune {

ConfigView::ConfigView(wxWindow* parent, ViewContext& context, ConfigForm& form)
    : DialogView(parent, context, form, true), form_(form) {
    auto* columns = new wxBoxSizer(wxHORIZONTAL);
    columns->Add(makeConfigurations(), wxSizerFlags(1).Expand().Border(wxRIGHT, wide()));
    columns->Add(makeOptions(), wxSizerFlags(0).Expand());
    auto* whole = new wxBoxSizer(wxVERTICAL);
    whole->Add(columns, wxSizerFlags(1).Expand().Border(wxBOTTOM, wide()));
    wxButton* accept = makeButton(peers, this, form.Cmd[0]);
    wxButton* cancel = makeButton(peers, this, form.Cmd[1]);
    whole->Add(buttonRow({accept, cancel}), wxSizerFlags().Expand());
    arrange(whole, accept);
}

wxSizer* ConfigView::makeConfigurations() {
    wxStaticBox* frame = makeFrame(peers, this, form_.ListeFrame);
    auto* box = new wxStaticBoxSizer(frame, wxVERTICAL);
    wxListBox* list = makeList(peers, frame, form_.Liste, form_.ListeFrame.caption());
    list->SetMinSize(FromDIP(wxSize(260, 160)));
    box->Add(list, wxSizerFlags(1).Expand().Border(wxALL, narrow()));
    auto* buttons = new wxBoxSizer(wxHORIZONTAL);
    buttons->Add(makeButton(peers, frame, form_.Cmd[2]), wxSizerFlags(1));
    buttons->AddSpacer(narrow());
    buttons->Add(makeButton(peers, frame, form_.Cmd[3]), wxSizerFlags(1));
    box->Add(buttons, wxSizerFlags().Expand().Border(wxALL, narrow()));
    return box;
}

wxSizer* ConfigView::makeOptions() {
    wxStaticBox* frame = makeFrame(peers, this, form_.OptFrame);
    auto* box = new wxStaticBoxSizer(frame, wxVERTICAL);
    for (CheckBox& option : form_.Opt)
        box->Add(makeCheckBox(peers, frame, option), wxSizerFlags().Border(wxALL, narrow()));
    box->Add(makeSounds(frame), wxSizerFlags().Expand().Border(wxALL, narrow()));
    return box;
}

wxSizer* ConfigView::makeSounds(wxWindow* frame) {
    constexpr int columns = 3;
    auto* grid = new wxFlexGridSizer(columns, narrow(), narrow());
    grid->AddGrowableCol(1);
    const auto middle = wxSizerFlags().CentreVertical();
    const auto grown = wxSizerFlags().CentreVertical().Expand();
    wxStaticText* label = makePrompt(peers, frame, form_.RepMaxLbl);
    wxChoice* counts = makeDropDown(peers, frame, form_.RepMaxCb);
    labelFor(*label, *counts);
    grid->Add(label, middle);
    grid->Add(counts, grown);
    grid->AddStretchSpacer();
    for (std::size_t i = 0; i < form_.FichSonCb.size(); ++i) {
        label = makePrompt(peers, frame, form_.FichSonLbl.at(i));
        wxChoice* sounds = makeDropDown(peers, frame, form_.FichSonCb.at(i));
        labelFor(*label, *sounds);
        grid->Add(label, middle);
        grid->Add(sounds, grown);
        constexpr std::size_t firstTest = 4;
        grid->Add(makeIconButton(peers, frame, form_.Cmd.at(firstTest + i), "ecouter"), middle);
    }
    return grid;
}

}  // namespace coffrelune
