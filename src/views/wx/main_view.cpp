#include "views/wx/main_view.h"

#include <wx/app.h>
#include <wx/evtloop.h>
#include <wx/hyperlink.h>
#include <wx/sizer.h>
#include <wx/statline.h>

#include <algorithm>

#include "views/wx/accessible.h"
#include "views/wx/basic_widgets.h"
#include "views/wx/commands.h"
#include "views/wx/desktop.h"
#include "views/wx/input_widgets.h"
#include "views/wx/log_search_view.h"
#include "views/wx/long_lists.h"
#include "views/wx/pictures.h"
#include "views/wx/scrolling.h"
#include "views/wx/text.h"

namespace coffrelune {
namespace {

constexpr int wide = 12;  // density-independent pixels
constexpr int narrow = 6;
constexpr int resultPicture = 16;
constexpr int noticePicture = 24;
constexpr int leastText = 160;  // of a line that is shortened where the window is narrow

/// A column that keeps the room of what it hides, less what is shown of another one: the two are
/// never shown together.
class SharedColumn final : public wxBoxSizer {
  public:
    explicit SharedColumn(wxSizer* other) : wxBoxSizer(wxVERTICAL), other_(other) {}

    wxSize CalcMin() override {
        wxSize least = wxBoxSizer::CalcMin();
        least.y = std::max(0, least.y - other_->CalcMin().y);
        return least;
    }

  private:
    wxSizer* other_;
};

}  // namespace

MainView::MainView(ViewContext& context, MainForm& form)
    : wxFrame(nullptr, wxID_ANY, toWx(form.caption())), form_(form), peers_(context) {
    wxIconBundle icons;
    for (const int size : {16, 32, 48, 64}) {
        wxIcon icon;
        icon.CopyFromBitmap(context.pictures.find("programme", size).GetBitmap(wxSize(size, size)));
        icons.AddIcon(icon);
    }
    SetIcons(icons);
    build();
    bindWindow();
    bindForm();
    fit();
    applyPlace();
}

MainView::~MainView() {
    peers_.context.refresher.unwatch(this);
    peers_.context.refresher.forgetWindow(this);
}

// The toolkit deletes a frame when nothing of it is under way any more: the form is gone by then.
void MainView::leaveForm() {
    form_.lines.onRowsChanged = rowsChanged_;
    form_.lineCommands.onPopup = nullptr;
    form_.lineCommands.onMoved = nullptr;
    form_.notices.onChanged = nullptr;
    peers_.context.refresher.unwatch(this);
    settling_.Stop();
}

void MainView::bindWindow() {
    Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent& event) {
        if (settling_.IsRunning()) rememberPlace();
        form_.closeBox();
        // A window that has closed must not keep the session from ending.
        if (form_.open() && event.CanVeto()) event.Veto();
        wxWakeUpIdle();
    });
    // A window that is being maximised moves first, and is maximised some events later.
    const auto moved = [this](wxEvent& event) {
        event.Skip();
        if (!IsShown()) return;
        constexpr int settled = 300;  // milliseconds
        rememberState();
        settling_.StartOnce(settled);
    };
    settling_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { rememberPlace(); });
    Bind(wxEVT_MOVE, moved);
    Bind(wxEVT_SIZE, moved);
    Bind(wxEVT_ICONIZE, moved);
    Bind(wxEVT_MAXIMIZE, moved);
    Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
        if (!pressMnemonic(event) && !pressShortcut(event)) event.Skip();
    });
}

void MainView::bindForm() {
    rowsChanged_ = form_.lines.onRowsChanged;
    form_.lines.onRowsChanged = [this] {
        rowsChanged_();
        linesView_->rebuild();
        fit();
    };
    form_.lineCommands.onPopup = [this] {
        popUp(*this, form_.lineCommands.MenuPop, peers_.context.pictures);
    };
    form_.lineCommands.onMoved = [this](int row, LineSide side) { linesView_->focus(row, side); };
    form_.notices.onChanged = [this] {
        peers_.context.refresher.flush();
        if (!IsMaximized() && !IsIconized()) fit();
        Layout();
        Refresh();
    };
    driveTimer(peers_, form_.schedule.Timer1);
}

// The tabs' mnemonics where the toolkit does not know them; everything else it does.
bool MainView::pressMnemonic(const wxKeyEvent& event) {
    if (tabsAnswerKeys_ || event.GetModifiers() != wxMOD_ALT) return false;
    for (const TabStrip::Tab& tab : form_.launch.Onglet.tabs()) {
        const auto mark = tab.caption.find('&');
        if (mark == std::string::npos || event.GetKeyCode() != tab.caption[mark + 1]) continue;
        form_.launch.Onglet.pick(tab.key);
        return true;
    }
    return false;
}

