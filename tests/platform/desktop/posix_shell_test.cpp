#include <gmock/gmock.h>

#include "platform/desktop/fake_programs.h"
#include "platform/posix/desktop/posix_desktop.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

class PosixShellTest : public testing::Test {
  protected:
    const TemporaryDirectory& disk() const { return programs_.disk(); }

    /// Nothing was started but what is named: `last` is started after it and awaited.
    void expectNothingStarted() {
        programs_.install("xdg-open");
        shell_.open("https://fin.example/", "");
        EXPECT_THAT(programs_.argumentsOf("xdg-open"), ElementsAre("https://fin.example/"));
    }

    FakePrograms programs_;
    DriveTable table_{{PathRoot::drive('C', "/"), PathRoot::drive('D', programs_.disk().at())}};
    PosixShell shell_{table_, programs_.searchPath()};
};

TEST_F(PosixShellTest, FilesAndDirectoriesGoToTheOpener) {
    programs_.install("xdg-open");
    disk().write("lettre d'été.txt", "x");
    shell_.open("D:\\lettre d'été.txt", "");
    EXPECT_THAT(programs_.argumentsOf("xdg-open"), ElementsAre(disk().at("lettre d'été.txt")));
}

TEST_F(PosixShellTest, ADirectoryIsNoProgram) {
    programs_.install("xdg-open");
    disk().makeDirectory("Docs");
    shell_.open("D:\\Docs", "-x");
    EXPECT_THAT(programs_.argumentsOf("xdg-open"), ElementsAre(disk().at("Docs")));
}

TEST_F(PosixShellTest, AddressesGoToTheOpenerAsTheyAre) {
    programs_.install("xdg-open");
    shell_.open("mailto:a@b.example", "");
    EXPECT_THAT(programs_.argumentsOf("xdg-open"), ElementsAre("mailto:a@b.example"));
}

TEST_F(PosixShellTest, ADocumentThatMayBeRunIsStillADocument) {
    programs_.install("xdg-open");
    chmod(disk().write("lettre.txt", "Bonjour").c_str(), 0755);
    shell_.open("D:\\lettre.txt", "");
    EXPECT_THAT(programs_.argumentsOf("xdg-open"), ElementsAre(disk().at("lettre.txt")));
}

TEST_F(PosixShellTest, AProgramIsStartedItselfWithItsParameters) {
    programs_.install("xdg-open");
    programs_.installAt("mon outil", "outil");
    shell_.open("D:\\mon outil", R"(--ajoute "un mot" $HOME)");
    EXPECT_THAT(programs_.argumentsOf("outil"), ElementsAre("--ajoute", "un mot", "$HOME"));
    EXPECT_THAT(programs_.calls(), testing::Not(testing::Contains("xdg-open")));
}

TEST_F(PosixShellTest, AProgramMayBeNamedAsOnACommandLine) {
    programs_.install("outil");
    shell_.open("outil", "a");
    EXPECT_THAT(programs_.argumentsOf("outil"), ElementsAre("a"));
}

TEST_F(PosixShellTest, ANativePathIsUnderstood) {
    shell_.open(programs_.install("outil"), "a b");
    EXPECT_THAT(programs_.argumentsOf("outil"), ElementsAre("a", "b"));
}

TEST_F(PosixShellTest, WhatLeadsNowhereDoesNothing) {
    shell_.open("D:\\absent.txt", "");  // and there is no opener
    programs_.install("xdg-open");
    shell_.open("Z:\\absent.txt", "");
    shell_.open("absent", "");
    shell_.open("", "");
    shell_.showProperties("Z:\\");
    shell_.openTaskScheduler();
    expectNothingStarted();
}

TEST_F(PosixShellTest, PropertiesAreAskedOfTheFileManager) {
    programs_.install("dbus-send");
    programs_.install("gdbus");
    disk().write("a, b'c%é.txt", "");
    shell_.showProperties("D:\\a, b'c%é.txt");
    EXPECT_THAT(
        programs_.argumentsOf("dbus-send"),
        ElementsAre("--session", "--dest=org.freedesktop.FileManager1", "--type=method_call",
                    "/org/freedesktop/FileManager1",
                    "org.freedesktop.FileManager1.ShowItemProperties",
                    "array:string:file://" + disk().at("a%2C%20b%27c%25%C3%A9.txt"), "string:"));
    EXPECT_THAT(programs_.calls(), testing::Not(testing::Contains("gdbus")));
}

TEST_F(PosixShellTest, PropertiesNeedOneOfTwoPrograms) {
    programs_.install("gdbus");
    shell_.showProperties("D:\\");
    EXPECT_THAT(programs_.argumentsOf("gdbus"),
                ElementsAre("call", "--session", "--dest", "org.freedesktop.FileManager1",
                            "--object-path", "/org/freedesktop/FileManager1", "--method",
                            "org.freedesktop.FileManager1.ShowItemProperties",
                            "['file://" + disk().at() + "']", "''"));
}

TEST_F(PosixShellTest, OpensTheSchedulerThatIsInstalled) {
    programs_.install("kcmshell5");
    shell_.openTaskScheduler();
    EXPECT_THAT(programs_.argumentsOf("kcmshell5"), ElementsAre("kcm_cron"));
}

TEST_F(PosixShellTest, KnowsWhetherThereIsAScheduler) {
    EXPECT_FALSE(shell_.hasTaskScheduler());
    programs_.install("zeit");
    EXPECT_TRUE(shell_.hasTaskScheduler());
}

TEST_F(PosixShellTest, AMessageOfTheDesktopTakesNoNameForMarkup) {
    programs_.install("notify-send");
    shell_.notify("Titre", "<b> & -x");
    EXPECT_THAT(programs_.argumentsOf("notify-send"),
                ElementsAre("--app-name=Coffrelune", "--icon=coffrelune", "--", "Titre",
                            "&lt;b> &amp; -x"));
}

TEST_F(PosixShellTest, AMessageOfTheDesktopNeedsOneOfTwoPrograms) {
    programs_.install("gdbus");
    shell_.notify("L'été", "a\\b");
    const std::vector<std::string> words = programs_.argumentsOf("gdbus");
    ASSERT_GT(words.size(), 12U);
    EXPECT_EQ(words[7], "org.freedesktop.Notifications.Notify");
    EXPECT_EQ(words[11], R"('L\'été')");
    EXPECT_EQ(words[12], R"('a\\b')");
}

TEST_F(PosixShellTest, SystemSoundsBearTheNamesOfTheSoundThemes) {
    programs_.install("canberra-gtk-play");
    shell_.playSystemSound("SystemStart");
    EXPECT_THAT(programs_.argumentsOf("canberra-gtk-play"), ElementsAre("--id=desktop-login"));
}

TEST(FileUri, EscapesAllBytesButThePlainOnes) {
    EXPECT_EQ(fileUri("/a-b._~/Z9"), "file:///a-b._~/Z9");
    EXPECT_EQ(fileUri("/a b#?&=+[1]\\\n"), "file:///a%20b%23%3F%26%3D%2B%5B1%5D%5C%0A");
    EXPECT_EQ(fileUri("/\xFF"), "file:///%FF");
    EXPECT_EQ(fileUri("/"), "file:///");
}

}  // namespace
}  // namespace coffrelune
