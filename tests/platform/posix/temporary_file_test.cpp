#include "platform/posix/temporary_file.h"

#include <fcntl.h>
#include <gmock/gmock.h>

#include <cerrno>

#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

UniqueFd openDirectory(const TemporaryDirectory& disk) {
    return UniqueFd(open(disk.at().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

TEST(TemporaryName, IsRecognisedStrictly) {
    EXPECT_TRUE(isTemporaryName(".~coffrelune-0123456789abcdef.tmp"));
    for (const char* name :
         {".~coffrelune-0123456789abcde.tmp", ".~coffrelune-0123456789abcdef0.tmp",
          ".~coffrelune-0123456789ABCDEF.tmp", ".~coffrelune-0123456789abcdeg.tmp",
          "~coffrelune-0123456789abcdef.tmp", ".~coffrelune-0123456789abcdef.tmp~",
          ".~coffrelune-0123456789abcdef.TMP", "", ".~coffrelune-.tmp"}) {
        EXPECT_FALSE(isTemporaryName(name)) << name;
    }
}

TEST(TemporaryName, IsMadeAnewEachTime) {
    EXPECT_TRUE(isTemporaryName(makeTemporaryName()));
    EXPECT_NE(makeTemporaryName(), makeTemporaryName());
}

TEST(TemporaryFile, GoesAwayUnlessItIsCommitted) {
    const TemporaryDirectory disk;
    const UniqueFd directory = openDirectory(disk);
    {
        TemporaryFile file;
        ASSERT_EQ(file.create(directory.get(), 0600), 0);
        ASSERT_THAT(disk.names(), SizeIs(1));
        EXPECT_TRUE(isTemporaryName(disk.names()[0]));
        EXPECT_EQ(disk.stat(disk.names()[0]).st_mode & 0777, 0600U);
    }
    EXPECT_THAT(disk.names(), IsEmpty());
}

TEST(TemporaryFile, TakesItsNameOverAnother) {
    const TemporaryDirectory disk;
    const UniqueFd directory = openDirectory(disk);
    disk.write("a", "old");
    {
        TemporaryFile file;
        ASSERT_EQ(file.create(directory.get(), 0600), 0);
        ASSERT_EQ(write(file.fd(), "new", 3), 3);
        ASSERT_EQ(file.commit("a"), 0);
    }
    EXPECT_THAT(disk.names(), ElementsAre("a"));
    EXPECT_EQ(disk.read("a"), "new");
}

TEST(TemporaryFile, GoesAwayWhenItsNameIsRefused) {
    const TemporaryDirectory disk;
    const UniqueFd directory = openDirectory(disk);
    disk.makeDirectory("a");
    {
        TemporaryFile file;
        ASSERT_EQ(file.create(directory.get(), 0600), 0);
        EXPECT_EQ(file.commit("a"), EISDIR);
    }
    EXPECT_THAT(disk.names(), ElementsAre("a"));
}

TEST(TemporaryFile, LeftoversGoAwayAndFilesInTheMakingStay) {
    const TemporaryDirectory disk;
    const UniqueFd directory = openDirectory(disk);
    TemporaryFile live;
    ASSERT_EQ(live.create(directory.get(), 0600), 0);
    const std::string liveName = disk.names()[0];
    disk.write(".~coffrelune-00000000000000aa.tmp", "half");
    chmod(disk.write(".~coffrelune-00000000000000ab.tmp", "half").c_str(), 0444);
    ASSERT_EQ(symlink("x", disk.at(".~coffrelune-00000000000000ac.tmp").c_str()), 0);
    disk.makeDirectory(".~coffrelune-00000000000000ad.tmp");
    disk.write("~coffrelune-0000000000000000.tmp", "of the user");

    EXPECT_EQ(removeTemporaries(directory.get()), 0);
    EXPECT_THAT(disk.names(),
                testing::UnorderedElementsAre(liveName, ".~coffrelune-00000000000000ad.tmp",
                                              "~coffrelune-0000000000000000.tmp"));
    ASSERT_EQ(live.commit("a"), 0);
    EXPECT_EQ(disk.read("a"), "");
}

}  // namespace
}  // namespace coffrelune
