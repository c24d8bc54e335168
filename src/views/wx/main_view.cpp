#include "views/wx/main_view.h"

#include <wx/app.h>
#include <wx/display.h>
#include <wx/evtloop.h>
#include <wx/hyperlink.h>
#include <wx/sizer.h>
#include <wx/statline.h>

#include "views/wx/accessible.h"
#include "views/wx/basic_widgets.h"
#include "views/wx/commands.h"
#include "views/wx/input_widgets.h"
#include "views/wx/long_lists.h"
#include "views/wx/pictures.h"
#include "views/wx/text.h"

namespace coffrelune {
namespace {

constexpr int twipsPerPixel = 15;
constexpr int wide = 12;  // density-independent pixels
constexpr int narrow = 6;
constexpr int resultPicture = 16;
constexpr int noticePicture = 24;

// The system's density, not the window's: a place lies on the desktop, and is the same for a window
// whichever screen it is on.
wxPoint placeOf(const WindowPlace& place) {
    return {wxWindow::FromDIP(place.left / twipsPerPixel, nullptr),
            wxWindow::FromDIP(place.top / twipsPerPixel, nullptr)};
}

}  // namespace

MainView::MainView(ViewContext& context, MainForm& form)
    : wxFrame(nullptr, wxID_ANY, toWx(form.caption()), placeOf(form.place)),
      form_(form),
      peers_(context) {
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
        if (!pressMnemonic(event)) event.Skip();
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
    };
    driveTimer(peers_, form_.schedule.Timer1);
}

// The tabs' mnemonics, which the toolkit does not know; everything else it does.
bool MainView::pressMnemonic(const wxKeyEvent& event) {
    if (event.GetModifiers() != wxMOD_ALT) return false;
    for (const TabStrip::Tab& tab : form_.launch.Onglet.tabs()) {
        const auto mark = tab.caption.find('&');
        if (mark == std::string::npos || event.GetKeyCode() != tab.caption[mark + 1]) continue;
        form_.launch.Onglet.pick(tab.key);
        return true;
    }
    return false;
}

void MainView::build() {
    page_ = new wxPanel(this);
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
    whole->Add(tabs_, row());
    linesView_ = new LinesView(page_, peers_.context, form_.lines);
    whole->Add(linesView_, row());
    auto* left = new wxBoxSizer(wxVERTICAL);
    left->Add(makeLaunch(), wxSizerFlags().Expand().Border(wxBOTTOM, FromDIP(wide)));
    left->Add(makeSchedule(), wxSizerFlags().Expand().Border(wxBOTTOM, FromDIP(wide)));
    left->Add(makeProgram(), wxSizerFlags().Expand());
    auto* below = new wxBoxSizer(wxHORIZONTAL);
    below->Add(left, wxSizerFlags(1).Expand().Border(wxRIGHT, FromDIP(wide)));
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
    sizer->Add(makeButton(peers_, page_, notices.ConfirmCmd),
               wxSizerFlags().Top().Border(wxLEFT | wxTOP, FromDIP(narrow)));
    sizer->Add(makeButton(peers_, page_, notices.Cmd),
               wxSizerFlags().Top().Border(wxLEFT | wxTOP, FromDIP(narrow)));
    return sizer;
}

