#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/memory/memory_desktop.h"
#include "platform/memory/memory_platform.h"
#include "settings/system_mod.h"

namespace coffrelune {

using Texts = std::vector<std::string>;

/// The shared state over a system in memory, with the settings file
/// C:\Coffrelune\Coffrelune.ini. Everything that a test does not prepare is a failure at its end.
class DialogTest : public testing::Test {
  protected:
    static constexpr const char* home = R"(C:\Coffrelune)";
    static constexpr const char* settingsFile = R"(C:\Coffrelune\Coffrelune.ini)";

    DialogTest();
    void TearDown() override;

    MemoryDisk& disk() { return memory.disk(); }
    MemoryWindows& user() { return memory.windows(); }

    /// Makes the settings file (lines ended by LF) and loads it as the start of the program does.
    void loadSettings(const std::string& content);
    std::string settings() { return disk().content(settingsFile).value_or("(none)"); }
    std::string setting(const std::string& section, const std::string& key);
    /// How often the settings file was written.
    std::size_t writeCount() { return memory.files().calls("writeWhole").size(); }
    /// The last message that the user saw.
    MessageBoxText lastMessage() { return user().messages().at(user().messages().size() - 1); }

    /// Shows the dialog to a user who does this.
    template <typename Dialog>
    void show(Dialog& dialog, std::function<void(Dialog&)> action) {
        user().template stepIn<Dialog>(std::move(action));
        platform.windows.showModal(dialog);
    }

    MemoryPlatform memory;
    MemoryDesktop memoryDesktop;
    Platform platform = memory.platform();
    Desktop desktop = memoryDesktop.desktop();
    SystemMod system;
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