// F5 does what the launch button does, Ctrl+Q and F1 what their tools do.
bool MainView::pressShortcut(const wxKeyEvent& event) {
    const bool launches = event.GetKeyCode() == WXK_F5 && !event.HasAnyModifiers();
    const bool helps = event.GetKeyCode() == WXK_F1 && !event.HasAnyModifiers();
    const bool quits = event.GetKeyCode() == 'Q' && event.GetModifiers() == wxMOD_CONTROL;
    // After the event: what is done may last as long as a backup, or close the window.
    if (launches) CallAfter([this] { form_.Cmd.at(MainForm::launchCmd).click(); });
    if (helps) CallAfter([this] { form_.toolbar.TB.pick("Aide"); });
    if (quits) CallAfter([this] { form_.toolbar.TB.pick("Quitter"); });
    return launches || quits || helps;
}

void MainView::build() {
    page_ = new wxScrolledWindow(this, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                 wxTAB_TRAVERSAL | wxHSCROLL | wxVSCROLL);
    constexpr int step = 16;
    page_->SetScrollRate(FromDIP(step), FromDIP(step));
    followFocus(*page_);
    page_->Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
        shareHeight();
        event.Skip();
    });
    auto* whole = new wxBoxSizer(wxVERTICAL);
    const auto row = [this](int proportion = 0) {
        return wxSizerFlags(proportion).Expand().Border(wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(wide));
    };
    whole->Add(makeNotices(), wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT, FromDIP(wide)));
    whole->Add(makeToolbar(peers_, page_, form_.toolbar.TB),
               wxSizerFlags().Expand().Border(wxALL, FromDIP(narrow)));
    whole->Add(new wxStaticLine(page_), wxSizerFlags().Expand().Border(wxBOTTOM, FromDIP(wide)));
    whole->Add(makeHeader(), row());
    tabs_ = makeTabs(peers_, page_, form_.launch.Onglet);
    std::vector<std::string> captions;
    for (const TabStrip::Tab& tab : form_.launch.Onglet.tabs()) captions.push_back(tab.caption);
    nameForReaders(*tabs_, "Opération");
    tabsAnswerKeys_ = giveTabsMnemonics(*tabs_, captions);
    whole->Add(tabs_, row());
    linesView_ = new LinesView(page_, peers_.context, form_.lines);
    whole->Add(linesView_, row());
    auto* left = new wxBoxSizer(wxVERTICAL);
    left->Add(makeLaunch(), wxSizerFlags().Expand().Border(wxBOTTOM, FromDIP(wide)));
    left->Add(makeSchedule(), wxSizerFlags().Expand().Border(wxBOTTOM, FromDIP(wide)));
    left->Add(makeProgram(), wxSizerFlags().Expand());
    auto* below = new wxBoxSizer(wxHORIZONTAL);
    // Only one of them grows: shares would ask for twice the room of the wider one.
    below->Add(left, wxSizerFlags().Expand().Border(wxRIGHT, FromDIP(wide)));
    below->Add(makeResults(), wxSizerFlags(1).Expand());
    whole->Add(below, row(1));
    page_->SetSizer(whole);
    auto* frame = new wxBoxSizer(wxVERTICAL);
    frame->Add(page_, wxSizerFlags(1).Expand());
    SetSizer(frame);
}

wxSizer* MainView::makeNotices() {
    NoticeArea& notices = form_.notices;
    auto* lines = new wxBoxSizer(wxVERTICAL);
    for (Label& label : notices.Lbl) {
        lines->Add(makeLine(peers_, page_, label, wxST_ELLIPSIZE_END),
                   wxSizerFlags().Expand().Border(wxTOP, FromDIP(narrow)));
    }
    auto* sizer = new wxBoxSizer(wxHORIZONTAL);
    sizer->Add(makePicture(peers_, page_, notices.Img, noticePicture),
               wxSizerFlags().CentreVertical().Border(wxTOP | wxRIGHT, FromDIP(narrow)));
    sizer->Add(lines, wxSizerFlags(1).CentreVertical());
    for (Button* button : {&notices.ConfirmCmd, &notices.DatesCmd, &notices.Cmd}) {
        sizer->Add(makeButton(peers_, page_, *button),
                   wxSizerFlags().Top().Border(wxLEFT | wxTOP, FromDIP(narrow)));
    }
    return sizer;
}

