#pragma once

#include <memory>
#include <string>

#include "platform/file_service.h"
#include "platform/win32/entry_query.h"
#include "platform/win32/held_root.h"
#include "platform/win32/known_entries.h"

namespace coffrelune {

/// An open directory. Many look-ups are served from a listing of its own, made when the first few
/// have shown that more will come; see KnownEntries.
///
/// The links under old names that Windows keeps in every profile ("Mes documents") are not listed:
/// nobody may read through them, and what they lead to is there under its present name.
class Win32Directory final : public Directory {
  public:
    /// `known`: empty yet; somebody tells it of what the program writes. `hold`: of a directory
    /// above this one, or of none.
    Win32Directory(NativePath path, std::string core, Wanted wanted,
                   std::shared_ptr<KnownEntries> known, std::weak_ptr<HeldRoot> hold)
        : path_(std::move(path)),
          core_(std::move(core)),
          wanted_(wanted),
          known_(std::move(known)),
          hold_(std::move(hold)) {}

    /// Opens the listing unless look-ups alone are wanted. 0 or a system error.
    std::uint32_t open();

    /// From here on it is only looked at: look-ups are answered from a listing that is made now, no
    /// directory is opened for its identity, and `met` is told of those that are met. 0 or a system
    /// error.
    std::uint32_t onlyLook(std::shared_ptr<MetDirectories> met);

    bool next(FileEntry& entry) override;
    const Status& status() const override { return status_; }
    /// Always: rights come from where a directory lies, and no others are brought.
    bool hasRightsOf(const Directory&) const override { return true; }
    std::vector<FileEntry> takeDirectories() override;
    bool lookUp(const std::string& name, FileEntry& entry) override;

  private:
    bool complete(FileEntry& entry) const;
    bool isWanted(const FileEntry& entry) const;
    bool isShut(const std::string& name) const;
    std::uint32_t ask(const std::string& name, FileEntry& entry);

    NativePath path_;
    std::string core_;
    Wanted wanted_;
    Listing listing_;
    std::vector<FileEntry> directories_;  // met while files were listed
    std::shared_ptr<KnownEntries> known_;
    std::shared_ptr<MetDirectories> met_;  // null: more than a look is meant
    std::weak_ptr<HeldRoot> hold_;
    Status status_;
};

}  // namespace coffrelune
