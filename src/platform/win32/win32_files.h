#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/file_service.h"
#include "platform/win32/file_copier.h"
#include "platform/win32/known_entries.h"
#include "platform/win32/win32_holds.h"

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
    Status reach(const std::string& path, Win32Place& place) const;
    Status reachToWrite(const std::string& path, Win32Place& place);
    template <typename Step>
    Status at(const std::string& path, Step step) const;
    template <typename Step>
    Status writeAt(const std::string& path, Step step);
    Status checkDirectory(const std::string& path) const;
    std::shared_ptr<KnownEntries> watch();

    Win32Holds holds_;
    Win32FileCopier copier_;
    std::vector<std::weak_ptr<KnownEntries>> watched_;  // of the directories that are open
};

}  // namespace coffrelune
