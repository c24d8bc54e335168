// Whose copies are, and what their owner may do with them.
#include "platform/posix/rights.h"

#include <fcntl.h>
#include <gmock/gmock.h>

#include "platform/posix/posix_platform.h"
#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

constexpr uid_t nobody = 65534;

class Umask {
  public:
    explicit Umask(mode_t mask) : old_(umask(mask)) {}
    Umask(const Umask&) = delete;
    Umask& operator=(const Umask&) = delete;
    ~Umask() { umask(old_); }

  private:
    mode_t old_;
};

class Rights : public testing::Test {
  protected:
    FileService& files() { return platform_.files(); }
    mode_t mode(const std::string& name) const { return disk_.stat(name).st_mode & 07777; }
    std::uint32_t copy(const std::string& from, const std::string& to) {
        return files().copyFile("D:\\" + from, "D:\\" + to, LinkRule::refuse, nullptr).code();
    }
    std::unique_ptr<HeldTree> hold(const std::string& path) {
        std::unique_ptr<HeldTree> held;
        EXPECT_EQ(files().hold(path, held).code(), 0U) << path;
        return held;
    }
    void setMode(const std::string& name, mode_t wanted) const {
        ASSERT_EQ(chmod(disk_.at(name).c_str(), wanted), 0) << name;
    }
    void give(const std::string& name) const {
        ASSERT_EQ(lchown(disk_.at(name).c_str(), nobody, nobody), 0) << name;
    }

    TemporaryDirectory disk_;
    PosixPlatform platform_{std::vector<PathRoot>{PathRoot::drive('D', disk_.at())}};
};

TEST_F(Rights, OfANewDirectoryAreTheSystemsOrTheOwnersAlone) {
    for (const mode_t mask : {mode_t{022}, mode_t{077}}) {
        const Umask umask(mask);
        const std::string name = std::to_string(mask);
        ASSERT_TRUE(files().createDirectory("D:\\" + name, DirectoryAccess::usual).ok());
        ASSERT_TRUE(files().createDirectory("D:\\p" + name, DirectoryAccess::ownerOnly).ok());
        EXPECT_EQ(mode(name), 0777U & ~mask);
        EXPECT_EQ(mode("p" + name), 0700U);
    }
}

TEST_F(Rights, AreMatchedWhateverTheUmask) {
    disk_.makeDirectory("original");
    disk_.makeDirectory("copie");
    for (const mode_t mask : {mode_t{022}, mode_t{077}}) {
        const Umask umask(mask);
        for (const mode_t wanted :
             {mode_t{0755}, mode_t{02775}, mode_t{01777}, mode_t{0555}, mode_t{0}, mode_t{0700}}) {
            setMode("original", wanted);
            ASSERT_TRUE(files().matchDirectory("D:\\original", "D:\\copie").ok());
            EXPECT_EQ(mode("copie"), wanted);
        }
    }
}

TEST_F(Rights, MatchedWithTheOwnerWhenRootMatches) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give directories away";
    disk_.makeDirectory("original");
    disk_.makeDirectory("copie");
    give("original");
    setMode("original", 02750);
    ASSERT_TRUE(files().matchDirectory("D:\\original", "D:\\copie").ok());
    EXPECT_EQ(disk_.stat("copie").st_uid, nobody);
    EXPECT_EQ(disk_.stat("copie").st_gid, nobody);
    EXPECT_EQ(mode("copie"), 02750U);
}

TEST_F(Rights, OfASomebodyElsesDirectoryStayAsTheyAre) {
    if (geteuid() != 0) GTEST_SKIP() << "needs directories of two users";
    disk_.makeDirectory("original");
    disk_.makeDirectory("copie");
    setMode("original", 0711);
    setMode("copie", 0755);
    {
        const WithoutPrivileges user;
        EXPECT_TRUE(files().matchDirectory("D:\\original", "D:\\copie").ok());
    }
    EXPECT_EQ(mode("copie"), 0755U);
}

