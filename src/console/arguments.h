#pragma once

#include <optional>
#include <string>
#include <vector>

#include "settings/system_mod.h"

namespace coffrelune::console {

enum class Command { backup, restore, compare, journal, results };

/// What the user asked for.
struct Arguments {
    Command command = Command::backup;
    std::string configuration;  // empty: the one that the settings name
    std::string source;         // with destination: a run without the settings file
    std::string destination;
    bool overwrite = false;
    bool keep = false;
    bool confirmed = false;                      // a restore needs no question
    bool originalConfirmed = false;              // the sources are the right ones
    bool reversed = false;                       // compare from destination to source
    OperationKind kind = OperationKind::backup;  // whose journal
    bool journal = false;
    bool json = false;

    bool direct() const { return !source.empty(); }
};

/// Reads the command line, whose first word is the program's name. When there is nothing to run
/// (help, version, wrong use) the text has been printed and `exitStatus` holds how the process
/// ends.
std::optional<Arguments> parseArguments(const std::vector<std::string>& words, int& exitStatus);

}  // namespace coffrelune::console
