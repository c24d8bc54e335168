#include "settings/choices.h"

#include <algorithm>

#include "platform/characters.h"
#include "settings/setting_names.h"
#include "system/text.h"

namespace coffrelune {
namespace {

constexpr int mostLines = 12;

// The text without as many leading characters as `prefix` has; they may differ in case.
std::string withoutPrefix(const std::string& text, const std::string& prefix) {
    std::size_t at = 0;
    std::size_t counted = 0;
    while (counted < prefix.size() && at < text.size()) {
        utf8::next(prefix, counted);
        utf8::next(text, at);
    }
    return text.substr(at);
}

}  // namespace

Status chooseOption(SystemMod& system, const CopyOption& option, bool on) {
    std::int32_t& stored = system.options.*option.value;
    const std::int32_t chosen = on ? -1 : 0;
    if (chosen == stored) return {};
    stored = chosen;
    return system.WriteSetting(globalSection, option.key, std::to_string(chosen));
}

bool isOn(const SystemMod& system, const ConfigurationSwitch& one) {
    const std::int32_t value = system.*one.value;
    return one.value == &SystemMod::Modifie ? value != 0 : value == 1;
}

Status chooseSwitch(SystemMod& system, const ConfigurationSwitch& chosen, bool on) {
    system.*chosen.value = on ? 1 : 0;
    return system.WriteSetting(system.configurationName, chosen.key, on ? "1" : "0");
}

Status chooseLine(SystemMod& system, int line, bool selected) {
    system.lineAt(line).selected = selected ? 1 : 0;
    return system.WriteSetting(system.configurationName, "Select" + std::to_string(line),
                               selected ? "1" : "0");
}

std::vector<int> offeredLineCounts(SystemMod& system) {
    std::vector<int> counts;
    for (int lines = system.lastUsedLineAnywhere() + 1; lines <= mostLines; ++lines) {
        counts.push_back(lines);
    }
    const int current = system.maximumIndex + 1;
    if (current > mostLines) counts.push_back(current);
    return counts;
}

ExclusionChoice chooseExclusion(const std::string& source, const std::string& directory,
                                const std::vector<std::string>& listed) {
    using Refusal = ExclusionChoice::Refusal;
    if (upperCase(directory).rfind(upperCase(source), 0) != 0) return {Refusal::outside, {}};
    std::string entry = withoutPrefix(directory, source);
    if (std::find(listed.begin(), listed.end(), entry) != listed.end()) return {Refusal::taken, {}};
    return {Refusal::none, std::move(entry)};
}

const char* textOf(ExclusionChoice::Refusal refusal) {
    switch (refusal) {
        case ExclusionChoice::Refusal::outside:
            return "Le répertoire à exclure doit se trouver dans le disque ou répertoire à "
                   "sauvegarder !";
        case ExclusionChoice::Refusal::taken:
            return "Ce répertoire est déjà dans la liste !";
        case ExclusionChoice::Refusal::none:
            break;
    }
    return "";
}

void storeExclusionList(SystemMod& system, int line, const ExclusionList& list) {
    system.ClearExclusions(line);
    // Any other mode, which a file may hold, is none of the choices.
    if (list.mode == ExclusionMode::none || list.mode == ExclusionMode::all ||
        list.mode == ExclusionMode::listed) {
        system.writeExclusionMode(line, list.mode);
    }
    for (std::size_t i = 0; i < list.directories.size(); ++i) {
        system.writeExcludedDirectory(line, i + 1, list.directories[i]);
    }
}

}  // namespace coffrelune
