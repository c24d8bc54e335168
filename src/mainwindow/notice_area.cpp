#include "mainwindow/notice_area.h"

#include "system/date_time.h"
#include "system/text.h"

namespace coffrelune {
namespace {

// Blank lines and the two characters of a line end leave one blank.
std::string onOneLine(const std::string& text) {
    std::string line;
    for (const char c : text) {
        const bool lineEnd = c == '\n' || c == '\r';
        if (!lineEnd) line.push_back(c);
        if (lineEnd && !line.empty() && line.back() != ' ') line.push_back(' ');
    }
    return line;
}

// Which tree kept its files, and why: a long reason on a line of its own, so that none of the two
// is cut for the other.
std::vector<std::string> linesOf(const std::string& reason) {
    constexpr std::size_t roomy = 80;  // characters that every window shows
    const std::size_t colon = reason.find(" : ");
    if (reason.size() <= roomy || colon == std::string::npos) return {reason};
    return {reason.substr(0, colon + 2), reason.substr(colon + 3)};
}

}  // namespace

NoticeArea::NoticeArea(Clock& clock) : clock_(clock) {
    Img.setImage("attention");
    Cmd.setToolTip("Masquer ces messages");
    Cmd.onClick = [this] { hide(); };
    ConfirmCmd.setToolTip(
        "La source est la bonne : la prochaine sauvegarde peut effacer de la copie les fichiers "
        "excédentaires");
    ConfirmCmd.setVisible(false);
    ConfirmCmd.onClick = [this] { confirm(); };
    show();
}

void NoticeArea::add(const std::string& text) {
    push(text, false);
    show();
}

void NoticeArea::showKept(const std::vector<std::string>& reasons, bool mayConfirm) {
    withdraw();
    for (const std::string& reason : reasons) {
        for (const std::string& line : linesOf(reason)) push(line, true);
    }
    ConfirmCmd.setVisible(mayConfirm);
    show();
}

void NoticeArea::withdraw() {
    std::erase_if(messages_, [](const Message& message) { return message.ofLastRun; });
    ConfirmCmd.setVisible(false);
}

void NoticeArea::confirm() {
    if (onConfirm) onConfirm();
    withdraw();
    push("La source est confirmée pour la prochaine sauvegarde.", true);
    show();
}

void NoticeArea::push(const std::string& text, bool ofLastRun) {
    messages_.push_back(
        {formatDateTime(clock_.now()) + "   " + visibleControls(onOneLine(text)), ofLastRun});
    // One place is for the number of those that have gone.
    while (messages_.size() + (dropped_ > 0 ? 1 : 0) > Lbl.size()) {
        messages_.pop_front();
        ++dropped_;
    }
}

void NoticeArea::hide() {
    messages_.clear();
    dropped_ = 0;
    ConfirmCmd.setVisible(false);
    show();
}

void NoticeArea::show() {
    const bool any = !messages_.empty();
    Img.setVisible(any);
    Cmd.setVisible(any);
    std::size_t used = 0;
    if (dropped_ > 0) {
        Lbl[used++].setCaption(std::to_string(dropped_) + " message(s) plus ancien(s)");
    }
    for (const Message& message : messages_) {
        // A narrow window cuts a long one: its tool tip tells all of it.
        Lbl.at(used).setToolTip(message.text);
        Lbl.at(used++).setCaption(message.text);
    }
    for (std::size_t i = 0; i < Lbl.size(); ++i) Lbl.at(i).setVisible(i < used);
    if (onChanged) onChanged();
}

}  // namespace coffrelune
