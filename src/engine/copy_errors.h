#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <utility>

#include "engine/operation_window.h"
#include "engine/run_statistics.h"

namespace coffrelune {

/// Counts and names what could not be copied, and stops the run unless the user chose to go on.
class CopyErrors {
  public:
    CopyErrors(SystemMod& system, RunStatistics& statistics, OperationWindow& window);

    /// Counts one error and adds "Erreur: 5 - Fichier: C:\Docs\a.txt" to the journal. Without
    /// `ContinueOnError` the run is stopped, and `directory` kept for the final report of a sharing
    /// or lock violation.
    void count(std::uint32_t number, const std::string& path, const std::string& directory);

    /// Counts and names a directory that cannot be read, once per run whatever the number of passes
    /// that meet it; never stops the run. True at the first time.
    bool nameOnce(std::uint32_t number, const std::string& directory);

    /// Like count(), once per run and directory; later calls do nothing.
    void countOnce(std::uint32_t number, const std::string& directory);

    /// The same, once per line, for a directory that this line cannot write: another line may copy
    /// the same directory to a better place.
    void countOnceInLine(std::uint32_t number, const std::string& directory);

    /// Counts and names a line that must not be run, once whatever the number of passes.
    void refuseLine(const std::string& reason, const std::string& source);
    bool namedInLine(const std::string& directory) const;

  private:
    void name(std::uint32_t number, const std::string& path);

    SystemMod& system_;
    RunStatistics& statistics_;
    OperationWindow& window_;
    std::set<std::string> named_;
    std::set<std::pair<int, std::string>> namedInLine_;  // by line index
};

}  // namespace coffrelune
