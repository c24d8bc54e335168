#include "engine/progress.h"

#include <algorithm>
#include <cmath>

#include "system/date_time.h"
#include "system/numbers.h"

namespace coffrelune {
namespace {

constexpr double kilo = 1024.0;
constexpr double mega = 1024.0 * kilo;
constexpr double giga = 1024.0 * mega;

std::string scaled(double value, const char* unit, const Locale& locale) {
    const std::string number = value < 10    ? formatFixed(value, 2, locale)
                               : value < 100 ? formatFixed(value, 1, locale)
                                             : formatGrouped(value);
    return number + " " + unit;
}

}  // namespace

std::string sizeText(float bytes, const Locale& locale) {
    const double n = bytes;
    if (n < 1000) return formatFixed(n, 0, locale) + (n <= 1 ? " octet" : " octets");
    if (n < 1000 * kilo) return scaled(n / kilo, "Ko", locale);
    if (n < 1000 * mega) return scaled(n / mega, "Mo", locale);
    return scaled(n / giga, "Go", locale);
}

namespace {

constexpr std::int32_t secondsBeforeFirstEstimate = 11;
constexpr double longestEstimate = 2'000'000;  // seconds; beyond it an estimate says nothing

}  // namespace

Progress::Progress(RunState& run)
    : statistics_(run.statistics), platform_(run.system.platform), display_(run.display) {}

void Progress::clearTexts() {
    lastRemaining_.clear();
    lastRate_.clear();
}

void Progress::startFile(const std::string& name, const std::string& sourceDirectory,
                         const std::string& destinationDirectory) {
    display_.showFile("Fichier: " + name);
    refreshCaptions(sourceDirectory, destinationDirectory);
}

void Progress::refreshCaptions(const std::string& sourceDirectory,
                               const std::string& destinationDirectory) {
    display_.showSource(sourceDirectory);
    display_.showDestination(destinationDirectory);
    showPercentage(statistics_.bytesDone);
    display_.runPendingEvents();
}

// Files may grow between the analysis and the copy, so more bytes than the total may be done.
void Progress::showPercentage(float bytes) {
    const double share = bytes / static_cast<double>(statistics_.totalBytes) * 100;
    const double percent = bytes == 0 ? 0 : std::isfinite(share) ? std::nearbyint(share) : 100;
    const int shown = static_cast<int>(std::clamp(percent, 0.0, 100.0));
    display_.showPercentage(shown, std::to_string(shown) + "% copiés (" +
                                       sizeText(bytes, platform_.locale) + " de " +
                                       sizeText(statistics_.totalBytes, platform_.locale) + ")");
}

void Progress::chunkFinished(std::uint64_t transferred) {
    if (busy_) return;
    busy_ = true;
    const double done = static_cast<double>(statistics_.bytesDone);
    showPercentage(static_cast<float>(done + static_cast<double>(transferred)));
    display_.runPendingEvents();
    busy_ = false;
}

void Progress::refreshEstimate() {
    const double now = secondsSinceMidnight(platform_.clock.now());
    auto seconds = static_cast<std::int32_t>(std::lround(now - statistics_.baselineTime));
    if (seconds < 0) {  // midnight has passed: start again from here
        statistics_.bytesAtBaseline = statistics_.bytesDone;
        statistics_.baselineTime = static_cast<std::int32_t>(now);
        return;
    }
    if (seconds == lastElapsed_) return;  // the texts change at most once a second
    lastElapsed_ = seconds;
    if (statistics_.bytesDone <= 0 || seconds < secondsBeforeFirstEstimate) return;

    const double remaining = static_cast<double>(statistics_.totalBytes) - statistics_.bytesDone;
    const double done = static_cast<double>(statistics_.bytesDone) - statistics_.bytesAtBaseline;
    if (remaining < 0 || done <= 0) return;  // files grew, or nothing since midnight
    const double estimate = remaining / done * seconds;
    if (estimate >= longestEstimate) return;

    // From here on `seconds` is the remaining time. The rate divides by it too: the two share this
    // variable on purpose, and the rate shown has always been the one that the end will need.
    seconds = static_cast<std::int32_t>(std::lround(estimate));
    if (seconds > 5) seconds -= seconds % 5;
    showTexts(seconds);
}

void Progress::showTexts(std::int32_t remainingSeconds) {
    const std::string remaining = remainingTimeText(remainingSeconds);
    if (remaining != lastRemaining_) {
        lastRemaining_ = remaining;
        display_.showRemainingTime("Temps restant: " + remaining);
        display_.runPendingEvents();
    }
    if (remainingSeconds == 0) return;
    const float bytesPerSecond = statistics_.bytesDone / static_cast<float>(remainingSeconds);
    const std::string rate = sizeText(bytesPerSecond, platform_.locale) + "/s";
    if (rate != lastRate_) {
        lastRate_ = rate;
        display_.showRate("Taux de transfert: " + rate);
    }
}

std::string remainingTimeText(std::int32_t seconds) {
    const auto number = [](std::int32_t value) { return std::to_string(value); };
    if (seconds <= 0) return {};
    if (seconds == 1) return "1 seconde";
    if (seconds <= 60) return number(seconds) + " secondes";
    if (seconds <= 120) {
        return number(seconds / 60) + " minute(s) " + number(seconds % 60 / 15 * 15) +
               " seconde(s)";
    }
    if (seconds <= 3600) return number(seconds / 60) + " minute(s)";
    return number(seconds / 3600) + " heure(s) " + number(seconds % 3600 / 60) + " minute(s)";
}

}  // namespace coffrelune
