#include "platform/terminal/progress_line.h"

#include "system/display_text.h"

namespace coffrelune {
namespace {

constexpr std::int64_t betweenDrawings = 100;  // milliseconds; faster than anyone reads

}  // namespace

ProgressLine::ProgressLine(Copie& window, Terminal& terminal, bool journal)
    : window_(window), terminal_(terminal), journal_(journal) {
    for (Label& label : window_.Lbl) label.attach(this);
    window_.ECTxt.attach(this);
    printJournal();
}

ProgressLine::~ProgressLine() {
    for (Label& label : window_.Lbl) label.attach(nullptr);
    window_.ECTxt.attach(nullptr);
    terminal_.clearProgress();
}

void ProgressLine::controlChanged(Control& control) {
    changed_ = true;
    if (&control == &window_.ECTxt) printJournal();
}

void ProgressLine::printJournal() {
    if (!journal_) return;
    for (; linesPrinted_ < window_.ECTxt.lineCount(); ++linesPrinted_) {
        terminal_.say(std::string(window_.ECTxt.line(linesPrinted_)));
    }
}

void ProgressLine::refresh(std::int64_t now) {
    if (!changed_ || now - drawnAt_ < betweenDrawings || !terminal_.showsProgress()) return;
    drawnAt_ = now;
    changed_ = false;
    terminal_.showProgress(text());
}

std::string ProgressLine::text() const {
    std::string line;
    const auto add = [&](const Label& label) {
        if (label.caption().empty()) return;
        if (!line.empty()) line += "  ";
        line += visibleControls(label.caption());
    };
    const bool copying = !window_.Lbl[0].caption().empty();
    if (copying) {
        for (const std::size_t i : {0U, 2U, 5U, 1U}) add(window_.Lbl[i]);
    } else {
        for (const std::size_t i : {1U, 3U, 4U}) add(window_.Lbl[i]);
    }
    return line;
}

}  // namespace coffrelune
