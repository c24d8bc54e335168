#include "platform/posix/path_map.h"

#include <gtest/gtest.h>

#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

PathMap someMap() {
    return PathMap({PathRoot::drive('C', "/"), PathRoot::drive('f', "/media/cle", 77),
                    PathRoot::drive('G', "/media/cle/dedans"),
                    PathRoot::share("nas", "photos", "/mnt/nas"),
                    PathRoot::share("nas", "photos\\vieux", "/srv/vieux")});
}

std::string nativeOf(const std::string& path) {
    Place place;
    const Status status = someMap().locate(path, place);
    EXPECT_EQ(status.code(), 0U) << path;
    return place.native;
}

std::uint32_t codeOf(const std::string& path) {
    Place place;
    return someMap().locate(path, place).code();
}

TEST(PathMap, LeadsDrivesAndSharesToTheirDirectories) {
    EXPECT_EQ(nativeOf("C:\\"), "/");
    EXPECT_EQ(nativeOf("C:"), "/");
    EXPECT_EQ(nativeOf("C:\\etc\\fstab"), "/etc/fstab");
    EXPECT_EQ(nativeOf("F:\\Photos\\"), "/media/cle/Photos");
    EXPECT_EQ(nativeOf("f:\\Photos"), "/media/cle/Photos");
    EXPECT_EQ(nativeOf("F:\\\\a\\\\b"), "/media/cle/a/b");
    EXPECT_EQ(nativeOf("\\\\nas\\photos\\2023"), "/mnt/nas/2023");
    EXPECT_EQ(nativeOf("\\\\NAS\\Photos"), "/mnt/nas");
    EXPECT_EQ(nativeOf("\\\\nas\\photos\\vieux\\a"), "/srv/vieux/a");
    EXPECT_EQ(nativeOf("\\\\nas\\photos\\vieuxx"), "/mnt/nas/vieuxx");
    EXPECT_EQ(nativeOf("F:\\a\xEF\x80\xBA"
                       "b"),
              "/media/cle/a:b");
}

TEST(PathMap, ParentStepsNeverLeaveTheRoot) {
    EXPECT_EQ(nativeOf("F:\\a\\..\\b\\."), "/media/cle/b");
    EXPECT_EQ(nativeOf("F:\\..\\..\\etc"), "/media/cle/etc");
    EXPECT_EQ(nativeOf("F:\\a/../..\\etc"), "/media/cle/etc");
}

TEST(PathMap, APathLeadsWhereItDoesAloneWhateverWasAskedForBefore) {
    const std::vector<std::string> paths = {"F:\\a\\b\\c\\d\\e\\f\\g\\h",
                                            "G:\\a\\b\\c\\d\\e\\f\\g\\h",
                                            "F:\\a\\b\\c\\d\\e\\f\\g",
                                            "F:\\a\\bc",
                                            "f:\\a\\b",
                                            "F:\\a/b\\..\\x",
                                            "F:\\a\\b\\..\\..\\..\\y",
                                            "\\\\nas\\photos",
                                            "\\\\nas\\photos\\vieux\\a",
                                            "\\\\nas\\photos\\x\\..\\vieux",
                                            "\\\\nas\\photos\\vieux",
                                            "\\\\nas\\photos\\vieuxx\\",
                                            "F:\\a\\b\\c\\d\\e\\f\\g\\h\\",
                                            "C:\\",
                                            "F:\\"};
    const PathMap map = someMap();
    for (const std::string& first : paths) {
        for (const std::string& second : paths) {
            for (const std::string& path : {first, second}) {
                Place place;
                ASSERT_TRUE(map.locate(path, place).ok()) << path;
                EXPECT_EQ(place.native, nativeOf(path)) << path << " after " << first;
                EXPECT_EQ(place.core, path);
            }
        }
    }
}

TEST(PathMap, TellsWhatIsNotThereFromWhatIsNoPath) {
    EXPECT_EQ(codeOf("D:\\x"), 55U);
    EXPECT_EQ(codeOf("\\\\autre\\photos"), 55U);
    EXPECT_EQ(codeOf("\\\\nas\\phot"), 55U);
    EXPECT_EQ(codeOf("\\\\nas"), 55U);
    EXPECT_EQ(codeOf("F:x"), 3U);
    EXPECT_EQ(codeOf("x"), 3U);
    EXPECT_EQ(codeOf(""), 3U);
    EXPECT_EQ(codeOf("\\x"), 3U);
    EXPECT_EQ(codeOf(std::string("F:\\a\0b", 6)), 87U);
}

