#pragma once

#include <cstdint>
#include <vector>

#include "views/wx/peer.h"
#include "views/wx/pictures.h"
#include "views/wx/wx_program.h"

namespace coffrelune {

class Copie;
class DialogView;
class MessageView;

/// Windows, questions and choosers of the desktop.
class WxWindows final : public WindowService {
  public:
    explicit WxWindows(const WxServices& services);

    void showModal(Window& window) override;
    void runPendingEvents() override;
    Answer showMessage(const MessageBoxText& message) override;
    void showWaiting(bool waiting) override;
    std::string chooseFolder(bool includeFiles, const std::string& prompt,
                             const std::string& start) override;
    std::string chooseFile(const std::string& title, const std::string& filter) override;
    std::string chooseNewFile(const std::string& title, const std::string& name) override;
    void copyText(const std::string& text) override;
    void notice(const std::string& text) override;

    /// Shows what has changed; once the session ends, closes the window in front.
    void flush();

    /// False while something is open over the main window: a run is not to be lost, nor what was
    /// typed. The main window stays, as the session may go on because of another program.
    bool sessionMayEnd() const { return open_.size() <= 1; }
    /// The session ends, whatever was said before: a run is interrupted in the middle of its file,
    /// and every window closes. Settings are stored before this returns unless something is open
    /// over the main window.
    void endSession();
    bool interruptedBySession() const { return interruptedBySession_; }

  private:
    /// What a new window stands before; null for the first one.
    wxWindow* front() const { return open_.empty() ? nullptr : open_.back(); }
    template <typename View>
    void run(View& view);
    void runOperation(Copie& operation, DialogView& view);
    Answer ask(MessageView& box);
    void showNotice(const std::string& text);

    const WxServices& services_;
    Refresher refresher_;
    Pictures pictures_;
    ViewContext context_;
    std::vector<wxWindow*> open_;  // from the main window to the one in front
    Copie* operation_ = nullptr;   // the one that is shown
    bool sessionEnds_ = false;
    bool interruptedBySession_ = false;
    std::int64_t servedAt_ = 0;  // milliseconds
};

}  // namespace coffrelune
