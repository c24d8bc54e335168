#include "operation/operation_fixture.h"

#include "platform/names.h"
#include "system/paths.h"

namespace coffrelune {

void RecordingHost::showLineDone(int line, bool done) {
    events_.push_back((done ? "done " : "not done ") + std::to_string(line));
}

void RecordingHost::setLaunchEnabled(bool enabled) {
    events_.push_back(enabled ? "launch on" : "launch off");
}

void RecordingHost::setTimerEnabled(bool enabled) {
    events_.push_back(enabled ? "timer on" : "timer off");
}

void RecordingHost::resultStored(OperationKind kind) {
    events_.push_back("stored " + std::to_string(static_cast<int>(kind)));
}

void WatchedWindows::watch(Copie& operation, ControlPeer* peer) {
    for (std::size_t i = 0; i < operation.Lbl.size(); ++i) {
        names_[&operation.Lbl[i]] = "Lbl" + std::to_string(i);
        operation.Lbl[i].attach(peer);
    }
    names_[&operation.ProgBar] = "ProgBar";
    operation.ProgBar.attach(peer);
    names_[&operation.AnalyseChk] = "AnalyseChk";
    operation.AnalyseChk.attach(peer);
}

void WatchedWindows::showModal(Window& window) {
    events_.push_back("shown " + window.caption());
    auto* operation = dynamic_cast<Copie*>(&window);
    if (operation != nullptr) {
        operation_ = operation;
        watch(*operation, this);
    }
    inner_.showModal(window);
    if (operation != nullptr) {
        watch(*operation, nullptr);
        operation_ = nullptr;
    }
    events_.push_back("closed " + window.caption());
}

Answer WatchedWindows::showMessage(const MessageBoxText& message) {
    events_.push_back("message " + message.text);
    return inner_.showMessage(message);
}

void WatchedWindows::notice(const std::string& text) {
    events_.push_back("notice " + text);
    inner_.notice(text);
}

void WatchedWindows::controlChanged(Control& control) {
    std::string state = control.caption();
    if (const auto* bar = dynamic_cast<const ProgressBar*>(&control)) {
        state = bar->indeterminate() ? "marquee" : std::to_string(bar->value());
    }
    if (dynamic_cast<const CheckBox*>(&control) != nullptr) {
        state = control.visible() ? "visible" : "hidden";
    }
    changes_.push_back(names_[&control] + ": " + state);
}

Events WatchedWindows::changesOf(const std::string& control) const {
    const std::string prefix = control + ": ";
    Events chosen;
    for (const std::string& change : changes_) {
        if (change.rfind(prefix, 0) == 0) chosen.push_back(change.substr(prefix.size()));
    }
    return chosen;
}

OperationTest::OperationTest() : system(platform, {"", home, 3, 5}) {
    disk().directory(home);
    disk().file(R"(C:\Docs\a.txt)", "aaaaa", fileTimeAt(2024, 3, 1));
    disk().file(R"(C:\Docs\Sub\b.txt)", "bbb", fileTimeAt(2024, 3, 1));
    disk().file(R"(D:\Photos\c.jpg)", "cccccccc", fileTimeAt(2024, 3, 1));
    disk().directory(R"(F:\Save)");
    disk().directory(R"(G:\Save)");
    system.configurationName = "Travail";
    system.lines[0].source = R"(C:\Docs)";
    system.lines[0].destination = R"(F:\Save)";
    system.lines[1].source = R"(D:\Photos)";
    system.lines[1].destination = R"(G:\Save)";
    system.soundNames = {"Ok", "Erreur"};
    system.Modifie = 1;
    selectOnly({0, 1});
}

void OperationTest::TearDown() {
    EXPECT_THAT(memory.windows().problems(), testing::IsEmpty());
}

void OperationTest::selectOnly(const std::vector<int>& lines) {
    for (BackupLine& line : system.lines) line.selected = 0;
    for (const int line : lines) system.lineAt(line).selected = 1;
}

void OperationTest::placeOldCopy() {
    disk().file(R"(F:\Save\Docs\a.txt)", "old", fileTimeAt(2023, 1, 1));
}

void OperationTest::failCopyOf(const std::string& source, std::uint32_t number) {
    faults.fail("copyFile", source, number);
}

void OperationTest::whenEventsRun(std::function<bool(Copie&)> when,
                                  std::function<void(Copie&)> action) {
    user().onPendingEvents = [this, when = std::move(when), action = std::move(action),
                              called = false]() mutable {
        if (called || windows.operation() == nullptr || !when(*windows.operation())) return;
        called = true;
        action(*windows.operation());
    };
}

void OperationTest::interruptAtLabel(std::size_t label, const std::string& text) {
    user().answer(Answer::yes);
    whenEventsRun([label, text](Copie& window) { return window.Lbl.at(label).caption() == text; },
                  [](Copie& window) { window.Cmd.click(); });
}

void OperationTest::makeCopie() {
    copie.reset();
    operation = std::make_unique<Operation>(system, switches);
    copie = std::make_unique<Copie>(system, *operation, host);
}

void OperationTest::showCopie() {
    windows.showModal(*copie);
    statistics = operation->statistics();
    control = operation->control();
}

void OperationTest::runCopie() {
    makeCopie();
    showCopie();
}

RunEnd OperationTest::launch(RunMode mode) {
    launcher = std::make_unique<OperationLauncher>(system, host, stage);
    return launcher->LanceOperation(mode);
}

Events OperationTest::journal() const {
    Events lines;
    for (std::size_t i = 0; i < copie->ECTxt.lineCount(); ++i) {
        lines.emplace_back(copie->ECTxt.line(i));
    }
    return lines;
}

Events OperationTest::filesBelow(const std::string& directory) {
    Events paths = disk().list(directory);
    std::erase_if(paths, [](const std::string& path) {
        return ownFileKind(splitPath(path).last).has_value();
    });
    return paths;
}

std::optional<Certificate> OperationTest::certificateIn(const std::string& copy) {
    DirectoryMarks marks;
    if (!readMarks(memory.files(), copy, marks).ok()) return {};
    if (marks.certificates.size() != 1 || !marks.unreadable.empty()) return {};
    return marks.certificates.front().certificate;
}

bool OperationTest::isComplete(const std::string& copy) {
    const std::optional<Certificate> certificate = certificateIn(copy);
    return certificate.has_value() && certificate->complete;
}

bool OperationTest::isOpen(const std::string& copy) {
    const std::optional<Certificate> certificate = certificateIn(copy);
    return certificate.has_value() && !certificate->complete;
}

bool OperationTest::markedUnfinished(const std::string& original) {
    DirectoryMarks marks;
    return readMarks(memory.files(), original, marks).ok() && !marks.restoreMarks.empty();
}

std::string OperationTest::setting(const std::string& section, const std::string& key) {
    return system.ReadSetting(section, key);
}

std::string OperationTest::errorList(const std::string& name) {
    return disk().content(std::string(home) + "\\" + name).value_or("(none)");
}

Events OperationTest::copies() const {
    Events chosen;
    for (const std::string& call : faults.calls()) {
        if (call.rfind("copyFile ", 0) == 0) chosen.push_back(call.substr(9));
    }
    return chosen;
}

Events OperationTest::eventsThat(const std::string& beginLike) const {
    Events chosen;
    for (const std::string& event : events) {
        if (event.rfind(beginLike, 0) == 0) chosen.push_back(event);
    }
    return chosen;
}

}  // namespace coffrelune
