#pragma once

#include <wx/frame.h>
#include <wx/scrolwin.h>
#include <wx/stattext.h>
#include <wx/timer.h>

#include <memory>

#include "mainwindow/main_form.h"
#include "views/wx/focus.h"
#include "views/wx/lines_view.h"
#include "views/wx/peer.h"

class wxEventLoop;

namespace coffrelune {

/// The native side of the main window: the lines above; below them, what starts an operation at the
/// left and what the last ones came to at the right.
class MainView final : public wxFrame {
  public:
    MainView(ViewContext& context, MainForm& form);
    MainView(const MainView&) = delete;
    MainView& operator=(const MainView&) = delete;
    ~MainView() override;

    /// Shows the window and returns when it has closed: the main loop of the program.
    void run();
    NoticeArea& notices() { return form_.notices; }

  private:
    void bindWindow();
    void bindForm();
    void leaveForm();
    void build();
    wxSizer* makeNotices();
    wxSizer* makeHeader();
    wxSizer* makeLaunch();
    wxSizer* makeSchedule();
    wxSizer* makeProgram();
    wxSizer* makeSteps();
    wxSizer* makeResults();
    void applyPlace();
    void rememberState();
    void rememberPlace();
    void shareHeight();
    wxSize roomOnScreen() const;
    void fit();
    bool pressMnemonic(const wxKeyEvent& event);
    bool pressShortcut(const wxKeyEvent& event);

    MainForm& form_;
    wxScrolledWindow* page_ = nullptr;
    wxWindow* tabs_ = nullptr;
    bool tabsAnswerKeys_ = false;  // by the toolkit
    LinesView* linesView_ = nullptr;
    Peers peers_;
    std::function<void()> rowsChanged_;  // the form's own
    wxEventLoop* loop_ = nullptr;
    wxSize fitted_;  // as the program last made it
    FocusKeeper focus_{*this};
    wxTimer settling_;  // runs while the window may still be on its way to another place
};

}  // namespace coffrelune
