#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/file_service.h"
#include "platform/win32/file_copier.h"
#include "platform/win32/win32_places.h"

namespace coffrelune {

/// The disk of a Windows system.
///
/// A directory link (junction, symbolic link, mounted volume) is listed as a directory that is also
/// a link, and is entered like one where a tree is read (LinkRule::enter): what it shows belongs to
/// the tree. Only one that leads back to a directory on the way to itself opens with 1921. Links to
/// files are entries of their own.
class Win32Files final : public FileService {
  public:
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
    template <typename Step>
    Status at(const std::string& path, Step step) const;
    template <typename Step>
    Status writeAt(const std::string& path, Step step);
    Status checkDirectory(const std::string& path) const;

    Win32Places places_;
    Win32FileCopier copier_;
};

}  // namespace coffrelune