wxSizer* MainView::makeHeader() {
    auto* sizer = new wxBoxSizer(wxHORIZONTAL);
    wxStaticText* name = makeLine(peers_, page_, form_.configuration.ConfigLbl, wxST_ELLIPSIZE_END);
    name->SetFont(name->GetFont().Bold().Larger());
    name->SetMinSize(wxSize(FromDIP(leastText), name->GetCharHeight()));
    sizer->Add(name, wxSizerFlags(1).CentreVertical());
    ConfigurationPanel& configuration = form_.configuration;
    wxChoice* others = makeDropDown(peers_, page_, configuration.ConfigCb);
    constexpr int characters = 28;
    shortenEntries(*others);
    others->SetMinSize(wxSize(GetCharWidth() * characters, -1));
    const auto item = wxSizerFlags().CentreVertical().Border(wxLEFT, FromDIP(narrow));
    sizer->Add(others, item);
    sizer->Add(makeButton(peers_, page_, configuration.RenameCmd), item);
    sizer->Add(makeButton(peers_, page_, configuration.DuplicateCmd), item);
    return sizer;
}

wxSizer* MainView::makeLaunch() {
    auto* sizer = new wxBoxSizer(wxHORIZONTAL);
    wxButton* launch = makeButton(peers_, page_, form_.Cmd.at(1));
    launch->SetFont(launch->GetFont().Bold());
    sizer->Add(launch, wxSizerFlags().CentreVertical());
    sizer->AddSpacer(FromDIP(wide));
    sizer->Add(makeButton(peers_, page_, form_.Cmd.at(4)),
               wxSizerFlags().CentreVertical().ReserveSpaceEvenIfHidden());
    return sizer;
}

wxSizer* MainView::makeSchedule() {
    auto* options = new wxBoxSizer(wxVERTICAL);
    Schedule& schedule = form_.schedule;
    auto* replacing = new wxBoxSizer(wxHORIZONTAL);
    for (const std::size_t i : {0, 1}) {
        replacing->Add(makeCheckBox(peers_, page_, schedule.Opt.at(i)),
                       wxSizerFlags().Border(wxRIGHT | wxBOTTOM, FromDIP(narrow)));
    }
    options->Add(replacing);
    wxStaticBox* frame = makeFrame(peers_, page_, schedule.CadrePla);
    auto* whole = new wxStaticBoxSizer(frame, wxVERTICAL);
    auto* box = new wxBoxSizer(wxHORIZONTAL);
    const auto item = wxSizerFlags().CentreVertical().Border(wxALL, FromDIP(narrow));
    box->Add(makeCheckBox(peers_, frame, schedule.Opt.at(2)), item);
    wxTextCtrl* time = makeField(peers_, frame, schedule.AutoHr);
    constexpr int characters = 7;
    time->SetMinSize(
        wxSize(time->GetSizeFromTextSize(GetCharWidth() * characters).x, time->GetMinHeight()));
    box->Add(time, item);
    box->AddStretchSpacer();
    box->Add(makeButton(peers_, frame, form_.Cmd.at(3)), item);
    whole->Add(box, wxSizerFlags().Expand());
    wxStaticText* next = makeLine(peers_, frame, schedule.NextLbl, wxST_ELLIPSIZE_END);
    next->SetMinSize(wxSize(FromDIP(leastText), next->GetCharHeight()));
    whole->Add(next, wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT | wxBOTTOM, FromDIP(narrow)));
    options->Add(whole, wxSizerFlags().Expand());
    return options;
}

wxSizer* MainView::makeProgram() {
    ProgramAfter& program = form_.program;
    auto* sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(makeCheckBox(peers_, page_, program.ChkProg),
               wxSizerFlags().Border(wxBOTTOM, FromDIP(narrow)));
    auto* chosen = new wxBoxSizer(wxHORIZONTAL);
    const auto item = wxSizerFlags().CentreVertical();
    chosen->Add(makeField(peers_, page_, program.ProgToRunTxt), wxSizerFlags(1).CentreVertical());
    chosen->AddSpacer(FromDIP(narrow));
    chosen->Add(makeIconButton(peers_, page_, program.CmdP.at(0), "parcourir"), item);
    chosen->AddSpacer(FromDIP(narrow));
    chosen->Add(makeIconButton(peers_, page_, program.CmdP.at(1), "vider"), item);
    sizer->Add(chosen, wxSizerFlags().Expand().Border(wxBOTTOM, FromDIP(narrow)));
    auto* parameters = new wxBoxSizer(wxHORIZONTAL);
    wxStaticText* prompt = makePrompt(peers_, page_, program.PrmToRunLbl);
    parameters->Add(prompt, item);
    parameters->AddSpacer(FromDIP(narrow));
    wxTextCtrl* field = makeField(peers_, page_, program.PrmToRunTxt);
    labelFor(*prompt, *field);
    parameters->Add(field, wxSizerFlags(1).CentreVertical());
    sizer->Add(parameters, wxSizerFlags().Expand());
    return sizer;
}

