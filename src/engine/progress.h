#pragma once

#include <cstdint>
#include <string>

#include "engine/run_state.h"
#include "platform/services.h"

namespace coffrelune {

/// A byte count in words: "512 octets", "1,50 Ko", "999 Mo". The unit changes at 1000 of the
/// smaller one while the divisor stays 1024, so that no number on screen has four digits: 1000
/// bytes are "0,98 Ko". Rounded; the drive list has a rule of its own that truncates.
std::string sizeText(float bytes, const Locale& locale);

/// The texts of progress: percentage, remaining time, transfer rate.
class Progress final : public CopyObserver {
  public:
    explicit Progress(RunState& run);

    /// Forgets the texts shown last, so that a new line shows its own.
    void clearTexts();

    /// Called before each file of the copy pass; it is named from here on.
    void startFile(const std::string& name, const std::string& sourceDirectory,
                   const std::string& destinationDirectory);

    /// Called before and after each file of the copy pass.
    void refreshCaptions(const std::string& sourceDirectory,
                         const std::string& destinationDirectory);

    /// Called after each copied file.
    void refreshEstimate();

    /// A chunk of the file in progress is copied: the percentage counts it at once.
    void chunkFinished(std::uint64_t transferred) override;

  private:
    void showPercentage(float bytes);
    void showTexts(std::int32_t remainingSeconds);

    RunStatistics& statistics_;
    Platform& platform_;
    RunDisplay& display_;
    bool busy_ = false;  // a notification is at work: events that it lets run may raise the next
    std::int32_t lastElapsed_ = 0;  // seconds
    std::string lastRemaining_;
    std::string lastRate_;
};

/// "1 minute(s) 45 seconde(s)" and the like; empty for 0.
std::string remainingTimeText(std::int32_t seconds);

}  // namespace coffrelune
