#include "system/path_caption.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace coffrelune