// The kernel takes it from a directory whose mode is changed by somebody outside its group.
TEST_F(Rights, SetgidForAGroupOfOthersStaysAsLongAsNoOtherRightIsToBeGiven) {
    if (geteuid() != 0) GTEST_SKIP() << "needs a directory of a foreign group";
    constexpr gid_t foreign = 65533;
    disk_.makeDirectory("original");
    disk_.makeDirectory("copie");
    ASSERT_EQ(chown(disk_.at("copie").c_str(), nobody, foreign), 0);
    setMode("original", 02750);
    const auto match = [&](mode_t before) {
        setMode("copie", before);
        const WithoutPrivileges user;
        EXPECT_TRUE(files().matchDirectory("D:\\original", "D:\\copie").ok());
    };
    match(02750);
    EXPECT_EQ(mode("copie"), 02750U);
    match(02700);
    EXPECT_EQ(mode("copie"), 0750U);
    ASSERT_EQ(disk_.stat("copie").st_gid, foreign);
}

TEST_F(Rights, FilesAndLinksAreTheirOwnersWhenRootCopiesThem) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give files away";
    disk_.write("a", "abc");
    ASSERT_EQ(symlink("a", disk_.at("lien").c_str()), 0);
    give("a");
    give("lien");
    setMode("a", 0640);
    ASSERT_EQ(copy("a", "b"), 0U);
    ASSERT_EQ(copy("lien", "l2"), 0U);
    for (const std::string name : {"b", "l2"}) {
        EXPECT_EQ(disk_.stat(name).st_uid, nobody) << name;
        EXPECT_EQ(disk_.stat(name).st_gid, nobody) << name;
    }
    EXPECT_EQ(mode("b"), 0640U);
    EXPECT_EQ(disk_.stat("a").st_mtim.tv_sec, disk_.stat("b").st_mtim.tv_sec);
}

TEST_F(Rights, FileOfSomebodyElseIsOnesOwnInACopyByAUser) {
    if (geteuid() != 0) GTEST_SKIP() << "needs files of two users";
    disk_.write("a", "abc");
    setMode("a", 0644);
    {
        const WithoutPrivileges user;
        EXPECT_EQ(copy("a", "b"), 0U);
    }
    EXPECT_EQ(disk_.stat("b").st_uid, nobody);
    EXPECT_EQ(mode("b"), 0644U);
}

/// A tree of an ordinary user with a directory that bars even him.
class BarredDirectory : public Rights {
  protected:
    void SetUp() override {
        disk_.write("a", "abc");
        setMode("a", 0644);
        disk_.makeDirectory("copie/ferme/Vide");
        disk_.write("copie/ferme/vieux", "old");
        ASSERT_EQ(symlink("x", disk_.at("lien").c_str()), 0);
        for (const char* name : {"copie", "copie/ferme", "copie/ferme/Vide", "copie/ferme/vieux"}) {
            if (geteuid() == 0) give(name);
        }
        setMode("copie/ferme", 0555);
    }
};

TEST_F(BarredDirectory, TakesWhatIsWrittenBelowAHold) {
    const WithoutPrivileges user;
    const auto held = hold("D:\\copie");
    EXPECT_EQ(copy("a", "copie\\ferme\\a"), 0U);
    EXPECT_EQ(mode("copie/ferme"), 0755U);
    setMode("copie/ferme", 0555);
    EXPECT_EQ(copy("lien", "copie\\ferme\\lien"), 0U);
    setMode("copie/ferme", 0555);
    EXPECT_EQ(files().createDirectory("D:\\copie\\ferme\\d", DirectoryAccess::ownerOnly).code(),
              0U);
    setMode("copie/ferme", 0555);
    EXPECT_EQ(files().removeFile("D:\\copie\\ferme\\vieux").code(), 0U);
    setMode("copie/ferme", 0555);
    EXPECT_EQ(files().removeDirectory("D:\\copie\\ferme\\Vide").code(), 0U);
    setMode("copie/ferme", 0555);
    EXPECT_EQ(files().writeWhole("D:\\copie\\ferme\\w", "abc", Durability::nextFlush).code(), 0U);
    EXPECT_THAT(disk_.names("copie/ferme"), ElementsAre("a", "d", "lien", "w"));
    EXPECT_TRUE(files().matchDirectory("D:\\copie", "D:\\copie\\ferme").ok());
    EXPECT_EQ(mode("copie/ferme"), mode("copie"));
}

TEST_F(BarredDirectory, TakesAFileWhereItMayNotEvenBeEntered) {
    setMode("copie/ferme", 0400);
    const WithoutPrivileges user;
    const auto held = hold("D:\\copie");
    EXPECT_EQ(copy("a", "copie\\ferme\\a"), 0U);
    EXPECT_EQ(mode("copie/ferme"), 0700U);
}

