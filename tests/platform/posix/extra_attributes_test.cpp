// What a copy takes over beside content, owner, mode and times, on a real disk.
#include "platform/posix/extra_attributes.h"

#include <gmock/gmock.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "platform/posix/posix_platform.h"
#include "platform/posix/temporary_directory.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

constexpr const char* accessList = "system.posix_acl_access";
constexpr const char* listOfChildren = "system.posix_acl_default";

/// An access list as the system keeps it: the owner, one user more, the group, the mask, others.
std::string listFor(std::uint32_t user) {
    struct Entry {
        std::uint16_t tag, rights;
        std::uint32_t id;
    };
    constexpr std::uint32_t nobody = UINT32_MAX;
    const std::array<Entry, 5> entries = {
        {{1, 6, nobody}, {2, 4, user}, {4, 4, nobody}, {16, 4, nobody}, {32, 4, nobody}}};
    std::string bytes("\2\0\0\0", 4);
    return bytes.append(reinterpret_cast<const char*>(entries.data()), sizeof entries);
}

class ExtraAttributesTest : public testing::Test, private CopyEvents {
  protected:
    void SetUp() override {
        disk_.makeDirectory("de");
        disk_.makeDirectory("vers");
        disk_.write("de/a", "abc");
        if (set("de/a", "user.essai", "1") != 0) {
            GTEST_SKIP() << disk_.at() << " holds no attributes of users";
        }
        if (set("de/a", accessList, listFor(65533)) != 0) {
            GTEST_SKIP() << disk_.at() << " holds no access lists";
        }
        removexattr(disk_.at("de/a").c_str(), accessList);
        removexattr(disk_.at("de/a").c_str(), "user.essai");
        chmod(disk_.at("de/a").c_str(), 0644);
    }

    int set(const std::string& name, const char* attribute, const std::string& value) {
        const std::string path = disk_.at(name);
        return setxattr(path.c_str(), attribute, value.data(), value.size(), 0);
    }
    std::string get(const std::string& name, const char* attribute) {
        std::array<char, 70'000> value{};
        const ssize_t size =
            getxattr(disk_.at(name).c_str(), attribute, value.data(), value.size());
        return size < 0 ? "-" : std::string(value.data(), static_cast<std::size_t>(size));
    }

    FileService& files() { return platform_.files(); }
    /// In a batch, as a walk does it.
    std::uint32_t copy(const std::string& name) {
        std::unique_ptr<Directory> from;
        std::unique_ptr<Directory> to;
        constexpr LinkRule links = LinkRule::refuse;
        EXPECT_TRUE(files().openDirectory("D:\\de", links, Wanted::files, from).ok());
        EXPECT_TRUE(files().openDirectory("D:\\vers", links, Wanted::nothing, to).ok());
        FileEntry entry;
        FileEntry old;
        EXPECT_TRUE(from->lookUp(name, entry));
        const auto batch = files().startBatch("D:\\vers", AfterFailure::goOn, *this);
        const std::string source = "D:\\de\\" + name;
        const std::string target = "D:\\vers\\" + name;
        CopyRequest request{*from, *to, entry, source, target};
        request.isNew = !to->lookUp(name, old);
        std::uint64_t ticket = 0;
        const Status added = batch->add(request, ticket);
        if (!added.ok()) return added.code();
        EXPECT_TRUE(batch->finish().ok());
        return committed_;
    }

    TemporaryDirectory disk_;
    PosixPlatform platform_{std::vector<PathRoot>{PathRoot::drive('D', disk_.at())}};

  private:
    void committed(std::uint64_t, const Status& status) override { committed_ = status.code(); }
    void waiting() override {}

    std::uint32_t committed_ = 0;
};

TEST_F(ExtraAttributesTest, OfUsersGoWithTheFile) {
    ASSERT_EQ(set("de/a", "user.auteur", "Anne"), 0);
    ASSERT_EQ(set("de/a", "user.vide", ""), 0);
    ASSERT_EQ(copy("a"), 0U);
    EXPECT_EQ(get("vers/a", "user.auteur"), "Anne");
    EXPECT_EQ(get("vers/a", "user.vide"), "");
    ASSERT_EQ(files().copyFile("D:\\de\\a", "D:\\vers\\b", LinkRule::follow, nullptr).code(), 0U);
    EXPECT_EQ(get("vers/b", "user.auteur"), "Anne");
}

TEST_F(ExtraAttributesTest, ManyAndLargeOnesGoToo) {
    for (int i = 0; i < 30; ++i) {
        const std::string name =
            "user.nom assez long pour qu'il en faille plusieurs, numéro " + std::to_string(i);
        ASSERT_EQ(set("de/a", name.c_str(), std::to_string(i)), 0);
    }
    ASSERT_EQ(copy("a"), 0U);
    EXPECT_EQ(get("vers/a", "user.nom assez long pour qu'il en faille plusieurs, numéro 29"), "29");
}

