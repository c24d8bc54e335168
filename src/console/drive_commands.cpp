#include <algorithm>

#include "console/settings_commands.h"
#include "console/settings_json.h"
#include "system/text.h"

namespace coffrelune::console {
namespace {

std::string padded(const std::string& text, std::size_t width) {
    const std::size_t length = characterCount(text);
    return text + std::string(width > length ? width - length : 0, ' ');
}

}  // namespace

ExitStatus drives(Session& session, const Arguments& arguments) {
    const Platform& platform = session.system().platform;
    const auto information = makeDriveInformation(session.native());
    const std::vector<DriveRow> rows = driveRows(platform.drives, *information, platform.locale);
    std::map<std::string, std::string> mountPoints;
    for (const DriveRow& row : rows) {
        mountPoints[row.root] = nativePath(session.native(), row.root);
    }
    Terminal& terminal = session.terminal();
    if (arguments.json) {
        terminal.result(drivesAsJson(rows, mountPoints));
        return ExitStatus::clean;
    }
    std::size_t names = 0;
    std::size_t places = 0;
    for (const DriveRow& row : rows) {
        names = std::max(names, characterCount(visibleControls(row.description)));
        places = std::max(places, characterCount(visibleControls(mountPoints.at(row.root))));
    }
    for (const DriveRow& row : rows) {
        terminal.result(row.root + "  " +
                        padded(visibleControls(mountPoints.at(row.root)), places) + "  " +
                        padded(visibleControls(row.description), names) + "  " +
                        padded(row.totalText, 8) + "  " + row.freeText + " libres");
    }
    return ExitStatus::clean;
}

}  // namespace coffrelune::console
