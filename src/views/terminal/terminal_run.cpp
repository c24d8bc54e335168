#include "views/terminal/terminal_run.h"

#include "operation/frm_confirm.h"
#include "system/text.h"

namespace coffrelune {
namespace {

constexpr std::int64_t betweenDrawings = 100;  // milliseconds; faster than anyone reads

}  // namespace

TerminalRun::TerminalRun(Operation& operation, OperationHost& host, WindowService& windows,
                         Terminal& terminal, bool printsJournal)
    : operation_(operation),
      host_(host),
      windows_(windows),
      terminal_(terminal),
      printsJournal_(printsJournal) {}

TerminalRun::~TerminalRun() {
    terminal_.clearProgress();
}

void TerminalRun::show(std::string& part, const std::string& text) {
    part = text;
    changed_ = true;
}

void TerminalRun::showPhase(const std::string& phase, const std::string& detail) {
    show(phase_, phase);
    show(detail_, detail);
}

void TerminalRun::showCopyPhase(const std::string& remainingTime) {
    show(remainingTime_, remainingTime);
    show(file_, "");
}

void TerminalRun::showComparisonPhase(const std::string& phase) {
    show(phase_, phase);
    host_.comparisonList().clear();
    host_.comparisonSummary().setCaption("");
}

void TerminalRun::showSource(const std::string& path) {
    show(phase_, "De: " + path);
}

void TerminalRun::showPercentage(int, const std::string& caption) {
    show(percentage_, caption);
}

void TerminalRun::addToComparison(const std::string& line) {
    host_.comparisonList().append(visibleControls(line));
}

void TerminalRun::showComparisonSummary(const std::string& summary) {
    host_.comparisonSummary().setCaption(summary);
}

void TerminalRun::AjouteECTxt(const std::string& text) {
    journal_.append(visibleControls(text));
    if (printsJournal_) terminal_.say(visibleControls(text));
    runPendingEvents();
}

void TerminalRun::showCritical(const std::string& text) {
    const std::string line = visibleControls(text);
    if (operation_.unattended()) AjouteECTxt(line);
    windows_.notice(line);
}

ReplacementAnswer TerminalRun::DemandeRemplacement(const std::string& fileName) {
    frmConfirm question(visibleControls(fileName));
    windows_.showModal(question);
    runPendingEvents();
    return question.answer();
}

void TerminalRun::refresh(std::int64_t now) {
    if (!changed_ || now - drawnAt_ < betweenDrawings || !terminal_.showsProgress()) return;
    drawnAt_ = now;
    changed_ = false;
    terminal_.showProgress(text());
}

std::string TerminalRun::text() const {
    std::string line;
    const auto add = [&](const std::string& part) {
        if (part.empty()) return;
        if (!line.empty()) line += "  ";
        line += visibleControls(part);
    };
    if (percentage_.empty()) {
        for (const std::string* part : {&phase_, &detail_, &file_}) add(*part);
    } else {
        for (const std::string* part : {&percentage_, &remainingTime_, &rate_, &phase_}) add(*part);
    }
    return line;
}

}  // namespace coffrelune
