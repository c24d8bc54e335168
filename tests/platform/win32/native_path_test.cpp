#include "platform/win32/native_path.h"

#include <gmock/gmock.h>

#include "platform/win32/test_disk.h"
#include "platform/win32/wide_text.h"

namespace coffrelune {
namespace {

std::string nativeOf(const std::string& core) {
    NativePath path;
    const Status status = toNative(core, path);
    return status.ok() ? narrow(path.text) : std::to_string(status.code());
}

TEST(NativePath, HasTheFormThatTheSystemDoesNotTouch) {
    EXPECT_EQ(nativeOf(R"(C:\Docs\a.txt)"), R"(\\?\C:\Docs\a.txt)");
    EXPECT_EQ(nativeOf(R"(C:\)"), R"(\\?\C:\)");
    EXPECT_EQ(nativeOf("C:"), R"(\\?\C:\)");
    EXPECT_EQ(nativeOf(R"(c:\Docs\)"), R"(\\?\C:\Docs)");
    EXPECT_EQ(nativeOf(R"(\\nas\photos\2023)"), R"(\\?\UNC\nas\photos\2023)");
    EXPECT_EQ(nativeOf(R"(\\nas\photos)"), R"(\\?\UNC\nas\photos\)");
}

TEST(NativePath, KeepsNamesThatShortPathsWouldChange) {
    for (const char* name : {"a.", "a ", " a", "...", "CON", "nul.txt", "aux", "COM1"}) {
        EXPECT_EQ(nativeOf(std::string("D:\\") + name), std::string("\\\\?\\D:\\") + name);
    }
}

TEST(NativePath, TakesSlashesDotsAndDoubledSeparatorsOut) {
    EXPECT_EQ(nativeOf("C:/Docs/./x/../a.txt"), R"(\\?\C:\Docs\a.txt)");
    EXPECT_EQ(nativeOf(R"(C:\\Docs\\a.txt)"), R"(\\?\C:\Docs\a.txt)");
    EXPECT_EQ(nativeOf(R"(C:\..\..\a)"), R"(\\?\C:\a)");
    EXPECT_EQ(nativeOf(R"(\\nas\photos\..\..\x)"), R"(\\?\UNC\nas\photos\x)");
}

TEST(NativePath, AcceptsWhatBearsThePrefixAlready) {
    EXPECT_EQ(nativeOf(R"(\\?\C:\Docs)"), R"(\\?\C:\Docs)");
    EXPECT_EQ(nativeOf(R"(\\?\UNC\nas\photos\x)"), R"(\\?\UNC\nas\photos\x)");
    EXPECT_EQ(nativeOf(R"(\\?\Volume{1234}\Docs)"), R"(\\?\Volume{1234}\Docs)");
}

TEST(NativePath, RefusesWhatIsNoPlaceOfADrive) {
    for (const char* path :
         {"", "Docs", R"(\Docs)", "C:Docs", R"(\\nas)", R"(\\nas\)", R"(\\.\PhysicalDrive0)",
          R"(\\?\PhysicalDrive0)", R"(\\?\pipe\x)", R"(\\)", "1:\\x"}) {
        EXPECT_EQ(nativeOf(path), "3") << path;
    }
    EXPECT_EQ(nativeOf(std::string("C:\\a\0b", 6)), "87");
}

TEST(NativePath, RefusesAColonThatWouldLeadIntoAFile) {
    EXPECT_EQ(nativeOf(R"(C:\a.txt:secret)"), "123");
    EXPECT_EQ(nativeOf(R"(C:\a:b\c)"), "123");
}

TEST(NativePath, RefusesNamesAndPathsThatAreTooLong) {
    EXPECT_EQ(nativeOf("C:\\" + std::string(255, 'x')), "\\\\?\\C:\\" + std::string(255, 'x'));
    EXPECT_EQ(nativeOf("C:\\" + std::string(256, 'x')), "206");
    std::string path = "C:";
    while (path.size() < 32'700) path += "\\" + std::string(100, 'x');
    EXPECT_EQ(nativeOf(path).size(), path.size() + 4);
    EXPECT_EQ(nativeOf(path + "\\" + std::string(100, 'x')), "206");
}

TEST(NativePath, KnowsItsHolderAndItsName) {
    NativePath path;
    ASSERT_TRUE(toNative(R"(C:\Docs\a.txt)", path).ok());
    EXPECT_EQ(path.name(), L"a.txt");
    EXPECT_EQ(narrow(path.holder().text), R"(\\?\C:\Docs)");
    const NativePath root = path.holder().holder();
    EXPECT_EQ(narrow(root.text), R"(\\?\C:\)");
    EXPECT_TRUE(root.isRoot());
    EXPECT_EQ(root.name(), L"");
    EXPECT_EQ(root.holder().text, root.text);
    EXPECT_EQ(narrow(root.child(L"b").text), R"(\\?\C:\b)");
    EXPECT_EQ(narrow(path.child(L"b").text), R"(\\?\C:\Docs\a.txt\b)");
}

TEST(NativePath, ComesBackAsTheCoreWritesIt) {
    EXPECT_EQ(toCore(LR"(\\?\C:\Docs)"), R"(C:\Docs)");
    EXPECT_EQ(toCore(LR"(\\?\UNC\nas\photos)"), R"(\\nas\photos)");
    EXPECT_EQ(toCore(LR"(\\nas\photos)"), R"(\\nas\photos)");
    EXPECT_EQ(toCore(LR"(\\?\Volume{1234}\x)"), R"(\\?\Volume{1234}\x)");
}

TEST(TypedPath, InTheCoresFormStaysAsItIs) {
    for (const char* path :
         {R"(C:\Docs)", R"(c:\docs\)", "C:", R"(C:\)", R"(\\nas\photos)", R"(C:\Docs\a. )"}) {
        EXPECT_EQ(fromTyped(path), path);
        EXPECT_EQ(fromEntered(path), path);
    }
    EXPECT_EQ(fromTyped(""), "");
}

TEST(TypedPath, LosesItsQuotesAndItsSlashes) {
    EXPECT_EQ(fromTyped("\"C:\\Mes documents\""), R"(C:\Mes documents)");
    EXPECT_EQ(fromTyped("  \"C:/Mes documents/x\" "), R"(C:\Mes documents\x)");
    EXPECT_EQ(fromTyped("C:/Docs"), R"(C:\Docs)");
    EXPECT_EQ(fromTyped("//nas/photos/x"), R"(\\nas\photos\x)");
    EXPECT_EQ(fromTyped(R"(\\?\C:\Docs)"), R"(C:\Docs)");
    EXPECT_EQ(fromTyped(R"(\\?\UNC\nas\photos)"), R"(\\nas\photos)");
    EXPECT_EQ(fromTyped("\"\""), "");
    EXPECT_EQ(fromTyped("   "), "");
}

TEST(TypedPath, LosesItsDots) {
    for (const auto& take : {fromTyped, fromEntered}) {
        EXPECT_EQ(take(R"(E:\Docs\.)"), R"(E:\Docs)");
        EXPECT_EQ(take(R"(E:\Docs\..)"), R"(E:\)");
        EXPECT_EQ(take(R"(C:\a\..\b. )"), R"(C:\b. )");
        EXPECT_EQ(take(R"(C:\\a\\.\)"), R"(C:\a\)");
        EXPECT_EQ(take("C:/Docs/./x"), R"(C:\Docs\x)");
        EXPECT_EQ(take(R"(\\nas\photos\..\..\x)"), R"(\\nas\photos\x)");
        EXPECT_EQ(take(R"(\\?\C:\Docs\.)"), R"(C:\Docs)");
    }
}

TEST(TypedPath, IsCompletedFromTheCurrentDirectory) {
    const std::string typed = fromTyped("Sous dossier/x");
    EXPECT_TRUE(hasCoreForm(typed)) << typed;
    EXPECT_TRUE(typed.ends_with(R"(\Sous dossier\x)")) << typed;
    EXPECT_EQ(fromTyped(R"(\Docs)"), fromTyped(R"(\)").substr(0, 2) + R"(\Docs)");
}

TEST(EnteredPath, IsTidiedWhenItIsAbsolute) {
    EXPECT_EQ(fromEntered(R"(C:\Docs\a. )"), R"(C:\Docs\a. )");
    EXPECT_EQ(fromEntered("\"C:\\Mes documents\""), R"(C:\Mes documents)");
    EXPECT_EQ(fromEntered("//nas/photos/x"), R"(\\nas\photos\x)");
    EXPECT_EQ(fromEntered("/C:/Mes documents"), R"(C:\Mes documents)");
    EXPECT_EQ(fromEntered(R"(\\?\C:\Docs)"), R"(C:\Docs)");
}

TEST(EnteredPath, IsNeverCompletedFromTheCurrentDirectory) {
    for (const char* text :
         {"", " ", "x", "Sous dossier/x", R"(\Docs)", "~", "~/x", "\"x\"", "C:x"}) {
        EXPECT_EQ(fromEntered(text), text);
    }
}

TEST(ResolvedPath, IsSpelledAsTheDiskSpellsIt) {
    const disk::Temporary base;
    disk::makeDirectory(base.at("Dossier"));
    disk::makeFile(base.at("Dossier\\Fichier.TXT"), "");
    const std::string place = resolvedPath(base.at("Dossier\\Fichier.TXT"));
    EXPECT_TRUE(place.ends_with(R"(\Dossier\Fichier.TXT)")) << place;
    EXPECT_EQ(resolvedPath(base.at("DOSSIER\\fichier.txt")), place);
    EXPECT_EQ(resolvedPath(base.at("DOSSIER\\absent\\Plus Bas")),
              resolvedPath(base.at("Dossier")) + "\\absent\\Plus Bas");
    EXPECT_EQ(resolvedPath("no path"), "no path");
    EXPECT_EQ(resolvedPath("Q:\\absent\\x"), "Q:\\absent\\x");
}

}  // namespace
}  // namespace coffrelune
