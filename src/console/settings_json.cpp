#include "console/settings_json.h"

#include <nlohmann/json.hpp>

#include "settings/choices.h"

namespace coffrelune::console {
namespace {

using Json = nlohmann::ordered_json;

std::string dump(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace);
}

Json exclusionsOf(SystemMod& system, int line) {
    system.LoadExclusions(line);
    Json exclusions;
    switch (system.exclusions.mode) {
        case ExclusionMode::none:
            exclusions["mode"] = "none";
            break;
        case ExclusionMode::all:
            exclusions["mode"] = "all";
            break;
        case ExclusionMode::listed:
            exclusions["mode"] = "listed";
            break;
        default:
            exclusions["mode"] = static_cast<std::int32_t>(system.exclusions.mode);
    }
    exclusions["directories"] = system.exclusions.directories;
    return exclusions;
}

}  // namespace

std::string configurationsAsJson(SystemMod& system) {
    Json report;
    report["current"] = system.configurationName;
    report["configurations"] = Json::array();
    for (const ListedConfiguration& listed : listConfigurations(system)) {
        report["configurations"].push_back(
            {{"name", listed.name},
             {"description", system.ReadSetting(listed.name, "Description")},
             {"current", listed.name == system.configurationName}});
    }
    return dump(report);
}

std::string linesAsJson(SystemMod& system) {
    Json report;
    report["configuration"] = system.configurationName;
    report["lines"] = Json::array();
    for (int line = 0; line <= system.maximumIndex; ++line) {
        const BackupLine& stored = system.lineAt(line);
        report["lines"].push_back({{"line", line + 1},
                                   {"source", stored.source},
                                   {"destination", stored.destination},
                                   {"selected", stored.selected != 0},
                                   {"exclusions", exclusionsOf(system, line)}});
    }
    return dump(report);
}

std::string exclusionsAsJson(SystemMod& system, int line) {
    Json report;
    report["configuration"] = system.configurationName;
    report["line"] = line + 1;
    report["exclusions"] = exclusionsOf(system, line);
    return dump(report);
}

std::string optionsAsJson(const SystemMod& system) {
    Json report;
    for (const CopyOption& option : optionTable) {
        report["options"][option.key] = system.options.*option.value != 0;
    }
    report["options"]["RepertMax"] = system.maximumIndex + 1;
    report["configuration"] = system.configurationName;
    for (const ConfigurationSwitch& one : switchTable) {
        report["configurationOptions"][one.key] = isOn(system, one);
    }
    report["configurationOptions"]["AutoTime"] = system.AutoTime;
    return dump(report);
}

std::string drivesAsJson(const std::vector<DriveRow>& rows,
                         const std::map<std::string, std::string>& mountPoints) {
    Json report;
    report["drives"] = Json::array();
    for (const DriveRow& row : rows) {
        Json drive = {{"drive", row.root},
                      {"mountPoint", mountPoints.at(row.root)},
                      {"description", row.description},
                      {"total", nullptr},
                      {"free", nullptr}};
        if (row.sizesKnown) {
            drive["total"] = row.total;
            drive["free"] = row.free;
        }
        report["drives"].push_back(std::move(drive));
    }
    return dump(report);
}

}  // namespace coffrelune::console
