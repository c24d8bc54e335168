#include "platform/time_grid.h"

#include <algorithm>
#include <initializer_list>

namespace coffrelune {
namespace {

constexpr std::uint64_t second = 10'000'000;
constexpr std::uint64_t from1601To1970 = 11'644'473'600 * second;
// An even second with digits of which no two steps make the same, and the odd one after it.
constexpr std::uint64_t odd = from1601To1970 + 1'000'000'000 * second + 1'234'567;
constexpr std::uint64_t oddSecond = from1601To1970 + 1'000'000'001 * second;

std::uint64_t roundedUp(std::uint64_t time, std::uint64_t step) {
    const std::uint64_t beyond = time % step;
    return beyond == 0 || time > UINT64_MAX - step ? time : time + (step - beyond);
}

enum class Side { early, late };

/// Where a volume stops that gives its last time to everything beyond. Of one that refuses what it
/// cannot hold, the first of `candidates` that it takes. Nothing where neither can be told: what is
/// beyond may come back as anything.
std::optional<std::uint64_t> limitOf(const TimeTrial& trial, Side side, std::uint64_t far,
                                     std::initializer_list<std::uint64_t> candidates) {
    const std::optional<std::uint64_t> kept = trial(far);
    if (!kept) {
        const auto* const taken =
            std::find_if(candidates.begin(), candidates.end(),
                         [&](std::uint64_t time) { return trial(time) == time; });
        return taken == candidates.end() ? std::nullopt : std::optional(*taken);
    }
    constexpr std::uint64_t widest = 2 * second;
    const bool held = *kept + widest > far && *kept < far + widest;
    if (held) return {};
    return trial(side == Side::early ? *kept - widest : *kept + widest) == kept ? kept
                                                                                : std::nullopt;
}

}  // namespace

std::uint64_t TimeGrid::held(std::uint64_t time) const {
    return std::max(std::min(roundedUp(time, step), latest), earliest);
}

std::uint64_t measureStep(const TimeTrial& trial) {
    const std::optional<std::uint64_t> kept = trial(odd);
    if (!kept) return 0;
    for (const std::uint64_t step :
         {std::uint64_t{1}, std::uint64_t{10}, second / 1000, second / 100, second / 10, second}) {
        const std::uint64_t above = roundedUp(odd, step);
        if (*kept != above && (step == 1 || *kept + step != above)) continue;
        if (step < second) return step;
        return trial(oddSecond) == oddSecond ? second : 2 * second;
    }
    return *kept == oddSecond + second ? 2 * second : 0;
}

std::optional<TimeGrid> measureTimes(const TimeTrial& trial) {
    TimeGrid grid;
    grid.step = measureStep(trial);
    if (grid.step == 0) return {};
    constexpr std::uint64_t day = 86'400 * second;
    // Volumes that count from 1980 may mean the local time: the day after holds everywhere.
    constexpr std::uint64_t in1970 = from1601To1970 + day;
    constexpr std::uint64_t in1980 = from1601To1970 + 3'653 * day;
    constexpr std::uint64_t in2107 = from1601To1970 + 50'401 * day;
    constexpr std::uint64_t in3000 = from1601To1970 + 32'503'680'000 * second;
    const auto earliest = limitOf(trial, Side::early, second, {in1970, in1980});
    const auto latest = limitOf(trial, Side::late, in3000, {in2107});
    grid.earliest = earliest.value_or(0);
    grid.latest = latest.value_or(UINT64_MAX);
    return grid;
}

}  // namespace coffrelune
