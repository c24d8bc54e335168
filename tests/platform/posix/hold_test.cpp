#include "platform/posix/hold.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/wait.h>

#include <cerrno>

#include "platform/posix/posix_platform.h"
#include "platform/posix/temporary_directory.h"

// How a held tree is reached; the same by the kernel's own call and in steps.

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t linkRefused = error_number::cannotResolveName;

class HoldTest : public testing::TestWithParam<Descent> {
  protected:
    HoldTest() {
        disk_.makeDirectory("arbre/Sous");
        disk_.makeDirectory("dehors");
        disk_.write("arbre/a", "inside");
        disk_.write("arbre/Sous/b", "inside");
        disk_.write("dehors/b", "outside");
    }

    FileService& files() { return platform_.files(); }

    std::unique_ptr<HeldTree> hold(const std::string& path) {
        std::unique_ptr<HeldTree> held;
        EXPECT_EQ(files().hold(path, held).code(), 0U) << path;
        return held;
    }

    int openCode(const std::string& path, int flags) {
        Hold tree;
        tree.directory.reset(open(disk_.at("arbre").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        tree.descent = GetParam();
        UniqueFd fd;
        const int error = openBelow(tree, path, flags, fd);
        EXPECT_EQ(fd.valid(), error == 0) << path;
        return error;
    }

    std::string read(const std::string& path) {
        std::string bytes;
        const Status status = files().readWhole(path, 100, bytes);
        return status.ok() ? bytes : std::to_string(status.code());
    }

    void makeLink(const std::string& target, const std::string& name) {
        ASSERT_EQ(symlink(target.c_str(), disk_.at(name).c_str()), 0);
    }

    /// The directory that the tree had goes away, and a link leads out of it in its place.
    void swapForLink() {
        std::filesystem::rename(disk_.at("arbre/Sous"), disk_.at("arbre/avant"));
        makeLink(disk_.at("dehors"), "arbre/Sous");
    }

    TemporaryDirectory disk_;
    PosixPlatform platform_{
        std::vector<PathRoot>{PathRoot::drive('D', disk_.at(), disk_.stat().st_dev)},
        {},
        GetParam()};
};

INSTANTIATE_TEST_SUITE_P(In, HoldTest, testing::Values(Descent::kernel, Descent::steps),
                         [](const auto& param) {
                             return param.param == Descent::kernel ? "OneCall" : "Steps";
                         });

TEST_P(HoldTest, OpensWhatLiesBelow) {
    EXPECT_EQ(openCode("a", O_RDONLY), 0);
    EXPECT_EQ(openCode("Sous", O_RDONLY | O_DIRECTORY), 0);
    EXPECT_EQ(openCode("Sous/b", O_RDONLY | O_NOFOLLOW), 0);
    EXPECT_EQ(openCode("Sous/b", O_PATH | O_NOFOLLOW), 0);
    EXPECT_EQ(openCode("absent", O_RDONLY), ENOENT);
    EXPECT_EQ(openCode("absent/b", O_RDONLY), ENOENT);
    EXPECT_EQ(openCode("a/b", O_RDONLY), ENOTDIR);
    EXPECT_EQ(openCode("a", O_RDONLY | O_DIRECTORY), ENOTDIR);
}

TEST_P(HoldTest, RefusesEveryLink) {
    makeLink("Sous", "arbre/lien");
    makeLink("a", "arbre/lien.txt");
    makeLink("/", "arbre/tout");
    EXPECT_EQ(openCode("lien", O_PATH | O_DIRECTORY), ELOOP);
    EXPECT_EQ(openCode("lien", O_RDONLY | O_DIRECTORY), ELOOP);
    EXPECT_EQ(openCode("lien", O_RDONLY | O_DIRECTORY | O_NOFOLLOW), ENOTDIR);
    EXPECT_EQ(openCode("lien/b", O_RDONLY), ELOOP);
    EXPECT_EQ(openCode("lien/b", O_PATH | O_NOFOLLOW), ELOOP);
    EXPECT_EQ(openCode("lien.txt", O_RDONLY), ELOOP);
    EXPECT_EQ(openCode("lien.txt", O_RDONLY | O_NOFOLLOW), ELOOP);
    EXPECT_EQ(openCode("lien.txt", O_PATH | O_NOFOLLOW), 0);
    EXPECT_EQ(openCode("tout/etc", O_PATH | O_DIRECTORY), ELOOP);
}

TEST_P(HoldTest, OpensPathsThatTheSystemTakesInPiecesOnly) {
    const std::string name(200, 'n');
    std::string deep;
    auto held = hold("D:\\arbre");
    std::string core = "D:\\arbre";
    for (int level = 0; level < 50; ++level) {
        deep += (level == 0 ? "" : "/") + name;
        core += "\\" + name;
        ASSERT_TRUE(files().createDirectory(core, DirectoryAccess::usual).ok()) << level;
    }
    EXPECT_EQ(openCode(deep, O_PATH | O_DIRECTORY), 0);
    EXPECT_EQ(openCode(deep + "/absent", O_PATH | O_DIRECTORY), ENOENT);
    ASSERT_TRUE(files().writeWhole(core + "\\x", "deep", Durability::nextFlush).ok());
    EXPECT_EQ(read(core + "\\x"), "deep");
}

TEST_P(HoldTest, DirectoryThatBecomesALinkLeadsNobodyOut) {
    const auto held = hold("D:\\arbre");
    EXPECT_EQ(read("D:\\arbre\\Sous\\b"), "inside");
    swapForLink();
    const std::string file = "D:\\arbre\\Sous\\b";
    FileEntry entry;
    std::unique_ptr<Directory> directory;
    std::vector<std::string> names;
    EXPECT_EQ(read(file), "1921");
    EXPECT_EQ(files().lookUp(file, LinkRule::follow, entry).code(), linkRefused);
    EXPECT_EQ(files().copyFile(file, "D:\\arbre\\c", LinkRule::refuse, nullptr).code(),
              linkRefused);
    EXPECT_EQ(files().copyFile("D:\\arbre\\a", file, LinkRule::refuse, nullptr).code(),
              linkRefused);
    EXPECT_EQ(files().writeWhole(file, "new", Durability::now).code(), linkRefused);
    EXPECT_EQ(files().removeFile(file).code(), linkRefused);
    EXPECT_EQ(files().setAttributes(file, attribute::readOnly).code(), linkRefused);
    EXPECT_EQ(files().setTimes(file, {1, 1, 1}).code(), linkRefused);
    EXPECT_EQ(files().createDirectory("D:\\arbre\\Sous\\d", DirectoryAccess::ownerOnly).code(),
              linkRefused);
    EXPECT_EQ(files().removeDirectory("D:\\arbre\\Sous").code(), 267U);
    EXPECT_EQ(files().removeLeftovers("D:\\arbre\\Sous").code(), linkRefused);
    EXPECT_EQ(files().ownFiles("D:\\arbre\\Sous", names).code(), linkRefused);
    EXPECT_EQ(
        files().openDirectory("D:\\arbre\\Sous", LinkRule::follow, Wanted::files, directory).code(),
        linkRefused);
    EXPECT_EQ(disk_.read("dehors/b"), "outside");
    EXPECT_THAT(disk_.names("dehors"), ElementsAre("b"));
    EXPECT_EQ(disk_.stat("dehors/b").st_mode & S_IWUSR, unsigned{S_IWUSR});
}

TEST_P(HoldTest, DirectoryThatIsOpenAgainIsReachedFromTheHold) {
    const auto held = hold("D:\\arbre");
    std::vector<std::unique_ptr<Directory>> many(200);
    for (auto& directory : many) {
        ASSERT_TRUE(
            files()
                .openDirectory("D:\\arbre\\Sous", LinkRule::refuse, Wanted::nothing, directory)
                .ok());
    }
    swapForLink();
    FileEntry entry;
    EXPECT_FALSE(many.back()->lookUp("b", entry));
    EXPECT_EQ(many.back()->status().code(), linkRefused);
}

TEST_P(HoldTest, LinkItselfIsLookedAtCopiedAndRemoved) {
    makeLink("a", "arbre/lien");
    const auto held = hold("D:\\arbre");
    FileEntry entry;
    ASSERT_TRUE(files().lookUp("D:\\arbre\\lien", LinkRule::refuse, entry).ok());
    EXPECT_TRUE(entry.isLink());
    ASSERT_TRUE(
        files().copyFile("D:\\arbre\\lien", "D:\\arbre\\l2", LinkRule::refuse, nullptr).ok());
    EXPECT_EQ(std::filesystem::read_symlink(disk_.at("arbre/l2")), "a");
    EXPECT_EQ(read("D:\\arbre\\l2"), "1921");
    EXPECT_EQ(files().writeWhole("D:\\arbre\\l2", "new", Durability::now).code(), linkRefused);
    EXPECT_TRUE(files().removeFile("D:\\arbre\\l2").ok());
    EXPECT_EQ(disk_.read("arbre/a"), "inside");
}

TEST_P(HoldTest, RemovedDirectoryDoesNotSeemEmpty) {
    const auto held = hold("D:\\arbre\\Sous");
    std::filesystem::remove_all(disk_.at("arbre/Sous"));
    disk_.makeDirectory("arbre/Sous");
    std::unique_ptr<Directory> directory;
    EXPECT_EQ(files()
                  .openDirectory("D:\\arbre\\Sous", LinkRule::refuse, Wanted::everything, directory)
                  .code(),
              2U);
    EXPECT_EQ(read("D:\\arbre\\Sous\\b"), "2");
    EXPECT_NE(files().createDirectory("D:\\arbre\\Sous\\d", DirectoryAccess::usual).code(), 0U);
    EXPECT_THAT(disk_.names("arbre/Sous"), IsEmpty());
}

TEST_P(HoldTest, TopOfATreeIsNeitherRemovedNorReplaced) {
    const auto held = hold("D:\\arbre\\Sous");
    std::filesystem::remove(disk_.at("arbre/Sous/b"));
    EXPECT_EQ(files().removeDirectory("D:\\arbre\\Sous").code(), 5U);
    EXPECT_EQ(files().removeFile("D:\\arbre\\Sous").code(), 5U);
    EXPECT_EQ(files().createDirectory("D:\\arbre\\Sous", DirectoryAccess::usual).code(), 183U);
    EXPECT_EQ(files().copyFile("D:\\arbre\\a", "D:\\arbre\\Sous", LinkRule::refuse, nullptr).code(),
              5U);
}

TEST_P(HoldTest, OutlivedByItsDirectoriesAndEndsAllTheSame) {
    auto held = hold("D:\\arbre");
    std::unique_ptr<Directory> directory;
    ASSERT_TRUE(
        files().openDirectory("D:\\arbre", LinkRule::refuse, Wanted::everything, directory).ok());
    held.reset();
    makeLink("Sous", "arbre/lien");
    EXPECT_EQ(read("D:\\arbre\\lien\\b"), "inside");
    FileEntry entry;
    EXPECT_TRUE(directory->lookUp("a", entry));
}

constexpr std::uint32_t taken = error_number::lockViolation;

class TreeLocksTest : public testing::Test {
  protected:
    std::vector<PathRoot> roots() const { return {PathRoot::drive('D', disk_.at())}; }

    std::unique_ptr<HeldTree> hold() {
        std::unique_ptr<HeldTree> held;
        EXPECT_TRUE(platform_.files().hold("D:\\", held).ok());
        return held;
    }

    /// What another process is told.
    std::uint32_t elsewhere(TreeUse use) const {
        const pid_t child = fork();
        EXPECT_GE(child, 0);
        if (child == 0) {
            PosixPlatform platform(roots());
            std::unique_ptr<HeldTree> held;
            if (!platform.files().hold("D:\\", held).ok()) _exit(255);
            _exit(static_cast<int>(held->claim(use).code()));
        }
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status));
        return static_cast<std::uint32_t>(WEXITSTATUS(status));
    }

