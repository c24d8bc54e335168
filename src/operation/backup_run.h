#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "engine/copie_mod.h"
#include "engine/excess_walk.h"

namespace coffrelune {

/// The run of a backup or a restore: its passes over the selected lines, in their order.
class BackupRun {
  public:
    explicit BackupRun(RunState& run);

    void LanceCopie();

  private:
    using Lines = std::vector<LineTrees*>;

    void begin();
    void examine(LineTrees& line);
    void CopieArborescence();
    void EffaceExcedents();
    void startAnalysis();
    void analyseLines();
    bool prepareCopy();
    void copyLines();
    void conclude();
    void flushVolumes(Lines& lines);

    RunState& run_;
    CopyErrors errors_;
    CopieMod engine_;
    ExcessWalk excess_;
    std::vector<std::unique_ptr<LineTrees>> lines_;
    /// Held so that no pass finds another volume there than the one before.
    std::map<std::string, std::unique_ptr<HeldTree>> destinations_;
    std::set<int> settled_;  // indices of the lines of which everything is in the written tree
};

}  // namespace coffrelune
