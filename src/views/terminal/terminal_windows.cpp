#include "views/terminal/terminal_windows.h"

#include <array>
#include <string_view>

#include "operation/copie.h"
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
    if (changed_) tellProgress();
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

void TerminalRun::showPercentage(int percent, const std::string& caption) {
    percent_ = percent;
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

ReplacementAnswer TerminalRun::DemandeRemplacement(const Replacement& replacement) {
    frmConfirm question(replacement);
    windows_.showModal(question);
    runPendingEvents();
    return question.answer();
}

void TerminalRun::requestInterruption() {
    if (stop_.empty()) show(stop_, "Arrêt demandé…");
    operation_.requestInterruption();
}

void TerminalRun::refresh(std::int64_t now) {
    if (!changed_ || now - drawnAt_ < betweenDrawings) return;
    if (!terminal_.showsProgress() && !onProgress) return;
    drawnAt_ = now;
    changed_ = false;
    tellProgress();
    if (!onProgress) terminal_.showProgress(text());
}

void TerminalRun::tellProgress() {
    if (onProgress) onProgress({percent_, phase_, detail_, remainingTime_, rate_});
}

std::string TerminalRun::text() const {
    std::string line;
    const auto add = [&](const std::string& part) {
        if (part.empty()) return;
        if (!line.empty()) line += "  ";
        line += visibleControls(part);
    };
    add(stop_);
    if (percentage_.empty()) {
        for (const std::string* part : {&phase_, &detail_, &file_}) add(*part);
    } else {
        for (const std::string* part : {&percentage_, &remainingTime_, &rate_, &phase_, &file_})
            add(*part);
    }
    return line;
}

namespace {

constexpr std::int64_t betweenEvents = 15;  // milliseconds

// The letter that answers a button: its mnemonic, or else its first one.
std::size_t answerPosition(const std::string& caption) {
    const std::size_t mnemonic = caption.find('&');
    return mnemonic == std::string::npos || mnemonic + 1 >= caption.size() ? 0 : mnemonic + 1;
}

// "&Oui" is offered as "[O]ui".
std::string offered(const std::string& caption) {
    const std::size_t position = answerPosition(caption);
    std::string text = caption.substr(0, position > 0 ? position - 1 : 0);
    return text + "[" + caption[position] + "]" + caption.substr(position + 1);
}

bool answers(const std::string& line, const std::string& caption) {
    const std::string typed = lowerCase(trimBlanks(line));
    return !typed.empty() && typed == lowerCase(caption.substr(answerPosition(caption), 1));
}

std::string withoutMnemonic(std::string caption) {
    const std::size_t mnemonic = caption.find('&');
    if (mnemonic != std::string::npos) caption.erase(mnemonic, 1);
    return caption;
}

// Index of the chosen caption, or -1 when nobody answered, or a signal did.
int choose(Terminal& terminal, const InterruptSignals& signals,
           const std::vector<std::string>& captions) {
    const auto givenUp = [&] { return signals.count() > 0; };
    std::string prompt;
    for (const std::string& caption : captions) {
        prompt += (prompt.empty() ? "" : " / ") + offered(caption);
    }
    for (std::string line; terminal.canAsk() && terminal.ask(prompt + " : ", line, givenUp);) {
        for (std::size_t i = 0; i < captions.size(); ++i) {
            const bool whole = equalIgnoringCase(trimBlanks(line), withoutMnemonic(captions[i]));
            if (whole || answers(line, captions[i])) return static_cast<int>(i);
        }
    }
    return -1;
}

}  // namespace

TerminalWindows::TerminalWindows(Terminal& terminal, Clock& clock, InterruptSignals& signals,
                                 bool journal)
    : terminal_(terminal), clock_(clock), signals_(signals), journal_(journal) {}

void TerminalWindows::show(Operation& operation, OperationHost& host) {
    TerminalRun run(operation, host, *this, terminal_, journal_);
    run.onProgress = tell_;
    run_ = &run;
    operation.begin(run);
    operation.run(run);
    run_ = nullptr;
    // A terminal keeps what was said: nothing waits to be read.
    operation.end(run.journal());
}

void TerminalWindows::showModal(Window& window) {
    window.activated();
    for (const Label* label : window.labels()) terminal_.question(label->caption());
    std::vector<std::string> captions;
    for (const Button* button : window.buttons()) captions.push_back(button->caption());
    while (window.open()) {
        const int chosen = choose(terminal_, signals_, captions);
        if (chosen < 0) {
            window.closeBox();
        } else {
            window.buttons()[static_cast<std::size_t>(chosen)]->click();
        }
    }
}

void TerminalWindows::runPendingEvents() {
    if (run_ == nullptr) return;
    const std::int64_t now = clock_.monotonicMilliseconds();
    if (now - servedAt_ < betweenEvents) return;
    servedAt_ = now;
    if (signals_.count() > 0) run_->requestInterruption();
    run_->refresh(now);
}

Answer TerminalWindows::showMessage(const MessageBoxText& message) {
    if (message.icon == MessageIcon::critical) {
        terminal_.warn(message.text);
    } else if (message.buttons != MessageButtons::ok) {
        terminal_.question(message.text);
    } else {
        terminal_.say(message.text);
    }
    switch (message.buttons) {
        case MessageButtons::okCancel:
            return choose(terminal_, signals_, {"&OK", "&Annuler"}) == 0 ? Answer::ok
                                                                         : Answer::cancel;
        case MessageButtons::yesNo:
            return choose(terminal_, signals_, {"&Oui", "&Non"}) == 0 ? Answer::yes : Answer::no;
        default:
            return Answer::ok;
    }
}

void TerminalWindows::notice(const std::string& text) {
    terminal_.warn(text);
}

}  // namespace coffrelune
