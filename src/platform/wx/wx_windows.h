#pragma once

#include <cstdint>
#include <vector>

#include "platform/wx/peer.h"
#include "platform/wx/pictures.h"
#include "platform/wx/wx_program.h"

namespace coffrelune {

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
    void notice(const std::string& text) override;

    void flush() { refresher_.flush(); }

  private:
    /// What a new window stands before; null for the first one.
    wxWindow* front() const { return open_.empty() ? nullptr : open_.back(); }
    template <typename View>
    void run(View& view);

    const WxServices& services_;
    Refresher refresher_;
    Pictures pictures_;
    ViewContext context_;
    std::vector<wxWindow*> open_;  // from the main window to the one in front
    std::int64_t servedAt_ = 0;    // milliseconds
};

}  // namespace coffrelune
