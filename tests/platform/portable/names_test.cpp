#include "platform/names.h"

#include <gtest/gtest.h>

#include <string>

namespace coffrelune {
namespace {

struct Spelling {
    const char* text;
    const char* plain;
};

void expectAll(std::initializer_list<Spelling> spellings) {
    for (const auto& [text, plain] : spellings) {
        EXPECT_EQ(inPlainSpelling(text), plain) << text;
        EXPECT_EQ(inPlainSpelling(plain), plain) << "once is enough";
    }
}

TEST(PlainSpelling, StaysAsItIs) {
    for (const char* path : {"C:", "c:\\", "C:\\Docs", "C:\\Docs\\", "C:\\Docs\\a.txt", R"(\\nas)",
                             R"(\\nas\photos)", R"(\\nas\photos\)", R"(\\nas\photos\2024\Mai)"}) {
        EXPECT_EQ(inPlainSpelling(path), path);
    }
}

TEST(PlainSpelling, HasNoDots) {
    expectAll({{R"(E:\Docs\.)", R"(E:\Docs)"},
               {R"(E:\Docs\.\)", R"(E:\Docs\)"},
               {R"(E:\.\Docs\.\a)", R"(E:\Docs\a)"},
               {R"(E:\.)", R"(E:\)"},
               {R"(E:\Data\Docs\..)", R"(E:\Data)"},
               {R"(E:\Data\..\Docs\Mai\..\..\Docs)", R"(E:\Docs)"},
               {R"(\\nas\photos\2024\.\..)", R"(\\nas\photos)"},
               {R"(\\nas\photos\.)", R"(\\nas\photos)"}});
}

TEST(PlainSpelling, NeverLeavesTheVolume) {
    expectAll({{R"(E:\..)", R"(E:\)"},
               {R"(E:\Docs\..\..\..)", R"(E:\)"},
               {R"(E:\..\Docs)", R"(E:\Docs)"},
               {R"(\\nas\photos\..\..\x)", R"(\\nas\photos\x)"},
               {R"(\\nas\photos\..\)", R"(\\nas\photos\)"}});
}

TEST(PlainSpelling, HasSingleBackslashesAlone) {
    expectAll({{R"(C:\\Docs\\\a)", R"(C:\Docs\a)"},
               {R"(C:\Docs\\)", R"(C:\Docs\)"},
               {R"(C:\\)", R"(C:\)"},
               {"C:/Docs/a", R"(C:\Docs\a)"},
               {"C:/Docs/./", R"(C:\Docs\)"},
               {R"(C:\Docs/..\a)", R"(C:\a)"},
               {"//nas/photos//x", R"(\\nas\photos\x)"},
               {R"(\\nas\\photos\x)", R"(\\nas\photos\x)"}});
}

TEST(PlainSpelling, HasNoPrefix) {
    expectAll({{R"(\\?\C:\Docs\.)", R"(C:\Docs)"},
               {R"(\\?\C:\)", R"(C:\)"},
               {R"(\\?\UNC\nas\photos\..\x)", R"(\\nas\photos\x)"}});
}

TEST(PlainSpelling, KeepsNamesThatOnlyLookLikeDots) {
    for (const char* path : {R"(C:\...)", R"(C:\a. )", R"(C:\ a \ b)", R"(C:\. \x)", R"(C:\.. )",
                             R"(C:\.git\..x)", R"(C:\a.)"}) {
        EXPECT_EQ(inPlainSpelling(path), path);
    }
}

TEST(PlainSpelling, LeavesAloneWhatIsNoPathOfTheCore) {
    for (const char* text : {"",
                             "Docs",
                             "Docs\\..\\x",
                             "..",
                             ".",
                             "\\",
                             "\\\\",
                             "\\Docs\\.",
                             "/",
                             "/home/./x",
                             "C:x\\..",
                             "1:\\.",
                             R"(\\\nas\.)",
                             R"(\\.\C:\.)",
                             R"(\\nas\..)",
                             R"(\\?\UNC\)",
                             "~/x",
                             R"(\\?/V:\a\.)",
                             R"(\\?\\C:\.)",
                             R"(\\?\UNC\?\C:\.)",
                             R"(//?/UNC/nas/.)"}) {
        EXPECT_EQ(inPlainSpelling(text), text);
    }
}

TEST(DriveLetter, IsALetterAndAColon) {
    for (const std::string_view drive : {"C:", "z:", "C:\\Docs", "D:x"}) {
        EXPECT_TRUE(hasDriveLetter(drive)) << drive;
    }
    for (const std::string_view none :
         {"", "C", "1:", ":C", "@:", "[:", "{:", "\\\\srv\\c", "\xC3:"}) {
        EXPECT_FALSE(hasDriveLetter(none)) << none;
    }
}

TEST(DriveLetter, BeginsAPathAloneOrBeforeASeparator) {
    for (const std::string_view path : {"C:", "c:\\", "D:\\Docs", "D:/Docs"}) {
        EXPECT_TRUE(startsWithDrive(path)) << path;
    }
    for (const std::string_view none : {"", "C", "C:x", "1:\\", "C::"}) {
        EXPECT_FALSE(startsWithDrive(none)) << none;
    }
}

TEST(DriveLetter, IsFoundInWideTextAsWell) {
    EXPECT_TRUE(hasDriveLetter(std::wstring_view(L"z:x")));
    EXPECT_TRUE(startsWithDrive(std::wstring(L"C:\\Docs")));
    EXPECT_FALSE(startsWithDrive(std::wstring_view(L"\u0141:\\")));
}

constexpr OwnFile everyKind[] = {OwnFile::temporary, OwnFile::certificate, OwnFile::restoreMark,
                                 OwnFile::lock};

TEST(OwnFileName, HoldsItsNumberInSixteenDigits) {
    EXPECT_EQ(ownFileName(OwnFile::temporary, 0), ".~coffrelune-0000000000000000.tmp");
    EXPECT_EQ(ownFileName(OwnFile::temporary, 0x0123456789ABCDEF),
              ".~coffrelune-0123456789abcdef.tmp");
    EXPECT_EQ(ownFileName(OwnFile::temporary, ~std::uint64_t{0}),
              ".~coffrelune-ffffffffffffffff.tmp");
}

TEST(OwnFileName, EndsAsItsKindDoes) {
    EXPECT_EQ(ownFileName(OwnFile::certificate, 10), ".~coffrelune-000000000000000a.copie");
    EXPECT_EQ(ownFileName(OwnFile::restoreMark, 10), ".~coffrelune-000000000000000a.restauration");
    EXPECT_EQ(ownFileName(OwnFile::lock, 10), ".~coffrelune-000000000000000a.verrou");
}

TEST(OwnFileName, TellsItsKind) {
    for (const OwnFile kind : everyKind) {
        const std::string name = ownFileName(kind, 0xFEDCBA9876543210);
        EXPECT_EQ(ownFileKind(name), kind) << name;
        EXPECT_EQ(isTemporaryName(name), kind == OwnFile::temporary) << name;
    }
}

TEST(OwnFileName, IsRecognisedAndNothingLikeItIs) {
    for (const OwnFile kind : everyKind) {
        const std::string name = ownFileName(kind, 0xFEDCBA9876543210);
        EXPECT_FALSE(ownFileKind(name + "x"));
        EXPECT_FALSE(ownFileKind("x" + name));
        EXPECT_FALSE(ownFileKind(name.substr(1)));
        EXPECT_FALSE(ownFileKind(name.substr(0, name.size() - 1)));
        for (std::size_t i = 0; i < name.size(); ++i) {
            std::string changed = name;
            changed[i] = 'Z';
            EXPECT_FALSE(ownFileKind(changed)) << changed;
        }
    }
}

TEST(OwnFileName, IsNoShorterText) {
    for (const char* text : {"", ".~coffrelune-", ".~coffrelune-.tmp", ".~coffrelune-0123.copie",
                             ".~coffrelune-0123456789abcdef"}) {
        EXPECT_FALSE(ownFileKind(text)) << text;
    }
}

}  // namespace
}  // namespace coffrelune
