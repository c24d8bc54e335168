#include "platform/win32/desktop/win32_desktop.h"

#include <gmock/gmock.h>
#include <windows.h>

#include "platform/win32/desktop/win32_drive_information.h"
#include "platform/win32/test_disk.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/win32_services.h"

namespace coffrelune {
namespace {

using Root = RegistryService::Root;

constexpr const char* keyPath = R"(Software\Coffrelune-Test)";

/// A key of the user's that goes away with this.
class TestKey {
  public:
    TestKey() {
        EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, wide(keyPath).c_str(), 0, nullptr, 0,
                                  KEY_ALL_ACCESS, nullptr, &key_, nullptr),
                  ERROR_SUCCESS);
    }
    TestKey(const TestKey&) = delete;
    TestKey& operator=(const TestKey&) = delete;
    ~TestKey() {
        RegCloseKey(key_);
        RegDeleteKeyW(HKEY_CURRENT_USER, wide(keyPath).c_str());
    }

    /// Bytes and type of a value; nothing when there is none.
    std::optional<std::pair<std::wstring, DWORD>> value(const wchar_t* name) const {
        std::wstring data(256, L'\0');
        DWORD type = 0;
        auto size = static_cast<DWORD>(data.size() * sizeof(wchar_t));
        if (RegQueryValueExW(key_, name, nullptr, &type, reinterpret_cast<BYTE*>(data.data()),
                             &size) != ERROR_SUCCESS) {
            return std::nullopt;
        }
        data.resize(size / sizeof(wchar_t));
        return std::pair(data, type);
    }

    bool isEmpty() const {
        DWORD values = 1;
        RegQueryInfoKeyW(key_, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &values,
                         nullptr, nullptr, nullptr, nullptr);
        return values == 0;
    }

  private:
    HKEY key_ = nullptr;
};

TEST(Win32Registry, SetsATextThatOthersReadAsOne) {
    const TestKey key;
    Win32Registry registry;
    const std::string path = "C:\\Réglages\\coffrelune.exe";
    ASSERT_TRUE(registry.setText(Root::currentUser, keyPath, "Coffrelune", path).ok());
    const auto value = key.value(L"Coffrelune");
    ASSERT_TRUE(value.has_value());
    EXPECT_EQ(value->second, DWORD{REG_SZ});
    // The length that is handed over leaves the terminating NUL out; the system completes a text
    // that has one behind its end.
    std::wstring text = value->first;
    ASSERT_FALSE(text.empty());
    if (text.back() == L'\0') text.pop_back();
    EXPECT_EQ(text, wide(path));
}

TEST(Win32Registry, ReplacesALongerTextWhole) {
    const TestKey key;
    Win32Registry registry;
    ASSERT_TRUE(registry.setText(Root::currentUser, keyPath, "v", "a long old text").ok());
    ASSERT_TRUE(registry.setText(Root::currentUser, keyPath, "v", "new").ok());
    const std::wstring stored = key.value(L"v")->first;
    EXPECT_TRUE(stored == L"new" || stored == std::wstring(L"new\0", 4)) << narrow(stored);
}

TEST(Win32Registry, DeletesAValueOnce) {
    const TestKey key;
    Win32Registry registry;
    ASSERT_TRUE(registry.setText(Root::currentUser, keyPath, "v", "x").ok());
    EXPECT_TRUE(registry.deleteValue(Root::currentUser, keyPath, "V").ok());
    EXPECT_TRUE(key.isEmpty());
    EXPECT_EQ(registry.deleteValue(Root::currentUser, keyPath, "v").code(),
              error_number::fileNotFound);
}

TEST(Win32Registry, NeverMakesAKey) {
    Win32Registry registry;
    for (const Root root : {Root::currentUser, Root::localMachine}) {
        EXPECT_FALSE(registry.setText(root, R"(Software\Coffrelune-Absent)", "v", "x").ok());
        EXPECT_FALSE(registry.deleteValue(root, R"(Software\Coffrelune-Absent)", "v").ok());
    }
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, LR"(Software\Coffrelune-Absent)", 0, KEY_READ, &key),
              ERROR_FILE_NOT_FOUND);
}

