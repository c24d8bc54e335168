#include "platform/wx/about_view.h"

#include <wx/hyperlink.h>
#include <wx/sizer.h>

#include "platform/wx/basic_widgets.h"
#include "platform/wx/commands.h"

namespace coffrelune {

AboutView::AboutView(wxWindow* parent, ViewContext& context, frmAbout& form)
    : DialogView(parent, context, form, false) {
    constexpr int pictureSize = 64;
    constexpr int textWidth = 420;
    auto* identity = new wxBoxSizer(wxVERTICAL);
    wxStaticText* title = makeText(peers, this, form.TitleLbl);
    title->SetFont(title->GetFont().Bold().Scaled(1.4F));
    identity->Add(title, wxSizerFlags().Border(wxBOTTOM, narrow()));
    identity->Add(makeText(peers, this, form.VersionLbl),
                  wxSizerFlags().Border(wxBOTTOM, narrow()));
    wxStaticText* comment = makeText(peers, this, form.CommentLbl);
    comment->Wrap(FromDIP(textWidth));
    identity->Add(comment, wxSizerFlags().Border(wxBOTTOM, narrow()));
    identity->Add(makeLink(peers, this, form.WebLbl));
    auto* head = new wxBoxSizer(wxHORIZONTAL);
    head->Add(makePicture(peers, this, form.picIcon, pictureSize), wxSizerFlags().Top());
    head->AddSpacer(wide());
    head->Add(identity, wxSizerFlags(1));
    wxStaticBox* frame = makeFrame(peers, this, form.NoticeFrame);
    auto* notice = new wxStaticBoxSizer(frame, wxVERTICAL);
    wxStaticText* text = makeText(peers, frame, form.NoticeLbl);
    text->Wrap(FromDIP(textWidth + pictureSize));
    notice->Add(text, wxSizerFlags().Border(wxALL, narrow()));
    auto* whole = new wxBoxSizer(wxVERTICAL);
    whole->Add(head, wxSizerFlags().Expand().Border(wxBOTTOM, wide()));
    whole->Add(notice, wxSizerFlags().Expand().Border(wxBOTTOM, wide()));
    whole->Add(makeCheckBox(peers, this, form.AutoCheck), wxSizerFlags().Border(wxBOTTOM, wide()));
    wxButton* accept = makeButton(peers, this, form.cmdOK);
    whole->Add(buttonRow({accept}), wxSizerFlags().Expand());
    arrange(whole, accept);
    accept->SetFocus();
}

}  // namespace coffrelune
