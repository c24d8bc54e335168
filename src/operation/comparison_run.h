#pragma once

#include "engine/copie_mod.h"

namespace coffrelune {

/// The run of a comparison: lists what a backup, or a restore, would copy, and changes nothing.
class ComparisonRun {
  public:
    explicit ComparisonRun(RunState& run);

    void LanceComparaison(const LocalTime& startTime);

  private:
    void compareLines();
    void endComparison(const LocalTime& startTime);
    void summarize();
    void summarizeContents();
    void addToBoth(const std::string& line);

    RunState& run_;
    CopyErrors errors_;
    CopieMod engine_;
};

}  // namespace coffrelune