wxSizer* MainView::makeHeader() {
    auto* sizer = new wxBoxSizer(wxHORIZONTAL);
    wxStaticText* name = makeText(peers_, page_, form_.configuration.ConfigLbl);
    name->SetFont(name->GetFont().Bold().Larger());
    sizer->Add(name, wxSizerFlags(1).CentreVertical());
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
    for (const std::size_t i : {0, 1}) {
        options->Add(makeCheckBox(peers_, page_, schedule.Opt.at(i)),
                     wxSizerFlags().Border(wxBOTTOM, FromDIP(narrow)));
    }
    wxStaticBox* frame = makeFrame(peers_, page_, schedule.CadrePla);
    auto* box = new wxStaticBoxSizer(frame, wxHORIZONTAL);
    const auto item = wxSizerFlags().CentreVertical().Border(wxALL, FromDIP(narrow));
    box->Add(makeCheckBox(peers_, frame, schedule.Opt.at(2)), item);
    wxTextCtrl* time = makeField(peers_, frame, schedule.AutoHr);
    constexpr int characters = 7;
    time->SetMinSize(wxSize(time->GetSizeFromTextSize(GetCharWidth() * characters).x, -1));
    box->Add(time, item);
    box->AddStretchSpacer();
    box->Add(makeButton(peers_, frame, form_.Cmd.at(3)), item);
    options->Add(box, wxSizerFlags().Expand());
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

wxSizer* MainView::makeResults() {
    ResultsArea& results = form_.results;
    auto* sizer = new wxBoxSizer(wxVERTICAL);
    const auto addLine = [&](Picture& picture, Label& label) {
        auto* line = new wxBoxSizer(wxHORIZONTAL);
        line->Add(makePicture(peers_, page_, picture, resultPicture),
                  wxSizerFlags().CentreVertical().ReserveSpaceEvenIfHidden());
        line->AddSpacer(FromDIP(narrow));
        line->Add(makeText(peers_, page_, label), wxSizerFlags().CentreVertical());
        sizer->Add(line, wxSizerFlags().Expand().Border(wxBOTTOM, FromDIP(narrow)));
        return line;
    };
    addLine(results.OkImg, results.LastSaveLbl[0]);
    addLine(results.ErrImg, results.LastSaveLbl[1]);
    wxSizer* count = addLine(results.NbErrImg, results.LastSaveLbl[2]);
    count->AddSpacer(FromDIP(wide));
    count->Add(makeLink(peers_, page_, results.VoirErrLbl),
               wxSizerFlags().CentreVertical().ReserveSpaceEvenIfHidden());
    wxDataViewCtrl* list =
        makeLog(peers_, page_, results.TxtCp, "Résultat de la comparaison", Follow::no);
    list->SetMinSize(FromDIP(wxSize(200, 100)));
    sizer->Add(list, wxSizerFlags(1).Expand().ReserveSpaceEvenIfHidden());
    sizer->Add(makeLine(peers_, page_, results.LblComp),
               wxSizerFlags().Expand().Border(wxTOP, FromDIP(narrow)).ReserveSpaceEvenIfHidden());
    return sizer;
}

// As high as its rows, but no higher than the screen: then the rows scroll.
void MainView::fit() {
    constexpr int usualWidth = 960;
    linesView_->SetMinSize(wxSize(-1, linesView_->wholeHeight()));
    // What the system puts around a window is known only once it is on the screen.
    constexpr int decorations = 40;
    const int room = wxDisplay(this).GetClientArea().height - FromDIP(decorations);
    wxSize best = GetSizer()->CalcMin();
    if (const int excess = best.y - room; excess > 0) {
        linesView_->SetMinSize(wxSize(-1, std::max(linesView_->wholeHeight() - excess, 0)));
        best = GetSizer()->CalcMin();
    }
    SetMinClientSize(best);
    const int width = IsShown() ? GetClientSize().x : FromDIP(usualWidth);
    SetClientSize(std::max(best.x, width), best.y);
    Layout();
}

// Opens where it was; a place that no screen shows any more is brought back onto one.
void MainView::applyPlace() {
    const WindowPlace& place = form_.place;
    wxRect rect(placeOf(place), GetSize());
    int screen = wxDisplay::GetFromPoint(rect.GetTopLeft());
    if (screen == wxNOT_FOUND) screen = 0;
    const wxRect area = wxDisplay(static_cast<unsigned>(screen)).GetClientArea();
    rect.x = std::max(area.x, std::min(rect.x, area.GetRight() + 1 - rect.width));
    rect.y = std::max(area.y, std::min(rect.y, area.GetBottom() + 1 - rect.height));
    SetPosition(rect.GetTopLeft());
    if (place.state == WindowPlace::maximised) Maximize();
    if (place.state == WindowPlace::minimised) Iconize();
}

void MainView::rememberState() {
    if (!IsShown()) return;
    form_.place.state = IsIconized()    ? WindowPlace::minimised
                        : IsMaximized() ? WindowPlace::maximised
                                        : WindowPlace::normal;
}

// A maximised window keeps the place that it had before and will have again.
void MainView::rememberPlace() {
    rememberState();
    WindowPlace& place = form_.place;
    if (!IsShown() || place.state != WindowPlace::normal) return;
    const wxPoint position = wxWindow::ToDIP(GetPosition(), nullptr);
    place.left = position.x * twipsPerPixel;
    place.top = position.y * twipsPerPixel;
}

// What has been disabled under the focus leaves it nowhere: it goes back to the tabs.
void MainView::keepFocus() {
    const wxWindow* focused = FindFocus();
    if (IsActive() && focused != nullptr && !focused->IsEnabled()) tabs_->SetFocus();
}

void MainView::run() {
    wxEventLoop loop;
    loop_ = &loop;
    peers_.context.refresher.watch(this, [this] {
        if (!form_.open() && loop_->IsRunning()) loop_->Exit();
        keepFocus();
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
