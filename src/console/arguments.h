#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "settings/system_mod.h"

namespace coffrelune::console {

enum class Command {
    backup,
    restore,
    compare,
    verify,
    journal,
    results,
    configurations,
    lines,
    options,
    drives,
    plan,
};

/// What a command does with the settings.
enum class Action { show, add, rename, duplicate, erase, describe, set, select, deselect, exclude };

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
    bool roundedDates = false;                   // a volume may round the times of copies
    bool reversed = false;                       // compare from destination to source
    OperationKind kind = OperationKind::backup;  // whose journal
    bool journal = false;
    bool json = false;
    bool progress = false;         // told line by line
    bool notifies = false;         // the desktop, at the end
    std::optional<int> alertDays;  // of results
    std::string report;            // the file that names what became of each file
    std::string hashes;            // the list that copies are checked against
    std::string writtenHashes;     // the list that is written when the command has ended

    /// Of the commands that show and change settings.
    struct SettingsEdit {
        Action action = Action::show;
        std::string name;     // of a configuration
        std::string newName;  // of the one that is added or renamed
        std::optional<std::string> text;
        std::vector<int> lines;  // from 1
        std::optional<std::string> source;
        std::optional<std::string> destination;
        std::optional<std::string> exclusionMode;  // "tous", "aucun" or "sauf"
        std::vector<std::string> added;            // to the list of exclusions
        std::vector<std::string> removed;
        bool clears = false;
        std::vector<std::string> assignments;  // "Clé=valeur"

        bool operator==(const SettingsEdit&) const = default;
    };
    SettingsEdit edit;

    /// Of what the system is to start by itself.
    struct Plan {
        std::string time;       // "hh:nn"
        std::vector<int> days;  // 1 Monday to 7 Sunday; none: every day
        bool withWindows = false;

        bool operator==(const Plan&) const = default;
    };
    Plan plan;

    bool direct() const { return !source.empty(); }
    bool operator==(const Arguments&) const = default;
};

/// The language of the command line. It costs more to describe than a line to read: who reads
/// several lines keeps it. What one line says changes nothing of the next.
class ArgumentParser {
  public:
    ArgumentParser();
    ArgumentParser(const ArgumentParser&) = delete;
    ArgumentParser& operator=(const ArgumentParser&) = delete;
    ~ArgumentParser();

    /// See parseArguments().
    std::optional<Arguments> parse(const std::vector<std::string>& words, int& exitStatus);

  private:
    struct Language;

    std::unique_ptr<Language> language_;
};

/// Reads the command line, whose first word is the program's name. When there is nothing to run
/// (help, version, wrong use) the text has been printed and `exitStatus` holds how the process
/// ends.
std::optional<Arguments> parseArguments(const std::vector<std::string>& words, int& exitStatus);

}  // namespace coffrelune::console
