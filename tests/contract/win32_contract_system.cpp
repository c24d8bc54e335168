#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>

#include "contract/contract_system.h"
#include "platform/win32/test_disk.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/win32_platform.h"

namespace coffrelune {
namespace {

constexpr std::uint32_t killedHalfWay = 42;
constexpr const char* directoryVariable = "COFFRELUNE_TEST_KILLED_COPY";
constexpr const char* claimVariable = "COFFRELUNE_TEST_CLAIM";
constexpr std::uint32_t toldNothingWrong = 1000;  // the code is added: 0 and 1 end other tests

class DiesAtFirstChunk final : public CopyObserver {
  public:
    void chunkFinished(std::uint64_t) override {
        TerminateProcess(GetCurrentProcess(), killedHalfWay);
    }
};

/// "U:V:" as two roots; none unless both are drives of the system now.
std::vector<std::string> rootsIn(const std::string& letters) {
    std::vector<std::string> roots;
    const std::vector<std::string> present = Win32Drives().roots();
    for (std::size_t i = 0; i + 1 < letters.size(); i += 2) {
        const std::string root = letters.substr(i, 2) + "\\";
        if (std::find(present.begin(), present.end(), root) != present.end()) {
            roots.push_back(root);
        }
    }
    return roots;
}

/// Two directories under free letters, for as long as this lives. Windows alone can do that.
class SubstitutedDrives {
  public:
    SubstitutedDrives() {
        for (char letter = 'Y'; letter >= 'R' && letters_.size() < 4; --letter) {
            const std::string name{letter, ':'};
            if ((GetLogicalDrives() & (1U << (letter - 'A'))) != 0) continue;
            disk::makeDirectory(base_.at(name.substr(0, 1)));
            if (DefineDosDeviceW(0, wide(name).c_str(),
                                 wide(base_.at(name.substr(0, 1))).c_str()) != 0) {
                letters_ += name;
            }
        }
    }
    SubstitutedDrives(const SubstitutedDrives&) = delete;
    SubstitutedDrives& operator=(const SubstitutedDrives&) = delete;
    ~SubstitutedDrives() {
        for (std::size_t i = 0; i < letters_.size(); i += 2) {
            DefineDosDeviceW(DDD_REMOVE_DEFINITION, wide(letters_.substr(i, 2)).c_str(), nullptr);
        }
    }
    const std::string& letters() const { return letters_; }

  private:
    disk::Temporary base_;
    std::string letters_;
};

class Win32ContractSystem final : public ContractSystem {
  public:
    Win32ContractSystem(std::unique_ptr<SubstitutedDrives> own, std::vector<std::string> roots)
        : own_(std::move(own)), roots_(std::move(roots)) {
        for (const std::string& root : roots_) disk::empty(root);
    }
    ~Win32ContractSystem() override {
        for (const std::string& root : roots_) disk::empty(root);
    }

