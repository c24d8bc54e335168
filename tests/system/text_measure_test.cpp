#include <gtest/gtest.h>

#include "platform/memory/memory_desktop.h"
#include "system/path_caption.h"

namespace coffrelune {
namespace {

/// Ten pixels a character, four for a dot.
class FixedMeasure final : public TextMeasure {
  public:
    int width(const std::string& text) override {
        ++calls;
        int pixels = 0;
        for (const char c : text) {
            if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) pixels += c == '.' ? 4 : 10;
        }
        return pixels;
    }

    int calls = 0;
};

std::string shortened(const std::string& path, int width) {
    FixedMeasure measure;
    return shortenedPath(measure, path, width);
}

TEST(ShortenedPath, StaysWholeWhenItFits) {
    EXPECT_EQ(shortened(R"(C:\Data\Docs)", 120), R"(C:\Data\Docs)");
    EXPECT_EQ(shortened("", 0), "");
    EXPECT_EQ(shortened("D:\\", 30), "D:\\");
}

TEST(ShortenedPath, KeepsTheLastComponentAndTheBeginningThatFits) {
    EXPECT_EQ(shortened(R"(C:\Data\Docs)", 119), R"(C:\Da...\Docs)");
    EXPECT_EQ(shortened(R"(C:\Data\Docs)", 111), R"(C:\D...\Docs)");
    EXPECT_EQ(shortened(R"(C:\Data\Docs)", 62), R"(...\Docs)");
}

TEST(ShortenedPath, GivesTheEndOfALastComponentThatIsTooWide) {
    EXPECT_EQ(shortened(R"(C:\Data\Docs)", 61), "...Docs");
    EXPECT_EQ(shortened(R"(C:\Data\Docs)", 51), "...ocs");
    EXPECT_EQ(shortened(R"(C:\Data\Docs)", 12), "...");
    EXPECT_EQ(shortened("Bibliothèque", 42), "...que");
}

TEST(ShortenedPath, ShowsDotsAtLeast) {
    EXPECT_EQ(shortened(R"(C:\Data\Docs)", 0), "...");
    EXPECT_EQ(shortened(R"(C:\Data\Docs)", -5), "...");
    EXPECT_EQ(shortened("D:\\", 5), "...");
}

TEST(ShortenedPath, ABackslashAtTheEndBelongsToTheLastComponent) {
    EXPECT_EQ(shortened(R"(C:\Data\Docs\)", 119), R"(C:\D...\Docs\)");
}

TEST(ShortenedPath, CutsNoCharacter) {
    EXPECT_EQ(shortened("C:\\été\\né", 82), "C:\\é...\\né");
    EXPECT_EQ(shortened("éééééé", 32), "...éé");
}

TEST(ShortenedPath, MeasuresALongPathAFewTimesOnly) {
    FixedMeasure measure;
    const std::string path = "C:\\" + std::string(4000, 'a') + "\\Docs";
    EXPECT_EQ(shortenedPath(measure, path, 1062), "C:\\" + std::string(97, 'a') + "...\\Docs");
    EXPECT_LE(measure.calls, 16);
}

TEST(MeasuredCaption, IsShortenedToTheLabelAndToldInFull) {
    FixedMeasure measure;
    MemoryDriveInformation drives;
    drives.set("D:\\", {"DATA", {}, 0, 0});
    const PathCaption narrow = pathCaption(drives, R"(C:\Data\Docs)", measure, 119);
    EXPECT_EQ(narrow.caption, R"(C:\Da...\Docs)");
    EXPECT_EQ(narrow.toolTip, R"(C:\Data\Docs)");
    const PathCaption wide = pathCaption(drives, R"(C:\Data\Docs)", measure, 120);
    EXPECT_EQ(wide.caption, R"(C:\Data\Docs)");
    EXPECT_EQ(wide.toolTip, "");
    const PathCaption root = pathCaption(drives, "D:\\", measure, 30);
    EXPECT_EQ(root.caption, "DATA  (D:)");
    EXPECT_EQ(pathCaption(drives, "D:\\", measure, 29).toolTip, "D:\\");
    EXPECT_EQ(pathCaption(drives, "D:\\", measure, 29).caption, "...\\");
}

}  // namespace
}  // namespace coffrelune
