#include "settings/settings_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/faulty_files.h"
#include "platform/memory/memory_platform.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

const std::string path = "C:\\Program\\Coffrelune.ini";

class SettingsFileTest : public testing::Test {
  protected:
    SettingsFileTest() { system.disk().directory("C:\\Program"); }

    void put(const std::string& bytes) {
        system.clock().advance(1000);
        system.disk().file(path, bytes, system.clock().fileTime());
    }
    std::string onDisk() { return system.disk().content(path).value_or("(absent)"); }

    /// Every operation fails with `code`, nothing is read, and the file stays as it is.
    void expectRefused(std::uint32_t code) {
        const std::string before = onDisk();
        EXPECT_EQ(file.status().code(), code);
        EXPECT_EQ(file.read("A", "x"), "");
        EXPECT_THAT(file.sections(), IsEmpty());
        EXPECT_THAT(file.keys("A"), IsEmpty());
        EXPECT_FALSE(file.hasSection("A"));
        EXPECT_EQ(file.write("A", "x", "2").code(), code);
        EXPECT_EQ(file.deleteKey("A", "x").code(), code);
        EXPECT_EQ(file.deleteSection("A").code(), code);
        EXPECT_EQ(onDisk(), before);
        EXPECT_THAT(system.files().writes(), IsEmpty());
    }

    MemoryPlatform system;
    FaultyFiles faults{system.files()};
    Windows1252 ansi;
    SettingsFile file{faults, ansi, path};
};

TEST_F(SettingsFileTest, ReadsWhatTheFileHolds) {
    put("[A]\r\nx=1\r\n[B]\r\ny=2\r\n");
    EXPECT_TRUE(file.status().ok());
    EXPECT_EQ(file.read("a", "X"), "1");
    EXPECT_THAT(file.sections(), ElementsAre("A", "B"));
    EXPECT_THAT(file.keys("B"), ElementsAre("y"));
    EXPECT_TRUE(file.hasSection("b"));
    EXPECT_FALSE(file.hasSection("C"));
}

TEST_F(SettingsFileTest, DoesWithoutAFileAndCreatesItAtTheFirstWrite) {
    EXPECT_TRUE(file.status().ok());
    EXPECT_EQ(file.read("A", "x"), "");
    EXPECT_TRUE(file.deleteKey("A", "x").ok());
    EXPECT_FALSE(system.disk().exists(path));
    EXPECT_TRUE(file.write("A", "x", "1").ok());
    EXPECT_EQ(onDisk(), "[A]\r\nx=1\r\n");
    EXPECT_EQ(file.read("A", "x"), "1");
}

TEST_F(SettingsFileTest, DoesWithoutADirectoryButCannotWriteThere) {
    SettingsFile elsewhere(faults, ansi, "C:\\Absent\\Coffrelune.ini");
    EXPECT_TRUE(elsewhere.status().ok());
    EXPECT_EQ(elsewhere.read("A", "x"), "");
    EXPECT_FALSE(elsewhere.write("A", "x", "1").ok());
}

TEST_F(SettingsFileTest, KeepsCommentsAndOrderWhenAKeyIsWritten) {
    put("; mine\n\n[Z]\nunknown = 1\n# ?\n\n[A]\nx=1\n");
    EXPECT_TRUE(file.write("A", "x", "2").ok());
    EXPECT_TRUE(file.write("Z", "y", "3").ok());
    EXPECT_TRUE(file.deleteKey("A", "x").ok());
    EXPECT_EQ(onDisk(), "; mine\n\n[Z]\nunknown = 1\n# ?\ny=3\n\n[A]\n");
    EXPECT_TRUE(file.deleteSection("Z").ok());
    EXPECT_EQ(onDisk(), "; mine\n\n[A]\n");
}

TEST_F(SettingsFileTest, ReadsTheFileOnceWhileItDoesNotChange) {
    put("[A]\nx=1\n");
    for (int i = 0; i < 5; ++i) EXPECT_EQ(file.read("A", "x"), "1");
    EXPECT_EQ(system.files().calls("readWhole").size(), 1U);
}

TEST_F(SettingsFileTest, SeesAnEditByHandBetweenTwoOperations) {
    put("[A]\nx=1\n");
    EXPECT_EQ(file.read("A", "x"), "1");
    put("; by hand\n[A]\nx=2\nz=9\n");
    EXPECT_EQ(file.read("A", "x"), "2");
    put("; again\n[A]\nx=2\nz=8\n");
    EXPECT_TRUE(file.write("A", "y", "3").ok());
    EXPECT_EQ(onDisk(), "; again\n[A]\nx=2\nz=8\ny=3\n");
}

