#pragma once

#include <string>

#include "platform/desktop_services.h"
#include "platform/posix/drive_table.h"

namespace coffrelune {

/// Where the system tells what a volume is. Tests have directories of their own.
struct VolumeSources {
    std::string mountInfo = "/proc/self/mountinfo";
    std::string labelDirectory = "/dev/disk/by-label";  // links named by label
    std::string blockDirectory = "/sys/dev/block";      // devices by "8:17"
};

/// A name of /dev/disk/by-label as it was given: "\x20" and its like stand for what a file name
/// should not hold.
std::string decodedLabel(const std::string& name);

class PosixDriveInformation final : public DriveInformation {
  public:
    /// `table` is not owned and must outlive this object; it is refreshed when it does not know a
    /// drive.
    explicit PosixDriveInformation(DriveTable& table, VolumeSources sources = {})
        : table_(table), sources_(std::move(sources)) {}

    /// 21 for a drive that is not there or cannot be read.
    Status volumeLabel(const std::string& root, std::string& label) override;
    /// The label with the drive when there is one ("DATA (D:)"), else the type with it.
    DriveDescription describe(const std::string& root) override;
    /// Free: what the user may still fill, without what is reserved for the system. 21 as above.
    Status sizes(const std::string& root, std::uint64_t& total, std::uint64_t& free) override;

  private:
    enum class Kind { fixed, removable, optical, network };

    Status locate(const std::string& root, Place& place);
    Mount mountAt(const std::string& point) const;
    Kind kindOf(const Mount& mount) const;
    bool isRemovable(dev_t device) const;
    std::string labelOf(const Mount& mount) const;

    DriveTable& table_;
    VolumeSources sources_;
};

}  // namespace coffrelune
