#include "engine/progress.h"

#include <gtest/gtest.h>

#include "engine/engine_fixture.h"
#include "platform/memory/memory_services.h"
#include "system/date_time.h"

namespace coffrelune {
namespace {

constexpr float kilo = 1024.0F;
constexpr float mega = 1024.0F * kilo;
constexpr float giga = 1024.0F * mega;

std::string text(float bytes) {
    MemoryLocale locale;
    return sizeText(bytes, locale);
}

TEST(SizeText, CountsBytesBelowAThousand) {
    EXPECT_EQ(text(0), "0 octet");
    EXPECT_EQ(text(1), "1 octet");
    EXPECT_EQ(text(2), "2 octets");
    EXPECT_EQ(text(512), "512 octets");
    EXPECT_EQ(text(999), "999 octets");
}

TEST(SizeText, RoundsPartsOfAByte) {
    EXPECT_EQ(text(0.4F), "0 octet");
    EXPECT_EQ(text(0.5F), "1 octet");
    EXPECT_EQ(text(1.25F), "1 octets");
    EXPECT_EQ(text(999.75F), "1000 octets");
}

TEST(SizeText, ChangesTheUnitAtAThousandOfTheOneBefore) {
    EXPECT_EQ(text(1000), "0,98 Ko");
    EXPECT_EQ(text(1023), "1,00 Ko");
    EXPECT_EQ(text(1024), "1,00 Ko");
    EXPECT_EQ(text(1'023'999), "1 000 Ko");
    EXPECT_EQ(text(1'024'000), "0,98 Mo");
    EXPECT_EQ(text(1'048'575'936), "1 000 Mo");  // the float just below the next
    EXPECT_EQ(text(1'048'576'000), "0,98 Go");
}

TEST(SizeText, HasThreeSignificantDigitsInEveryUnit) {
    EXPECT_EQ(text(1536), "1,50 Ko");
    EXPECT_EQ(text(9.5F * kilo), "9,50 Ko");
    EXPECT_EQ(text(10 * kilo), "10,0 Ko");
    EXPECT_EQ(text(99.75F * kilo), "99,8 Ko");
    EXPECT_EQ(text(100 * kilo), "100 Ko");
    EXPECT_EQ(text(3.57F * mega), "3,57 Mo");
    EXPECT_EQ(text(42.25F * mega), "42,3 Mo");
    EXPECT_EQ(text(512 * mega), "512 Mo");
    EXPECT_EQ(text(2.5F * giga), "2,50 Go");
    EXPECT_EQ(text(25 * giga), "25,0 Go");
    EXPECT_EQ(text(250 * giga), "250 Go");
}

TEST(SizeText, ChoosesItsDecimalsBeforeItRounds) {
    EXPECT_EQ(text(9.999F * kilo), "10,00 Ko");
    EXPECT_EQ(text(99.99F * kilo), "100,0 Ko");
}

TEST(SizeText, GroupsTheDigitsOfWhatIsBeyondTheLargestUnit) {
    EXPECT_EQ(text(1024 * giga), "1 024 Go");
    EXPECT_EQ(text(1'234'567 * giga), "1 234 567 Go");
}

TEST(SizeText, WritesNumbersAsTheUserDoes) {
    MemoryLocale english;
    english.set(".");
    EXPECT_EQ(sizeText(1536, english), "1.50 Ko");
    EXPECT_EQ(sizeText(1024 * giga, english), "1 024 Go");
}

using testing::ElementsAre;
using testing::IsEmpty;

/// Progress by itself, on a clock that starts at 10:00:00.
class ProgressTest : public testing::Test {
  protected:
    ProgressTest() {
        statistics.baselineTime = 10 * 3600;
        memory.clock().set({2024, 3, 15, 10, 0, 0, 0});
    }

    /// The estimate `seconds` after the baseline.
    void estimateAfter(std::int64_t milliseconds) {
        memory.clock().set({2024, 3, 15, 10, 0, 0, 0});
        memory.clock().advance(milliseconds);
        progress.refreshEstimate();
    }

    /// Makes the remaining time come out as `seconds` after 20 seconds.
    void estimateOf(float seconds) {
        statistics.bytesDone = 20'000;
        statistics.totalBytes = 20'000 + seconds * 1000;
        estimateAfter(20'000);
    }

    std::pair<int, std::string> percentage(float done, float total) {
        statistics.bytesDone = done;
        statistics.totalBytes = total;
        progress.refreshCaptions("C:\\Docs\\", "F:\\Save\\Docs\\");
        return window.percentages.back();
    }

    MemoryPlatform memory;
    Platform platform = memory.platform();
    SystemMod system{platform, {"", "H:\\Coffrelune", 3, 5}};
    RunSwitches switches;
    RunControl control;
    RunStatistics statistics;
    RecordingDisplay window;
    RunState state{system, window, switches, control, statistics};
    Progress progress{state};
};

// ---- percentage
// ----------------------------------------------------------------------------------

TEST_F(ProgressTest, ShowsTheDirectoriesAndThePercentage) {
    const auto shown = percentage(1'572'864, 3'743'416);
    EXPECT_EQ(shown.first, 42);
    EXPECT_EQ(shown.second, "42% copiés (1,50 Mo de 3,57 Mo)");
    EXPECT_THAT(window.sources, ElementsAre("C:\\Docs\\"));
    EXPECT_THAT(window.destinations, ElementsAre("F:\\Save\\Docs\\"));
    EXPECT_EQ(window.events, 1);
}

TEST_F(ProgressTest, RoundsThePercentageToTheNearest) {
    EXPECT_EQ(percentage(4, 1000).first, 0);
    EXPECT_EQ(percentage(6, 1000).first, 1);
    EXPECT_EQ(percentage(994, 1000).first, 99);
    EXPECT_EQ(percentage(996, 1000).first, 100);
}

TEST_F(ProgressTest, KeepsThePercentageBetweenNoneAndAll) {
    EXPECT_EQ(percentage(3000, 1000).first, 100);
    EXPECT_EQ(percentage(3000, 1000).second, "100% copiés (2,93 Ko de 0,98 Ko)");
    EXPECT_EQ(percentage(-5, 1000).first, 0);
    EXPECT_EQ(percentage(0, 1000).first, 0);
}

TEST_F(ProgressTest, ShowsAPercentageEvenOfNothing) {
    EXPECT_EQ(percentage(0, 0), std::pair(0, std::string("0% copiés (0 octet de 0 octet)")));
    EXPECT_EQ(percentage(5, 0), std::pair(100, std::string("100% copiés (5 octets de 0 octet)")));
}

TEST_F(ProgressTest, CountsTheFileInProgress) {
    statistics.bytesDone = 1000;
    statistics.totalBytes = 4000;
    progress.chunkFinished(1000);
    EXPECT_EQ(window.percentages.back(),
              std::pair(50, std::string("50% copiés (1,95 Ko de 3,91 Ko)")));
    EXPECT_EQ(statistics.bytesDone, 1000);
    EXPECT_EQ(window.events, 1);
    progress.chunkFinished(std::uint64_t{1} << 40);
    EXPECT_EQ(window.percentages.back().first, 100);
}

TEST_F(ProgressTest, IgnoresANotificationThatArrivesDuringAnother) {
    statistics.totalBytes = 4000;
    window.onEvents = [this] { progress.chunkFinished(4000); };
    progress.chunkFinished(1000);
    ASSERT_EQ(window.percentages.size(), 1U);
    EXPECT_EQ(window.percentages.back().first, 25);
    window.onEvents = nullptr;
    progress.chunkFinished(2000);
    ASSERT_EQ(window.percentages.size(), 2U);
    EXPECT_EQ(window.percentages.back().first, 50);
}

// ---- remaining time
// ------------------------------------------------------------------------------

TEST(RemainingTimeText, HasOneFormForEachRange) {
    EXPECT_EQ(remainingTimeText(0), "");
    EXPECT_EQ(remainingTimeText(1), "1 seconde");
    EXPECT_EQ(remainingTimeText(2), "2 secondes");
    EXPECT_EQ(remainingTimeText(60), "60 secondes");
    EXPECT_EQ(remainingTimeText(61), "1 minute(s) 0 seconde(s)");
    EXPECT_EQ(remainingTimeText(105), "1 minute(s) 45 seconde(s)");
    EXPECT_EQ(remainingTimeText(119), "1 minute(s) 45 seconde(s)");
    EXPECT_EQ(remainingTimeText(120), "2 minute(s) 0 seconde(s)");
    EXPECT_EQ(remainingTimeText(121), "2 minute(s)");
    EXPECT_EQ(remainingTimeText(3600), "60 minute(s)");
    EXPECT_EQ(remainingTimeText(3601), "1 heure(s) 0 minute(s)");
    EXPECT_EQ(remainingTimeText(7500), "2 heure(s) 5 minute(s)");
    EXPECT_EQ(remainingTimeText(1'999'995), "555 heure(s) 33 minute(s)");
}

TEST_F(ProgressTest, RoundsTheRemainingTimeDownToFiveSeconds) {
    estimateOf(7);
    EXPECT_THAT(window.remainingTimes, ElementsAre("Temps restant: 5 secondes"));
}

TEST_F(ProgressTest, LeavesShortRemainingTimesAsTheyAre) {
    estimateOf(4);
    EXPECT_THAT(window.remainingTimes, ElementsAre("Temps restant: 4 secondes"));
}

TEST_F(ProgressTest, RoundsToTheNearestSecondFirst) {
    estimateOf(4.6F);
    EXPECT_THAT(window.remainingTimes, ElementsAre("Temps restant: 5 secondes"));
}

TEST_F(ProgressTest, ShowsNinetyFiveSecondsAsAQuarterOfAMinuteLess) {
    estimateOf(95);
    EXPECT_THAT(window.remainingTimes, ElementsAre("Temps restant: 1 minute(s) 30 seconde(s)"));
}

TEST_F(ProgressTest, EstimatesNothingBeforeTheEleventhSecond) {
    statistics.bytesDone = 1000;
    statistics.totalBytes = 100'000;
    estimateAfter(10'000);
    estimateAfter(10'499);
    EXPECT_THAT(window.remainingTimes, IsEmpty());
    EXPECT_THAT(window.rates, IsEmpty());
    estimateAfter(10'500);  // rounded to 11
    EXPECT_EQ(window.remainingTimes.size(), 1U);
    EXPECT_EQ(window.rates.size(), 1U);
}

TEST_F(ProgressTest, ChangesItsTextsAtMostOnceASecond) {
    statistics.totalBytes = 1'000'000;
    statistics.bytesDone = 100'000;
    estimateAfter(20'000);
    statistics.bytesDone = 200'000;
    estimateAfter(20'400);
    EXPECT_THAT(window.remainingTimes, ElementsAre("Temps restant: 3 minute(s)"));
    estimateAfter(20'600);  // rounded to 21
    EXPECT_THAT(window.remainingTimes, ElementsAre("Temps restant: 3 minute(s)",
                                                   "Temps restant: 1 minute(s) 15 seconde(s)"));
}

TEST_F(ProgressTest, ShowsATextOnlyWhenItDiffersFromTheLast) {
    statistics.totalBytes = 1'000'000;
    statistics.bytesDone = 100'000;
    estimateAfter(20'000);
    estimateAfter(20'600);  // 189 seconds, shown as 3 minutes again, but another rate
    EXPECT_EQ(window.remainingTimes.size(), 1U);
    EXPECT_EQ(window.rates.size(), 2U);
    progress.clearTexts();
    estimateAfter(21'600);  // 195 seconds now
    EXPECT_EQ(window.remainingTimes.size(), 2U);
    EXPECT_EQ(window.rates.size(), 3U);
}

TEST_F(ProgressTest, ShowsTheSameRateOnce) {
    statistics.totalBytes = 110'000;
    statistics.bytesDone = 100'000;
    estimateAfter(60'000);  // 6 seconds, shown as 5
    estimateAfter(62'000);  // the same
    EXPECT_THAT(window.rates, ElementsAre("Taux de transfert: 19,5 Ko/s"));
    EXPECT_THAT(window.remainingTimes, ElementsAre("Temps restant: 5 secondes"));
}

TEST_F(ProgressTest, KeepsItsTextsWhenTheEstimateIsBeyondReason) {
    statistics.bytesDone = 1;
    statistics.totalBytes = 100'001;
    estimateAfter(20'000);  // 100,000 x 20 = 2,000,000
    EXPECT_THAT(window.remainingTimes, IsEmpty());
    statistics.totalBytes = 95'001;
    estimateAfter(21'000);  // 1,995,000
    EXPECT_THAT(window.remainingTimes, ElementsAre("Temps restant: 554 heure(s) 10 minute(s)"));
}

TEST_F(ProgressTest, DividesTheRateByTheRemainingSecondsShown) {
    estimateOf(7);  // 20,000 bytes over the 5 seconds that are shown
    EXPECT_THAT(window.rates, ElementsAre("Taux de transfert: 3,91 Ko/s"));
}

TEST_F(ProgressTest, ShowsNoRateWhenNothingRemains) {
    estimateOf(20);
    window.remainingTimes.clear();
    window.rates.clear();
    statistics.bytesDone = statistics.totalBytes;
    estimateAfter(41'000);
    EXPECT_THAT(window.remainingTimes, ElementsAre("Temps restant: "));
    EXPECT_THAT(window.rates, IsEmpty());
}

TEST_F(ProgressTest, SaysNothingWhenNothingIsDone) {
    statistics.totalBytes = 1000;
    estimateAfter(20'000);
    EXPECT_THAT(window.remainingTimes, IsEmpty());
}

TEST_F(ProgressTest, SaysNothingWhenMoreIsDoneThanThereWas) {
    statistics.totalBytes = 1000;
    statistics.bytesDone = 1500;
    estimateAfter(20'000);
    EXPECT_THAT(window.remainingTimes, IsEmpty());
    EXPECT_THAT(window.rates, IsEmpty());
}

TEST_F(ProgressTest, NeverDividesByNothing) {
    statistics.totalBytes = 5000;
    statistics.bytesDone = 1500;
    statistics.bytesAtBaseline = 1500;
    estimateAfter(20'000);
    EXPECT_THAT(window.remainingTimes, IsEmpty());
    EXPECT_THAT(window.rates, IsEmpty());
}

TEST_F(ProgressTest, StartsAgainFromMidnight) {
    statistics.baselineTime = 23 * 3600 + 59 * 60;
    statistics.totalBytes = 4000;
    statistics.bytesDone = 1000;
    memory.clock().set({2024, 3, 16, 0, 0, 5, 900});
    progress.refreshEstimate();
    EXPECT_EQ(statistics.baselineTime, 5);
    EXPECT_EQ(statistics.bytesAtBaseline, 1000);
    EXPECT_THAT(window.remainingTimes, IsEmpty());

    statistics.bytesDone = 2000;
    memory.clock().set({2024, 3, 16, 0, 0, 25, 0});
    progress.refreshEstimate();
    EXPECT_THAT(window.remainingTimes, ElementsAre("Temps restant: 40 secondes"));
}

TEST_F(ProgressTest, TakesARoundedHalfSecondForNoMidnight) {
    statistics.bytesDone = 1000;
    statistics.totalBytes = 4000;
    memory.clock().set({2024, 3, 15, 9, 59, 59, 700});
    progress.refreshEstimate();
    EXPECT_EQ(statistics.baselineTime, 36'000);
    EXPECT_EQ(statistics.bytesAtBaseline, 0);
}

TEST_F(ProgressTest, LetsEventsRunAfterANewRemainingTime) {
    estimateOf(30);
    EXPECT_EQ(window.events, 1);
}

}  // namespace
}  // namespace coffrelune
