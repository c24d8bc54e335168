#include "engine/decision.h"

#include "system/date_time.h"

namespace coffrelune {
namespace {

constexpr std::uint64_t oneHour = 36'000'000'000;  // in units of 100 ns

bool equalButForTheHour(const LocalTime& a, const LocalTime& b) {
    return a.year == b.year && a.month == b.month && a.day == b.day && a.minute == b.minute &&
           a.second == b.second;
}

// Midnight is left out on both sides: the hour before it belongs to another day.
void forgiveSummerTime(std::uint64_t& source, std::uint64_t destination) {
    const LocalTime from = calendarOfFileTime(source);
    const LocalTime to = calendarOfFileTime(destination);
    if (!equalButForTheHour(from, to)) return;
    if (from.hour >= 1 && from.hour - 1 == to.hour) source -= oneHour;
}

}  // namespace

int compareDates(std::uint64_t source, std::uint64_t destination, bool forgiveHour) {
    if (forgiveHour && source > destination) forgiveSummerTime(source, destination);
    if (source == destination) return 0;
    return source < destination ? -1 : 1;
}

Decision decide(const FileEntry& source, const FileEntry* destination,
                const DecisionOptions& options) {
    // A directory is no copy of a file, whatever its time: the attempt to write the file fails by
    // its name, which is how the user learns that it was never saved.
    const bool isNew = destination == nullptr || destination->isDirectory();
    if (!options.compare) return {true, isNew, isNew ? " à copier" : " à remplacer"};
    if (isNew) return {true, true, " n'existe pas"};

    const int order = compareDates(source.times.lastWrite, destination->times.lastWrite,
                                   options.newerOnly && options.forgiveHour);
    if (order > 0) return {true, false, " est plus ancien"};
    if (order < 0 && !options.newerOnly) return {true, false, " est plus récent"};
    // Equal times settle it, whatever size and attributes say: a difference in those alone never
    // causes a copy.
    return {false, false, "No"};
}

}  // namespace coffrelune
