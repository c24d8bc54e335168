#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/characters.h"
#include "settings/encoding.h"
#include "settings/settings_text.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::StartsWith;
using Edit = SettingsText::Edit;

const std::string utf16Mark = "\xFF\xFE";
const std::string utf8Mark = "\xEF\xBB\xBF";

/// A code page that knows nothing but ASCII and cannot decode what is beyond.
class Ascii final : public AnsiCodec {
  public:
    bool encode(const std::string& utf8, std::string& bytes) const override {
        bytes = replaced(utf8);
        return bytes == utf8;
    }
    std::string decode(const std::string& bytes) const override { return replaced(bytes); }

  private:
    static std::string replaced(std::string text) {
        for (char& c : text) {
            if (static_cast<unsigned char>(c) >= 0x80) c = '?';
        }
        return text;
    }
};

/// A code page whose encoder takes "e" for "é" and says that nothing was lost.
class BestFit final : public AnsiCodec {
  public:
    bool encode(const std::string& utf8, std::string& bytes) const override {
        bytes = utf8;
        const std::size_t accent = bytes.find("é");
        if (accent != std::string::npos) bytes.replace(accent, 2, "e");
        return true;
    }
    std::string decode(const std::string& bytes) const override { return bytes; }
};

class SettingsEncodingTest : public testing::Test {
  protected:
    void load(const std::string& bytes) { ASSERT_TRUE(text.parse(bytes)); }

    /// What a new process reads from the bytes written.
    std::string readBack(const std::string& section, const std::string& key) {
        SettingsText again(ansi);
        EXPECT_TRUE(again.parse(text.serialise()));
        return again.value(section, key);
    }

    Windows1252 ansi;
    SettingsText text{ansi};
};

TEST_F(SettingsEncodingTest, ReadsAndWritesTheCodePage) {
    load("[A]\r\nx=\xE9t\xE9 \x80\r\n");
    EXPECT_EQ(text.value("A", "x"), "été €");
    EXPECT_EQ(text.setValue("A", "y", "Œuf"), Edit::made);
    EXPECT_EQ(text.serialise(), "[A]\r\nx=\xE9t\xE9 \x80\r\ny=\x8Cuf\r\n");
}

TEST_F(SettingsEncodingTest, KeepsBytesThatTheCodePageLeavesFree) {
    load("[A]\nx=\x81\x8D\x8F\x90\x9D\n");
    EXPECT_EQ(text.setValue("A", "y", text.value("A", "x")), Edit::made);
    EXPECT_EQ(text.serialise(), "[A]\nx=\x81\x8D\x8F\x90\x9D\ny=\x81\x8D\x8F\x90\x9D\n");
}

TEST_F(SettingsEncodingTest, BytesOfAKeyAndItsValueAreNoCharacterTogether) {
    load("[A]\nx=1\n");
    EXPECT_EQ(text.setValue("A", "k\xC3", "\xA9"), Edit::made);
    EXPECT_EQ(readBack("A", "k\xC3"), "\xA9");
    EXPECT_EQ(readBack("A", "x"), "1");
}

TEST_F(SettingsEncodingTest, KeepsAUtf8File) {
    load(utf8Mark + "[Été]\nx=Ж\n");
    EXPECT_EQ(text.value("éTÉ", "X"), "Ж");
    EXPECT_EQ(text.setValue("Été", "y", "日本"), Edit::made);
    EXPECT_EQ(text.serialise(), utf8Mark + "[Été]\nx=Ж\ny=日本\n");
    EXPECT_EQ(text.deleteSection("Été"), Edit::made);
    EXPECT_EQ(text.serialise(), utf8Mark);
    EXPECT_EQ(text.setValue("A", "x", "1"), Edit::made);
    EXPECT_EQ(text.serialise(), utf8Mark + "[A]\r\nx=1\r\n");
}

TEST_F(SettingsEncodingTest, KeepsBytesOfAUtf8FileThatAreNoUtf8) {
    load(utf8Mark + "[A]\nx=\xE9\n;\xFF\n");
    EXPECT_EQ(text.value("A", "x"), "\xE9");
    EXPECT_EQ(text.setValue("A", "y", "1"), Edit::made);
    EXPECT_EQ(text.serialise(), utf8Mark + "[A]\nx=\xE9\n;\xFF\ny=1\n");
}

