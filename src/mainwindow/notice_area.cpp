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
    DatesCmd.setToolTip(
        "Une copie de même taille que son original, à la date de celui-ci arrondie par le volume, "
        "est à jour");
    DatesCmd.setVisible(false);
    DatesCmd.onClick = [this] { acceptDates(); };
    show();
}

void NoticeArea::add(const std::string& text) {
    push(text, Topic::lasting);
    show();
}

void NoticeArea::showKept(const std::vector<std::string>& reasons, bool mayConfirm) {
    withdraw(Topic::lastRun);
    for (const std::string& reason : reasons) {
        for (const std::string& line : linesOf(reason)) push(line, Topic::lastRun);
    }
    ConfirmCmd.setVisible(mayConfirm);
    show();
}

void NoticeArea::showDates(const std::vector<std::string>& reasons, bool mayAccept) {
    withdraw(Topic::dates);
    for (const std::string& reason : reasons) {
        for (const std::string& line : linesOf(reason)) push(line, Topic::dates);
    }
    DatesCmd.setVisible(mayAccept);
    show();
}

void NoticeArea::withdraw(Topic topic) {
    std::erase_if(messages_, [topic](const Message& message) { return message.topic == topic; });
    (topic == Topic::dates ? DatesCmd : ConfirmCmd).setVisible(false);
}

void NoticeArea::confirm() {
    if (onConfirm) onConfirm();
    withdraw(Topic::lastRun);
    push("La source est confirmée pour la prochaine sauvegarde.", Topic::lastRun);
    show();
}

void NoticeArea::acceptDates() {
    if (onAcceptDates) onAcceptDates();
    withdraw(Topic::dates);
    push(
        "Les dates arrondies sont acceptées : les prochaines sauvegardes ne copient que les "
        "fichiers modifiés.",
        Topic::dates);
    show();
}

void NoticeArea::push(const std::string& text, Topic topic) {
    messages_.push_back(
        {formatDateTime(clock_.now()) + "   " + visibleControls(onOneLine(text)), topic});
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
    DatesCmd.setVisible(false);
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