    TemporaryDirectory disk_;
    PosixPlatform platform_{roots()};
};

TEST_F(TreeLocksTest, ReaderLetsReadersInAndAWriterNobody) {
    const auto held = hold();
    EXPECT_EQ(elsewhere(TreeUse::write), 0U);
    ASSERT_TRUE(held->claim(TreeUse::read).ok());
    EXPECT_EQ(elsewhere(TreeUse::read), 0U);
    EXPECT_EQ(elsewhere(TreeUse::write), taken);
    ASSERT_TRUE(held->claim(TreeUse::write).ok());
    EXPECT_EQ(elsewhere(TreeUse::read), taken);
}

TEST_F(TreeLocksTest, RefusedWriterStaysTheReaderThatItWas) {
    const auto held = hold();
    ASSERT_TRUE(held->claim(TreeUse::read).ok());
    PosixPlatform other(roots());
    std::unique_ptr<HeldTree> reader;
    ASSERT_TRUE(other.files().hold("D:\\", reader).ok());
    ASSERT_TRUE(reader->claim(TreeUse::read).ok());
    EXPECT_EQ(held->claim(TreeUse::write).code(), taken);
    reader.reset();
    EXPECT_EQ(elsewhere(TreeUse::write), taken);
    EXPECT_EQ(elsewhere(TreeUse::read), 0U);
    EXPECT_TRUE(held->claim(TreeUse::write).ok());
}

