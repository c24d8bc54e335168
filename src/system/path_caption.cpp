#include "system/path_caption.h"

#include <cstddef>
#include <functional>
#include <vector>

#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {
namespace {

constexpr const char* ellipsis = "...";

/// Where `text` may be cut: no character is split.
std::vector<std::size_t> cutsOf(const std::string& text) {
    std::vector<std::size_t> cuts;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) cuts.push_back(i);
    }
    cuts.push_back(text.size());
    return cuts;
}

/// How many of the first `count` steps fit, by halving: measuring is dear, and more is never
/// narrower. The empty step is taken as fitting.
std::size_t lastFitting(std::size_t count, const std::function<bool(std::size_t)>& fits) {
    std::size_t low = 0;
    for (std::size_t high = count; low < high;) {
        const std::size_t middle = low + (high - low + 1) / 2;
        if (fits(middle)) {
            low = middle;
        } else {
            high = middle - 1;
        }
    }
    return low;
}

/// The last component with the backslash before it; one at the very end belongs to it. The whole
/// path when it has but one.
std::string lastPart(const std::string& path) {
    if (path.size() < 2) return path;
    const std::size_t slash = path.rfind('\\', path.size() - 2);
    return slash == std::string::npos ? path : path.substr(slash);
}

}  // namespace

std::string shortenedPath(TextMeasure& measure, const std::string& path, int width) {
    if (measure.width(path) <= width) return path;
    const std::string last = lastPart(path);
    if (last.size() < path.size() && measure.width(ellipsis + last) <= width) {
        const std::string start = path.substr(0, path.size() - last.size());
        const std::vector<std::size_t> cuts = cutsOf(start);
        const auto withStart = [&](std::size_t step) {
            return start.substr(0, cuts[step]) + ellipsis + last;
        };
        return withStart(lastFitting(cuts.size() - 1, [&](std::size_t step) {
            return measure.width(withStart(step)) <= width;
        }));
    }
    const std::vector<std::size_t> cuts = cutsOf(last);
    const auto withEnd = [&](std::size_t step) {
        return ellipsis + last.substr(cuts[cuts.size() - 1 - step]);
    };
    return withEnd(lastFitting(
        cuts.size() - 1, [&](std::size_t step) { return measure.width(withEnd(step)) <= width; }));
}

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

PathCaption pathCaption(DriveInformation& drives, const std::string& path,
                        const std::string& shortened) {
    const std::string whole = visibleControls(path);
    if (shortened != whole) return {shortened, whole};
    if (isDriveRoot(path)) return {volumeText(drives, path, true), path};
    return {whole, ""};
}

PathCaption pathCaption(DriveInformation& drives, const std::string& path, TextMeasure& measure,
                        int width) {
    return pathCaption(drives, path, shortenedPath(measure, visibleControls(path), width));
}

}  // namespace coffrelune
