#include "platform/memory/memory_disk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace coffrelune {
namespace {

using testing::ElementsAre;

TEST(MemoryDisk, MakesWhatLiesAboveAFile) {
    MemoryDisk disk;
    disk.file("C:\\Docs\\Notes\\a.txt", "abc", 42, attribute::readOnly);
    EXPECT_THAT(disk.driveRoots(), ElementsAre("C:\\"));
    EXPECT_EQ(disk.content("C:\\Docs\\Notes\\a.txt"), "abc");
    EXPECT_EQ(disk.lastWrite("C:\\Docs\\Notes\\a.txt"), 42U);
    EXPECT_EQ(disk.attributes("C:\\Docs\\Notes\\a.txt"), attribute::readOnly);
    EXPECT_EQ(disk.attributes("C:\\Docs"), attribute::directory);
    EXPECT_FALSE(disk.exists("C:\\docs"));
    EXPECT_EQ(disk.content("C:\\Docs"), std::nullopt);
}

TEST(MemoryDisk, ListsInTheOrderInWhichThingsWereMade) {
    MemoryDisk disk;
    disk.file("C:\\z");
    disk.file("C:\\Docs\\b");
    disk.file("C:\\a");
    disk.file("C:\\Docs\\a");
    EXPECT_THAT(disk.list("C:\\"),
                ElementsAre("C:\\z", "C:\\Docs", "C:\\Docs\\b", "C:\\Docs\\a", "C:\\a"));
    EXPECT_THAT(disk.list("C:\\Docs\\"), ElementsAre("C:\\Docs\\b", "C:\\Docs\\a"));
    EXPECT_THAT(disk.list("C:\\absent"), testing::IsEmpty());
}

TEST(MemoryDisk, MayCompareNamesWithoutCase) {
    MemoryDisk disk(MemoryDisk::Names::caseInsensitive);
    disk.file("C:\\Docs\\Été.txt", "abc");
    EXPECT_EQ(disk.content("c:\\DOCS\\éTÉ.TXT"), "abc");
    disk.file("C:\\DOCS\\ÉTÉ.TXT", "new");
    EXPECT_THAT(disk.list("C:\\"), ElementsAre("C:\\Docs", "C:\\Docs\\ÉTÉ.TXT"));
}

TEST(MemoryDisk, HoldsSharesThatAreNoDrives) {
    MemoryDisk disk;
    disk.volume("F:\\");
    disk.file("\\\\nas\\photos\\2024\\a.jpg", "jpg");
    disk.volume("C:\\");
    EXPECT_THAT(disk.driveRoots(), ElementsAre("C:\\", "F:\\"));
    EXPECT_EQ(disk.content("\\\\nas\\photos\\2024\\a.jpg"), "jpg");
    EXPECT_THAT(disk.list("\\\\nas\\photos"),
                ElementsAre("\\\\nas\\photos\\2024", "\\\\nas\\photos\\2024\\a.jpg"));
}

TEST(MemoryDisk, TellsNothingOfAnUnpluggedDriveAndEverythingAfterItsReturn) {
    MemoryDisk disk;
    disk.file("F:\\a.txt", "abc");
    disk.volume("F:\\").present = false;
    EXPECT_FALSE(disk.exists("F:\\a.txt"));
    EXPECT_THAT(disk.driveRoots(), testing::IsEmpty());
    disk.volume("F:\\").present = true;
    EXPECT_EQ(disk.content("F:\\a.txt"), "abc");
}

TEST(MemoryDisk, RemovesWholeDirectories) {
    MemoryDisk disk;
    disk.file("C:\\Docs\\Notes\\a.txt");
    disk.file("C:\\b.txt");
    disk.remove("C:\\Docs");
    disk.remove("C:\\absent");
    EXPECT_THAT(disk.list("C:\\"), ElementsAre("C:\\b.txt"));
}

TEST(MemoryDisk, ResolvesLinksOfEveryForm) {
    MemoryDisk disk;
    disk.file("C:\\Docs\\a.txt");
    disk.link("C:\\Autre\\plein", "C:\\Docs");
    disk.link("C:\\Autre\\relatif", "..\\Docs\\.");
    disk.link("F:\\loin", "C:\\Autre\\relatif");
    disk.link("C:\\perdu", "Q:\\absent");
    for (const char* path : {"C:\\Autre\\plein\\a.txt", "C:\\Autre\\relatif\\a.txt",
                             "F:\\loin\\a.txt", "c:\\Docs\\..\\Docs\\a.txt"}) {
        MemoryPlace place;
        EXPECT_TRUE(disk.locate(path, LinkRule::follow, place).ok()) << path;
        EXPECT_EQ(place.resolved, "C:\\Docs\\a.txt") << path;
    }
    MemoryPlace place;
    EXPECT_EQ(disk.locate("C:\\perdu\\x", LinkRule::follow, place).code(), 3U);
    EXPECT_EQ(place.resolved, "Q:\\absent\\x");
}

TEST(MemoryDisk, TakesNoTextForAPathThatIsNone) {
    MemoryDisk disk;
    disk.volume("C:\\");
    for (const char* path : {"", "C", "a.txt", "\\a", "\\\\nas", "\\\\nas\\", "1:\\", "C:a"}) {
        MemoryPlace place;
        EXPECT_EQ(disk.locate(path, LinkRule::follow, place).code(), 3U) << path;
    }
}

}  // namespace
}  // namespace coffrelune
