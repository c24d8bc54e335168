#include "contract/posix_contract_system.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

namespace coffrelune {
namespace {

namespace fs = std::filesystem;

constexpr uid_t nobody = 65534;
constexpr int killedHalfWay = 42;
constexpr std::uint32_t greatestExitStatus = 255;

// Root reads everything; a test of what may not be read gives its privileges up for a while.
bool canGiveUpPrivileges() {
    if (geteuid() != 0) return true;
    const bool given = seteuid(nobody) == 0;
    return given && seteuid(0) == 0;
}

// A mount table of this process alone, so that a volume never outlives the test.
// Returns 0 or an errno value.
int ownMountTable() {
    static const bool own =
        unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    static const int error = own ? 0 : errno;
    return error;
}

class DiesAtFirstChunk final : public CopyObserver {
  public:
    void chunkFinished(std::uint64_t) override { _exit(killedHalfWay); }
};

}  // namespace

PosixContractSystem::PosixContractSystem() {
    std::string pattern = (fs::canonical(fs::temp_directory_path()) / "coffrelune-XXXXXX").string();
    EXPECT_NE(mkdtemp(pattern.data()), nullptr) << std::strerror(errno);
    base_ = pattern;
    fs::create_directory(base_ / "d");
    fs::create_directory(base_ / "e");
    for (const auto& path : {base_, base_ / "d", base_ / "e"}) {
        EXPECT_EQ(chmod(path.c_str(), 0777), 0);
    }
}

PosixContractSystem::~PosixContractSystem() {
    if (getuid() == 0) {
        EXPECT_EQ(seteuid(0), 0);
    }
    for (const auto& path : unreadable_) EXPECT_EQ(chmod(path.c_str(), 0700), 0);
    if (mounted_) {
        EXPECT_EQ(umount2((base_ / "d").c_str(), MNT_DETACH), 0);
    }
    std::error_code error;
    fs::remove_all(base_, error);
    EXPECT_FALSE(error) << error.message();
}

bool PosixContractSystem::mountSmallVolume(std::string& reason) {
    const std::string options = "mode=0777,size=" + std::to_string(smallVolume);
    int error = ownMountTable();
    if (error == 0 && mount("tmpfs", (base_ / "d").c_str(), "tmpfs", 0, options.c_str()) != 0) {
        error = errno;
    }
    mounted_ = error == 0;
    if (!mounted_) reason = std::string("mounting a small volume: ") + std::strerror(error);
    return mounted_;
}

void PosixContractSystem::start() {
    platform_ = makePlatform();
}

std::unique_ptr<PosixPlatform> PosixContractSystem::makePlatform() const {
    struct stat volume {};
    EXPECT_EQ(stat((base_ / "d").c_str(), &volume), 0);
    return std::make_unique<PosixPlatform>(std::vector<PathRoot>{
        PathRoot::drive('C', "/"), PathRoot::drive('D', base_ / "d", volume.st_dev),
        PathRoot::drive('E', base_ / "e")});
}

fs::path PosixContractSystem::native(const std::string& path) const {
    std::string below = path.substr(3);
    std::replace(below.begin(), below.end(), '\\', '/');
    return base_ / (path[0] == 'D' ? "d" : "e") / below;
}

std::string PosixContractSystem::otherSpelling(const std::string& path) {
    std::string spelled = "C:" + native(path).string();
    std::replace(spelled.begin(), spelled.end(), '/', '\\');
    return spelled;
}

void PosixContractSystem::makeDirectory(const std::string& path) {
    fs::create_directory(native(path));
    EXPECT_EQ(chmod(native(path).c_str(), 0777), 0) << path;
}

void PosixContractSystem::makeFile(const std::string& path, const std::string& content,
                                   std::uint64_t lastWrite) {
    std::ofstream(native(path), std::ios::binary) << content;
    // Whatever the umask: what a test without root's privileges wants to read it may read.
    EXPECT_EQ(chmod(native(path).c_str(), 0644), 0) << path;
    constexpr std::uint64_t second = 10'000'000;
    constexpr std::int64_t from1601To1970 = 11'644'473'600;
    timespec time{};
    time.tv_sec = static_cast<std::int64_t>(lastWrite / second) - from1601To1970;
    time.tv_nsec = static_cast<std::int64_t>(lastWrite % second) * 100;
    const timespec both[] = {time, time};
    EXPECT_EQ(utimensat(AT_FDCWD, native(path).c_str(), both, 0), 0) << path;
}

void PosixContractSystem::makeLink(const std::string& path, const std::string& target) {
    fs::create_symlink(target, native(path));
}

void PosixContractSystem::makeSpecial(const std::string& path) {
    EXPECT_EQ(mkfifo(native(path).c_str(), 0666), 0) << path;
}

void PosixContractSystem::makeUnreadable(const std::string& path) {
    EXPECT_EQ(chmod(native(path).c_str(), 0), 0) << path;
    unreadable_.push_back(native(path));
    if (geteuid() == 0) {
        EXPECT_EQ(seteuid(nobody), 0);
    }
}

bool PosixContractSystem::rename(const std::string& from, const std::string& to) {
    fs::rename(native(from), native(to));
    return true;
}

bool PosixContractSystem::cutShort(const std::string& path, std::uint64_t size) {
    fs::resize_file(native(path), size);
    return true;
}

std::uint32_t PosixContractSystem::codeElsewhere(
    const std::function<std::uint32_t(FileService& files)>& call) const {
    const pid_t child = fork();
    EXPECT_GE(child, 0);
    if (child == 0) {
        const std::unique_ptr<PosixPlatform> platform = makePlatform();
        _exit(static_cast<int>(std::min(call(platform->files()), greatestExitStatus)));
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    return static_cast<std::uint32_t>(WEXITSTATUS(status));
}

std::uint32_t PosixContractSystem::claimElsewhere(const std::string& path, TreeUse use) {
    return codeElsewhere([&](FileService& files) {
        std::unique_ptr<HeldTree> held;
        const Status status = files.hold(path, held);
        return status.ok() ? held->claim(use).code() : status.code();
    });
}

std::uint32_t PosixContractSystem::clearLeftoversElsewhere(const std::string& directory) {
    return codeElsewhere(
        [&](FileService& files) { return files.removeLeftovers(directory).code(); });
}

void PosixContractSystem::killCopyInto(const std::string& directory) {
    const std::string source = "E:\\copie-interrompue";
    makeFile(source, std::string(std::size_t{20} << 20, 'x'), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        DiesAtFirstChunk observer;
        (void)files().copyFile(source, directory + "\\interrompue", LinkRule::refuse, &observer);
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), killedHalfWay);
    EXPECT_FALSE(fs::exists(native(directory + "\\interrompue")));
}

std::optional<std::string> PosixContractSystem::content(const std::string& path) {
    if (!fs::is_regular_file(native(path))) return std::nullopt;
    std::ifstream file(native(path), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::vector<std::string> PosixContractSystem::names(const std::string& directory) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(native(directory))) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

namespace {

ContractParam directoryContract() {
    ContractParam param{"Linux",
                        [](std::string&) {
                            auto system = std::make_unique<PosixContractSystem>();
                            system->start();
                            return system;
                        },
                        {Capability::special, Capability::links, Capability::treeLinks,
                         Capability::rights, Capability::deep}};
    if (canGiveUpPrivileges()) {
        param.capabilities.push_back(Capability::unreadable);
    } else {
        std::fprintf(stderr,
                     "contract: Linux is left out of UnreadableContract: root cannot give "
                     "its privileges up here\n");
    }
    return param;
}

ContractParam smallVolumeContract() {
    return {"LinuxSmallVolume",
            [](std::string& reason) -> std::unique_ptr<ContractSystem> {
                auto system = std::make_unique<PosixContractSystem>();
                if (!system->mountSmallVolume(reason)) return nullptr;
                system->start();
                return system;
            },
            {Capability::special, Capability::small, Capability::links, Capability::treeLinks,
             Capability::rights, Capability::deep}};
}

}  // namespace

std::vector<ContractParam> nativeContracts() {
    return {directoryContract(), smallVolumeContract()};
}

}  // namespace coffrelune
