#include "views/wx/dialog_views.h"

#include <wx/hyperlink.h>
#include <wx/sizer.h>

#include <algorithm>

#include "dialogs/config_form.h"
#include "dialogs/drive_list_frm.h"
#include "dialogs/exclude_form.h"
#include "dialogs/frm_about.h"
#include "dialogs/text_dialogs.h"
#include "operation/copie.h"
#include "operation/errors.h"
#include "views/wx/accessible.h"
#include "views/wx/basic_widgets.h"
#include "views/wx/commands.h"
#include "views/wx/copie_view.h"
#include "views/wx/dialog_view.h"
#include "views/wx/input_widgets.h"
#include "views/wx/log_search_view.h"
#include "views/wx/long_lists.h"
#include "views/wx/path_view.h"
#include "views/wx/text.h"

namespace coffrelune {
namespace {

class ConfirmView final : public DialogView {
  public:
    ConfirmView(wxWindow* parent, ViewContext& context, frmConfirm& form);

  private:
    void addLine(wxSizer& texts, Label& label);
};

ConfirmView::ConfirmView(wxWindow* parent, ViewContext& context, frmConfirm& form)
    : DialogView(parent, context, form, false) {
    constexpr int pictureSize = 48;
    auto* texts = new wxBoxSizer(wxVERTICAL);
    for (Label& label : form.Lbl) addLine(*texts, label);
    texts->AddSpacer(narrow());
    for (Label& label : form.Facts) addLine(*texts, label);
    auto* question = new wxBoxSizer(wxHORIZONTAL);
    question->Add(makePicture(peers, this, form.Image1, pictureSize), wxSizerFlags().Top());
    question->AddSpacer(wide());
    question->Add(texts, wxSizerFlags(1).CentreVertical());
    std::vector<wxButton*> buttons;
    wxButton* usual = nullptr;
    for (Button& button : form.Cmd) {
        buttons.push_back(makeButton(peers, this, button));
        if (&button == form.defaultButton()) usual = buttons.back();
    }
    auto* whole = new wxBoxSizer(wxVERTICAL);
    whole->Add(question, wxSizerFlags(1).Expand().Border(wxBOTTOM, wide()));
    whole->Add(buttonRow(buttons), wxSizerFlags().Expand());
    arrange(whole, usual);
    usual->SetFocus();
}

// A file's name may be longer than the screen is wide, and has nowhere to be wrapped.
void ConfirmView::addLine(wxSizer& texts, Label& label) {
    constexpr int textWidth = 680;
    wxStaticText* text = makeLine(peers, this, label);
    const int whole = text->GetTextExtent(toWx(label.caption())).x;
    text->SetMinSize(wxSize(std::min(whole, sizeForText(*this, wxSize(textWidth, 0)).x), -1));
    texts.Add(text, wxSizerFlags().Border(wxBOTTOM, narrow()));
}

class ErrorListView final : public DialogView {
  public:
    ErrorListView(wxWindow* parent, ViewContext& context, VisuErrFrm& form);
};

ErrorListView::ErrorListView(wxWindow* parent, ViewContext& context, VisuErrFrm& form)
    : DialogView(parent, context, form, true) {
    auto* whole = new wxBoxSizer(wxVERTICAL);
    for (Label& label : form.Lbl)
        whole->Add(makeText(peers, this, label), wxSizerFlags().Border(wxBOTTOM, narrow()));
    whole->Add(makeLogSearch(peers, this, form.search),
               wxSizerFlags().Expand().Border(wxBOTTOM, narrow()));
    wxDataViewCtrl* list = makeLog(peers, this, form.ListeTxt, form.caption(), Follow::no);
    list->SetMinSize(sizeForText(*this, wxSize(640, 320)));
    whole->Add(list, wxSizerFlags(1).Expand().Border(wxBOTTOM, narrow()));
    whole->Add(makeLine(peers, this, form.search.MeaningLbl, wxST_ELLIPSIZE_END),
               wxSizerFlags().Expand().Border(wxBOTTOM, wide()));
    wxButton* close = makeButton(peers, this, form.Cmd);
    whole->Add(buttonRow({close}), wxSizerFlags().Expand());
    arrange(whole, close);
    list->SetFocus();
}

class ConfigView final : public DialogView {
  public:
    ConfigView(wxWindow* parent, ViewContext& context, ConfigForm& form);

  private:
    wxSizer* makeConfigurations();
    wxSizer* makeOptions();
    wxSizer* makeSounds(wxWindow* frame);

    ConfigForm& form_;
};

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
    list->SetMinSize(sizeForText(*this, wxSize(290, 160)));
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

class ExcludeView final : public DialogView {
  public:
    ExcludeView(wxWindow* parent, ViewContext& context, ExcludeForm& form);

  private:
    wxSizer* makeSource();
    wxSizer* makeModes();
    wxSizer* makeExcluded();

