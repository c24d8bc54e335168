#include "platform/wx/wx_program.h"

#include <wx/app.h>
#include <wx/init.h>
#include <wx/log.h>

#include "platform/wx/desktop_look.h"
#include "platform/wx/wx_windows.h"

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
    if (wxTheApp->CallOnInit()) return true;
    wxEntryCleanup();
    return false;
}

}  // namespace

/// What there is while the toolkit runs.
class WxProgram::Running {
  public:
    explicit Running(const WxServices& services) : windows(services) {
        wxTheApp->SetAppName("Coffrelune");
        adaptDesktopLook();
        wxTheApp->Bind(wxEVT_IDLE, [this](wxIdleEvent& event) {
            windows.flush();
            event.Skip();
        });
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running() { wxEntryCleanup(); }

    WxWindows windows;
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

}  // namespace coffrelune