TEST(PathMap, PlaceKnowsItsRootAndName) {
    Place place;
    ASSERT_TRUE(someMap().locate("F:\\a\\b:c", place).ok());
    EXPECT_EQ(place.root, "/media/cle");
    EXPECT_EQ(place.device, dev_t{77});
    EXPECT_FALSE(place.isRoot());
    EXPECT_EQ(place.name(),
              "b\xEF\x80\xBA"
              "c");
    ASSERT_TRUE(someMap().locate("F:\\", place).ok());
    EXPECT_TRUE(place.isRoot());
    EXPECT_EQ(place.name(), "");
    ASSERT_TRUE(someMap().locate("C:\\a", place).ok());
    EXPECT_FALSE(place.device.has_value());
    EXPECT_EQ(place.name(), "a");
}

TEST(PathMap, InnermostRootGivesTheCoresForm) {
    const PathMap map = someMap();
    EXPECT_EQ(map.toCore("/"), "C:\\");
    EXPECT_EQ(map.toCore("/etc"), "C:\\etc");
    EXPECT_EQ(map.toCore("/media/cle"), "F:\\");
    EXPECT_EQ(map.toCore("/media/cle2/a"), "C:\\media\\cle2\\a");
    EXPECT_EQ(map.toCore("/media/cle/Photos"), "F:\\Photos");
    EXPECT_EQ(map.toCore("/media/cle/dedans/a"), "G:\\a");
    EXPECT_EQ(map.toCore("/mnt/nas"), "\\\\nas\\photos");
    EXPECT_EQ(map.toCore("/mnt/nas/a\\b"),
              "\\\\nas\\photos\\a\xEF\x81\x9C"
              "b");
    EXPECT_EQ(PathMap().toCore("/etc"), "C:\\etc");
}

TEST(PathMap, TypedPathsEnterInTheCoresForm) {
    const PathMap map = someMap();
    EXPECT_EQ(map.fromNative("/media/cle//Photos/./x/", "/"), "F:\\Photos\\x");
    EXPECT_EQ(map.fromNative("/media/autre/Photos", "/"), "C:\\media\\autre\\Photos");
    EXPECT_EQ(map.fromNative("Photos", "/media/cle"), "F:\\Photos");
    EXPECT_EQ(map.fromNative(".", "/media/cle"), "F:\\");
    EXPECT_EQ(map.fromNative("/", "/x"), "C:\\");
    EXPECT_EQ(map.fromNative("/mnt/nas/2023/", "/"), "\\\\nas\\photos\\2023");
    EXPECT_EQ(map.fromNative("a:b", "/etc"),
              "C:\\etc\\a\xEF\x80\xBA"
              "b");
    EXPECT_EQ(map.fromNative("~/x", "/root"), "C:\\root\\~\\x");
}

TEST(PathMap, TypedPathThatHasTheCoresFormStaysAsItIs) {
    const PathMap map = someMap();
    for (const std::string text : {"X:\\a\\", "x:", "C:\\", "\\\\srv\\p\\x", "F:\\a. ", ""}) {
        EXPECT_EQ(map.fromNative(text, "/etc"), text);
    }
    EXPECT_EQ(map.fromNative("F:\\a\\..\\b\\.", "/etc"), "F:\\b");
    EXPECT_EQ(map.fromNative("F:\\a/..\\..\\\\b\\\\", "/etc"), "F:\\b\\");
}

TEST(PathMap, TypedParentStepFollowsTheLinkBeforeIt) {
    const TemporaryDirectory disk;
    disk.makeDirectory("vrai/sous");
    ASSERT_EQ(symlink("vrai/sous", disk.at("lien").c_str()), 0);
    const PathMap map({PathRoot::drive('D', disk.at())});
    EXPECT_EQ(map.fromNative(disk.at("lien/../x"), "/"), "D:\\vrai\\x");
    EXPECT_EQ(map.fromNative("../x", disk.at("lien")), "D:\\vrai\\x");
    EXPECT_EQ(map.fromNative(disk.at("absent/../x"), "/"), "D:\\x");
    // Without such a step the link is what the user named.
    EXPECT_EQ(map.fromNative(disk.at("lien/x"), "/"), "D:\\lien\\x");
}

}  // namespace
}  // namespace coffrelune
