#include "platform/posix/desktop/posix_desktop.h"

#include <gmock/gmock.h>

#include <cstring>

#include "platform/posix/posix_platform.h"
#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Root = RegistryService::Root;

constexpr const char* run = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Run)";
constexpr const char* entry = "config/autostart/Coffrelune.desktop";

class AutostartEntryTest : public testing::Test {
  protected:
    std::uint32_t set(const std::string& data) {
        return registry_.setText(Root::currentUser, run, "Coffrelune", data).code();
    }
    std::uint32_t remove() {
        return registry_.deleteValue(Root::currentUser, run, "Coffrelune").code();
    }
    bool untouched() { return !std::filesystem::exists(disk_.at("config")); }

    TemporaryDirectory disk_;
    DriveTable table_{{PathRoot::drive('C', "/"), PathRoot::drive('D', disk_.makeDirectory("d"))}};
    AutostartEntry registry_{table_, disk_.at("config/autostart")};
};

TEST_F(AutostartEntryTest, SettingTheValueWritesTheEntryAndItsDirectory) {
    disk_.write("d/coffrelune", "");
    EXPECT_EQ(set("D:\\coffrelune"), 0U);
    EXPECT_EQ(disk_.read(entry),
              "[Desktop Entry]\nType=Application\nVersion=1.0\nName=Coffrelune\n"
              "Comment=Sauvegarde de fichiers\nIcon=coffrelune\nExec=\"" +
                  disk_.at("d/coffrelune") + "\"\nTerminal=false\n");
    EXPECT_THAT(disk_.names("config/autostart"), ElementsAre("Coffrelune.desktop"));
    EXPECT_EQ(disk_.stat("config/autostart").st_mode & 07777, 0700U);
}

TEST_F(AutostartEntryTest, AnExtensionThatThisSystemDoesNotUseIsDropped) {
    disk_.write("d/coffrelune", "");
    EXPECT_EQ(set("D:\\coffrelune.exe"), 0U);
    EXPECT_THAT(disk_.read(entry), HasSubstr("Exec=\"" + disk_.at("d/coffrelune") + "\"\n"));
}

TEST_F(AutostartEntryTest, AProgramThatIsReallyCalledSoKeepsItsName) {
    disk_.write("d/Copie.exe", "");
    EXPECT_EQ(set("D:\\Copie.exe"), 0U);
    EXPECT_THAT(disk_.read(entry), HasSubstr("Exec=\"" + disk_.at("d/Copie.exe") + "\"\n"));
}

TEST_F(AutostartEntryTest, WithoutADirectoryNothingIsWrittenNorRemoved) {
    AutostartEntry nowhere(table_, "");
    EXPECT_EQ(nowhere.setText(Root::currentUser, run, "Coffrelune", "D:\\b").code(),
              error_number::pathNotFound);
    EXPECT_EQ(nowhere.deleteValue(Root::currentUser, run, "Coffrelune").code(),
              error_number::fileNotFound);
    EXPECT_FALSE(std::filesystem::exists("Coffrelune.desktop"));
    EXPECT_FALSE(std::filesystem::exists("/Coffrelune.desktop"));
}

TEST_F(AutostartEntryTest, TheRunningProgramIsFoundAgainByItsEntry) {
    const std::string program = executablePath();
    EXPECT_EQ(set(table_.fromNative(program, "/")), 0U);
    EXPECT_THAT(disk_.read(entry), HasSubstr("Exec=\"" + program + "\"\n"));
}

TEST_F(AutostartEntryTest, SettingAgainReplacesTheEntry) {
    disk_.makeDirectory("config/autostart");
    disk_.write(entry, "[Desktop Entry]\nHidden=true\n");
    EXPECT_EQ(set("D:\\b"), 0U);
    EXPECT_THAT(disk_.read(entry), testing::Not(HasSubstr("Hidden")));
    EXPECT_THAT(disk_.names("config/autostart"), ElementsAre("Coffrelune.desktop"));
}

TEST_F(AutostartEntryTest, DeletingTheValueRemovesTheEntryAlone) {
    EXPECT_EQ(remove(), error_number::fileNotFound);
    EXPECT_EQ(set("D:\\coffrelune"), 0U);
    disk_.write("config/autostart/autre.desktop", "x");
    EXPECT_EQ(remove(), 0U);
    EXPECT_THAT(disk_.names("config/autostart"), ElementsAre("autre.desktop"));
}

TEST_F(AutostartEntryTest, WhatIsForEveryoneIsRefused) {
    const std::uint32_t denied = error_number::accessDenied;
    EXPECT_EQ(registry_.setText(Root::localMachine, run, "Coffrelune", "D:\\a").code(), denied);
    EXPECT_EQ(registry_.deleteValue(Root::localMachine, run, "Coffrelune").code(), denied);
    EXPECT_TRUE(untouched());
}

