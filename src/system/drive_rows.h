#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/desktop_services.h"
#include "platform/services.h"

namespace coffrelune {

/// A drive as a list shows it.
struct DriveRow {
    std::string root;  // "D:\"
    std::string description;
    std::string iconName;
    bool sizesKnown = false;  // false without a medium, or for one that cannot be read
    std::uint64_t total = 0;
    std::uint64_t free = 0;
    std::string totalText;  // "14,9 Go", or "N.A."
    std::string freeText;
};

/// The drives that have a letter, in the system's order: only a letter can take the place of a
/// destination's.
std::vector<DriveRow> driveRows(DriveService& drives, DriveInformation& information,
                                const Locale& locale);

}  // namespace coffrelune
