#include "views/wx/wx_windows.h"

#include <wx/app.h>
#include <wx/evtloop.h>
#include <wx/filedlg.h>
#include <wx/timer.h>
#include <wx/utils.h>

#include <iostream>

#include "mainwindow/main_form.h"
#include "operation/copie.h"
#include "system/text.h"
#include "views/wx/desktop.h"
#include "views/wx/dialog_views.h"
#include "views/wx/main_view.h"
#include "views/wx/message_view.h"
#include "views/wx/text.h"

namespace coffrelune {
namespace {

constexpr std::int64_t servedEvery = 15;  // milliseconds: a screen shows no more than that

// "Sauvegarde ..." is "Une sauvegarde est en cours."; so are the others, all of one gender.
std::string reasonToWait(const Copie& operation) {
    return "Une " + lowerCase(splitText(operation.caption(), ' ').front()) + " est en cours.";
}

}  // namespace

WxWindows::WxWindows(const WxServices& services)
    : services_(services), context_{refresher_, pictures_, services.drives} {}

template <typename View>
void WxWindows::run(View& view) {
    open_.push_back(&view);
    view.run();
    open_.pop_back();
}

void WxWindows::showModal(Window& window) {
    if (auto* form = dynamic_cast<MainForm*>(&window); form != nullptr) {
        // The toolkit deletes a frame itself, when nothing of it is under way any more.
        auto* view = new MainView(context_, *form);
        run(*view);
        view->Destroy();
        return;
    }
    const std::unique_ptr<DialogView> view = makeDialogView(front(), context_, window);
    if (view == nullptr) return;
    if (auto* operation = dynamic_cast<Copie*>(&window); operation != nullptr) {
        runOperation(*operation, *view);
    } else {
        run(*view);
    }
}

void WxWindows::runOperation(Copie& operation, DialogView& view) {
    const wxWindow& main = *open_.front();
    giveReasonToWait(main, reasonToWait(operation));
    operation_ = &operation;
    run(view);
    operation_ = nullptr;
    withdrawReasonToWait(main);
}

void WxWindows::flush() {
    refresher_.flush();
    if (sessionEnds_ && !open_.empty() && open_.back()->IsShown()) open_.back()->Close();
}

// The run cannot end before this returns, as it stands below; the system ends the process some time
// after. So the file in progress is given up: what is under its name is complete, old or new.
void WxWindows::endSession() {
    sessionEnds_ = true;
    if (operation_ != nullptr && !operation_->finished()) {
        interruptedBySession_ = true;
        operation_->requestInterruption();
        services_.files.abandonCopies();
    }
    flush();
    wxWakeUpIdle();
}

void WxWindows::runPendingEvents() {
    const std::int64_t now = services_.clock.monotonicMilliseconds();
    if (now - servedAt_ < servedEvery) return;
    refresher_.flush();
    wxEventLoopBase* loop = wxEventLoopBase::GetActive();
    if (loop != nullptr && !loop->IsYielding()) (void)loop->Yield(true);
    servedAt_ = services_.clock.monotonicMilliseconds();
}

Answer WxWindows::showMessage(const MessageBoxText& message) {
    MessageView box(front(), pictures_, message);
    return ask(box);
}

Answer WxWindows::ask(MessageView& box) {
    open_.push_back(&box);
    const Answer answer = box.ask();
    open_.pop_back();
    return answer;
}

void WxWindows::showWaiting(bool waiting) {
    if (waiting) {
        wxBeginBusyCursor();
    } else if (wxIsBusy()) {
        wxEndBusyCursor();
    }
}

std::string WxWindows::chooseFolder(bool includeFiles, const std::string& prompt,
                                    const std::string& start) {
    const std::string begin = start.empty() ? start : services_.toNative(start);
    const std::string chosen = chooseNativeFolder(front(), includeFiles, prompt, begin);
    return chosen.empty() ? chosen : services_.fromNative(chosen);
}

std::string WxWindows::chooseFile(const std::string& title, const std::string& filter) {
    wxFileDialog dialog(front(), toWx(title), wxEmptyString, wxEmptyString, toWx(filter),
                        wxFD_OPEN | wxFD_FILE_MUST_EXIST);
    dialog.SetFilterIndex(services_.firstFilter);
    if (dialog.ShowModal() != wxID_OK) return {};
    return services_.fromNative(fromWx(dialog.GetPath()));
}

std::string WxWindows::chooseNewFile(const std::string& title, const std::string& name) {
    wxFileDialog dialog(front(), toWx(title), wxEmptyString, toWx(name), "*",
                        wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
    if (dialog.ShowModal() != wxID_OK) return {};
    return services_.fromNative(fromWx(dialog.GetPath()));
}

void WxWindows::copyText(const std::string& text) {
    copyToClipboard(toWx(text));
}

void WxWindows::notice(const std::string& text) {
    std::cerr << text << '\n';
    auto* main = open_.empty() ? nullptr : dynamic_cast<MainView*>(open_.front());
    if (main != nullptr) {
        main->notices().add(text);
    } else if (services_.noticeSeconds > 0) {
        showNotice(text);
    }
}

// Where nobody reads stderr this is all that says why a program ended at once. It goes by itself,
// so that a start that nobody watches ends too.
void WxWindows::showNotice(const std::string& text) {
    constexpr int second = 1'000;  // milliseconds
    MessageView box(front(), pictures_, {text, "Coffrelune", MessageIcon::exclamation});
    wxTimer timer;
    timer.Bind(wxEVT_TIMER, [&box](wxTimerEvent&) { box.Close(); });
    timer.StartOnce(services_.noticeSeconds * second);
    (void)ask(box);
}

}  // namespace coffrelune