TEST(Win32DriveInformation, KnowsTheSystemDisk) {
    Win32DriveInformation drives;
    std::string label = "something else";
    EXPECT_TRUE(drives.volumeLabel("C:\\", label).ok());
    EXPECT_NE(label, "something else");
    std::uint64_t total = 0;
    std::uint64_t free = 0;
    ASSERT_TRUE(drives.sizes("C:\\", total, free).ok());
    EXPECT_GT(total, 0U);
    EXPECT_LE(free, total);
    ASSERT_TRUE(drives.sizes("c:", total, free).ok());
}

TEST(Win32DriveInformation, FailsForADriveThatIsNotThere) {
    Win32DriveInformation drives;
    std::string label = "something else";
    std::uint64_t total = 1;
    std::uint64_t free = 1;
    EXPECT_FALSE(drives.volumeLabel("Q:\\", label).ok());
    EXPECT_EQ(label, "");
    EXPECT_FALSE(drives.sizes("Q:\\", total, free).ok());
    EXPECT_EQ(total, 0U);
    EXPECT_EQ(free, 0U);
}

TEST(Win32DriveInformation, DescribesADriveAsTheShellDoes) {
    const Apartment apartment;
    Win32DriveInformation drives;
    const DriveDescription system = drives.describe("C:\\");
    EXPECT_FALSE(system.displayName.empty());
    EXPECT_FALSE(drives.describe("Q:\\").displayName.empty());
    EXPECT_TRUE(system.iconName.starts_with("shell:")) << system.iconName;
    void* icon = shellIcon(system.iconName);
    EXPECT_NE(icon, nullptr);
    DestroyIcon(static_cast<HICON>(icon));
}

TEST(ShellIcon, IsGivenForItsOwnNamesAlone) {
    EXPECT_EQ(shellIconName(12), "shell:12");
    for (const char* name : {"", "shell:", "shell:x", "shell:-1", "shell:1x", "drive-harddisk"}) {
        EXPECT_EQ(shellIcon(name), nullptr) << name;
    }
}

TEST(Win32Shell, KnowsWhereTheTaskSchedulerIs) {
    const std::string console = taskSchedulerConsole();
    EXPECT_EQ(console, Win32Drives().windowsDirectory() + "\\system32\\taskschd.msc");
}

TEST(Win32Shell, StartsAProgramWithItsParametersAndDoesNotWait) {
    const Apartment apartment;
    const disk::Temporary base;
    disk::makeDirectory(base.at("pris par été"));
    void* changed =
        FindFirstChangeNotificationW(wide(base.at()).c_str(), FALSE, FILE_NOTIFY_CHANGE_DIR_NAME);
    ASSERT_NE(changed, INVALID_HANDLE_VALUE);
    // The program removes: of what it makes it would still hold a handle when the change is told.
    Win32Shell().open(Win32Drives().windowsDirectory() + "\\system32\\cmd.exe",
                      "/c rmdir \"" + base.at("pris par été") + "\"");
    EXPECT_EQ(WaitForSingleObject(changed, 60'000), DWORD{WAIT_OBJECT_0});
    FindCloseChangeNotification(changed);
    EXPECT_FALSE(disk::attributes(base.at("pris par été")).has_value());
}

TEST(Win32Shell, DoesNothingForWhatIsNotThere) {
    const Apartment apartment;
    Win32Shell shell;
    shell.open("C:\\absent\\rien.exe", "x");
    shell.open("", "");
    EXPECT_FALSE(disk::attributes("C:\\absent").has_value());
}

TEST(Win32Sounds, CountsDevicesAndIsSilentForAMissingFile) {
    Win32Sounds sounds;
    EXPECT_EQ(sounds.deviceCount(), static_cast<int>(waveOutGetNumDevs()));
    EXPECT_GE(sounds.deviceCount(), 0);
    sounds.play("C:\\absent.wav");
}

TEST(Win32Desktop, HandsItsServicesOut) {
    Win32Desktop desktop;
    const Desktop services = desktop.desktop();
    std::uint64_t total = 0;
    std::uint64_t free = 0;
    EXPECT_TRUE(services.driveInformation.sizes("C:\\", total, free).ok());
    EXPECT_FALSE(services.registry.deleteValue(Root::currentUser, keyPath, "v").ok());
    EXPECT_GE(desktop.sounds().deviceCount(), 0);
}

}  // namespace
}  // namespace coffrelune
