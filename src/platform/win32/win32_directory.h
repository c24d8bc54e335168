#pragma once

#include <string>

#include "platform/file_service.h"
#include "platform/win32/entry_query.h"

namespace coffrelune {

/// An open directory. Look-ups ask the system each time, so that nothing can be out of date.
///
/// The links under old names that Windows keeps in every profile ("Mes documents") are not listed:
/// nobody may read through them, and what they lead to is there under its present name.
class Win32Directory final : public Directory {
  public:
    Win32Directory(NativePath path, std::string core, Wanted wanted)
        : path_(std::move(path)), core_(std::move(core)), wanted_(wanted) {}

    /// Opens the listing unless look-ups alone are wanted. 0 or a system error.
    std::uint32_t open();

    bool next(FileEntry& entry) override;
    const Status& status() const override { return status_; }
    bool lookUp(const std::string& name, FileEntry& entry) override;

  private:
    bool isWanted(const FileEntry& entry) const;
    bool isShut(const std::string& name) const;

    NativePath path_;
    std::string core_;
    Wanted wanted_;
    Listing listing_;
    Status status_;
};

}  // namespace coffrelune
