#include "mainwindow/main_dialogs.h"

namespace coffrelune {

void MainDialogs::show(Window& window) {
    const Hold hold(*this);
    system_.platform.windows.showModal(window);
}

Answer MainDialogs::say(const std::string& text, MessageIcon icon, MessageButtons buttons,
                        const std::string& title) {
    const Hold hold(*this);
    return system_.platform.windows.showMessage(
        {text, title.empty() ? system_.programTitle : title, icon, buttons});
}

bool MainDialogs::confirmLoss(const std::string& question, const std::string& title) {
    const Hold hold(*this);
    return system_.platform.windows.showMessage(
               {question, title.empty() ? system_.programTitle : title, MessageIcon::question,
                MessageButtons::okCancel, true}) == Answer::ok;
}

std::string MainDialogs::chooseFolder(bool includeFiles, const std::string& prompt,
                                      const std::string& start) {
    const Hold hold(*this);
    return system_.platform.windows.chooseFolder(includeFiles, prompt, start);
}

std::string MainDialogs::chooseFile(const std::string& title, const std::string& filter) {
    const Hold hold(*this);
    return system_.platform.windows.chooseFile(title, filter);
}

}  // namespace coffrelune
