#include "system/drive_rows.h"

#include "system/numbers.h"
#include "system/paths.h"

namespace coffrelune {
namespace {

constexpr const char* notAvailable = "N.A.";

// The name that the desktop shows holds the medium's label, which tells two USB keys apart; the
// type of the drive does not.
std::string descriptionOf(const DriveDescription& drive) {
    return drive.displayName.empty() ? drive.typeName : drive.displayName;
}

}  // namespace

std::vector<DriveRow> driveRows(DriveService& drives, DriveInformation& information,
                                const Locale& locale) {
    std::vector<DriveRow> rows;
    for (const std::string& root : drives.roots()) {
        if (!isDriveRoot(root)) continue;
        const DriveDescription drive = information.describe(root);
        DriveRow row;
        row.root = root;
        row.description = descriptionOf(drive);
        row.iconName = drive.iconName;
        const Status read = information.sizes(root, row.total, row.free);
        row.sizesKnown = read.ok() && row.total > 0;
        row.totalText = row.sizesKnown ? driveSizeText(row.total, locale) : notAvailable;
        row.freeText = row.sizesKnown ? driveSizeText(row.free, locale) : notAvailable;
        rows.push_back(std::move(row));
    }
    return rows;
}

}  // namespace coffrelune