    FileService& files() override { return platform_.files(); }
    DriveService& drives() override { return platform_.drives(); }
    std::string drive() override { return roots_[0]; }
    std::string secondDrive() override { return roots_[1]; }
    std::string absentDrive() override { return "Q:\\"; }
    std::string otherSpelling(const std::string& path) override {
        std::string spelled = path;
        std::transform(spelled.begin(), spelled.end(), spelled.begin(),
                       [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
        spelled[0] = static_cast<char>(spelled[0] | 0x20);
        return spelled;
    }
    void makeDirectory(const std::string& path) override { disk::makeDirectory(path); }
    void makeFile(const std::string& path, const std::string& content,
                  std::uint64_t lastWrite) override {
        disk::makeFile(path, content, lastWrite);
    }
    void makeLink(const std::string& path, const std::string& target) override {
        const std::string beside = path.substr(0, path.rfind('\\') + 1) + target;
        const bool toDirectory = (disk::attributes(beside).value_or(0) & attribute::directory) != 0;
        EXPECT_TRUE(toDirectory ? disk::makeDirectoryLink(path, target)
                                : disk::makeFileLink(path, target));
    }
    void makeSpecial(const std::string&) override {}
    void makeUnreadable(const std::string&) override {}
    bool rename(const std::string& from, const std::string& to) override {
        return MoveFileExW(wide(from).c_str(), wide(to).c_str(), 0) != 0;
    }
    bool cutShort(const std::string& path, std::uint64_t size) override;
    std::uint32_t claimElsewhere(const std::string& path, TreeUse use) override;
    // What bars another process is the handle of the file: it bars every other service.
    std::uint32_t clearLeftoversElsewhere(const std::string& directory) override {
        return Win32Platform().files().removeLeftovers(directory).code();
    }
    void killCopyInto(const std::string& directory) override;
    std::optional<std::string> content(const std::string& path) override {
        return disk::content(path);
    }
    std::vector<std::string> names(const std::string& directory) override {
        return disk::names(directory);
    }
    std::uint64_t capacity() override {
        ULARGE_INTEGER total{};
        EXPECT_NE(GetDiskFreeSpaceExW(wide(drive()).c_str(), nullptr, &total, nullptr), 0);
        return total.QuadPart;
    }

  private:
    std::unique_ptr<SubstitutedDrives> own_;
    std::vector<std::string> roots_;
    Win32Platform platform_;
};

void Win32ContractSystem::killCopyInto(const std::string& directory) {
    makeFile(secondDrive() + "copie-interrompue", std::string(std::size_t{20} << 20, 'x'), 0);
    EXPECT_EQ(disk::runTestAgain("KilledCopy.DiesAtItsFirstChunk", directoryVariable,
                                 secondDrive() + "|" + directory),
              killedHalfWay);
    EXPECT_FALSE(disk::attributes(directory + "\\interrompue").has_value());
}

// Not a test of its own: the process that another test kills.
TEST(KilledCopy, DiesAtItsFirstChunk) {
    const std::string places = disk::environment(directoryVariable);
    if (places.empty()) GTEST_SKIP() << "runs only as the victim of another test";
    const std::size_t bar = places.find('|');
    DiesAtFirstChunk observer;
    (void)Win32Platform().files().copyFile(places.substr(0, bar) + "copie-interrompue",
                                           places.substr(bar + 1) + "\\interrompue",
                                           LinkRule::refuse, &observer);
    FAIL() << "the copy came to its end";
}

bool Win32ContractSystem::cutShort(const std::string& path, std::uint64_t size) {
    constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    void* file = CreateFileW(wide(path).c_str(), GENERIC_WRITE, shareAll, nullptr, OPEN_EXISTING, 0,
                             nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    LARGE_INTEGER end{};
    end.QuadPart = static_cast<LONGLONG>(size);
    const bool cut =
        SetFilePointerEx(file, end, nullptr, FILE_BEGIN) != 0 && SetEndOfFile(file) != 0;
    CloseHandle(file);
    return cut;
}

std::uint32_t Win32ContractSystem::claimElsewhere(const std::string& path, TreeUse use) {
    const std::uint32_t told = disk::runTestAgain("ClaimElsewhere.TellsItsCode", claimVariable,
                                                  (use == TreeUse::write ? "w" : "r") + path)
                                   .value_or(0);
    EXPECT_GE(told, toldNothingWrong);
    return told - toldNothingWrong;
}

// Not a test of its own: the other process of the tests about claims.
TEST(ClaimElsewhere, TellsItsCode) {
    const std::string asked = disk::environment(claimVariable);
    if (asked.empty()) GTEST_SKIP() << "runs only as the other process of another test";
    Win32Platform platform;
    std::unique_ptr<HeldTree> held;
    Status status = platform.files().hold(asked.substr(1), held);
    if (status.ok()) status = held->claim(asked[0] == 'w' ? TreeUse::write : TreeUse::read);
    TerminateProcess(GetCurrentProcess(), toldNothingWrong + status.code());
}

/// Windows gives links only to administrators and in its developer mode.
bool canMakeDirectoryLinks() {
    const disk::Temporary place;
    disk::makeDirectory(place.at("cible"));
    return disk::makeDirectoryLink(place.at("lien"), "cible");
}

std::unique_ptr<ContractSystem> makeSystem(std::string& reason) {
    std::unique_ptr<SubstitutedDrives> own;
    std::string letters = disk::environment("COFFRELUNE_TEST_DRIVES");
    if (letters.empty() && !disk::isWine()) {
        own = std::make_unique<SubstitutedDrives>();
        letters = own->letters();
    }
    const std::vector<std::string> roots = rootsIn(letters);
    if (roots.size() == 2) return std::make_unique<Win32ContractSystem>(std::move(own), roots);
    reason = "COFFRELUNE_TEST_DRIVES names no two drives that tests may empty (\"U:V:\")";
    return nullptr;
}

std::unique_ptr<ContractSystem> makeSmallSystem(std::string& reason) {
    std::vector<std::string> roots = rootsIn(disk::environment("COFFRELUNE_TEST_SMALL_DRIVE") +
                                             disk::environment("COFFRELUNE_TEST_DRIVES"));
    constexpr std::uint64_t small = std::uint64_t{256} << 20;
    ULARGE_INTEGER total{};
    if (roots.size() == 3 &&
        GetDiskFreeSpaceExW(wide(roots[0]).c_str(), nullptr, &total, nullptr) != 0 &&
        total.QuadPart <= small) {
        return std::make_unique<Win32ContractSystem>(nullptr, std::move(roots));
    }
    reason = "COFFRELUNE_TEST_SMALL_DRIVE names no small drive that tests may fill (\"W:\")";
    return nullptr;
}

std::vector<ContractParam> describeContracts() {
    ContractParam drives{"Windows", makeSystem, {}};
    if (disk::isWine()) {
        std::fprintf(stderr,
                     "contract: Wine's host holds no path of more than 4096 bytes, so Windows is "
                     "left out of DeepPathContract\n");
    } else {
        drives.capabilities.push_back(Capability::deep);
    }
    if (canMakeDirectoryLinks()) {
        drives.capabilities.push_back(Capability::treeLinks);
    } else {
        std::fprintf(stderr,
                     "contract: this user may make no links, so Windows is left out of "
                     "TreeLinkContract\n");
    }
    return {drives, {"WindowsSmallVolume", makeSmallSystem, {Capability::small}}};
}

}  // namespace

// Every suite asks, and to try whether links can be made takes a while.
std::vector<ContractParam> nativeContracts() {
    static const std::vector<ContractParam> all = describeContracts();
    return all;
}

}  // namespace coffrelune
