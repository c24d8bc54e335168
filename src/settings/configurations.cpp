#include "settings/configurations.h"

#include <algorithm>

#include "settings/setting_names.h"
#include "system/text.h"

namespace coffrelune {
namespace {

std::string withoutLastCharacter(std::string text) {
    while (!text.empty() && (text.back() & 0xC0) == 0x80) text.pop_back();
    if (!text.empty()) text.pop_back();
    return text;
}

std::string entryOf(const std::string& name, const std::string& description) {
    return description.empty() ? name : name + " (" + description + ")";
}

// The old list goes only when the new one is there.
Status renameErrorList(SystemMod& system, const std::string& from, const std::string& to) {
    constexpr std::uint64_t largest = std::uint64_t{1} << 30;
    FileService& files = system.platform.files;
    std::string bytes;
    Status read = files.readWhole(from, largest, bytes);
    if (read.saysAbsent()) return {};
    if (!read.ok()) return read;
    Status written = files.writeWhole(to, bytes, Durability::now);
    return written.ok() ? files.removeFile(from) : written;
}

}  // namespace

std::vector<ListedConfiguration> listConfigurations(SystemMod& system) {
    std::vector<std::string> names;
    system.ListConfigurations(names);
    std::vector<ListedConfiguration> listed;
    for (std::string& name : names) {
        std::string entry = entryOf(name, system.ReadSetting(name, "Description"));
        listed.push_back({std::move(name), std::move(entry)});
    }
    return listed;
}

std::vector<ListedConfiguration> listWithCurrent(SystemMod& system) {
    std::vector<ListedConfiguration> listed = listConfigurations(system);
    const std::string& name = system.configurationName;
    if (isListed(listed, name)) return listed;
    listed.push_back({name, entryOf(name, system.description)});
    return listed;
}

bool isListed(const std::vector<ListedConfiguration>& listed, const std::string& name) {
    return std::any_of(listed.begin(), listed.end(), [&](const ListedConfiguration& other) {
        return equalIgnoringCase(other.name, name);
    });
}

std::string chosenName(const std::string& entry) {
    std::string text = trimBlanks(entry);
    const std::size_t bracket = text.find('(');
    if (bracket == std::string::npos) return text;
    return withoutLastCharacter(text.substr(0, bracket));
}

const char* textOf(ConfigurationRefusal refusal) {
    switch (refusal) {
        case ConfigurationRefusal::noName:
            return "Une configuration a besoin d'un nom.";
        case ConfigurationRefusal::reserved:
            return "Impossible, nom réservé !";
        case ConfigurationRefusal::taken:
            return "Cette configuration existe déjà !";
        case ConfigurationRefusal::inUse:
            return "Impossible d'effacer la configuration en cours !";
        case ConfigurationRefusal::none:
            break;
    }
    return "";
}

ConfigurationRefusal refusalToAdd(SystemMod& system, const std::vector<ListedConfiguration>& listed,
                                  const std::string& name) {
    if (name.empty()) return ConfigurationRefusal::noName;
    // One that choosing it would turn into the reserved name could never be chosen.
    if (isReserved(chosenName(name))) return ConfigurationRefusal::reserved;
    const bool taken =
        std::any_of(listed.begin(), listed.end(), [&](const ListedConfiguration& other) {
            return other.entry.rfind(name, 0) == 0 || equalIgnoringCase(other.name, name);
        });
    if (taken || system.configurationExists(name)) return ConfigurationRefusal::taken;
    return ConfigurationRefusal::none;
}

ConfigurationRefusal refusalToRename(SystemMod& system, const std::string& from,
                                     const std::string& to) {
    std::vector<ListedConfiguration> others = listWithCurrent(system);
    others.erase(
        std::remove_if(others.begin(), others.end(),
                       [&](const auto& other) { return equalIgnoringCase(other.name, from); }),
        others.end());
    return refusalToAdd(system, others, to);
}

ConfigurationRefusal refusalToErase(const SystemMod& system, const std::string& name) {
    if (equalIgnoringCase(name, system.configurationName)) return ConfigurationRefusal::inUse;
    if (name.empty()) return ConfigurationRefusal::noName;
    return isReserved(name) ? ConfigurationRefusal::reserved : ConfigurationRefusal::none;
}

Status eraseConfiguration(SystemMod& system, const std::string& name) {
    Status erased = system.WriteSetting(name, "", "");
    if (system.homeDirectory.empty()) return erased;
    for (const OperationKind kind : allKinds) {
        // Most configurations have none to remove.
        (void)system.platform.files.removeFile(errorListPath(system, name, kind));
    }
    return erased;
}

Status renameConfiguration(SystemMod& system, const std::string& from, const std::string& to) {
    Status renamed = system.renameSection(from, to);
    if (!renamed.ok()) return renamed;
    if (equalIgnoringCase(system.ReadSetting(globalSection, "Config"), from)) {
        renamed = system.WriteSetting(globalSection, "Config", to);
    }
    if (equalIgnoringCase(system.configurationName, from)) system.configurationName = to;
    for (const OperationKind kind : allKinds) {
        const std::string old = errorListPath(system, from, kind);
        const std::string now = errorListPath(system, to, kind);
        // Two names may be one file name.
        if (system.homeDirectory.empty() || equalIgnoringCase(old, now)) continue;
        Status moved = renameErrorList(system, old, now);
        if (renamed.ok() && !moved.ok()) renamed = std::move(moved);
    }
    return renamed;
}

Status duplicateConfiguration(SystemMod& system, const std::string& from, const std::string& to) {
    return system.copySection(from, to);
}

std::string nameForCopy(SystemMod& system, const std::string& of) {
    const std::vector<ListedConfiguration> listed = listWithCurrent(system);
    std::string name;
    int number = 1;
    do {
        name = of + " " + std::to_string(++number);
    } while (refusalToAdd(system, listed, name) == ConfigurationRefusal::taken);
    return name;
}

void takeConfiguration(SystemMod& system, const std::string& name) {
    system.askedConfiguration.clear();
    system.takenConfiguration = name;
}

Status describeConfiguration(SystemMod& system, const std::string& description) {
    system.description = description;
    return system.WriteSetting(system.configurationName, "Description", QuoteValue(description));
}

}  // namespace coffrelune