    ExcludeForm& form_;
    wxWindow* firstFocus_ = nullptr;
};

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
    // The toolkit always chooses one of a group: this one stands for none of those that are
    // offered.
    auto* none = new wxRadioButton(frame, wxID_ANY, wxEmptyString, wxDefaultPosition, wxDefaultSize,
                                   wxRB_GROUP);
    none->SetValue(true);
    none->Hide();
    for (OptionButton& option : form_.OptExclu) {
        wxRadioButton* button = makeOption(peers, frame, option);
        box->Add(button, wxSizerFlags().Border(wxALL, narrow()));
        if (firstFocus_ == nullptr || option.checked()) firstFocus_ = button;
    }
    return box;
}

wxSizer* ExcludeView::makeExcluded() {
    wxStaticBox* frame = makeFrame(peers, this, form_.ListeFrame);
    auto* box = new wxStaticBoxSizer(frame, wxHORIZONTAL);
    wxListBox* list = makeList(peers, frame, form_.Liste, form_.ListeFrame.caption());
    list->SetMinSize(sizeForText(*this, wxSize(360, 160)));
    box->Add(list, wxSizerFlags(1).Expand().Border(wxALL, narrow()));
    auto* buttons = new wxBoxSizer(wxVERTICAL);
    for (const std::size_t i : {2, 3, 4}) {
        buttons->Add(makeButton(peers, frame, form_.Cmd.at(i)),
                     wxSizerFlags().Expand().Border(wxBOTTOM, narrow()));
    }
    box->Add(buttons, wxSizerFlags().Border(wxALL, narrow()));
    return box;
}

class DriveListView final : public DialogView {
  public:
    DriveListView(wxWindow* parent, ViewContext& context, DriveListFrm& form);
};

DriveListView::DriveListView(wxWindow* parent, ViewContext& context, DriveListFrm& form)
    : DialogView(parent, context, form, true) {
    auto* whole = new wxBoxSizer(wxVERTICAL);
    whole->Add(makeText(peers, this, form.Lbl), wxSizerFlags().Border(wxBOTTOM, narrow()));
    wxDataViewListCtrl* list =
        makeReport(peers, this, form.ListDrive, fromWx(spoken(form.Lbl.caption())));
    list->SetMinSize(sizeForText(*this, wxSize(560, 220)));
    whole->Add(list, wxSizerFlags(1).Expand().Border(wxBOTTOM, wide()));
    wxButton* accept = makeButton(peers, this, form.Cmd[0]);
    wxButton* cancel = makeButton(peers, this, form.Cmd[1]);
    whole->Add(buttonRow({accept, cancel}), wxSizerFlags().Expand());
    arrange(whole, accept);
    list->SetFocus();
}

class TextDialogView final : public DialogView {
  public:
    TextDialogView(wxWindow* parent, ViewContext& context, TextDialog& form);
};

TextDialogView::TextDialogView(wxWindow* parent, ViewContext& context, TextDialog& form)
    : DialogView(parent, context, form, false) {
    constexpr int textWidth = 420;
    auto* whole = new wxBoxSizer(wxVERTICAL);
    for (Label* label : form.labels())
        whole->Add(makeText(peers, this, *label), wxSizerFlags().Border(wxBOTTOM, narrow()));
    auto* line = new wxBoxSizer(wxHORIZONTAL);
    wxTextCtrl* field = makeField(peers, this, form.Txt, form.Txt.caption());
    field->SetMinSize(wxSize(sizeForText(*this, wxSize(textWidth, 0)).x, field->GetMinHeight()));
    line->Add(field, wxSizerFlags(1).CentreVertical());
    line->AddSpacer(narrow());
    line->Add(makeIconButton(peers, this, form.Cmd[2], "vider"), wxSizerFlags().CentreVertical());
    whole->Add(line, wxSizerFlags().Expand().Border(wxBOTTOM, wide()));
    wxButton* accept = makeButton(peers, this, form.Cmd[0]);
    wxButton* cancel = makeButton(peers, this, form.Cmd[1]);
    whole->Add(buttonRow({accept, cancel}), wxSizerFlags().Expand());
    arrange(whole, accept);
    field->SetFocus();
    field->SelectAll();
}

class AboutView final : public DialogView {
  public:
    AboutView(wxWindow* parent, ViewContext& context, frmAbout& form);
};

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

template <typename View, typename Form>
std::unique_ptr<DialogView> viewOf(wxWindow* parent, ViewContext& context, Window& window) {
    auto* form = dynamic_cast<Form*>(&window);
    return form == nullptr ? nullptr : std::make_unique<View>(parent, context, *form);
}

}  // namespace

std::unique_ptr<DialogView> makeDialogView(wxWindow* parent, ViewContext& context, Window& window) {
    using Maker = std::unique_ptr<DialogView> (*)(wxWindow*, ViewContext&, Window&);
    static constexpr Maker makers[] = {
        viewOf<CopieView, Copie>,           viewOf<ConfirmView, frmConfirm>,
        viewOf<ErrorListView, VisuErrFrm>,  viewOf<ConfigView, ConfigForm>,
        viewOf<ExcludeView, ExcludeForm>,   viewOf<DriveListView, DriveListFrm>,
        viewOf<TextDialogView, TextDialog>, viewOf<AboutView, frmAbout>,
    };
    for (const Maker maker : makers) {
        if (auto view = maker(parent, context, window); view != nullptr) return view;
    }
    return nullptr;
}

}  // namespace coffrelune
