#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "platform/controls.h"
#include "platform/services.h"

namespace coffrelune {

/// The user of a test. Every window that stays open after its activation takes the next prepared
/// steps until it closes; every message takes the next prepared answer. What the test did not
/// prepare is answered the harmless way and told by problems(), which a test asserts to be empty.
class MemoryWindows final : public WindowService {
  public:
    using Step = std::function<void(Window&)>;

    // ---- preparing ---------------------------------------------------------------------------
    /// What the user does next in the window that is open then. A window opened within a step takes
    /// the steps that follow.
    void step(Step step) { steps_.push_back(std::move(step)); }

    /// The same for a window of class W; another window there is a problem.
    template <typename W>
    void stepIn(std::function<void(W&)> action) {
        step([this, action = std::move(action)](Window& window) {
            if (auto* wanted = dynamic_cast<W*>(&window)) {
                action(*wanted);
            } else {
                addProblem("step for another window than '" + window.caption() + "'");
            }
        });
    }

    /// How the user answers the next message; every message needs one, also one with "OK" alone.
    void answer(Answer answer) { answers_.push_back(answer); }

    /// What the user chooses in the next chooser of a directory, or of a program file; every
    /// chooser needs one, an empty path cancels it.
    void chooseNextFolder(std::string path) { folders_.push_back(std::move(path)); }
    void chooseNextFile(std::string path) { files_.push_back(std::move(path)); }

    /// Called within runPendingEvents (never while a call of it is still running).
    std::function<void()> onPendingEvents;

    // ---- reading -----------------------------------------------------------------------------
    const std::vector<MessageBoxText>& messages() const { return messages_; }
    struct FolderChooser {
        bool includeFiles;
        std::string prompt;
        std::string start;

        bool operator==(const FolderChooser&) const = default;
    };
    struct FileChooser {
        std::string title;
        std::string filter;

        bool operator==(const FileChooser&) const = default;
    };
    /// The choosers shown, in order.
    const std::vector<FolderChooser>& folderChoosers() const { return folderChoosers_; }
    const std::vector<FileChooser>& fileChoosers() const { return fileChoosers_; }
    const std::string& copied() const { return copied_; }
    const std::vector<std::string>& notices() const { return notices_; }
    /// Captions of the windows shown, as they were at the show.
    const std::vector<std::string>& shown() const { return shown_; }
    std::uint64_t pendingEventsCount() const { return pendingEventsCount_; }

    /// What happened and was not prepared, and what was prepared and did not happen.
    std::vector<std::string> problems() const;

    // ---- WindowService -----------------------------------------------------------------------
    void showModal(Window& window) override;
    void runPendingEvents() override;
    Answer showMessage(const MessageBoxText& message) override;
    std::string chooseFolder(bool includeFiles, const std::string& prompt,
                             const std::string& start) override;
    std::string chooseFile(const std::string& title, const std::string& filter) override;
    std::string chooseNewFile(const std::string& title, const std::string& name) override;
    void copyText(const std::string& text) override { copied_ = text; }
    void notice(const std::string& text) override { notices_.push_back(text); }

  private:
    std::string nextPath(std::deque<std::string>& paths, const std::string& what);
    void addProblem(const std::string& problem) { unexpected_.push_back(problem); }

    std::deque<Step> steps_;
    std::deque<Answer> answers_;
    std::deque<std::string> folders_;
    std::deque<std::string> files_;
    std::vector<FolderChooser> folderChoosers_;
    std::vector<FileChooser> fileChoosers_;
    std::vector<MessageBoxText> messages_;
    std::vector<std::string> notices_;
    std::string copied_;
    std::vector<std::string> shown_;
    std::vector<std::string> unexpected_;
    std::uint64_t pendingEventsCount_ = 0;
    bool inPendingEvents_ = false;
};

}  // namespace coffrelune
