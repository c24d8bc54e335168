#include "views/wx/copie_view.h"

#include <wx/sizer.h>

#include "views/wx/basic_widgets.h"
#include "views/wx/long_lists.h"
#include "views/wx/text.h"

namespace coffrelune {

CopieView::CopieView(wxWindow* parent, ViewContext& context, Copie& form)
    : DialogView(parent, context, form, true), form_(form) {
    auto* whole = new wxBoxSizer(wxVERTICAL);
    const auto part = wxSizerFlags().Expand().Border(wxBOTTOM, wide());
    whole->Add(makePictures(), part);
    whole->Add(makeProgress(), part);
    wxDataViewCtrl* journal = makeLog(peers, this, form.ECTxt, "Journal", Follow::end);
    journal->SetMinSize(sizeForText(*this, wxSize(600, 140)));
    whole->Add(journal, wxSizerFlags(1).Expand().Border(wxBOTTOM, wide()));
    auto* last = new wxBoxSizer(wxHORIZONTAL);
    last->Add(makeCheckBox(peers, this, form.AnalyseChk),
              wxSizerFlags().CentreVertical().ReserveSpaceEvenIfHidden());
    wxButton* stop = makeButton(peers, this, form.Cmd);
    last->Add(buttonRow({stop}), wxSizerFlags(1).CentreVertical());
    whole->Add(last, wxSizerFlags().Expand());
    arrange(whole, nullptr);
    stop->SetFocus();
}

// Source, direction, destination; the warning beside them once there has been an error.
wxSizer* CopieView::makePictures() {
    constexpr int size = 48;
    auto* sizer = new wxBoxSizer(wxHORIZONTAL);
    const auto item = wxSizerFlags().CentreVertical().ReserveSpaceEvenIfHidden();
    sizer->Add(makePicture(peers, this, form_.ImgSrc, size), item);
    sizer->AddStretchSpacer();
    sizer->Add(makePicture(peers, this, form_.ImgSens, size), item);
    sizer->AddSpacer(wide());
    for (Picture& mark : form_.ImgAtt)
        sizer->Add(makePicture(peers, this, mark, size / 2), wxSizerFlags().CentreVertical());
    sizer->AddStretchSpacer();
    sizer->Add(makePicture(peers, this, form_.ImgDest, size), item);
    return sizer;
}

wxSizer* CopieView::makeProgress() {
    auto* sizer = new wxBoxSizer(wxVERTICAL);
    const auto line = wxSizerFlags().Expand().Border(wxBOTTOM, narrow());
    for (const std::size_t i : {1, 3, 4})
        sizer->Add(makePathLine(peers, this, form_.Lbl.at(i)), line);
    wxGauge* gauge = makeGauge(peers, this, form_.ProgBar);
    sizer->Add(gauge, line);
    auto* figures = new wxBoxSizer(wxHORIZONTAL);
    figures->Add(makeLine(peers, this, form_.Lbl[0]), wxSizerFlags(2));
    figures->Add(makeLine(peers, this, form_.Lbl[5]), wxSizerFlags(1));
    sizer->Add(figures, line);
    sizer->Add(makeLine(peers, this, form_.Lbl[2]), wxSizerFlags().Expand());
    return sizer;
}

}  // namespace coffrelune