TEST_F(SettingsEncodingTest, ReadsAndWritesUtf16) {
    // U+0A0D and U+5B0A hold the bytes of line ends and brackets.
    const std::string before = utf16le::encode("; \u0A0D\n[Été]\n x = \"Ж\u5B0A\" \n[B]\nx=🌙");
    load(utf16Mark + before);
    EXPECT_EQ(text.value("ÉTÉ", "x"), "Ж\u5B0A");
    EXPECT_EQ(text.value("B", "x"), "🌙");
    EXPECT_EQ(text.setValue("B", "y", "2"), Edit::made);
    EXPECT_EQ(text.serialise(), utf16Mark + before + utf16le::encode("\ny=2\n"));
    EXPECT_EQ(text.deleteSection("Été"), Edit::made);
    EXPECT_EQ(text.serialise(), utf16Mark + utf16le::encode("; \u0A0D\n[B]\nx=🌙\ny=2\n"));
}

TEST_F(SettingsEncodingTest, ReadsUtf16WithCarriageReturns) {
    load(utf16Mark + utf16le::encode("[A]\r\nx=1\r\n"));
    EXPECT_EQ(text.setValue("A", "y", "2"), Edit::made);
    EXPECT_EQ(text.serialise(), utf16Mark + utf16le::encode("[A]\r\nx=1\r\ny=2\r\n"));
}

TEST_F(SettingsEncodingTest, WritesUtf16IntoAFileThatIsAMarkAlone) {
    load(utf16Mark);
    EXPECT_EQ(text.setValue("A", "x", "1"), Edit::made);
    EXPECT_EQ(text.serialise(), utf16Mark + utf16le::encode("[A]\r\nx=1\r\n"));
}

TEST_F(SettingsEncodingTest, BecomesUtf16WhenTheCodePageCannotHoldAValue) {
    load("; \xE9t\xE9\n[A]\nx=\x80\n\n[B]\ny=1");
    EXPECT_EQ(text.setValue("A", "z", "Ж"), Edit::made);
    EXPECT_EQ(text.serialise(), utf16Mark + utf16le::encode("; été\n[A]\nx=€\nz=Ж\n\n[B]\ny=1"));
    EXPECT_EQ(readBack("A", "z"), "Ж");
    EXPECT_EQ(text.setValue("A", "z", "abc"), Edit::made);
    EXPECT_THAT(text.serialise(), StartsWith(utf16Mark)) << "it is never turned back";
}

TEST_F(SettingsEncodingTest, BecomesUtf16ForASectionName) {
    EXPECT_EQ(text.setValue("Фото", "x", "1"), Edit::made);
    EXPECT_EQ(text.serialise(), utf16Mark + utf16le::encode("[Фото]\r\nx=1\r\n"));
    EXPECT_EQ(readBack("фОТО", "x"), "1");
}

TEST_F(SettingsEncodingTest, KeepsRawBytesOfAPath) {
    const std::string path = "C:\\home\\\xE9t\xE9\\Ж\\\xF0\x9F\\\xFF";
    EXPECT_EQ(text.setValue("A", "Source0", '"' + path + '"'), Edit::made);
    EXPECT_EQ(readBack("A", "Source0"), path);
    EXPECT_EQ(text.setValue("A", "x", "1"), Edit::made);
    EXPECT_EQ(readBack("A", "Source0"), path);
}

TEST_F(SettingsEncodingTest, KeepsLoneSurrogatesOfLinesThatAreNotTouched) {
    const std::string line = std::string("x=\x00\xD8\n\0", 6);
    std::string bytes = utf16Mark + utf16le::encode("[A]\n");
    bytes += std::string("x\0=\0\x00\xD8\n\0", 8);
    load(bytes);
    EXPECT_EQ(text.setValue("A", "y", "1"), Edit::made);
    EXPECT_EQ(text.serialise(), bytes + utf16le::encode("y=1\n"));
}