TEST_F(TreeLocksTest, WriterThatGoesLeavesTheReadersTheirLock) {
    auto reader = hold();
    auto writer = hold();
    ASSERT_TRUE(reader->claim(TreeUse::read).ok());
    ASSERT_TRUE(writer->claim(TreeUse::write).ok());
    EXPECT_EQ(elsewhere(TreeUse::read), taken);
    writer.reset();
    EXPECT_EQ(elsewhere(TreeUse::read), 0U);
    EXPECT_EQ(elsewhere(TreeUse::write), taken);
    reader.reset();
    EXPECT_EQ(elsewhere(TreeUse::write), 0U);
}

TEST_F(TreeLocksTest, ProgramMayWorkOnTheDirectoryThatItGuards) {
    ASSERT_TRUE(platform_.guard().claim("D:\\"));
    const auto held = hold();
    EXPECT_TRUE(held->claim(TreeUse::read).ok());
    EXPECT_TRUE(held->claim(TreeUse::write).ok());
    EXPECT_EQ(elsewhere(TreeUse::read), taken);
}

TEST_F(TreeLocksTest, NothingIsLeftBehind) {
    {
        const auto held = hold();
        ASSERT_TRUE(held->claim(TreeUse::write).ok());
        EXPECT_TRUE(held->flush().ok());
    }
    EXPECT_THAT(disk_.names(), testing::IsEmpty());
}

