#include "platform/wx/error_list_view.h"

#include <wx/sizer.h>

#include "platform/wx/basic_widgets.h"
#include "platform/wx/long_lists.h"

namespace coffrelune {

ErrorListView::ErrorListView(wxWindow* parent, ViewContext& context, VisuErrFrm& form)
    : DialogView(parent, context, form, true) {
    auto* whole = new wxBoxSizer(wxVERTICAL);
    for (Label& label : form.Lbl)
        whole->Add(makeText(peers, this, label), wxSizerFlags().Border(wxBOTTOM, narrow()));
    wxDataViewCtrl* list = makeLog(peers, this, form.ListeTxt, form.caption(), Follow::no);
    list->SetMinSize(FromDIP(wxSize(640, 320)));
    whole->Add(list, wxSizerFlags(1).Expand().Border(wxBOTTOM, wide()));
    wxButton* close = makeButton(peers, this, form.Cmd);
    whole->Add(buttonRow({close}), wxSizerFlags().Expand());
    arrange(whole, close);
    list->SetFocus();
}

}  // namespace coffrelune
