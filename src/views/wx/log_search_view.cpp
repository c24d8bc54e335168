#include "views/wx/log_search_view.h"

#include "views/wx/basic_widgets.h"
#include "views/wx/input_widgets.h"
#include "views/wx/text.h"

namespace coffrelune {

wxSizer* makeLogSearch(Peers& peers, wxWindow* parent, LogSearch& search) {
    constexpr int between = 6;
    auto* row = new wxBoxSizer(wxHORIZONTAL);
    wxTextCtrl* filter = makeField(peers, parent, search.FilterTxt);
    filter->SetHint(toWx(search.FilterTxt.toolTip()));
    row->Add(filter, wxSizerFlags(1).CentreVertical().ReserveSpaceEvenIfHidden());
    const auto item = wxSizerFlags().CentreVertical().ReserveSpaceEvenIfHidden().Border(
        wxLEFT, parent->FromDIP(between));
    row->Add(makeIconButton(peers, parent, search.CopyCmd, "copier"), item);
    row->Add(makeIconButton(peers, parent, search.SaveCmd, "enregistrer"), item);
    row->Add(makeIconButton(peers, parent, search.FolderCmd, "parcourir"), item);
    return row;
}

}  // namespace coffrelune
