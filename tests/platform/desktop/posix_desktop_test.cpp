#include "platform/posix/desktop/posix_desktop.h"

#include <gmock/gmock.h>

#include <cstring>

#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

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
