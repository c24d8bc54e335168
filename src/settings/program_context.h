#pragma once

#include <cstdint>
#include <string>

#include "platform/system_level.h"

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

}  // namespace coffrelune