TEST_F(AutostartEntryTest, OtherKeysDoNotExist) {
    const std::uint32_t missing = error_number::fileNotFound;
    const std::string key = R"(SOFTWARE\Autre)";
    EXPECT_EQ(registry_.setText(Root::currentUser, key, "Coffrelune", "D:\\a").code(), missing);
    EXPECT_EQ(registry_.deleteValue(Root::currentUser, key, "Coffrelune").code(), missing);
    EXPECT_TRUE(untouched());
}

TEST_F(AutostartEntryTest, OtherValuesAreNotSupported) {
    const std::uint32_t unsupported = error_number::notSupported;
    EXPECT_EQ(registry_.setText(Root::currentUser, run, "../x", "D:\\a").code(), unsupported);
    EXPECT_EQ(registry_.deleteValue(Root::currentUser, run, "Autre").code(), unsupported);
    EXPECT_TRUE(untouched());
}

TEST_F(AutostartEntryTest, APathThatLeadsNowhereWritesNothing) {
    EXPECT_EQ(set("Z:\\coffrelune"), error_number::deviceDoesNotExist);
    EXPECT_EQ(set("coffrelune"), error_number::pathNotFound);
    EXPECT_TRUE(untouched());
}

TEST_F(AutostartEntryTest, AFileInTheWayIsAFailure) {
    disk_.write("config", "x");
    EXPECT_NE(set("D:\\coffrelune"), 0U);
    EXPECT_EQ(disk_.read("config"), "x");
}

TEST(ExecValue, IsQuotedAsAnArgumentAndThenAsAText) {
    EXPECT_EQ(execValue("/opt/mon outil/a"), R"("/opt/mon outil/a")");
    EXPECT_EQ(execValue("/a%b"), R"("/a%%b")");
    EXPECT_EQ(execValue(R"(/a"b)"), R"("/a\\"b")");
    EXPECT_EQ(execValue("/a$b`c"), R"("/a\\$b\\`c")");
    EXPECT_EQ(execValue(R"(/a\b)"), R"("/a\\\\b")");
    EXPECT_EQ(execValue("/a\nb\tc\rd"), R"("/a\nb\tc\rd")");
}

using testing::ElementsAre;
using testing::IsEmpty;

const char* fullEnvironment(const char* name) {
    if (std::strcmp(name, "XDG_CONFIG_HOME") == 0) return "/conf";
    if (std::strcmp(name, "XDG_RUNTIME_DIR") == 0) return "/run/user/7";
    if (std::strcmp(name, "HOME") == 0) return "/home/moi";
    if (std::strcmp(name, "PATH") == 0) return "/bin:/usr/bin";
    return nullptr;
}

const char* bareEnvironment(const char* name) {
    if (std::strcmp(name, "XDG_CONFIG_HOME") == 0) return "relatif";
    return std::strcmp(name, "HOME") == 0 ? "/home/moi" : nullptr;
}

TEST(DesktopOptions, ComeFromTheUsersEnvironment) {
    const DesktopOptions options = DesktopOptions::fromEnvironment(fullEnvironment);
    EXPECT_EQ(options.autostartDirectory, "/conf/autostart");
    EXPECT_EQ(options.sounds.searchPath, "/bin:/usr/bin");
    EXPECT_THAT(options.sounds.serverSockets,
                ElementsAre("/run/user/7/pulse/native", "/run/user/7/pipewire-0"));
}

TEST(DesktopOptions, HaveDefaults) {
    const DesktopOptions options = DesktopOptions::fromEnvironment(bareEnvironment);
    EXPECT_EQ(options.autostartDirectory, "/home/moi/.config/autostart");
    EXPECT_EQ(options.sounds.searchPath, "");
    EXPECT_THAT(options.sounds.serverSockets, IsEmpty());
}

TEST(DesktopOptions, KnowNoPlaceForEntriesOfAUserWithoutAHome) {
    for (const auto variable : {+[](const char*) -> const char* { return nullptr; },
                                +[](const char*) -> const char* { return ""; },
                                +[](const char*) -> const char* { return "relatif"; }}) {
        EXPECT_EQ(DesktopOptions::fromEnvironment(variable).autostartDirectory, "");
    }
    const auto noHome = [](const char* name) {
        return std::strcmp(name, "XDG_CONFIG_HOME") == 0 ? "/conf" : nullptr;
    };
    EXPECT_EQ(DesktopOptions::fromEnvironment(noHome).autostartDirectory, "/conf/autostart");
}

TEST(PosixDesktop, OffersItsServices) {
    const TemporaryDirectory disk;
    DriveTable table({PathRoot::drive('D', disk.at())});
    DesktopOptions options;
    options.autostartDirectory = disk.at("autostart");
    PosixDesktop desktop(table, options);
    const Desktop services = desktop.desktop();
    EXPECT_TRUE(services.registry
                    .setText(RegistryService::Root::currentUser,
                             R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Run)", "Coffrelune",
                             "D:\\coffrelune")
                    .ok());
    EXPECT_THAT(disk.names("autostart"), ElementsAre("Coffrelune.desktop"));
    EXPECT_EQ(desktop.sounds().deviceCount(), 0);
}

}  // namespace
}  // namespace coffrelune
