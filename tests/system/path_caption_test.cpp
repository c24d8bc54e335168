#include "system/path_caption.h"

#include <gtest/gtest.h>

#include "platform/commands.h"
#include "platform/memory/memory_desktop.h"

namespace coffrelune {
namespace {

class PathCaptionTest : public testing::Test {
  protected:
    PathCaptionTest() {
        drives.set("D:\\", {"DATA", {}, 0, 0});
        drives.set("E:\\", {"  ", {}, 0, 0});
    }
    MemoryDriveInformation drives;
};

TEST_F(PathCaptionTest, NamesTheVolume) {
    EXPECT_EQ(volumeText(drives, "D:\\", false), "DATA");
    EXPECT_EQ(volumeText(drives, "d:\\", true), "DATA  (D:)");
    EXPECT_EQ(volumeText(drives, "E:\\", false), "Pas de label");
    EXPECT_EQ(volumeText(drives, "E:\\", true), "Pas de label  (E:)");
    EXPECT_EQ(volumeText(drives, "A:\\", false), "Pas de disque");
    EXPECT_EQ(volumeText(drives, "A:\\", true), "Pas de disque  (A:)");
}

TEST_F(PathCaptionTest, AShortenedPathIsToldInFullByTheToolTip) {
    const PathCaption caption = pathCaption(drives, R"(C:\Data\Docs)", R"(C:\...\Docs)");
    EXPECT_EQ(caption.caption, R"(C:\...\Docs)");
    EXPECT_EQ(caption.toolTip, R"(C:\Data\Docs)");
}

TEST_F(PathCaptionTest, APathThatFitsNeedsNoToolTip) {
    const PathCaption caption = pathCaption(drives, R"(C:\R&D)", R"(C:\R&D)");
    EXPECT_EQ(caption.caption, R"(C:\R&D)");
    EXPECT_EQ(caption.toolTip, "");
}

TEST_F(PathCaptionTest, ADriveRootThatFitsIsShownAsItsVolume) {
    const PathCaption caption = pathCaption(drives, "D:\\", "D:\\");
    EXPECT_EQ(caption.caption, "DATA  (D:)");
    EXPECT_EQ(caption.toolTip, "D:\\");
    EXPECT_EQ(pathCaption(drives, "D:", "D:").caption, "D:");
}

TEST_F(PathCaptionTest, ControlCharactersAreShownAsPictures) {
    const PathCaption caption = pathCaption(drives, "C:\\a\nb", "C:\\a\u240Ab");
    EXPECT_EQ(caption.caption, "C:\\a\u240Ab");
    EXPECT_EQ(caption.toolTip, "");
}

/// What a view does: ten pixels a character, and the label's width as it is now.
class LabelView final : public ControlPeer, public TextMeasure {
  public:
    LabelView(DriveInformation& drives, PathLabel& label) : drives_(drives), label_(label) {
        label_.attach(this);
    }
    LabelView(const LabelView&) = delete;
    LabelView& operator=(const LabelView&) = delete;
    ~LabelView() override { label_.attach(nullptr); }
    int width(const std::string& text) override { return 10 * static_cast<int>(text.size()); }
    void controlChanged(Control&) override { display(); }
    void resize(int pixels) {
        pixels_ = pixels;
        display();
    }

  private:
    void display() {
        const PathCaption shown = pathCaption(drives_, label_.path(), *this, pixels_);
        label_.show(shown.caption, shown.toolTip);
    }

    DriveInformation& drives_;
    PathLabel& label_;
    int pixels_ = 120;
};

TEST_F(PathCaptionTest, ALabelKeepsItsPathWhateverItsViewHasRoomFor) {
    PathLabel label;
    LabelView view(drives, label);
    label.setPath(R"(C:\Data\Docs)");
    EXPECT_EQ(label.caption(), R"(C:\Data\Docs)");
    EXPECT_EQ(label.toolTip(), "");
    view.resize(110);
    EXPECT_EQ(label.caption(), R"(C:\...\Docs)");
    EXPECT_EQ(label.toolTip(), R"(C:\Data\Docs)");
    EXPECT_EQ(label.path(), R"(C:\Data\Docs)");
    view.resize(120);
    EXPECT_EQ(label.caption(), R"(C:\Data\Docs)") << "shortened again from the whole path";
    EXPECT_EQ(label.toolTip(), "");
}

TEST_F(PathCaptionTest, ALabelShowsADriveByItsVolume) {
    PathLabel label;
    const LabelView view(drives, label);
    label.setPath("D:\\");
    EXPECT_EQ(label.caption(), "DATA  (D:)");
    EXPECT_EQ(label.toolTip(), "D:\\");
    EXPECT_EQ(label.path(), "D:\\");
    label.setPath("");
    EXPECT_EQ(label.caption(), "");
    EXPECT_EQ(label.toolTip(), "");
}

}  // namespace
}  // namespace coffrelune
