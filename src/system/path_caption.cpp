#include "system/path_caption.h"

#include "system/display_text.h"

namespace coffrelune {

PathCaption pathCaption(DriveInformation& drives, const std::string& path,
                        const std::string& shortened) {
    const std::string whole = visibleControls(path);
    if (shortened != whole) return {shortened, whole};
    if (path.size() == 3 && path[1] == ':') return {volumeText(drives, path, true), path};
    return {whole, ""};
}

PathCaption pathCaption(DriveInformation& drives, const std::string& path, TextMeasure& measure,
                        int width) {
    return pathCaption(drives, path, shortenedPath(measure, visibleControls(path), width));
}

std::string fullText(const PathCaption& caption) {
    return caption.toolTip.empty() ? caption.caption : caption.toolTip;
}

}  // namespace coffrelune
