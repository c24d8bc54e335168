#include <algorithm>
#include <limits>

#include "settings/setting_names.h"
#include "settings/system_mod.h"
#include "system/date_time.h"
#include "system/text.h"

namespace coffrelune {
namespace {

std::int16_t narrowed(std::int32_t number) {
    using Limits = std::numeric_limits<std::int16_t>;
    return static_cast<std::int16_t>(
        std::clamp<std::int32_t>(number, Limits::min(), Limits::max()));
}

// The last maximum index that the number of lines gives; 6 lines when it says nothing sensible.
std::int16_t maximumIndexFrom(std::int32_t lines) {
    constexpr std::int16_t usual = 5;
    return lines < 1 ? usual : narrowed(lines - 1);
}

// The line that a key of the form "Source3" or "Destination3" belongs to; 0 for any other key, the
// first line counting for nothing where this is asked.
int lineOfPath(const std::string& key) {
    for (const std::string_view prefix : {"Source", "Destination"}) {
        if (!equalIgnoringCase(key.substr(0, prefix.size()), prefix)) continue;
        const std::string index = key.substr(prefix.size());
        const int line = leadingNumber(index);
        if (std::to_string(line) == index) return line;
    }
    return 0;
}

}  // namespace

void SystemMod::LoadSettings() {
    lines.clear();
    resizeLines(maximumIndexFrom(leadingNumber(ReadSetting(globalSection, "RepertMax"))));
    pendingMaximumIndex = maximumIndex;

    readCommandLine();
    askedConfiguration = configurationName;
    // The reserved section is no configuration, though the user or an older file may name it.
    if (isReserved(configurationName)) configurationName.clear();
    takenConfiguration = ReadSetting(globalSection, "Config");
    if (configurationName.empty()) configurationName = takenConfiguration;
    if (isReserved(configurationName)) configurationName.clear();
    if (configurationName.empty()) configurationName = "General";
    LoadConfiguration();

    readOptions();
    soundNames = {ReadSetting(globalSection, "SignalOk"),
                  ReadSetting(globalSection, "SignalErreur")};
    if (soundNames[0].empty()) soundNames[0] = "Ok";
    if (soundNames[1].empty()) soundNames[1] = "Erreur";
    SuiviAnalyse = leadingNumber(ReadSetting(globalSection, "SuiviAnalyse"));
    OsLevel = systemLevel_;
}

void SystemMod::readOptions() {
    for (const CopyOption& option : optionTable) {
        options.*option.value = leadingNumber(ReadSetting(globalSection, option.key));
    }
}

void SystemMod::LoadConfiguration() {
    const auto text = [this](const std::string& key) {
        return ReadSetting(configurationName, key);
    };
    const auto number = [&text](const std::string& key) { return leadingNumber(text(key)); };

    description = text("Description");
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string index = std::to_string(i);
        lines[i].source = text("Source" + index);
        lines[i].destination = text("Destination" + index);
        lines[i].selected = number("Select" + index) != 0 ? 1 : 0;
    }
    SelectP = narrowed(number("SelectP"));
    ProgToRun = text("ProgToRun");
    PrmToRun = text("PrmToRun");
    Confirmation = number("Confirmation");
    Modifie = number("Modifie");
    AutoSave = number("AutoSave");
    AutoTime = text("AutoTime");
    if (AutoTime.empty()) AutoTime = "00:00";
    nextDate = nextScheduledDate("", false, false, AutoTime, platform.clock.now());
    readLastResults();
}

void SystemMod::readLastResults() {
    lastGoodBackup = ReadSetting(configurationName, "LastSaveOk");
    const auto text = [this](const std::string& key) {
        return ReadSetting(configurationName, key);
    };
    for (const OperationKind kind : allKinds) {
        const std::string name = wordsOf(kind).key;
        LastResult& result = lastResult(kind);
        result.cleanDate = text("Last" + name);
        result.errorDate = text("Last" + name + "Err");
        result.errorCount = leadingNumber(text("Last" + name + "NbErr"));
        result.cleanDuration = text("LastDuree" + name);
        result.errorDuration = text("LastDuree" + name + "Err");
    }
}

int SystemMod::lastUsedLineAnywhere() {
    int last = LastUsedLine();
    for (const std::string& name : file_.sections()) {
        // Of the current configuration the lines in memory count.
        if (isReserved(name) || equalIgnoringCase(name, configurationName)) continue;
        for (const std::string& key : file_.keys(name)) {
            const int line = lineOfPath(key);
            if (line <= last || line > maximumIndex) continue;
            if (!ReadSetting(name, key).empty()) last = line;
        }
    }
    return last;
}

}  // namespace coffrelune
