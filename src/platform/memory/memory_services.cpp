#include "platform/memory/memory_services.h"

#include <chrono>

namespace coffrelune {
namespace {

using FileTimeUnits = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
constexpr std::chrono::sys_days epoch = std::chrono::year{1601} / 1 / 1;

}  // namespace

std::uint64_t fileTimeOf(const LocalTime& time) {
    using namespace std::chrono;
    const sys_days day = year{time.year} / month{static_cast<unsigned>(time.month)} /
                         std::chrono::day{static_cast<unsigned>(time.day)};
    const auto sinceEpoch = (day - epoch) + hours{time.hour} + minutes{time.minute} +
                            seconds{time.second} + milliseconds{time.millisecond};
    return static_cast<std::uint64_t>(duration_cast<FileTimeUnits>(sinceEpoch).count());
}

LocalTime localTimeOf(std::uint64_t fileTime) {
    using namespace std::chrono;
    const auto sinceEpoch =
        duration_cast<milliseconds>(FileTimeUnits{static_cast<std::int64_t>(fileTime)});
    const auto wholeDays = floor<days>(sinceEpoch);
    const year_month_day date{epoch + wholeDays};
    const hh_mm_ss clock{sinceEpoch - wholeDays};
    return {static_cast<int>(date.year()),
            static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day())),
            static_cast<int>(clock.hours().count()),
            static_cast<int>(clock.minutes().count()),
            static_cast<int>(clock.seconds().count()),
            static_cast<int>(clock.subseconds().count())};
}

std::uint64_t fileTimeAt(int year, int month, int day, int hour, int minute, int second) {
    return fileTimeOf({year, month, day, hour, minute, second, 0});
}

void MemoryClock::advance(std::int64_t milliseconds) {
    monotonic_ += milliseconds;
    fileTime_ += static_cast<std::uint64_t>(milliseconds) * 10'000;
}

}  // namespace coffrelune
