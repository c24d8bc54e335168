#pragma once

#include <string>
#include <vector>

#include "settings/system_mod.h"

namespace coffrelune {

/// A configuration as lists show it: "Travail (Bureau)" when it is described, else its name.
struct ListedConfiguration {
    std::string name;
    std::string entry;
};

std::vector<ListedConfiguration> listConfigurations(SystemMod& system);

/// The same with the one in use, which has no section as long as nothing of it is stored.
std::vector<ListedConfiguration> listWithCurrent(SystemMod& system);

/// In any case.
bool isListed(const std::vector<ListedConfiguration>& listed, const std::string& name);

/// The name that choosing an entry gives: its text up to the blank before the description. A name
/// that holds "(" is cut there as well.
std::string chosenName(const std::string& entry);

/// Why a configuration can be neither added nor erased.
enum class ConfigurationRefusal { none, noName, reserved, taken, inUse };

/// What the user is told.
const char* textOf(ConfigurationRefusal refusal);

/// Of a new name. It is compared with the beginning of each entry, so "Tra" is taken once there is
/// a "Travail"; a whole name is taken in any case, which the settings file does not tell apart,
/// and when the list has no room for it.
ConfigurationRefusal refusalToAdd(SystemMod& system, const std::vector<ListedConfiguration>& listed,
                                  const std::string& name);

/// The same for another name of a configuration, whose own entry does not count.
ConfigurationRefusal refusalToRename(SystemMod& system, const std::string& from,
                                     const std::string& to);

/// Of the name of a configuration to erase, in any case.
ConfigurationRefusal refusalToErase(const SystemMod& system, const std::string& name);

/// The whole section goes, and the error lists with it, which may be missing.
Status eraseConfiguration(SystemMod& system, const std::string& name);

/// Everything that bears the name: its section, its error lists, and the memory of the one in use.
/// 87 when there is a section of the new name.
Status renameConfiguration(SystemMod& system, const std::string& from, const std::string& to);

/// Another one with the same settings, which has never run. 87 as above.
Status duplicateConfiguration(SystemMod& system, const std::string& from, const std::string& to);

/// The first name after that of a configuration which a copy of it may bear: "Travail 2".
std::string nameForCopy(SystemMod& system, const std::string& of);

/// The user has chosen this one: it is remembered for the next start, with or without a section.
/// It is not loaded.
void takeConfiguration(SystemMod& system, const std::string& name);

/// Of the current configuration.
Status describeConfiguration(SystemMod& system, const std::string& description);

}  // namespace coffrelune
