#pragma once

#include <CLI/CLI.hpp>

#include "console/arguments.h"

namespace coffrelune::console {

// What the descriptions of the commands are made of. A validator's refusal is the whole sentence
// that the user reads.

inline constexpr const char* exitStatuses =
    "État de sortie : 0 sans erreur ou rien à faire, 1 erreurs (ou différences trouvées),\n"
    "2 mauvais usage ou réglages, 3 interrompu ou refusé.";

/// A variable that a script forgot to set must not turn into something else.
CLI::Validator notEmpty();

/// "coffrelune-console " before each of these, under a title, then the exit statuses.
std::string examples(const std::vector<std::string>& commands);

/// What every command and sub-command has: its help, in French.
CLI::App* addWord(CLI::App& app, const char* name, const char* description);

/// A command: "--config" and "--json" besides.
CLI::App* addCommand(CLI::App& app, Arguments& arguments, Command command, const char* name,
                     const char* description);

void addConfiguration(CLI::App* command, Arguments& arguments);
void addJson(CLI::App* command, Arguments& arguments);

/// configurations, lignes, options, lecteurs.
void addSettingsCommands(CLI::App& app, Arguments& arguments);

}  // namespace coffrelune::console
