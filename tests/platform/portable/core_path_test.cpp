#include "platform/core_path.h"

#include <gtest/gtest.h>

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
    for (const char* text :
         {"", "Docs", "Docs\\..\\x", "..", ".", "\\", "\\\\", "\\Docs\\.", "/", "/home/./x",
          "C:x\\..", "1:\\.", R"(\\\nas\.)", R"(\\.\C:\.)", R"(\\nas\..)", R"(\\?\UNC\)", "~/x"}) {
        EXPECT_EQ(inPlainSpelling(text), text);
    }
}

TEST(DriveLetter, IsALetterAndAColon) {
    for (const char* drive : {"C:", "z:", "C:\\Docs", "D:x"}) {
        EXPECT_TRUE(hasDriveLetter(drive)) << drive;
    }
    for (const char* none : {"", "C", "1:", ":C", "@:", "[:", "{:", "\\\\srv\\c", "\xC3:"}) {
        EXPECT_FALSE(hasDriveLetter(none)) << none;
    }
}

}  // namespace
}  // namespace coffrelune
