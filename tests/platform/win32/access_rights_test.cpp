// Who may do what with a file that is replaced.
#include <gtest/gtest.h>
#include <windows.h>
// These take their basic types from the one above.
#include <sddl.h>

#include <vector>

#include "platform/win32/test_disk.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/win32_files.h"

namespace coffrelune {
namespace {

constexpr std::uint64_t oldTime = 133330464001234567;

class Win32AccessRights : public testing::Test {
  protected:
    Win32AccessRights() {
        disk::makeFile(base_.at("source.txt"), "new", oldTime);
        disk::makeFile(base_.at("copie.txt"), "old", oldTime);
        disk::makeFile(base_.at("neuf.txt"), "", oldTime);
    }

    /// What the system writes down of a file: its rights, or its owner.
    std::string described(const std::string& name, SECURITY_INFORMATION kind) const {
        const std::wstring path = wide(base_.at(name));
        DWORD size = 0;
        GetFileSecurityW(path.c_str(), kind, nullptr, 0, &size);
        std::vector<unsigned char> descriptor(size + 1);
        EXPECT_NE(GetFileSecurityW(path.c_str(), kind, descriptor.data(), size, &size), 0);
        wchar_t* text = nullptr;
        EXPECT_NE(ConvertSecurityDescriptorToStringSecurityDescriptorW(
                      descriptor.data(), SDDL_REVISION_1, kind, &text, nullptr),
                  0);
        std::string result = text == nullptr ? "" : narrow(text);
        LocalFree(text);
        return result;
    }
    std::string rights(const std::string& name) const {
        return described(name, DACL_SECURITY_INFORMATION);
    }

    /// Gives rights that no new file gets by itself: the owner alone may do anything, or, where
    /// that is what new files get (a host whose users keep all to themselves), everyone may read as
    /// well.
    void lock(const std::string& name) const {
        setRights(name, "");
        if (rights(name) == rights("neuf.txt")) setRights(name, "(A;;FR;;;WD)");
        ASSERT_NE(rights(name), rights("neuf.txt"));
    }

    /// The owner may do anything, others what `others` says, and nothing comes from the directory.
    void setRights(const std::string& name, const std::string& others) const {
        const std::string owner = described(name, OWNER_SECURITY_INFORMATION).substr(2);
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        ASSERT_NE(ConvertStringSecurityDescriptorToSecurityDescriptorW(
                      wide("D:P(A;;FA;;;" + owner + ")" + others).c_str(), SDDL_REVISION_1,
                      &descriptor, nullptr),
                  0);
        EXPECT_NE(
            SetFileSecurityW(wide(base_.at(name)).c_str(), DACL_SECURITY_INFORMATION, descriptor),
            0)
            << GetLastError();
        LocalFree(descriptor);
    }

    disk::Temporary base_;
    Win32Files files_;
};

TEST_F(Win32AccessRights, OfTheOldCopyHoldForTheNewOne) {
    lock("copie.txt");
    const std::string before = rights("copie.txt");
    ASSERT_TRUE(
        files_.copyFile(base_.at("source.txt"), base_.at("copie.txt"), LinkRule::refuse, nullptr)
            .ok());
    EXPECT_EQ(disk::content(base_.at("copie.txt")), "new");
    EXPECT_EQ(rights("copie.txt"), before);
}

TEST_F(Win32AccessRights, OfTheOldSettingsHoldForTheNewOnes) {
    lock("copie.txt");
    const std::string before = rights("copie.txt");
    ASSERT_TRUE(files_.writeWhole(base_.at("copie.txt"), "new", Durability::now).ok());
    EXPECT_EQ(disk::content(base_.at("copie.txt")), "new");
    EXPECT_EQ(rights("copie.txt"), before);
}

TEST_F(Win32AccessRights, OfTheSourceDoNotGoWithIt) {
    lock("source.txt");
    ASSERT_TRUE(
        files_.copyFile(base_.at("source.txt"), base_.at("copie.txt"), LinkRule::refuse, nullptr)
            .ok());
    EXPECT_EQ(rights("copie.txt"), rights("neuf.txt"));
}

}  // namespace
}  // namespace coffrelune
