#pragma once

#include <string>
#include <vector>

#include "platform/desktop_services.h"

namespace coffrelune {

/// How wide a text is in a window's font.
class TextMeasure {
  public:
    virtual ~TextMeasure() = default;

    /// In pixels, 0 for an empty text.
    virtual int width(const std::string& text) = 0;
};

/// A path as it fits into `width` pixels: itself when it fits, else its last component and as much
/// of its beginning as there is room for, with "..." between. A last component that is too wide by
/// itself shows its end after "..."; "..." is the least that is ever shown.
std::string shortenedPath(TextMeasure& measure, const std::string& path, int width);

/// The label of the medium in a drive, up to its first NUL: "Pas de disque" without a medium, "Pas
/// de label" for an empty or blank label. `root`: "D:\". `withDrive` adds the drive: "DATA  (D:)".
/// Control characters are shown as their pictures.
std::string volumeText(DriveInformation& drives, const std::string& root, bool withDrive);

/// What a label shows of a path, and what its tool tip says.
struct PathCaption {
    std::string caption;
    std::string toolTip;
};

/// `shortened`: the path as it fits into the label, its own text when it does. A shortened path is
/// told in full by the tool tip; a drive root that fits is shown as its volume. Control characters
/// are shown as their pictures, so measure visibleControls(path).
PathCaption pathCaption(DriveInformation& drives, const std::string& path,
                        const std::string& shortened);

/// The same for a label of `width` pixels.
PathCaption pathCaption(DriveInformation& drives, const std::string& path, TextMeasure& measure,
                        int width);

}  // namespace coffrelune
