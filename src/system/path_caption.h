#pragma once

#include <string>

#include "platform/desktop_services.h"
#include "system/text_measure.h"
#include "system/volume_text.h"

namespace coffrelune {

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

/// The unshortened text of what is shown: its tool tip when it has one, else its caption. For what
/// knows the caption alone; a PathLabel holds its path.
std::string fullText(const PathCaption& caption);

}  // namespace coffrelune
