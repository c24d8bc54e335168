#include "platform/posix/desktop/posix_desktop.h"

#include "platform/posix/native_path.h"

namespace coffrelune {

DesktopOptions DesktopOptions::fromEnvironment(const char* (*variable)(const char* name)) {
    const auto textOf = [&](const char* name) {
        const char* text = variable(name);
        return std::string(text == nullptr ? "" : text);
    };
    DesktopOptions options;
    std::string configuration = textOf("XDG_CONFIG_HOME");
    // A relative one is to be ignored, say those who defined it.
    const std::string home = textOf("HOME");
    if (!configuration.starts_with('/') && home.starts_with('/')) {
        configuration = joinNative(home, ".config");
    }
    // Without either there is no user to start anything for.
    if (configuration.starts_with('/')) {
        options.autostartDirectory = joinNative(configuration, "autostart");
    }

    options.sounds.searchPath = textOf("PATH");
    const std::string runtime = textOf("XDG_RUNTIME_DIR");
    if (runtime.starts_with('/')) {
        options.sounds.serverSockets = {joinNative(runtime, "pulse/native"),
                                        joinNative(runtime, "pipewire-0")};
    }
    return options;
}

}  // namespace coffrelune
