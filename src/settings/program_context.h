#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/platform.h"

namespace coffrelune {

/// How the process was started; gathered once by the start-up.
struct ProgramContext {
    std::string commandLine;    // the arguments after the program path, as one text
    std::string homeDirectory;  // of the settings file, in the core's form; empty: no such file
    int versionMajor = 0;
    int versionMinor = 0;
    /// The running program's file in the core's form, to be started again at logon.
    std::string executablePath = {};
    std::int16_t systemLevel = newestSystemLevel;  // 0 when the system does not tell its version
};

/// What the arguments ask for.
struct CommandLine {
    bool AutoMode = false;
    /// The configuration named last, in ProperCase; empty when the last name is ("/Auto/"); nothing
    /// when none is given.
    std::optional<std::string> configurationName;
};

/// Understands the arguments after the program path, as one text: "/Auto /Travail", "/travail", or
/// a bare name, which is then taken whole, blanks included.
CommandLine readCommandLine(const std::string& text);

}  // namespace coffrelune
