#include "platform/memory/memory_windows.h"

namespace coffrelune {
namespace {

bool offers(MessageButtons buttons, Answer answer) {
    switch (buttons) {
        case MessageButtons::ok:
            return answer == Answer::ok;
        case MessageButtons::okCancel:
            return answer == Answer::ok || answer == Answer::cancel;
        case MessageButtons::yesNo:
            return answer == Answer::yes || answer == Answer::no;
    }
    return false;
}

// The answer that changes least.
Answer harmless(MessageButtons buttons) {
    switch (buttons) {
        case MessageButtons::ok:
            return Answer::ok;
        case MessageButtons::okCancel:
            return Answer::cancel;
        case MessageButtons::yesNo:
            return Answer::no;
    }
    return Answer::cancel;
}

}  // namespace

void MemoryWindows::showModal(Window& window) {
    shown_.push_back(window.caption());
    window.activated();
    while (window.open()) {
        if (steps_.empty()) {
            addProblem("window left open: " + window.caption());
            window.closeBox();
            return;
        }
        const Step step = std::move(steps_.front());
        steps_.pop_front();
        step(window);
    }
}

void MemoryWindows::runPendingEvents() {
    ++pendingEventsCount_;
    if (!onPendingEvents || inPendingEvents_) return;
    inPendingEvents_ = true;
    onPendingEvents();
    inPendingEvents_ = false;
}

Answer MemoryWindows::showMessage(const MessageBoxText& message) {
    messages_.push_back(message);
    if (answers_.empty()) {
        addProblem("message not expected: " + message.text);
        return harmless(message.buttons);
    }
    const Answer answer = answers_.front();
    answers_.pop_front();
    if (offers(message.buttons, answer)) return answer;
    addProblem("answer not offered by: " + message.text);
    return harmless(message.buttons);
}

std::string MemoryWindows::chooseFolder(bool includeFiles, const std::string& prompt,
                                        const std::string& start) {
    folderChoosers_.push_back({includeFiles, prompt, start});
    return nextPath(folders_, prompt);
}

std::string MemoryWindows::chooseFile(const std::string& title, const std::string& filter) {
    fileChoosers_.push_back({title, filter});
    return nextPath(files_, title);
}

std::string MemoryWindows::chooseNewFile(const std::string& title, const std::string& name) {
    fileChoosers_.push_back({title, name});
    return nextPath(files_, "chooser of a new file '" + title + "'");
}

std::string MemoryWindows::nextPath(std::deque<std::string>& paths, const std::string& what) {
    if (paths.empty()) {
        addProblem("chooser not expected: " + what);
        return {};
    }
    std::string path = std::move(paths.front());
    paths.pop_front();
    return path;
}

std::vector<std::string> MemoryWindows::problems() const {
    std::vector<std::string> problems = unexpected_;
    if (!steps_.empty()) problems.push_back(std::to_string(steps_.size()) + " steps left over");
    if (!answers_.empty())
        problems.push_back(std::to_string(answers_.size()) + " answers left over");
    const std::size_t choices = folders_.size() + files_.size();
    if (choices > 0) problems.push_back(std::to_string(choices) + " choices left over");
    return problems;
}

}  // namespace coffrelune
