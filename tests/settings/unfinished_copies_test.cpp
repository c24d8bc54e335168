#include "settings/unfinished_copies.h"

#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"

namespace coffrelune {
namespace {

class UnfinishedCopiesTest : public testing::Test {
  protected:
    UnfinishedCopiesTest() { memory.disk().directory("C:\\Program"); }

    std::string onDisk() {
        return memory.disk().content("C:\\Program\\Coffrelune.ini").value_or("(absent)");
    }

    MemoryPlatform memory;
    Platform services = memory.platform();
    SystemMod system{services, {"", "C:\\Program", 3, 5}};
    UnfinishedCopies copies{system};
};

TEST_F(UnfinishedCopiesTest, HoldNothingAtFirst) {
    EXPECT_FALSE(copies.hold("F:\\Photos"));
    copies.remove("F:\\Photos");
    EXPECT_EQ(onDisk(), "(absent)");
}

TEST_F(UnfinishedCopiesTest, OutliveTheProgramAndKnowACopyInAnyCase) {
    EXPECT_TRUE(copies.add("F:\\Photos\\").ok());
    EXPECT_EQ(onDisk(), "[Position]\r\nCopieIncomplete1=\"F:\\Photos\"\r\n");
    SystemMod later(services, {"", "C:\\Program", 3, 5});
    EXPECT_TRUE(UnfinishedCopies(later).hold("F:\\Photos"));
    EXPECT_TRUE(UnfinishedCopies(later).hold("f:\\photos\\"));
    EXPECT_FALSE(UnfinishedCopies(later).hold("F:\\Photo"));
}

TEST_F(UnfinishedCopiesTest, AreMarkedOnce) {
    EXPECT_TRUE(copies.add("F:\\Photos").ok());
    EXPECT_TRUE(copies.add("F:\\PHOTOS").ok());
    EXPECT_EQ(onDisk(), "[Position]\r\nCopieIncomplete1=\"F:\\Photos\"\r\n");
}

TEST_F(UnfinishedCopiesTest, LoseOneMarkWithoutAGap) {
    for (const char* copy : {"F:\\A", "F:\\B", "F:\\C"}) EXPECT_TRUE(copies.add(copy).ok());
    copies.remove("F:\\A");
    EXPECT_FALSE(copies.hold("F:\\A"));
    EXPECT_TRUE(copies.hold("F:\\B"));
    EXPECT_TRUE(copies.hold("F:\\C"));
    copies.remove("F:\\B");
    EXPECT_TRUE(copies.hold("F:\\C"));
    copies.remove("F:\\C");
    EXPECT_EQ(onDisk(), "[Position]\r\n");
}

TEST_F(UnfinishedCopiesTest, KnowACopyWhosePathIsReadUpToALimit) {
    const std::string longPath = "F:\\" + std::string(1100, 'd') + "\\Photos";
    EXPECT_TRUE(copies.add(longPath).ok());
    const std::string once = onDisk();
    EXPECT_TRUE(copies.add(longPath).ok());
    EXPECT_EQ(onDisk(), once);
    EXPECT_TRUE(copies.hold(longPath));
    copies.remove(longPath);
    EXPECT_EQ(onDisk(), "[Position]\r\n");
}

TEST_F(UnfinishedCopiesTest, KeepBlanksAtTheEndsOfAPath) {
    EXPECT_TRUE(copies.add("F:\\Photos ").ok());
    EXPECT_TRUE(copies.hold("F:\\Photos "));
    EXPECT_FALSE(copies.hold("F:\\Photos"));
}

TEST_F(UnfinishedCopiesTest, AreNotTheOriginalsOfUnfinishedRestores) {
    UnfinishedCopies originals(system, UnfinishedCopies::Kind::originals);
    EXPECT_TRUE(originals.add("C:\\Docs").ok());
    EXPECT_TRUE(originals.hold("C:\\Docs"));
    EXPECT_FALSE(copies.hold("C:\\Docs"));
    EXPECT_EQ(onDisk(), "[Position]\r\nRestaurationIncomplete1=\"C:\\Docs\"\r\n");
}

}  // namespace
}  // namespace coffrelune