TEST_F(SettingsFileTest, KnowsAChangedFileByItsSizeItsTimeOrItsIdentityAlone) {
    put("[A]\nx=1\n");
    EXPECT_EQ(file.read("A", "x"), "1");
    system.disk().find(path)->content = "[A]\nx=22\n";
    EXPECT_EQ(file.read("A", "x"), "22");
    system.disk().find(path)->content = "[A]\nx=33\n";
    system.disk().find(path)->times.lastWrite += 1;
    EXPECT_EQ(file.read("A", "x"), "33");
    system.disk().file(path, "[A]\nx=44\n", system.disk().lastWrite(path));
    EXPECT_EQ(file.read("A", "x"), "44");
}

TEST_F(SettingsFileTest, NeverWritesOverAnEditThatLeftSizeAndTimeAsTheyWere) {
    put("[A]\nx=1\n");
    EXPECT_EQ(file.read("A", "x"), "1");
    system.disk().find(path)->content = "[A]\nx=2\n";
    EXPECT_TRUE(file.write("A", "y", "3").ok());
    EXPECT_EQ(onDisk(), "[A]\nx=2\ny=3\n");
    EXPECT_EQ(file.read("A", "x"), "2");
}

TEST_F(SettingsFileTest, SeesThatTheFileHasGone) {
    put("[A]\nx=1\n");
    EXPECT_EQ(file.read("A", "x"), "1");
    system.disk().remove(path);
    EXPECT_EQ(file.read("A", "x"), "");
    EXPECT_TRUE(file.status().ok());
}

TEST_F(SettingsFileTest, DoesNotWriteWhatIsThereAlready) {
    put("[A]\nx=1\n");
    EXPECT_TRUE(file.write("A", "x", "1").ok());
    EXPECT_TRUE(file.deleteKey("A", "y").ok());
    EXPECT_TRUE(file.deleteSection("B").ok());
    EXPECT_THAT(system.files().writes(), IsEmpty());
}

TEST_F(SettingsFileTest, CutsAValueTo1023Characters) {
    put("[A]\nx=" + std::string(1022, 'a') + "\xE9z\ny=\"" + std::string(1023, 'b') + "\"\n");
    EXPECT_EQ(file.read("A", "x"), std::string(1022, 'a') + "é") << "characters, not bytes";
    EXPECT_EQ(file.read("A", "y"), std::string(1023, 'b')) << "the quotes do not count";
}

TEST_F(SettingsFileTest, NeverWritesOverAFileThatMayNotBeRead) {
    put("[A]\nx=1\n");
    system.disk().setUnreadable(path);
    expectRefused(5);
    system.disk().setUnreadable(path, false);
    EXPECT_EQ(file.read("A", "x"), "1") << "the next operation tries again";
    EXPECT_TRUE(file.write("A", "x", "2").ok());
}

TEST_F(SettingsFileTest, NeverWritesOverAFileThatCannotBeReadForADefect) {
    put("[A]\nx=1\n");
    faults.fail("readWhole", path, 1117);
    expectRefused(1117);
    faults.restart();
    faults.fail("lookUp", path, 21);
    expectRefused(21);
    faults.restart();
    faults.fail("readWhole", path, 2);  // it was found a moment ago
    expectRefused(2);
}

TEST_F(SettingsFileTest, RefusesWhenTheFileBecomesUnreadableLater) {
    put("[A]\nx=1\n");
    EXPECT_EQ(file.read("A", "x"), "1");
    faults.fail("lookUp", path, 5);
    expectRefused(5);
}

TEST_F(SettingsFileTest, NeverWritesOverAHugeFile) {
    put("[A]\nx=1\n" + std::string(std::size_t{16} << 20, ';'));
    expectRefused(223);
}

TEST_F(SettingsFileTest, ReadsAFileOfTheLargestSizeButDoesNotMakeItLarger) {
    std::string bytes = "[A]\nx=1\n";
    bytes.append((std::size_t{16} << 20) - bytes.size(), ';');
    put(bytes);
    EXPECT_EQ(file.read("A", "x"), "1");
    EXPECT_EQ(file.write("A", "y", "2").code(), 223U);
    EXPECT_EQ(onDisk(), bytes);
    EXPECT_EQ(file.read("A", "x"), "1");
    EXPECT_EQ(file.read("A", "y"), "");
}