TEST_F(SettingsEncodingTest, KeepsLineBreaksAndNulWithinAValue) {
    const std::string path("C:\\a\nb\r\nc\0d\n", 12);
    EXPECT_EQ(text.setValue("A", "Source0", '"' + path + '"'), Edit::made);
    EXPECT_EQ(text.serialise(),
              utf16Mark +
                  utf16le::encode("[A]\r\nSource0=\"C:\\a\uF00Ab\uF00D\uF00Ac\uF000d\uF00A\"\r\n"));
    EXPECT_EQ(readBack("A", "Source0"), path);
}

TEST_F(SettingsEncodingTest, KeepsALineBreakWithinASectionName) {
    EXPECT_EQ(text.setValue("a\n[b]", "x", "1"), Edit::made);
    EXPECT_EQ(readBack("a\n[b]", "x"), "1");
    EXPECT_THAT(text.sections(), ElementsAre("a\n[b]"));
}

TEST_F(SettingsEncodingTest, KeepsPrivateUseCharactersOfAName) {
    const std::string path = "C:\\\uF00A\uF00D\uF000\uF01B\uF05C\uF03A\n\uF01B";
    EXPECT_EQ(text.setValue("A", "Source0", path), Edit::made);
    EXPECT_EQ(readBack("A", "Source0"), path);
}

TEST_F(SettingsEncodingTest, RefusesWhatIsNoText) {
    EXPECT_FALSE(text.parse(std::string("MZ\x90\0\x03", 5)));
    EXPECT_FALSE(text.parse(std::string("[A]\nx=1\n\0\0\0", 11)));
    EXPECT_FALSE(text.parse(std::string(4096, '\0')));
    EXPECT_FALSE(text.parse(utf8Mark + std::string(1, '\0')));
    EXPECT_FALSE(text.parse(utf16Mark + utf16le::encode("[A]") + "x")) << "half a character";
    EXPECT_FALSE(text.parse(utf16Mark + std::string(2, '\0')));
    EXPECT_FALSE(text.parse("\xFE\xFF")) << "UTF-16 BE";
    EXPECT_FALSE(text.parse(utf16le::encode("[A]\nx=1\n"))) << "UTF-16 without its mark";
}

TEST_F(SettingsEncodingTest, KeepsBytesOfEveryKindInAFileWithoutNul) {
    std::string bytes;
    for (int c = 1; c < 256; ++c) bytes += static_cast<char>(c);
    load(bytes + "\n[A]\n");
    EXPECT_EQ(text.setValue("A", "x", "1"), Edit::made);
    EXPECT_EQ(text.serialise(), bytes + "\n[A]\nx=1\n");
}

TEST(SettingsEncoding, RefusesToConvertAFileThatTheCodePageCannotGiveBack) {
    const Ascii ascii;
    SettingsText text(ascii);
    ASSERT_TRUE(text.parse("[A]\nx=\xE9\n"));
    EXPECT_EQ(text.setValue("A", "y", "Ж"), Edit::refused);
    EXPECT_EQ(text.serialise(), "[A]\nx=\xE9\n");
    EXPECT_EQ(text.setValue("A", "y", "z"), Edit::made) << "other lines are not concerned";
    EXPECT_EQ(text.serialise(), "[A]\nx=\xE9\ny=z\n");
}

TEST(SettingsEncoding, TakesANearRelativeForALoss) {
    const BestFit bestFit;
    SettingsText text(bestFit);
    EXPECT_EQ(text.setValue("A", "x", "é"), Edit::made);
    EXPECT_EQ(text.serialise(), utf16Mark + utf16le::encode("[A]\r\nx=é\r\n"));
}

TEST(Utf16le, RoundTripsAnyBytes) {
    std::string all;
    for (int c = 1; c < 256; ++c) all += static_cast<char>(c);
    for (const std::string& text :
         {all, std::string("é日🌙\u10FFFF"), std::string("\xED\xA0\x80")}) {
        EXPECT_EQ(utf16le::decode(utf16le::encode(text)), text);
    }
}

TEST(Utf16le, UsesSurrogatePairs) {
    EXPECT_EQ(utf16le::encode("🌙"), std::string("\x3C\xD8\x19\xDF", 4));
    EXPECT_EQ(utf16le::decode(std::string("\x3C\xD8\x19\xDF", 4)), "🌙");
}

// ---- UTF-8 without a mark
// ------------------------------------------------------------------------

