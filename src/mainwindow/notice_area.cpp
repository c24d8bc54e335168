#include "mainwindow/notice_area.h"

#include "system/date_time.h"
#include "system/display_text.h"

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

}  // namespace

NoticeArea::NoticeArea(Clock& clock) : clock_(clock) {
    Img.setImage("attention");
    Cmd.setToolTip("Masquer ces messages");
    Cmd.onClick = [this] { hide(); };
    show();
}

void NoticeArea::add(const std::string& text) {
    messages_.push_back(formatDateTime(clock_.now()) + "   " + visibleControls(onOneLine(text)));
    // One place is for the number of those that have gone.
    while (messages_.size() + (dropped_ > 0 ? 1 : 0) > Lbl.size()) {
        messages_.pop_front();
        ++dropped_;
    }
    show();
}

void NoticeArea::hide() {
    messages_.clear();
    dropped_ = 0;
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
    for (const std::string& message : messages_) Lbl.at(used++).setCaption(message);
    for (std::size_t i = 0; i < Lbl.size(); ++i) Lbl.at(i).setVisible(i < used);
    if (onChanged) onChanged();
}

}  // namespace coffrelune
