#include <gtest/gtest.h>
#include <windows.h>

#include <functional>

#include "platform/win32/desktop/win32_desktop.h"
#include "platform/win32/native_path.h"
#include "platform/win32/test_disk.h"
#include "platform/win32/wide_text.h"

namespace coffrelune {
namespace {

/// A user who answers the first dialog of this thread, from within its own message loop.
class User {
  public:
    /// `button`: IDOK or IDCANCEL.
    explicit User(int button) : button_(button) {
        current() = this;
        timer_ = SetTimer(nullptr, 0, 100, tick);
    }
    User(const User&) = delete;
    User& operator=(const User&) = delete;
    ~User() {
        KillTimer(nullptr, timer_);
        current() = nullptr;
    }

    bool sawDialog() const { return sawDialog_; }
    /// All that the dialog showed as text, a line each.
    const std::wstring& texts() const { return texts_; }

  private:
    static User*& current() {
        static User* user = nullptr;
        return user;
    }

    static BOOL CALLBACK gather(HWND window, LPARAM) {
        std::wstring text(512, L'\0');
        text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), 512)));
        current()->texts_ += text + L"\n";
        return TRUE;
    }

    static BOOL CALLBACK answer(HWND window, LPARAM) {
        const HWND button = GetDlgItem(window, current()->button_);
        if (button == nullptr || IsWindowVisible(window) == 0) return TRUE;
        // Nobody answers in the moment in which a dialog appears, its tree still being filled.
        if (++current()->looks_ < 5) return FALSE;
        current()->sawDialog_ = true;
        EnumChildWindows(window, gather, 0);
        PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(current()->button_),
                     reinterpret_cast<LPARAM>(button));
        return FALSE;
    }

    static void CALLBACK tick(HWND, UINT, UINT_PTR, DWORD) {
        if (current()->sawDialog_) return;
        EnumThreadWindows(GetCurrentThreadId(), answer, 0);
    }

    int button_;
    UINT_PTR timer_ = 0;
    int looks_ = 0;
    bool sawDialog_ = false;
    std::wstring texts_;
};

class FolderChooserTest : public testing::Test {
  protected:
    std::string choose(bool includeFiles, const std::string& start, int button) {
        const User user(button);
        std::string chosen = chooseShellFolder(nullptr, includeFiles, "Dossier à lire", start);
        sawDialog_ = user.sawDialog();
        texts_ = narrow(user.texts());
        return chosen;
    }

    /// Wine's dialog takes a folder for another one when its date of last access, rounded to two
    /// seconds, has changed since the start folder was looked up, and its own first look into a
    /// new folder changes that date. After one look nothing changes any more.
    void letDatesSettle(const std::string& start) {
        if (disk::isWine()) (void)choose(false, start, IDCANCEL);
    }

    Apartment apartment_;
    disk::Temporary base_;
    bool sawDialog_ = false;
    std::string texts_;
};

TEST_F(FolderChooserTest, StandsAtTheStartFolderAndGivesTheChoice) {
    disk::makeDirectory(base_.at("été"));
    letDatesSettle(base_.at("été"));
    const std::string chosen = choose(false, base_.at("été"), IDOK);
    if (!sawDialog_) GTEST_SKIP() << "no window can be shown here";
    EXPECT_NE(texts_.find("Dossier à lire"), std::string::npos) << texts_;
    EXPECT_EQ(resolvedPath(chosen), resolvedPath(base_.at("été")));
}

TEST_F(FolderChooserTest, GivesNothingWhenCancelled) {
    const std::string chosen = choose(false, base_.at(), IDCANCEL);
    if (!sawDialog_) GTEST_SKIP() << "no window can be shown here";
    EXPECT_EQ(chosen, "");
}

TEST_F(FolderChooserTest, GivesAFileWhenFilesAreIncluded) {
    disk::makeFile(base_.at("a.txt"), "abc");
    letDatesSettle(base_.at("a.txt"));
    const std::string chosen = choose(true, base_.at("a.txt"), IDOK);
    if (!sawDialog_) GTEST_SKIP() << "no window can be shown here";
    EXPECT_EQ(resolvedPath(chosen), resolvedPath(base_.at("a.txt")));
}

TEST_F(FolderChooserTest, OpensWithoutAStartFolder) {
    (void)choose(false, "", IDCANCEL);
    if (!sawDialog_) GTEST_SKIP() << "no window can be shown here";
    EXPECT_NE(texts_.find("Dossier à lire"), std::string::npos) << texts_;
}

}  // namespace
}  // namespace coffrelune