TEST_F(SettingsEncodingTest, TakesWhatIsValidUtf8ForWhatAnEditorHasMade) {
    load("[Été]\nx=été\n");
    EXPECT_EQ(text.value("Été", "x"), "été");
    EXPECT_EQ(text.setValue("Été", "y", "Ж"), Edit::made);
    EXPECT_EQ(text.serialise(), "[Été]\nx=été\ny=Ж\n");
    EXPECT_EQ(readBack("Été", "y"), "Ж");
}

TEST_F(SettingsEncodingTest, TakesAnythingElseForTheCodePage) {
    load("[A]\nx=\xE9t\xE9\ny=\xC3\xA9\n");
    EXPECT_EQ(text.value("A", "x"), "été");
    EXPECT_EQ(text.value("A", "y"), "Ã©");
}

TEST_F(SettingsEncodingTest, TakesNoUtf8WithoutAMarkWhereEditorsWriteTheCodePage) {
    const BestFit page;
    SettingsText other(page);
    ASSERT_TRUE(other.parse("[A]\nx=é\n"));
    EXPECT_EQ(other.setValue("A", "y", "ê\xE9"), Edit::made);
    EXPECT_EQ(other.serialise(), "[A]\nx=é\ny=ê\xE9\n");
}

TEST_F(SettingsEncodingTest, WhatTheNextStartWouldReadAsUtf8IsKeptAsUtf16) {
    load("[A]\nx=1\n");
    EXPECT_EQ(text.setValue("A", "x", "Ã©"), Edit::made);
    EXPECT_THAT(text.serialise(), StartsWith(utf16Mark));
    EXPECT_EQ(readBack("A", "x"), "Ã©");
}

TEST_F(SettingsEncodingTest, WhatTheNextStartWouldReadAsUtf8AfterADeletionIsKeptAsUtf16) {
    load("[A]\nx=\xC3\xA9\ny=\xE9\n");
    EXPECT_EQ(text.deleteKey("A", "y"), Edit::made);
    EXPECT_EQ(readBack("A", "x"), "Ã©");
}

TEST_F(SettingsEncodingTest, ANameThatIsNoUtf8KeepsTheRestOfAUtf8File) {
    load("[A]\nx=été\n");
    EXPECT_EQ(text.setValue("A", "y", "caf\xE9"), Edit::made);
    EXPECT_EQ(readBack("A", "x"), "été");
    EXPECT_EQ(readBack("A", "y"), "caf\xE9");
}

TEST_F(SettingsEncodingTest, ASectionNameThatIsNoUtf8KeepsTheRestOfAUtf8File) {
    load("[A]\nx=été\n");
    EXPECT_EQ(text.renameSection("A", "caf\xE9"), Edit::made);
    EXPECT_EQ(readBack("caf\xE9", "x"), "été");
    load("[A]\nx=été\n");
    EXPECT_EQ(text.copySection("A", "caf\xE9", [](const std::string&) { return false; }),
              Edit::made);
    EXPECT_EQ(readBack("A", "x"), "été");
    EXPECT_EQ(readBack("caf\xE9", "x"), "été");
}

TEST_F(SettingsEncodingTest, ASectionNameThatTheNextStartWouldReadAsUtf8IsKeptAsUtf16) {
    load("[A]\nx=1\n");
    EXPECT_EQ(text.renameSection("A", "Ã©"), Edit::made);
    EXPECT_EQ(readBack("Ã©", "x"), "1");
    EXPECT_EQ(readBack("é", "x"), "");
}

TEST_F(SettingsEncodingTest, FindsAKeyInAnyCaseInEachEncoding) {
    for (const std::string& bytes : {std::string("[A]\n\xC9t\xE9=1\n"), std::string("[A]\nÉté=1\n"),
                                     utf16Mark + utf16le::encode("[A]\nÉté=1\n")}) {
        load(bytes);
        EXPECT_EQ(text.value("a", "éTÉ"), "1");
        EXPECT_EQ(text.setValue("A", "été", "2"), Edit::made);
        EXPECT_EQ(text.value("A", "ÉTÉ"), "2") << "asked again after an edit";
    }
}

}  // namespace
}  // namespace coffrelune