TEST_P(HoldTest, DeepPathsLeadToWhatTheyNameNow) {
    std::string path = "arbre";
    for (int level = 0; level < 40; ++level) path += "/n" + std::to_string(level);
    const std::string below = path.substr(std::string("arbre/").size());
    const auto make = [&](const std::string& text) {
        disk_.makeDirectory(path);
        disk_.write(path + "/f", text);
    };
    Hold tree;
    tree.directory.reset(open(disk_.at("arbre").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    tree.descent = GetParam();
    const auto inodeOf = [&](const std::string& deep) {
        UniqueFd fd;
        struct stat information {};
        EXPECT_EQ(openBelow(tree, deep, O_PATH, fd), 0) << deep;
        EXPECT_EQ(fstat(fd.get(), &information), 0);
        return information.st_ino;
    };
    make("first");
    EXPECT_EQ(inodeOf(below + "/f"), disk_.stat(path + "/f").st_ino);
    EXPECT_EQ(inodeOf(below), disk_.stat(path).st_ino);
    EXPECT_EQ(inodeOf("n0/n1"), disk_.stat("arbre/n0/n1").st_ino);
    EXPECT_EQ(inodeOf(below + "/f"), disk_.stat(path + "/f").st_ino);
    // What was kept on the way is gone, and another directory bears each name.
    std::filesystem::remove_all(disk_.at("arbre/n0"));
    make("second");
    EXPECT_EQ(inodeOf(below + "/f"), disk_.stat(path + "/f").st_ino);
    std::filesystem::remove_all(disk_.at("arbre/n0"));
    UniqueFd fd;
    EXPECT_EQ(openBelow(tree, below + "/f", O_PATH, fd), ENOENT);
}

TEST(Waypoints, AreKeptAsLongAsThePathsLieInThem) {
    Waypoints points;
    const auto lengthOf = [&](const char* path) { return points.find(path).length; };
    EXPECT_EQ(lengthOf("a/b/c"), 0U);
    points.keep("a/b", UniqueFd(open("/", O_PATH | O_CLOEXEC)));
    points.keep("a/b/c/d", UniqueFd(open("/", O_PATH | O_CLOEXEC)));
    EXPECT_EQ(lengthOf("a/b/c/d/e"), 7U);
    EXPECT_EQ(lengthOf("a/b/c/dd"), 3U);
    EXPECT_EQ(lengthOf("a/b/c/d/e"), 3U);
    EXPECT_EQ(lengthOf("a/b"), 0U);  // the directory itself is reached from above
    EXPECT_EQ(lengthOf("a/b/c"), 0U);
}

}  // namespace
}  // namespace coffrelune