wxSizer* MainView::makeSteps() {
    auto* sizer = new wxBoxSizer(wxVERTICAL);
    wxStaticText* title = makeText(peers_, page_, form_.steps.TitleLbl);
    title->SetFont(title->GetFont().Bold());
    const auto step = wxSizerFlags().Expand().Border(wxBOTTOM, FromDIP(narrow));
    sizer->Add(title, step);
    for (Label& label : form_.steps.Lbl) {
        wxStaticText* text = makeLine(peers_, page_, label, wxST_ELLIPSIZE_END);
        text->SetMinSize(wxSize(FromDIP(leastText), text->GetCharHeight()));
        sizer->Add(text, step);
    }
    return sizer;
}

wxSizer* MainView::makeResults() {
    ResultsArea& results = form_.results;
    auto* sizer = new wxBoxSizer(wxVERTICAL);
    wxSizer* steps = makeSteps();
    sizer->Add(steps, wxSizerFlags().Expand());
    const auto addLine = [&](Picture& picture, Label& label, bool whole = true) {
        auto* line = new wxBoxSizer(wxHORIZONTAL);
        line->Add(makePicture(peers_, page_, picture, resultPicture),
                  wxSizerFlags().CentreVertical().ReserveSpaceEvenIfHidden());
        line->AddSpacer(FromDIP(narrow));
        if (whole) {
            wxStaticText* text = makeLine(peers_, page_, label, wxST_ELLIPSIZE_END);
            text->SetMinSize(wxSize(FromDIP(leastText), -1));
            line->Add(text, wxSizerFlags(1).CentreVertical());
        } else {
            line->Add(makeText(peers_, page_, label), wxSizerFlags().CentreVertical());
        }
        sizer->Add(line, wxSizerFlags().Expand().Border(wxBOTTOM, FromDIP(narrow)));
        return line;
    };
    addLine(results.OkImg, results.LastSaveLbl[0]);
    addLine(results.ErrImg, results.LastSaveLbl[1]);
    wxSizer* count = addLine(results.NbErrImg, results.LastSaveLbl[2], false);
    count->AddSpacer(FromDIP(wide));
    count->Add(makeLink(peers_, page_, results.VoirErrLbl),
               wxSizerFlags().CentreVertical().ReserveSpaceEvenIfHidden());
    // The steps are those of a backup, the list that of a comparison.
    auto* comparison = new SharedColumn(steps);
    comparison->Add(makeLogSearch(peers_, page_, results.search),
                    wxSizerFlags().Expand().Border(wxBOTTOM, FromDIP(narrow)));
    wxDataViewCtrl* list =
        makeLog(peers_, page_, results.TxtCp, "Résultat de la comparaison", Follow::no);
    list->SetMinSize(FromDIP(wxSize(200, 100)));
    comparison->Add(list, wxSizerFlags(1).Expand().ReserveSpaceEvenIfHidden());
    comparison->Add(
        makeLine(peers_, page_, results.LblComp),
        wxSizerFlags().Expand().Border(wxTOP, FromDIP(narrow)).ReserveSpaceEvenIfHidden());
    sizer->Add(comparison, wxSizerFlags(1).Expand());
    return sizer;
}

void MainView::run() {
    wxEventLoop loop;
    loop_ = &loop;
    peers_.context.refresher.watch(this, [this] {
        if (!form_.open() && loop_->IsRunning()) loop_->Exit();
        focus_.keep();
    });
    peers_.context.refresher.flush();
    CallAfter([this] {
        // Sizes are right only once the desktop's theme has been applied.
        if (!IsMaximized() && !IsIconized()) fit();
        form_.shown();
    });
    if (form_.open()) {
        // Giving the focus to what is already shown would bring a minimised window up.
        tabs_->SetFocus();
        Show();
        loop.Run();
    }
    Hide();
    leaveForm();
}

}  // namespace coffrelune
