#include "system/volume_text.h"

#include "system/display_text.h"
#include "system/text.h"

namespace coffrelune {

std::string volumeText(DriveInformation& drives, const std::string& root, bool withDrive) {
    std::string label;
    std::string text = "Pas de disque";
    if (drives.volumeLabel(root, label).ok()) {
        label = label.substr(0, label.find('\0'));
        text = trimBlanks(label).empty() ? "Pas de label" : visibleControls(label);
    }
    if (withDrive) text += "  (" + upperCase(root.substr(0, 2)) + ")";
    return text;
}

}  // namespace coffrelune