TEST_F(SettingsFileTest, NeverWritesOverABinaryFile) {
    put(
        std::string("[A]\nx=1\n\x7F"
                    "ELF\0\0\x01",
                    15));
    expectRefused(13);
}

TEST_F(SettingsFileTest, NeverWritesOverAFileFilledWithNulByAPowerLoss) {
    put(std::string(512, '\0'));
    expectRefused(13);
}

TEST_F(SettingsFileTest, RefusesADirectoryOfThatName) {
    system.disk().directory(path);
    EXPECT_FALSE(file.status().ok());
    EXPECT_EQ(file.read("A", "x"), "");
    EXPECT_FALSE(file.write("A", "x", "1").ok());
    EXPECT_TRUE(system.disk().find(path)->isDirectory());
}

TEST_F(SettingsFileTest, TellsAFailedWriteAndKeepsTheOldFile) {
    put("[A]\nx=1\n");
    faults.fail("writeWhole", path, 112, 1);
    EXPECT_EQ(file.write("A", "x", "2").code(), 112U);
    EXPECT_EQ(onDisk(), "[A]\nx=1\n");
    EXPECT_EQ(file.read("A", "x"), "1") << "memory does not run ahead of the disk";
    EXPECT_TRUE(file.write("A", "y", "3").ok());
    EXPECT_EQ(onDisk(), "[A]\nx=1\ny=3\n") << "the failed edit is not written later";
}

TEST_F(SettingsFileTest, TellsAFailedDeletion) {
    put("[A]\nx=1\n");
    system.disk().volume("C:\\").writeProtected = true;
    EXPECT_EQ(file.deleteKey("A", "x").code(), 19U);
    EXPECT_EQ(file.deleteSection("A").code(), 19U);
    EXPECT_EQ(file.read("A", "x"), "1");
}

TEST_F(SettingsFileTest, TellsThatAKeyCannotBeStored) {
    put("[A]\nx=1\n");
    EXPECT_EQ(file.write("A", "a=b", "2").code(), 87U);
    EXPECT_EQ(onDisk(), "[A]\nx=1\n");
    EXPECT_EQ(file.read("A", "x"), "1");
}

TEST_F(SettingsFileTest, BecomesUtf16WhenAPathNeedsIt) {
    put("[A]\nx=\xE9\n");
    const std::string source = "C:\\Фото\\\xFF\n";
    EXPECT_TRUE(file.write("A", "Source0", '"' + source + '"').ok());
    EXPECT_THAT(onDisk(), StartsWith("\xFF\xFE"));
    SettingsFile again(faults, ansi, path);
    EXPECT_EQ(again.read("A", "Source0"), source);
    EXPECT_EQ(again.read("A", "x"), "é");
}

TEST_F(SettingsFileTest, FollowsALink) {
    system.disk().file("C:\\Vrai.ini", "[A]\nx=1\n");
    system.disk().link(path, "C:\\Vrai.ini");
    EXPECT_EQ(file.read("A", "x"), "1");
    EXPECT_TRUE(file.write("A", "x", "2").ok());
    EXPECT_EQ(system.disk().content("C:\\Vrai.ini"), "[A]\nx=2\n");
    EXPECT_TRUE(system.disk().find(path)->isLink());
}

TEST_F(SettingsFileTest, SurvivesAnyCallThatFails) {
    const std::string before = "[A]\nx=1\n[B]\ny=2\n";
    for (std::uint64_t call = 1; call <= 12; ++call) {
        put(before);
        SettingsFile fresh(faults, ansi, path);
        faults.restart();
        faults.failCall(call, 1117);
        const bool written = fresh.write("A", "x", "2").ok();
        const bool removed = fresh.deleteSection("B").ok();
        const std::string expected =
            std::string(written ? "[A]\nx=2\n" : "[A]\nx=1\n") + (removed ? "" : "[B]\ny=2\n");
        EXPECT_EQ(onDisk(), expected) << "call " << call;
        faults.restart();
        EXPECT_EQ(fresh.read("A", "x"), written ? "2" : "1") << "call " << call;
    }
}

}  // namespace
}  // namespace coffrelune
