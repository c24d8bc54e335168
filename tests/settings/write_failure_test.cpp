// What the user is told of settings that cannot be written.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/faulty_files.h"
#include "platform/memory/memory_platform.h"
#include "settings/system_mod.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WriteFailureTest : public testing::Test {
  protected:
    WriteFailureTest() { memory.disk().directory("C:\\Program"); }

    void listen() {
        mod.tellWriteFailure([this](const std::string& text) { told.push_back(text); });
    }

    MemoryPlatform memory;
    FaultyFiles files{memory.files()};
    Platform services = memory.platform(files);
    SystemMod mod{services, {"", "C:\\Program", 3, 5}};
    std::vector<std::string> told;
};

TEST_F(WriteFailureTest, IsToldOnceWithItsReason) {
    listen();
    files.fail("writeWhole", "", error_number::accessDenied);
    EXPECT_FALSE(mod.WriteSetting("General", "Source0", "C:\\Docs").ok());
    EXPECT_FALSE(mod.WriteSetting("General", "Source1", "C:\\Photos").ok());
    EXPECT_THAT(told, ElementsAre("Le fichier de réglages C:\\Program\\Coffrelune.ini ne peut pas "
                                  "être écrit (erreur 5) : les changements ne sont pas "
                                  "enregistrés."));
}

TEST_F(WriteFailureTest, IsToldToWhoListensLaterAndToNobodyTwice) {
    files.fail("writeWhole", "", 112, 1);
    EXPECT_FALSE(mod.WriteSetting("General", "Source0", "C:\\Docs").ok());
    EXPECT_TRUE(mod.WriteSetting("General", "Source0", "C:\\Docs").ok());
    listen();
    EXPECT_THAT(told, ElementsAre(testing::HasSubstr("(erreur 112)")));
    mod.tellWriteFailure(nullptr);
    listen();
    EXPECT_THAT(told, testing::SizeIs(1));
}

TEST_F(WriteFailureTest, OfAnUnreadableFileIsToldToo) {
    memory.disk().file("C:\\Program\\Coffrelune.ini", std::string("a\0b", 3));
    listen();
    EXPECT_EQ(mod.ReadSetting("General", "Source0"), "");
    EXPECT_THAT(told, IsEmpty());
    EXPECT_FALSE(mod.WriteSetting("General", "Source0", "C:\\Docs").ok());
    EXPECT_THAT(told, testing::SizeIs(1));
    EXPECT_EQ(memory.disk().content("C:\\Program\\Coffrelune.ini"), std::string("a\0b", 3));
}

TEST_F(WriteFailureTest, IsNoneWhereNothingIsToBeStored) {
    SystemMod direct(services, {"", "", 3, 5});
    direct.tellWriteFailure([this](const std::string& text) { told.push_back(text); });
    (void)direct.WriteSetting("General", "Source0", "C:\\Docs");
    EXPECT_THAT(told, IsEmpty());
    listen();
    EXPECT_TRUE(mod.WriteSetting("", "Source0", "x").ok());
    EXPECT_FALSE(mod.WriteSetting("Position", "", "").ok());
    EXPECT_THAT(told, IsEmpty());
}

}  // namespace
}  // namespace coffrelune