TEST_F(ExtraAttributesTest, AccessListGoesWithTheFileAndItsMode) {
    ASSERT_EQ(set("de/a", accessList, listFor(65533)), 0);
    ASSERT_EQ(copy("a"), 0U);
    EXPECT_EQ(get("vers/a", accessList), listFor(65533));
    EXPECT_EQ(disk_.stat("vers/a").st_mode, disk_.stat("de/a").st_mode);
}

// Nobody may read the copy whom the original keeps out.
TEST_F(ExtraAttributesTest, AccessListOfTheDirectoryIsNotThatOfTheCopy) {
    ASSERT_EQ(set("vers", listOfChildren, listFor(65533)), 0);
    chmod(disk_.at("de/a").c_str(), 0640);
    ASSERT_EQ(copy("a"), 0U);
    EXPECT_EQ(get("vers/a", accessList), "-");
    EXPECT_EQ(disk_.stat("vers/a").st_mode & 07777, 0640U);
}

TEST_F(ExtraAttributesTest, ReadOnlyFileOfAUserKeepsThem) {
    ASSERT_EQ(set("de/a", "user.auteur", "Anne"), 0);
    chmod(disk_.at("vers").c_str(), 0777);
    ASSERT_EQ(chown(disk_.at("de/a").c_str(), 65534, 65534), 0) << "needs root";
    chmod(disk_.at("de/a").c_str(), 0444);
    {
        const WithoutPrivileges user;
        ASSERT_EQ(copy("a"), 0U);
    }
    EXPECT_EQ(get("vers/a", "user.auteur"), "Anne");
    EXPECT_EQ(disk_.stat("vers/a").st_mode & 07777, 0444U);
}

TEST_F(ExtraAttributesTest, OfADirectoryFollowThoseOfItsOriginal) {
    ASSERT_EQ(set("de", "user.auteur", "Anne"), 0);
    ASSERT_EQ(set("de", listOfChildren, listFor(65533)), 0);
    ASSERT_TRUE(files().matchDirectory("D:\\de", "D:\\vers").ok());
    EXPECT_EQ(get("vers", "user.auteur"), "Anne");
    EXPECT_EQ(get("vers", listOfChildren), listFor(65533));
    ASSERT_EQ(removexattr(disk_.at("de").c_str(), listOfChildren), 0);
    ASSERT_TRUE(files().matchDirectory("D:\\de", "D:\\vers").ok());
    EXPECT_EQ(get("vers", listOfChildren), "-");
}

TEST_F(ExtraAttributesTest, BitsThatLendRightsGoToACopyOfTheSameOwnerAlone) {
    chmod(disk_.at("de/a").c_str(), 06755);
    ASSERT_EQ(copy("a"), 0U);
    EXPECT_EQ(disk_.stat("vers/a").st_mode & 07777, 06755U);
    chmod(disk_.at("vers").c_str(), 0777);
    ASSERT_EQ(unlink(disk_.at("vers/a").c_str()), 0);
    if (geteuid() != 0) GTEST_SKIP() << "to copy as another user needs root";
    {
        const WithoutPrivileges user;
        ASSERT_EQ(copy("a"), 0U);
    }
    EXPECT_EQ(disk_.stat("vers/a").st_mode & 07777, 0755U);
}

/// A file that nobody can change, until it goes.
class Locked {
  public:
    Locked(const std::string& path, int flag) : fd_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        done_ = ioctl(fd_.get(), FS_IOC_SETFLAGS, &flag) == 0;
    }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    ~Locked() {
        int none = 0;
        ioctl(fd_.get(), FS_IOC_SETFLAGS, &none);
    }
    bool done() const { return done_; }

  private:
    UniqueFd fd_;
    bool done_ = false;
};

TEST_F(ExtraAttributesTest, LockedFilesAreToldAsSuchAndNeverReplaced) {
    for (const auto& [flag, lock] : {std::pair(FS_IMMUTABLE_FL, Lock::immutable),
                                     std::pair(FS_APPEND_FL, Lock::additionsOnly)}) {
        disk_.write("vers/a", "old");
        const Locked locked(disk_.at("vers/a"), flag);
        if (!locked.done()) GTEST_SKIP() << "locking a file needs root: " << strerror(errno);
        FileEntry entry;
        ASSERT_TRUE(files().lookUp("D:\\vers\\a", LinkRule::refuse, entry).ok());
        EXPECT_EQ(entry.lock, lock);
        EXPECT_EQ(copy("a"), 5U);
        EXPECT_EQ(disk_.read("vers/a"), "old");
        EXPECT_THAT(disk_.names("vers"), ElementsAre("a"));
    }
}

}  // namespace
}  // namespace coffrelune
