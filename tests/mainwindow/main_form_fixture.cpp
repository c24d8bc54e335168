#include "mainwindow/main_form_fixture.h"

#include <algorithm>
#include <utility>

#include "system/date_time.h"

namespace coffrelune {

void HookedWindows::showModal(Window& window) {
    callHook();
    Window* const below = std::exchange(front_, &window);
    inner_.showModal(window);
    front_ = below;
}

Answer HookedWindows::showMessage(const MessageBoxText& message) {
    callHook();
    return inner_.showMessage(message);
}

std::string HookedWindows::chooseFolder(bool includeFiles, const std::string& prompt,
                                        const std::string& start) {
    callHook();
    return inner_.chooseFolder(includeFiles, prompt, start);
}

std::string HookedWindows::chooseFile(const std::string& title, const std::string& filter) {
    callHook();
    return inner_.chooseFile(title, filter);
}

MainFormTest::MainFormTest() {
    disk().directory(home);
    disk().file(R"(C:\Docs\a.txt)", "aaaaa", fileTimeAt(2025, 3, 1));
    disk().directory(R"(F:\Save)");
    clock().set({2025, 3, 14, 10, 0, 0, 0});
}

void MainFormTest::TearDown() {
    EXPECT_THAT(user().problems(), testing::IsEmpty());
}

void MainFormTest::start(const std::string& settings, const std::string& commandLine) {
    form.reset();
    if (!settings.empty()) disk().file(settingsFile, settings);
    system = std::make_unique<SystemMod>(platform, ProgramContext{commandLine, home, 3, 5});
    system->LoadSettings();
    form = std::make_unique<MainForm>(*system, desktop);
}

void MainFormTest::startWithLine(const std::string& more) {
    start(
        "[General]\n"
        "Source0=\"C:\\Docs\"\n"
        "Destination0=\"F:\\Save\"\n"
        "Select0=1\n"
        "Modifie=1\n"
        "Confirmation=1\n" +
        more);
}

void MainFormTest::restart() {
    form->closeBox();
    start();
}

std::string MainFormTest::stored(const std::string& section, const std::string& key) {
    return SystemMod(platform, {"", home, 3, 5}).ReadSetting(section, key);
}

void MainFormTest::command(const std::string& key, int index, LineSide side) {
    row(index).label(side).press();
    form->toolbar.TB.pick(key);
}

void MainFormTest::typeInto(TextBox& field, const std::string& text) {
    field.enter();
    field.type(text);
    field.leave();
}

void MainFormTest::setClock(int year, int month, int day, int hour, int minute, int second) {
    clock().set({year, month, day, hour, minute, second, 0});
}

int MainFormTest::tick() {
    const auto runs = [this] {
        const auto& shown = user().shown();
        return static_cast<int>(std::count(shown.begin(), shown.end(), "Sauvegarde ..."));
    };
    const int before = runs();
    form->schedule.Timer1.tick();
    return runs() - before;
}

int MainFormTest::tickUntil(int year, int month, int day, int hour, int minute, int second) {
    const std::int64_t end = toMilliseconds({year, month, day, hour, minute, second, 0});
    int runs = 0;
    while (toMilliseconds(clock().now()) + Schedule::tickInterval <= end) {
        clock().advance(Schedule::tickInterval);
        runs += tick();
    }
    return runs;
}

void MainFormTest::stopNextRun() {
    user().onPendingEvents = [this] {
        if (auto* run = dynamic_cast<Copie*>(windows.front())) run->requestInterruption();
    };
}

}  // namespace coffrelune
