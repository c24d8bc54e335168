#include <windows.h>
// It takes its basic types from the one above.
#include <shellapi.h>

#include "platform/native/native_platform.h"
#include "platform/win32/desktop/win32_desktop.h"
#include "platform/win32/desktop/win32_task_scheduler.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/win32_contents.h"
#include "platform/win32/win32_output_file.h"
#include "platform/win32/win32_platform.h"

namespace coffrelune {

NativePlatform makeNativePlatform() {
    return {};
}

std::string settingsPlace() {
    return settingsDirectory();
}

// The entry procedure gets its arguments in the ANSI code page, with "*" already replaced by the
// files of the current directory.
std::vector<std::string> programArguments(int /*count*/, char** /*values*/) {
    int count = 0;
    wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    arguments.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) arguments.push_back(narrow(words[i]));
    LocalFree(words);
    return arguments;
}

std::string rawCommandLine() {
    return narrow(GetCommandLineW());
}

std::int16_t nativeSystemLevel() {
    return ownSystemLevel();
}

namespace {

/// On a thread that may call the shell.
class ShellDriveInformation final : public DriveInformation {
  public:
    Status volumeLabel(const std::string& root, std::string& label) override {
        return information_.volumeLabel(root, label);
    }
    DriveDescription describe(const std::string& root) override {
        return information_.describe(root);
    }
    Status sizes(const std::string& root, std::uint64_t& total, std::uint64_t& free) override {
        return information_.sizes(root, total, free);
    }

  private:
    Apartment apartment_;
    Win32DriveInformation information_;
};

}  // namespace

std::unique_ptr<DriveInformation> makeDriveInformation(NativePlatform& /*platform*/) {
    return std::make_unique<ShellDriveInformation>();
}

std::unique_ptr<ContentReader> makeContentReader(NativePlatform& /*platform*/) {
    return std::make_unique<Win32Contents>();
}

Status createOutputFile(NativePlatform& /*platform*/, const std::string& path,
                        std::unique_ptr<OutputFile>& file) {
    return createOutputFile(path, file);
}

std::unique_ptr<TaskScheduler> makeTaskScheduler(NativePlatform& /*platform*/) {
    return std::make_unique<Win32TaskScheduler>();
}

void notifyDesktop(NativePlatform& /*platform*/, const std::string& title,
                   const std::string& text) {
    Win32Shell().notify(title, text);
}

std::string nativePath(NativePlatform& /*platform*/, const std::string& path) {
    return path;
}

std::vector<std::string> volumePlaces() {
    return {};
}

}  // namespace coffrelune
