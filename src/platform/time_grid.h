#pragma once

#include <cstdint>
#include <functional>
#include <optional>

namespace coffrelune {

/// The last-write times that a volume can hold, in units of 100 ns since 1601.
struct TimeGrid {
    std::uint64_t step = 1;
    std::uint64_t earliest = 0;
    std::uint64_t latest = UINT64_MAX;

    /// What a copy bears there for `time`: the next one that the volume holds, since a copy that
    /// seemed older than its original would be made again.
    std::uint64_t held(std::uint64_t time) const;

    bool operator==(const TimeGrid&) const = default;
};

/// Gives something on a volume the time `wanted` and reads back what the volume has made of it.
/// Nothing when that fails.
using TimeTrial = std::function<std::optional<std::uint64_t>(std::uint64_t wanted)>;

/// The step of a volume, whether it rounds up or down; 0 when it keeps no times, or what it makes
/// of them fits no step that is known.
std::uint64_t measureStep(const TimeTrial& trial);

/// The step, and between which times the volume stays. Where the step is 0, nothing.
std::optional<TimeGrid> measureTimes(const TimeTrial& trial);

}  // namespace coffrelune
