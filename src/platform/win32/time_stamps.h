#pragma once

#include <optional>

#include "platform/copy_batch.h"
#include "platform/file_entry.h"
#include "platform/time_grid.h"

namespace coffrelune {

/// Tries a last-write time on an open file, which must be writable.
TimeTrial timeTrialOn(void* file);

/// What the copies of one batch are stamped with: what their volume makes of a time is tried out
/// once, on the first of them.
class TimeStamps {
  public:
    /// The times that an open copy can bear of those of its original; 0 stays 0.
    FileTimes fitting(void* copy, const FileTimes& times);

    /// The worst that has become of a last-write time.
    KeptTimes kept() const { return kept_; }

  private:
    bool tried_ = false;
    std::optional<TimeGrid> grid_;  // nothing: the volume keeps no times, as far as can be told
    KeptTimes kept_ = KeptTimes::exactly;
};

}  // namespace coffrelune
