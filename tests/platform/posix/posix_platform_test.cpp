#include "platform/posix/posix_platform.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace coffrelune {
namespace {

TEST(ProgramPlace, TheExecutableIsTheRunningProgramsOwnFile) {
    const std::string path = executablePath();
    ASSERT_TRUE(path.starts_with('/')) << path;
    EXPECT_TRUE(std::filesystem::is_regular_file(path)) << path;
    EXPECT_TRUE(std::filesystem::equivalent(path, "/proc/self/exe"));
    EXPECT_TRUE(path.ends_with("/posix_tests")) << path;
}

/// A program at bin/ with its sounds at share/coffrelune/, and a user's configuration directory.
class SettingsPlaceTest : public testing::Test {
  protected:
    SettingsPlaceTest() {
        std::string pattern = std::filesystem::temp_directory_path() / "coffrelune-place-XXXXXX";
        root_ = ::mkdtemp(pattern.data());
        std::filesystem::create_directories(root_ / "bin");
        std::filesystem::create_directories(root_ / "share/coffrelune");
        std::ofstream(root_ / "share/coffrelune/Ok.wav") << "son";
    }
    ~SettingsPlaceTest() override {
        std::error_code ignored;
        std::filesystem::remove_all(root_, ignored);
    }
    std::string place(const std::string& name) const { return root_ / name; }

  private:
    std::filesystem::path root_;
};

TEST_F(SettingsPlaceTest, IsTheProgramsOwnWhereItMayWrite) {
    EXPECT_EQ(settingsDirectoryFor(place("bin"), place(".config")), place("bin"));
    EXPECT_FALSE(std::filesystem::exists(place(".config")));
}

TEST_F(SettingsPlaceTest, IsTheUsersWhereTheProgramMayNotWrite) {
    const std::string gone = place("ailleurs/bin");
    EXPECT_EQ(settingsDirectoryFor(gone, place(".config")), place(".config/coffrelune"));
    EXPECT_TRUE(std::filesystem::is_directory(place(".config/coffrelune")));
}

// Root may write there.
TEST_F(SettingsPlaceTest, IsTheUsersWhereTheProgramIsInstalledForEveryone) {
    EXPECT_EQ(settingsDirectoryFor("/usr/bin", place(".config")), place(".config/coffrelune"));
}

TEST_F(SettingsPlaceTest, IsTheProgramsOwnForNobody) {
    EXPECT_EQ(settingsDirectoryFor("/usr/bin", ""), "/usr/bin");
}

TEST_F(SettingsPlaceTest, HasTheSoundsOfTheProgramOnce) {
    const std::string installed = "/usr/.." + place("bin");
    const std::string home = settingsDirectoryFor(installed, place(".config"));
    EXPECT_TRUE(std::filesystem::exists(home + "/Ok.wav"));
    EXPECT_FALSE(std::filesystem::exists(home + "/Erreur.wav"));
    std::filesystem::remove(home + "/Ok.wav");
    EXPECT_EQ(settingsDirectoryFor(installed, place(".config")), home);
    EXPECT_FALSE(std::filesystem::exists(home + "/Ok.wav"));
}

}  // namespace
}  // namespace coffrelune
