// The settings file of users whose ANSI code page is not the western one.
#include <gmock/gmock.h>
#include <windows.h>

#include "platform/win32/test_disk.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/win32_files.h"
#include "settings/settings_file.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

struct PageCase {
    unsigned codePage;
    std::string name;   // that the page holds
    std::string bytes;  // of that name
};

void PrintTo(const PageCase& page, std::ostream* out) {
    *out << page.codePage;
}

class CodePageSettings : public testing::TestWithParam<PageCase> {
  protected:
    SettingsFile settings() { return SettingsFile(files_, page_, path_); }
    std::string onDisk() const { return disk::content(path_).value_or(""); }

    const std::string name_ = GetParam().name;
    const std::string bytes_ = GetParam().bytes;

    disk::Temporary base_;
    const std::string path_ = base_.at("Coffrelune.ini");
    Win32Files files_;
    AnsiCodePage page_{GetParam().codePage};
};

// In the Japanese page the second byte of a character may be one of "[", "\", "]" and "|".
INSTANTIATE_TEST_SUITE_P(
    Of, CodePageSettings,
    testing::Values(PageCase{1250, "Łódź", "\xA3\xF3\x64\x9F"},
                    PageCase{1251, "Мои фото", "\xCC\xEE\xE8 \xF4\xEE\xF2\xEE"},
                    PageCase{932, "ゼソンポ", "\x83\x5B\x83\x5C\x83\x93\x83\x7C"},
                    PageCase{932, "構", "\x8D\x5C"}, PageCase{932, "ゾ", "\x83\x5D"},
                    PageCase{CP_UTF8, "日本 🌒", "\xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x8C\x92"}),
    [](const auto& made) {
        return std::to_string(made.param.codePage) + "Number" + std::to_string(made.index);
    });

TEST_P(CodePageSettings, AreWrittenInThatPage) {
    ASSERT_TRUE(settings().write(name_, "Source0", "\"E:\\" + name_ + "\\x\"").ok());
    EXPECT_EQ(onDisk(), "[" + bytes_ + "]\r\nSource0=\"E:\\" + bytes_ + "\\x\"\r\n");
    EXPECT_EQ(settings().read(name_, "Source0"), "E:\\" + name_ + "\\x");
    EXPECT_THAT(settings().sections(), ElementsAre(name_));
}

TEST_P(CodePageSettings, KeepWhatStandsBesideAnEdit) {
    const std::string before = "; " + bytes_ + "\r\n[Avant]\r\n" + bytes_ + "=\"" + bytes_ +
                               "\"\r\n[" + bytes_ + "]\r\nSource0=" + bytes_ + "\r\nb=2\r\n";
    disk::makeFile(path_, before);
    ASSERT_TRUE(settings().write(name_, "Source0", "1").ok());
    EXPECT_EQ(onDisk(), "; " + bytes_ + "\r\n[Avant]\r\n" + bytes_ + "=\"" + bytes_ + "\"\r\n[" +
                            bytes_ + "]\r\nSource0=1\r\nb=2\r\n");
    EXPECT_EQ(settings().read("Avant", name_), name_);
    ASSERT_TRUE(settings().write("Avant", name_, "2").ok());
    EXPECT_EQ(settings().read("Avant", name_), "2");
    ASSERT_TRUE(settings().deleteSection(name_).ok());
    EXPECT_EQ(onDisk(), "; " + bytes_ + "\r\n[Avant]\r\n" + bytes_ + "=2\r\n");
}

TEST_P(CodePageSettings, LoseNothingThatThePageDoesNotHold) {
    ASSERT_TRUE(settings().write(name_, "Source0", name_).ok());
    const std::string other = "E:\\Ωmega ヴ Łódź ش 🌒";
    ASSERT_TRUE(settings().write("Autre", "Source0", other).ok());
    const bool convertsNothing = GetParam().codePage == CP_UTF8;
    EXPECT_EQ(onDisk().substr(0, 2) == "\xFF\xFE", !convertsNothing);
    EXPECT_EQ(settings().read("Autre", "Source0"), other);
    EXPECT_EQ(settings().read(name_, "Source0"), name_);
}

}  // namespace
}  // namespace coffrelune