/// Tells how the copies of a batch have ended.
class Ends final : public CopyEvents {
  public:
    void committed(std::uint64_t, const Status& status) override { codes.push_back(status.code()); }
    void waiting() override {}

    std::vector<std::uint32_t> codes;
};

/// The first directory that a batch writes to is where it flushes the volume.
class UnlistedDirectory : public BarredDirectory {
  protected:
    /// Copies "a" there in a batch that has written nowhere else.
    std::vector<std::uint32_t> copyInABatch() {
        const auto held = hold("D:\\copie");
        std::unique_ptr<Directory> source;
        std::unique_ptr<Directory> target;
        EXPECT_TRUE(files().openDirectory("D:\\", LinkRule::follow, Wanted::nothing, source).ok());
        EXPECT_TRUE(
            files()
                .openDirectory("D:\\copie\\ferme", LinkRule::refuse, Wanted::nothing, target)
                .ok());
        FileEntry entry;
        EXPECT_TRUE(source->lookUp("a", entry));
        Ends ends;
        const auto batch = files().startBatch("D:\\copie", AfterFailure::goOn, ends);
        std::uint64_t ticket = 0;
        const Status added = batch->add(
            {*source, *target, entry, "D:\\a", "D:\\copie\\ferme\\a", true, false, false, nullptr},
            ticket);
        EXPECT_EQ(added.code(), 0U);
        EXPECT_TRUE(batch->finish().ok());
        return ends.codes;
    }
};

TEST_F(UnlistedDirectory, OfOnesOwnTakesTheFirstFileOfABatch) {
    setMode("copie/ferme", 0300);
    const WithoutPrivileges user;
    EXPECT_THAT(copyInABatch(), ElementsAre(0U));
    EXPECT_EQ(disk_.read("copie/ferme/a"), "abc");
}

TEST_F(UnlistedDirectory, OfSomebodyElseTakesTheFirstFileOfABatch) {
    if (geteuid() != 0) GTEST_SKIP() << "needs directories of two users";
    ASSERT_EQ(chown(disk_.at("copie/ferme").c_str(), 0, 0), 0);
    setMode("copie/ferme", 0733);
    {
        const WithoutPrivileges user;
        EXPECT_THAT(copyInABatch(), ElementsAre(0U));
    }
    EXPECT_EQ(mode("copie/ferme"), 0733U);
    EXPECT_EQ(disk_.read("copie/ferme/a"), "abc");
}

TEST_F(BarredDirectory, IsRespectedWithoutAHold) {
    {
        const WithoutPrivileges user;
        EXPECT_EQ(copy("a", "copie\\ferme\\a"), 5U);
        EXPECT_EQ(files().removeFile("D:\\copie\\ferme\\vieux").code(), 5U);
    }
    EXPECT_EQ(mode("copie/ferme"), 0555U);
    EXPECT_THAT(disk_.names("copie/ferme"), ElementsAre("Vide", "vieux"));
}

TEST_F(BarredDirectory, OfSomebodyElseIsRespected) {
    if (geteuid() != 0) GTEST_SKIP() << "needs directories of two users";
    ASSERT_EQ(chown(disk_.at("copie/ferme").c_str(), 0, 0), 0);
    const WithoutPrivileges user;
    const auto held = hold("D:\\copie");
    EXPECT_EQ(copy("a", "copie\\ferme\\a"), 5U);
    EXPECT_EQ(mode("copie/ferme"), 0555U);
}

TEST_F(BarredDirectory, IsRemovedWithTheProgramsOwnFiles) {
    disk_.makeDirectory("copie/vide");
    disk_.write("copie/vide/.~coffrelune-0123456789abcdef.copie", "pair");
    if (geteuid() == 0) give("copie/vide");
    setMode("copie/vide", 0555);
    const WithoutPrivileges user;
    const auto held = hold("D:\\copie");
    EXPECT_EQ(files().removeDirectory("D:\\copie\\vide").code(), 0U);
    EXPECT_THAT(disk_.names("copie"), ElementsAre("ferme"));
    EXPECT_EQ(files().removeDirectory("D:\\copie\\ferme").code(), 145U);
}

}  // namespace
}  // namespace coffrelune
