#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "contract/contract_system.h"
#include "platform/posix/posix_platform.h"

namespace coffrelune {

/// The Linux services on a new directory below the system's temporary one: D:\ and E:\ are two
/// directories in it, C:\ is the whole system. Everything goes away with the object.
class PosixContractSystem final : public ContractSystem {
  public:
    PosixContractSystem();
    ~PosixContractSystem() override;

    /// Mounts a small volume of its own as D:\. False, with the reason, when that is not permitted.
    bool mountSmallVolume(std::string& reason);
    /// Builds the services; the last step of the making.
    void start();

    FileService& files() override { return platform_->files(); }
    DriveService& drives() override { return platform_->drives(); }
    std::string drive() override { return "D:\\"; }
    std::string secondDrive() override { return "E:\\"; }
    std::string absentDrive() override { return "Q:\\"; }
    std::string otherSpelling(const std::string& path) override;
    void makeDirectory(const std::string& path) override;
    void makeFile(const std::string& path, const std::string& content,
                  std::uint64_t lastWrite) override;
    void makeLink(const std::string& path, const std::string& target) override;
    void makeSpecial(const std::string& path) override;
    void makeUnreadable(const std::string& path) override;
    bool rename(const std::string& from, const std::string& to) override;
    bool cutShort(const std::string& path, std::uint64_t size) override;
    std::uint32_t claimElsewhere(const std::string& path, TreeUse use) override;
    std::uint32_t clearLeftoversElsewhere(const std::string& directory) override;
    void killCopyInto(const std::string& directory) override;
    std::optional<std::string> content(const std::string& path) override;
    std::vector<std::string> names(const std::string& directory) override;
    std::uint64_t capacity() override { return smallVolume; }

  private:
    static constexpr std::uint64_t smallVolume = std::uint64_t{64} << 20;

    /// Services of a process of its own on the same directories.
    std::unique_ptr<PosixPlatform> makePlatform() const;
    /// What a process of its own is told by a call of its own services.
    std::uint32_t codeElsewhere(const std::function<std::uint32_t(FileService& files)>& call) const;
    std::filesystem::path native(const std::string& path) const;

    std::filesystem::path base_;
    std::unique_ptr<PosixPlatform> platform_;
    std::vector<std::filesystem::path> unreadable_;
    bool mounted_ = false;
};

}  // namespace coffrelune
