#include "platform/wx/drive_list_view.h"

#include <wx/sizer.h>

#include "platform/wx/basic_widgets.h"
#include "platform/wx/long_lists.h"
#include "platform/wx/text.h"

namespace coffrelune {

DriveListView::DriveListView(wxWindow* parent, ViewContext& context, DriveListFrm& form)
    : DialogView(parent, context, form, true) {
    auto* whole = new wxBoxSizer(wxVERTICAL);
    whole->Add(makeText(peers, this, form.Lbl), wxSizerFlags().Border(wxBOTTOM, narrow()));
    wxDataViewListCtrl* list =
        makeReport(peers, this, form.ListDrive, fromWx(spoken(form.Lbl.caption())));
    list->SetMinSize(FromDIP(wxSize(480, 220)));
    whole->Add(list, wxSizerFlags(1).Expand().Border(wxBOTTOM, wide()));
    wxButton* accept = makeButton(peers, this, form.Cmd[0]);
    wxButton* cancel = makeButton(peers, this, form.Cmd[1]);
    whole->Add(buttonRow({accept, cancel}), wxSizerFlags().Expand());
    arrange(whole, accept);
    list->SetFocus();
}

}  // namespace coffrelune
