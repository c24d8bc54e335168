#include <windows.h>
// It takes its basic types from the one above.
#include <shellapi.h>

#include "platform/native/native_platform.h"
#include "platform/win32/wide_text.h"
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

std::vector<std::string> volumePlaces() {
    return {};
}

}  // namespace coffrelune
