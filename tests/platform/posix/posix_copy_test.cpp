// What a copy does on Linux only; what it does on every system is in the contract suite.
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>

#include "platform/posix/posix_platform.h"
#include "platform/posix/temporary_directory.h"
#include "platform/posix/temporary_file.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PosixCopy : public testing::Test {
  protected:
    std::uint32_t copy(const std::string& from, const std::string& to,
                       LinkRule links = LinkRule::refuse, CopyObserver* observer = nullptr) {
        return files().copyFile("D:\\" + from, "D:\\" + to, links, observer).code();
    }
    FileService& files() { return platform_.files(); }
    void makeLink(const std::string& target, const std::string& name) {
        ASSERT_EQ(symlink(target.c_str(), disk_.at(name).c_str()), 0);
    }
    std::string textOf(const std::string& link) {
        return std::filesystem::read_symlink(disk_.at(link)).string();
    }

    TemporaryDirectory disk_;
    PosixPlatform platform_{std::vector<PathRoot>{PathRoot::drive('D', disk_.at())}};
};

class Abandoner final : public CopyObserver {
  public:
    explicit Abandoner(FileService& files) : files_(files) {}
    void chunkFinished(std::uint64_t) override { files_.abandonCopies(); }

  private:
    FileService& files_;
};

TEST_F(PosixCopy, TakesTimeToTheNanosecondAndMode) {
    disk_.write("a", "abc");
    disk_.setTime("a", 1'700'000'000, 123'456'789);
    chmod(disk_.at("a").c_str(), 04751);
    ASSERT_EQ(copy("a", "b"), 0U);
    EXPECT_EQ(disk_.stat("b").st_mtim.tv_sec, 1'700'000'000);
    EXPECT_EQ(disk_.stat("b").st_mtim.tv_nsec, 123'456'789);
    EXPECT_EQ(disk_.stat("b").st_mode & 07777, 04751U);
}

TEST_F(PosixCopy, SourceThatChangesMeanwhileKeepsALaterTimeThanItsCopy) {
    class Writer final : public CopyObserver {
      public:
        explicit Writer(const TemporaryDirectory& disk) : disk_(disk) {}
        void chunkFinished(std::uint64_t) override { disk_.setTime("a", 2'000'000'000, 0); }

      private:
        const TemporaryDirectory& disk_;
    };
    disk_.write("a", "abc");
    disk_.setTime("a", 1'000'000'000, 5);
    Writer writer(disk_);
    ASSERT_EQ(copy("a", "b", LinkRule::refuse, &writer), 0U);
    EXPECT_EQ(disk_.stat("b").st_mtim.tv_sec, 1'000'000'000);
}

TEST_F(PosixCopy, LinkIsCopiedAsALinkWithItsOwnTime) {
    disk_.write("cible", "abc");
    makeLink("cible", "lien");
    makeLink("/nulle/part", "perdu");
    disk_.makeDirectory("dossier");
    makeLink("dossier", "vers dossier");
    disk_.setTime("lien", 1'500'000'000, 123'456'700);
    for (const std::string name : {"lien", "perdu", "vers dossier"}) {
        ASSERT_EQ(copy(name, name + " copie"), 0U) << name;
        EXPECT_TRUE(S_ISLNK(disk_.stat(name + " copie").st_mode)) << name;
        EXPECT_EQ(textOf(name + " copie"), textOf(name));
    }
    EXPECT_EQ(disk_.stat("lien copie").st_mtim.tv_sec, 1'500'000'000);
    EXPECT_EQ(disk_.stat("lien copie").st_mtim.tv_nsec, 123'456'700);
}

TEST_F(PosixCopy, LinkReplacesAFileAndAnotherLinkButNoDirectory) {
    makeLink("x", "lien");
    disk_.write("fichier", "old");
    makeLink("y", "ancien");
    disk_.makeDirectory("dossier");
    EXPECT_EQ(copy("lien", "fichier"), 0U);
    EXPECT_EQ(copy("lien", "ancien"), 0U);
    EXPECT_EQ(copy("lien", "dossier"), 5U);
    EXPECT_EQ(textOf("fichier"), "x");
    EXPECT_EQ(textOf("ancien"), "x");
    EXPECT_THAT(disk_.names(), ElementsAre("ancien", "dossier", "fichier", "lien"));
}

TEST_F(PosixCopy, FollowedLinkGivesItsTargetsContent) {
    disk_.write("cible", "abc");
    disk_.setTime("cible", 1'500'000'000, 0);
    makeLink("cible", "lien");
    ASSERT_EQ(copy("lien", "b", LinkRule::follow), 0U);
    EXPECT_TRUE(S_ISREG(disk_.stat("b").st_mode));
    EXPECT_EQ(disk_.read("b"), "abc");
    EXPECT_EQ(disk_.stat("b").st_mtim.tv_sec, 1'500'000'000);
    makeLink("absent", "perdu");
    EXPECT_EQ(copy("perdu", "c", LinkRule::follow), 2U);
}

TEST_F(PosixCopy, FileReplacesALinkAndNotWhatItPointsTo) {
    disk_.write("a", "new");
    disk_.write("cible", "untouched");
    makeLink("cible", "b");
    ASSERT_EQ(copy("a", "b"), 0U);
    EXPECT_EQ(disk_.read("b"), "new");
    EXPECT_TRUE(S_ISREG(disk_.stat("b").st_mode));
    EXPECT_EQ(disk_.read("cible"), "untouched");
}

TEST_F(PosixCopy, FileOntoItselfUnderAnyNameIsRefused) {
    disk_.write("a", "abc");
    ASSERT_EQ(link(disk_.at("a").c_str(), disk_.at("autre nom").c_str()), 0);
    disk_.makeDirectory("d");
    makeLink(".", "ici");
    EXPECT_EQ(copy("a", "a"), 32U);
    EXPECT_EQ(copy("a", "autre nom"), 32U);
    EXPECT_EQ(copy("a", "ici\\a"), 32U);
    EXPECT_EQ(copy("ici", "ici"), 32U);
    EXPECT_EQ(disk_.read("a"), "abc");
    EXPECT_EQ(disk_.stat("a").st_nlink, 2U);
}

TEST_F(PosixCopy, NeitherOpensNorReplacesWhatIsNoFile) {
    disk_.write("a", "abc");
    ASSERT_EQ(mkfifo(disk_.at("tube").c_str(), 0666), 0);
    makeLink("tube", "lien");
    const UniqueFd listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    disk_.at("prise").copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(listener.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(copy("tube", "b"), 50U);
    EXPECT_EQ(copy("prise", "b"), 50U);
    EXPECT_EQ(copy("lien", "b", LinkRule::follow), 50U);
    EXPECT_EQ(copy("a", "tube"), 5U);
    EXPECT_TRUE(S_ISFIFO(disk_.stat("tube").st_mode));
    EXPECT_THAT(disk_.names(), ElementsAre("a", "lien", "prise", "tube"));
}

TEST_F(PosixCopy, AbandonedCopyLeavesTheOldFileAndNothingElse) {
    disk_.write("a", std::string(std::size_t{20} << 20, 'n'));
    disk_.write("b", "old");
    Abandoner abandoner(files());
    EXPECT_EQ(copy("a", "b", LinkRule::refuse, &abandoner), 1235U);
    EXPECT_EQ(disk_.read("b"), "old");
    EXPECT_THAT(disk_.names(), ElementsAre("a", "b"));
    disk_.write("petit", "x");
    EXPECT_EQ(copy("petit", "c"), 1235U);
    EXPECT_THAT(disk_.names(), ElementsAre("a", "b", "petit"));
}

TEST_F(PosixCopy, NamesOfAnyBytesPass) {
    for (const std::string name : {"\xFF\xFE\x80", "a\nb\tc", "*?\"<>|", "a\\b:c", " ", "..."}) {
        disk_.write(name, name);
        std::unique_ptr<Directory> directory;
        ASSERT_TRUE(files().openDirectory("D:\\", LinkRule::refuse, Wanted::files, directory).ok());
        FileEntry entry;
        ASSERT_TRUE(directory->next(entry)) << name;
        EXPECT_EQ(entry.name.find('\\'), std::string::npos);
        FileEntry found;
        EXPECT_TRUE(directory->lookUp(entry.name, found)) << name;
        EXPECT_EQ(found.id, entry.id);
        ASSERT_EQ(files().createDirectory("D:\\d", DirectoryAccess::usual).code(), 0U);
        ASSERT_EQ(copy(entry.name, "d\\" + entry.name), 0U) << name;
        EXPECT_EQ(disk_.read("d/" + name), name);
        std::filesystem::remove_all(disk_.at("d"));
        ASSERT_TRUE(files().removeFile("D:\\" + entry.name).ok()) << name;
        EXPECT_THAT(disk_.names(), IsEmpty());
    }
}

TEST_F(PosixCopy, ReadOnlySourceStaysReadOnlyOnTheCopy) {
    chmod(disk_.write("a", "abc").c_str(), 0444);
    {
        chmod(disk_.at().c_str(), 0777);
        const WithoutPrivileges user;
        EXPECT_EQ(copy("a", "b"), 0U);
    }
    EXPECT_EQ(disk_.stat("b").st_mode & 0777, 0444U);
}

TEST_F(PosixCopy, DestinationThatMayNotBeWrittenGetsNothing) {
    disk_.write("a", "abc");
    disk_.makeDirectory("ferme");
    chmod(disk_.at("ferme").c_str(), 0555);
    {
        const WithoutPrivileges user;
        EXPECT_EQ(copy("a", "ferme\\a"), 5U);
    }
    EXPECT_THAT(disk_.names("ferme"), IsEmpty());
}

}  // namespace
}  // namespace coffrelune
