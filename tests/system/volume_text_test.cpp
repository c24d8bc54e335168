#include <gtest/gtest.h>

#include "platform/memory/memory_desktop.h"
#include "system/path_caption.h"

namespace coffrelune {
namespace {

TEST(VolumeText, NamesTheVolume) {
    MemoryDriveInformation drives;
    drives.set("D:\\", {"DATA", {}, 0, 0});
    EXPECT_EQ(volumeText(drives, "D:\\", false), "DATA");
    EXPECT_EQ(volumeText(drives, "D:\\", true), "DATA  (D:)");
    EXPECT_EQ(volumeText(drives, "d:\\", true), "DATA  (D:)");
}

TEST(VolumeText, ADriveWithoutAMediumSaysSo) {
    MemoryDriveInformation drives;
    EXPECT_EQ(volumeText(drives, "A:\\", false), "Pas de disque");
    EXPECT_EQ(volumeText(drives, "A:\\", true), "Pas de disque  (A:)");
}

TEST(VolumeText, AnEmptyOrBlankLabelSaysSo) {
    MemoryDriveInformation drives;
    drives.set("E:\\", {"", {}, 0, 0});
    drives.set("F:\\", {"   ", {}, 0, 0});
    drives.set("G:\\", {std::string("  \0X", 4), {}, 0, 0});
    EXPECT_EQ(volumeText(drives, "E:\\", true), "Pas de label  (E:)");
    EXPECT_EQ(volumeText(drives, "F:\\", false), "Pas de label");
    EXPECT_EQ(volumeText(drives, "G:\\", false), "Pas de label");
}

TEST(VolumeText, TheLabelEndsAtItsFirstNul) {
    MemoryDriveInformation drives;
    drives.set("D:\\", {std::string("CLE \0reste\0", 11), {}, 0, 0});
    EXPECT_EQ(volumeText(drives, "D:\\", true), "CLE   (D:)");
}

}  // namespace
}  // namespace coffrelune
