#pragma once

#include "platform/file_service.h"
#include "platform/posix/drive_table.h"
#include "platform/posix/file_copier.h"

namespace coffrelune {

/// The disk of a Linux system.
class PosixFiles final : public FileService {
  public:
    /// `drives` is not owned and must outlive this object and every directory that it opens.
    explicit PosixFiles(const DriveTable& drives) : drives_(drives) {}

    Status openDirectory(const std::string& path, LinkRule links, Wanted wanted,
                         std::unique_ptr<Directory>& directory) override;
    Status lookUp(const std::string& path, LinkRule links, FileEntry& entry) override;
    Status identify(const std::string& path, FileId& id) override;
    std::string resolve(const std::string& path) override;
    Status createDirectory(const std::string& path) override;
    Status copyFile(const std::string& source, const std::string& destination, LinkRule sourceLinks,
                    CopyObserver* observer) override;
    void abandonCopies() override { copier_.abandon(); }
    Status setAttributes(const std::string& path, std::uint32_t attributes) override;
    Status setTimes(const std::string& path, const FileTimes& times) override;
    Status removeFile(const std::string& path) override;
    Status removeLeftovers(const std::string& directory) override;
    Status readWhole(const std::string& path, std::uint64_t limit, std::string& bytes) override;
    Status writeWhole(const std::string& path, const std::string& bytes) override;

  private:
    Status locate(const std::string& path, Place& place) const {
        return drives_.paths().locate(path, place);
    }

    const DriveTable& drives_;
    PosixFileCopier copier_;
    int openDirectories_ = 0;
};

}  // namespace coffrelune
