#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "mainwindow/main_form.h"
#include "platform/memory/memory_desktop.h"
#include "platform/memory/memory_platform.h"

namespace coffrelune {

using Texts = std::vector<std::string>;

/// The user of the test, with a hand free while something is open over the main window.
class HookedWindows final : public WindowService {
  public:
    explicit HookedWindows(MemoryWindows& inner) : inner_(inner) {}

    /// Called while a message, a window or a chooser is open, before it is answered.
    std::function<void()> whileOpen;
    /// The window that is open over the main one; null when none is.
    Window* front() const { return front_; }

    void showModal(Window& window) override;
    void runPendingEvents() override { inner_.runPendingEvents(); }
    Answer showMessage(const MessageBoxText& message) override;
    std::string chooseFolder(bool includeFiles, const std::string& prompt,
                             const std::string& start) override;
    std::string chooseFile(const std::string& title, const std::string& filter) override;
    void notice(const std::string& text) override { inner_.notice(text); }

  private:
    void callHook() {
        if (whileOpen) whileOpen();
    }

    MemoryWindows& inner_;
    Window* front_ = nullptr;
};

/// Drives of a system whose own paths are not those of the program.
class NativeDrives final : public DriveService {
  public:
    std::vector<std::string> roots() override { return {"C:\\"}; }
    std::string windowsDirectory() override { return {}; }
    std::string fromNative(const std::string& typed) override {
        ADD_FAILURE() << "a window has no current directory: " << typed;
        return {};
    }
    std::string fromWindow(const std::string& entered) override {
        return entered.rfind('/', 0) == 0 ? "C:\\" + entered.substr(1) : entered;
    }
};

/// The main window over a system in memory: C:\Docs\a.txt and the directory F:\Save are there, it
/// is Friday, 14 March 2025, 10:00, and the settings file is C:\Coffrelune\Coffrelune.ini, which a
/// test makes. What a test does not prepare is a failure at its end.
class MainFormTest : public testing::Test {
  protected:
    static constexpr const char* home = R"(C:\Coffrelune)";
    static constexpr const char* settingsFile = R"(C:\Coffrelune\Coffrelune.ini)";

    MainFormTest();
    void TearDown() override;

    MemoryDisk& disk() { return memory.disk(); }
    MemoryWindows& user() { return memory.windows(); }
    MemoryClock& clock() { return memory.clock(); }
    MemoryShell& shell() { return memoryDesktop.shell(); }

    /// Starts the program: makes the settings file (lines ended by LF) unless empty, loads it, and
    /// makes the main window.
    void start(const std::string& settings = {}, const std::string& commandLine = {});
    /// One configuration "General" with a line C:\Docs to F:\Save, selected, then these keys.
    void startWithLine(const std::string& more = {});
    /// Closes the window and starts again on the settings as they are now.
    void restart();

    std::string settings() { return disk().content(settingsFile).value_or("(none)"); }
    /// As a program that starts now would read it.
    std::string stored(const std::string& section, const std::string& key);
    std::string stored(const std::string& key) { return stored("General", key); }
    std::size_t writeCount() { return memory.files().calls("writeWhole").size(); }

    MessageBoxText lastMessage() { return user().messages().at(user().messages().size() - 1); }

    LineRow& row(int index) { return form->lines.row(index); }
    std::string left(int index) { return row(index).LblS.path(); }
    std::string right(int index) { return row(index).LblD.path(); }
    /// Picks a command for a row of the toolbar.
    void command(const std::string& key, int index, LineSide side = LineSide::left);
    void pickTab(const std::string& key) { form->launch.Onglet.pick(key); }
    /// The user enters a field, replaces its text and leaves it.
    static void typeInto(TextBox& field, const std::string& text);
    void setClock(int year, int month, int day, int hour, int minute = 0, int second = 0);
    /// Ticks as the timer does, every ten seconds, until the clock shows this (inclusive); returns
    /// how many backups ran.
    int tickUntil(int year, int month, int day, int hour, int minute, int second = 0);
    int tick();
    /// The next run is asked to stop as soon as it lets events run.
    void stopNextRun();

    MemoryPlatform memory;
    MemoryDesktop memoryDesktop;
    HookedWindows windows{memory.windows()};
    Windows1252 ansi;
    Platform platform{memory.files(), memory.drives(), memory.clock(), memory.locale(),
                      ansi,           memory.sounds(), windows};
    Desktop desktop = memoryDesktop.desktop();
    std::unique_ptr<SystemMod> system;
    std::unique_ptr<MainForm> form;
};

MATCHER_P3(IsMessage, text, title, icon, "") {
    *result_listener << "\"" << arg.text << "\" titled \"" << arg.title << "\"";
    return arg.text == text && arg.title == title && arg.icon == icon &&
           arg.buttons == MessageButtons::ok;
}

MATCHER_P2(IsQuestion, text, title, "") {
    *result_listener << "\"" << arg.text << "\" titled \"" << arg.title << "\"";
    return arg.text == text && arg.title == title && arg.icon == MessageIcon::question &&
           arg.buttons == MessageButtons::okCancel && arg.harmful;
}

}  // namespace coffrelune
