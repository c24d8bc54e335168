#include "platform/posix/own_files.h"

#include <fcntl.h>
#include <gmock/gmock.h>

#include <cerrno>

#include "platform/names.h"
#include "platform/posix/temporary_directory.h"
#include "platform/posix/temporary_file.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

const std::string certificate = ownFileName(OwnFile::certificate, 1);
const std::string mark = ownFileName(OwnFile::restoreMark, 2);
const std::string leftover = ownFileName(OwnFile::temporary, 3);

UniqueFd openDirectory(const TemporaryDirectory& disk) {
    return UniqueFd(open(disk.at().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

TEST(OwnFiles, LeftoversGoAwayAndFilesInTheMakingStay) {
    const TemporaryDirectory disk;
    const UniqueFd directory = openDirectory(disk);
    TemporaryFile live;
    ASSERT_EQ(live.create(directory.get(), 0600), 0);
    const std::string liveName = disk.names()[0];
    disk.write(".~coffrelune-00000000000000aa.tmp", "half");
    chmod(disk.write(".~coffrelune-00000000000000ab.tmp", "half").c_str(), 0444);
    ASSERT_EQ(symlink("x", disk.at(".~coffrelune-00000000000000ac.tmp").c_str()), 0);
    disk.makeDirectory(".~coffrelune-00000000000000ad.tmp/sub");
    disk.makeDirectory(".~coffrelune-00000000000000ae.tmp");
    disk.write(".~coffrelune-00000000000000ae.tmp/a", "half");
    disk.write("~coffrelune-0000000000000000.tmp", "of the user");

    EXPECT_EQ(removeTemporaries(directory.get()), 0);
    EXPECT_THAT(disk.names(),
                testing::UnorderedElementsAre(liveName, ".~coffrelune-00000000000000ad.tmp",
                                              "~coffrelune-0000000000000000.tmp"));
    ASSERT_EQ(live.commit("a"), 0);
    EXPECT_EQ(disk.read("a"), "");
}

TEST(OwnFiles, AreNamedUnlessTheyAreTemporariesOrDirectories) {
    const TemporaryDirectory disk;
    for (const std::string& name : {certificate, mark, leftover}) disk.write(name, "own");
    disk.write("a.copie", "of the user");
    disk.makeDirectory(ownFileName(OwnFile::certificate, 9));
    std::vector<std::string> names = {"before"};
    ASSERT_EQ(listOwnFiles(openDirectory(disk).get(), names), 0);
    EXPECT_THAT(names, UnorderedElementsAre(certificate, mark));
}

TEST(OwnFiles, AreClearedOnlyWhereNothingElseIs) {
    const TemporaryDirectory disk;
    for (const std::string& name : {certificate, mark, leftover}) disk.write(name, "own");
    disk.write("a", "of the user");
    EXPECT_EQ(clearOwnFiles(openDirectory(disk).get()), ENOTEMPTY);
    EXPECT_THAT(disk.names(), testing::SizeIs(4));
    std::filesystem::remove(disk.at("a"));
    EXPECT_EQ(clearOwnFiles(openDirectory(disk).get()), 0);
    EXPECT_THAT(disk.names(), IsEmpty());
}

TEST(OwnFiles, ClearingLeavesAFileInTheMaking) {
    const TemporaryDirectory disk;
    const UniqueFd directory = openDirectory(disk);
    TemporaryFile live;
    ASSERT_EQ(live.create(directory.get(), 0600), 0);
    EXPECT_EQ(clearOwnFiles(directory.get()), 0);
    ASSERT_EQ(live.commit("a"), 0);
    EXPECT_THAT(disk.names(), ElementsAre("a"));
}

}  // namespace
}  // namespace coffrelune
