#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <utility>

#include "engine/run_state.h"

namespace coffrelune {

/// Counts and names what went wrong. What could not be read or written makes its line incomplete.
class CopyErrors {
  public:
    explicit CopyErrors(RunState& run) : run_(run) {}

    /// The errors that follow concern this line, by its index.
    void startLine(int line) { line_ = line; }

    /// Something was not copied: counts one error, adds "Erreur: 5 - Fichier: C:\Docs\a.txt" to the
    /// journal and stops the run unless the user chose to go on; `directory` is then kept for the
    /// final report of a sharing or lock violation.
    void failed(std::uint32_t number, const std::string& path, const std::string& directory);

    /// The same of a directory, once per run whatever the number of passes that meet it.
    void failedOnce(std::uint32_t number, const std::string& directory);

    /// The same once per line, for a directory that this line cannot write: another line may copy
    /// it to a better place.
    void failedInLine(std::uint32_t number, const std::string& directory);
    bool hasFailedInLine(const std::string& directory) const;

    /// Something could not be read: named once per run, never stops it.
    void unread(std::uint32_t number, const std::string& path);

    /// Files that may be excess files stay: the reason in words for the user, then an error for the
    /// path, once per run. What the line copies is complete all the same.
    void keptExcess(const std::string& reason, std::uint32_t number, const std::string& path);

    /// The line must not be run: the reason in words, then an error, once.
    void refused(const std::string& reason, std::uint32_t number, const std::string& source);

  private:
    void name(std::uint32_t number, const std::string& path);
    void stopUnlessContinued(std::uint32_t number, const std::string& directory);

    RunState& run_;
    int line_ = 0;
    std::set<std::string> named_;
    std::set<std::pair<int, std::string>> namedInLine_;  // by line index
};

}  // namespace coffrelune
