#pragma once

#include <sys/types.h>

#include <atomic>
#include <memory>
#include <set>
#include <string>

#include "platform/file_service.h"
#include "platform/posix/drive_table.h"
#include "platform/posix/extra_attributes.h"
#include "platform/posix/file_copier.h"
#include "platform/posix/hold.h"
#include "platform/posix/posix_directory.h"

namespace coffrelune {

/// The disk of a Linux system.
class PosixFiles final : public FileService {
  public:
    /// `drives` is not owned and must outlive this object and every directory that it opens.
    /// `mounts`: where the system tells what the trees that are held lie on.
    PosixFiles(const DriveTable& drives, MountSources mounts, std::shared_ptr<TreeLocks> locks,
               Descent descent = Descent::kernel);

    Status hold(const std::string& root, std::unique_ptr<HeldTree>& held) override;
    Status openDirectory(const std::string& path, LinkRule links, Wanted wanted,
                         std::unique_ptr<Directory>& directory) override;
    Status lookUp(const std::string& path, LinkRule links, FileEntry& entry) override;
    Status identify(const std::string& path, FileId& id) override;
    std::string resolve(const std::string& path) override;
    Status createDirectory(const std::string& path, DirectoryAccess access) override;
    Status matchDirectory(const std::string& source, const std::string& target) override;
    Status removeDirectory(const std::string& path) override;
    Status copyFile(const std::string& source, const std::string& destination, LinkRule sourceLinks,
                    CopyObserver* observer) override;
    std::unique_ptr<CopyBatch> startBatch(const std::string& root, AfterFailure afterFailure,
                                          CopyEvents& events) override;
    std::unique_ptr<WalkAhead> startWalk() override;
    void abandonCopies() override { copier_.abandon(); }
    Status setAttributes(const std::string& path, std::uint32_t attributes) override;
    Status setTimes(const std::string& path, const FileTimes& times) override;
    Status removeFile(const std::string& path) override;
    Status removeLeftovers(const std::string& directory) override;
    Status ownFiles(const std::string& directory, std::vector<std::string>& names) override;
    Status readWhole(const std::string& path, std::uint64_t limit, std::string& bytes) override;
    Status writeWhole(const std::string& path, const std::string& bytes,
                      Durability durability) override;

  private:
    struct Target;
    struct Opened;

    Status locate(const std::string& path, Place& place) const;
    Status look(const std::string& path, bool follow, Place& place,
                struct statx& information) const;
    Status reach(const std::string& path, Target& target) const;
    Status open(const std::string& path, int flags, Opened& opened) const;
    PosixDirectory::Surroundings surroundings();
    static Status openAt(int flags, Opened& opened);
    static Status openDirectoryAt(const Place& place, LinkRule links, Wanted wanted,
                                  const PosixDirectory::Surroundings& around,
                                  std::unique_ptr<PosixDirectory>& directory);

    const DriveTable& drives_;
    MountSources mounts_;
    std::shared_ptr<TreeLocks> locks_;
    Descent descent_;
    AttributeVolumes attributeVolumes_;
    std::shared_ptr<HoldList> holds_ = std::make_shared<HoldList>();
    /// Paths of directories that were made for their owner alone and wait for their rights.
    std::set<std::string> closed_;
    PosixFileCopier copier_;
    CopyTargets targets_;
    NewDirectories made_;
    std::atomic<int> openDirectories_ = 0;
    std::atomic<std::uint64_t> changes_ = 0;  // of names, by this service
};

}  // namespace coffrelune
