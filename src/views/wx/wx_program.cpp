#include "views/wx/wx_program.h"

#include <wx/app.h>
#include <wx/init.h>
#include <wx/log.h>

#include "views/wx/desktop.h"
#include "views/wx/wx_windows.h"

namespace coffrelune {
namespace {

class App final : public wxApp {
  public:
    // The main loop is that of the main window's showModal().
    bool OnInit() override {
        SetExitOnFrameDelete(false);
        return true;
    }
};

bool startToolkit() {
    // Without a display the toolkit writes its own complaint; the program has a better one.
    const wxLogNull silence;
    wxApp::SetInstance(new App());
    // The command line is the program's own, not the toolkit's.
    wxString name("coffrelune");
    wxCharTypeBuffer<wxChar> writable(name.wc_str());
    wxChar* arguments[] = {writable.data(), nullptr};
    int count = 1;
    if (!wxEntryStart(count, arguments)) return false;
    if (wxTheApp->CallOnInit() && canMakeWindows()) return true;
    wxEntryCleanup();
    return false;
}

}  // namespace

/// What there is while the toolkit runs.
class WxProgram::Running {
  public:
    explicit Running(const WxServices& services) : windows(services) {
        // Left to itself the toolkit shows what it complains of in a window, for which nobody may
        // be there: in a run that nobody attends, or at the very end of the program.
        delete wxLog::SetActiveTarget(&log_);
        wxTheApp->SetAppName("Coffrelune");
        adaptDesktopLook();
        wxTheApp->Bind(wxEVT_IDLE, [this](wxIdleEvent& event) {
            windows.flush();
            event.Skip();
        });
        bindSession();
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running() {
        wxLog::DontCreateOnDemand();
        wxLog::SetActiveTarget(nullptr);
        wxEntryCleanup();
    }

    WxWindows windows;

  private:
    // Left to itself the toolkit would delete the windows under a run and end the process with 0.
    void bindSession() {
        wxTheApp->Bind(wxEVT_QUERY_END_SESSION, [this](wxCloseEvent& event) {
            if (!windows.sessionMayEnd()) event.Veto();
        });
        wxTheApp->Bind(wxEVT_END_SESSION, [this](wxCloseEvent&) { windows.endSession(); });
    }

    wxLogStderr log_;
};

WxProgram::WxProgram(WxServices services) : services_(std::move(services)) {}

WxProgram::~WxProgram() = default;

bool WxProgram::start() {
    if (!startToolkit()) return false;
    running_ = std::make_unique<Running>(services_);
    return true;
}

WindowService& WxProgram::windows() {
    return running_->windows;
}

bool WxProgram::interruptedBySession() const {
    return running_->windows.interruptedBySession();
}

}  // namespace coffrelune
