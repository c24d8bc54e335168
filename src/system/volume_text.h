#pragma once

#include <string>

#include "platform/desktop_services.h"

namespace coffrelune {

/// The label of the medium in a drive, up to its first NUL: "Pas de disque" without a medium, "Pas
/// de label" for an empty or blank label. `root`: "D:\". `withDrive` adds the drive: "DATA  (D:)".
/// Control characters are shown as their pictures.
std::string volumeText(DriveInformation& drives, const std::string& root, bool withDrive);

}  // namespace coffrelune
