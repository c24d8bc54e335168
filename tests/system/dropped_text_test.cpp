#include <gtest/gtest.h>

#include "system/paths.h"

namespace coffrelune {
namespace {

TEST(DroppedText, ThatIsAPathStaysAsItIs) {
    for (const char* path :
         {"", "/tmp/a b", "C:\\Docs", "\\\\nas\\photos", "hello world", "~/x", "/100%20", "\"", "'",
          "\"x", "x'", "\"x'", "/a \"b\"", "a\nb", "file:/x", "file:"}) {
        EXPECT_EQ(pathOfDroppedText(path), path);
    }
}

TEST(DroppedText, LosesOneLineEnd) {
    EXPECT_EQ(pathOfDroppedText("/tmp/x\n"), "/tmp/x");
    EXPECT_EQ(pathOfDroppedText("/tmp/x\r\n"), "/tmp/x");
    EXPECT_EQ(pathOfDroppedText("/tmp/x\n\n"), "/tmp/x\n");
    EXPECT_EQ(pathOfDroppedText("/tmp/x\r"), "/tmp/x\r");
    EXPECT_EQ(pathOfDroppedText("\n"), "");
}

TEST(DroppedText, LosesOnePairOfQuotes) {
    EXPECT_EQ(pathOfDroppedText("\"C:\\quoted\""), "C:\\quoted");
    EXPECT_EQ(pathOfDroppedText("'/tmp/a b'\r\n"), "/tmp/a b");
    EXPECT_EQ(pathOfDroppedText("\"\"x\"\""), "\"x\"");
    EXPECT_EQ(pathOfDroppedText("\"\""), "");
}

TEST(DroppedText, GivesThePathOfAnAddressOfThisMachine) {
    EXPECT_EQ(pathOfDroppedText("file:///tmp/a%20b"), "/tmp/a b");
    EXPECT_EQ(pathOfDroppedText("FILE://LocalHost/tmp/%C3%A9t%c3%a9\n"), "/tmp/été");
    EXPECT_EQ(pathOfDroppedText("\"file:///tmp/x\""), "/tmp/x");
    EXPECT_EQ(pathOfDroppedText("file:///"), "/");
    EXPECT_EQ(pathOfDroppedText("file:///C:/Mes%20documents"), "/C:/Mes documents");
}

TEST(DroppedText, OfSeveralAddressesTheFirstCounts) {
    EXPECT_EQ(pathOfDroppedText("file:///a\r\nfile:///b\r\n"), "/a");
    EXPECT_EQ(pathOfDroppedText("file:///a\nfile:///b"), "/a");
}

TEST(DroppedText, KeepsAPercentSignThatCodesNothing) {
    EXPECT_EQ(pathOfDroppedText("file:///100%"), "/100%");
    EXPECT_EQ(pathOfDroppedText("file:///a%2"), "/a%2");
    EXPECT_EQ(pathOfDroppedText("file:///a%zz%2g%41"), "/a%zz%2gA");
    EXPECT_EQ(pathOfDroppedText("file:///a%2520"), "/a%20");
}

TEST(DroppedText, LeavesAnAddressThatNamesNoFileHere) {
    for (const char* address : {"file://nas/photos", "file://", "file://localhost", "file:///a%00b",
                                "https://exemple.fr/a%20b"}) {
        EXPECT_EQ(pathOfDroppedText(address), address);
    }
}

}  // namespace
}  // namespace coffrelune
