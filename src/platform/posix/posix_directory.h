#pragma once

#include <dirent.h>

#include <deque>
#include <memory>
#include <string>

#include "platform/file_service.h"
#include "platform/posix/drive_table.h"
#include "platform/posix/place.h"
#include "platform/posix/unique_fd.h"

namespace coffrelune {

/// An open directory. Look-ups ask the system each time: that costs less than a microsecond, so
/// nothing is remembered and nothing can be out of date.
class PosixDirectory final : public Directory {
  public:
    /// `fd`: of the directory, which lies on `device`; with Wanted::nothing it may be an O_PATH
    /// descriptor. `openCount` is shared by all directories of one file service and, with `drives`,
    /// must outlive this object.
    PosixDirectory(UniqueFd fd, dev_t device, Place place, Wanted wanted, const DriveTable& drives,
                   int& openCount);
    PosixDirectory(const PosixDirectory&) = delete;
    PosixDirectory& operator=(const PosixDirectory&) = delete;
    ~PosixDirectory() override;

    bool next(FileEntry& entry) override;
    const Status& status() const override { return status_; }
    bool lookUp(const std::string& name, FileEntry& entry) override;

  private:
    struct CloseListing {
        void operator()(DIR* listing) const { closedir(listing); }
    };

    bool isOpen() const { return fd_ >= 0; }
    bool read(FileEntry& entry);
    bool wantsKind(unsigned char kind) const;
    bool describe(const dirent& found, FileEntry& entry) const;
    bool fill(const struct statx& information, std::string name, FileEntry& entry) const;
    bool isPseudoMount(const FileEntry& entry) const;
    void readAheadAndClose();
    void close();

    Place place_;
    Wanted wanted_;
    const DriveTable& drives_;
    int& openCount_;
    std::unique_ptr<DIR, CloseListing> listing_;
    UniqueFd path_;  // instead of a listing when only look-ups are wanted
    int fd_ = -1;    // of whichever of the two is open
    dev_t device_;
    std::deque<FileEntry> ahead_;
    Status status_;
};

}  // namespace coffrelune
