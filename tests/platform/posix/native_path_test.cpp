#include "platform/posix/native_path.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

TEST(NativePath, IsWithinWholeComponentsOnly) {
    EXPECT_TRUE(isWithin("/mnt/x", "/mnt/x"));
    EXPECT_TRUE(isWithin("/mnt/x/a", "/mnt/x"));
    EXPECT_FALSE(isWithin("/mnt/xy", "/mnt/x"));
    EXPECT_TRUE(isWithin("/mnt", "/"));
    EXPECT_EQ(below("/mnt/x/a/b", "/mnt/x"), "a/b");
    EXPECT_EQ(below("/a", "/"), "a");
    EXPECT_EQ(below("/", "/"), "");
}

TEST(NativePath, IsNormalizedByTheTextAlone) {
    EXPECT_EQ(normalizedPath("//a/./b//c/"), "/a/b/c");
    EXPECT_EQ(normalizedPath("/a/../../b"), "/b");
    EXPECT_EQ(normalizedPath("/"), "/");
}

TEST(NativePath, CanonicalFollowsLinksAndKeepsWhatIsMissing) {
    const TemporaryDirectory disk;
    disk.makeDirectory("vrai/sous");
    ASSERT_EQ(symlink("vrai", disk.at("lien").c_str()), 0);
    ASSERT_EQ(symlink(disk.at("lien/sous").c_str(), disk.at("absolu").c_str()), 0);
    EXPECT_EQ(canonicalPath(disk.at("lien/sous")), disk.at("vrai/sous"));
    EXPECT_EQ(canonicalPath(disk.at("absolu/x/y")), disk.at("vrai/sous/x/y"));
    EXPECT_EQ(canonicalPath(disk.at("absolu/../z")), disk.at("vrai/z"));
    EXPECT_EQ(canonicalPath("/"), "/");
}

TEST(NativePath, CanonicalEndsInACircleOfLinks) {
    const TemporaryDirectory disk;
    ASSERT_EQ(symlink("deux", disk.at("un").c_str()), 0);
    ASSERT_EQ(symlink("un", disk.at("deux").c_str()), 0);
    EXPECT_THAT(canonicalPath(disk.at("un/x")), testing::StartsWith(disk.at()));
}

TEST(NativePath, BeyondTheSystemsLimitIsReached) {
    const TemporaryDirectory disk;
    std::string path = disk.at();
    for (int level = 0; level < 40; ++level) {
        const ShortPath parent(path);
        ASSERT_EQ(parent.error(), 0);
        UniqueFd directory(openat(parent.fd(), parent.path(), O_PATH | O_DIRECTORY));
        const std::string name(200, static_cast<char>('a' + level % 26));
        ASSERT_EQ(mkdirat(directory.get(), name.c_str(), 0777), 0);
        path += "/" + name;
    }
    ASSERT_GT(path.size(), 8000U);
    struct statx information {};
    EXPECT_EQ(statPath(path, false, information), 0);
    EXPECT_TRUE(S_ISDIR(information.stx_mode));
    EXPECT_EQ(statPath(path + "/", false, information), 0);
    EXPECT_EQ(statPath(path + "/absent", false, information), ENOENT);
    EXPECT_EQ(canonicalPath(path), path);
    UniqueFd fd;
    EXPECT_EQ(openPath(path, O_RDONLY | O_DIRECTORY, fd), 0);
    EXPECT_NE(fcntl(fd.get(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST(NativePath, NameLongerThanTheLimitFailsCleanly) {
    const ShortPath path("/" + std::string(5000, 'x'));
    EXPECT_EQ(path.error(), ENAMETOOLONG);
}

TEST(Names, ShowBackslashAndColonAsPrivateCharacters) {
    EXPECT_EQ(toCoreName("a\\b:c"),
              "a\xEF\x81\x9C"
              "b\xEF\x80\xBA"
              "c");
    EXPECT_EQ(toNativeName("a\xEF\x81\x9C"
                           "b\xEF\x80\xBA"
                           "c"),
              "a\\b:c");
}

TEST(Names, LeaveEveryOtherByteAlone) {
    for (const std::string name :
         {"Été *?\"<>|\n\t", "\xFF\xFE brut \x80", "", "日本", "\xEF", "\xEF\x81"}) {
        EXPECT_EQ(toCoreName(name), name);
        EXPECT_EQ(toNativeName(name), name);
    }
}

TEST(Names, WithPrivateCharactersOfTheirOwnStayApart) {
    const std::string own =
        "a\xEF\x81\x9C"
        "b";
    EXPECT_NE(toCoreName(own), toCoreName("a\\b"));
    EXPECT_EQ(toNativeName(toCoreName(own)), own);
}

// Every sequence of up to six of these pieces, which are all that the mapping looks at.
TEST(Names, ComeBackWhateverTheyAre) {
    const std::string pieces[] = {"\\",   ":", "\xEF\x81\x9C", "\xEF\x80\xBA", "\xEF\x83\xBF",
                                  "\xEF", "x"};
    for (int code = 0; code < 7 * 7 * 7 * 7 * 7 * 7; ++code) {
        std::string name;
        for (int rest = code; rest > 0; rest /= 7) name += pieces[rest % 7];
        ASSERT_EQ(toNativeName(toCoreName(name)), name) << code;
    }
}

TEST(Names, TypedEscapeWithoutMeaningIsKept) {
    EXPECT_EQ(toNativeName("a\xEF\x83\xBFz"), "a\xEF\x83\xBFz");
    EXPECT_EQ(toNativeName("a\xEF\x83\xBF"), "a\xEF\x83\xBF");
}

}  // namespace
}  // namespace coffrelune
