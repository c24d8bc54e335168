#include "settings/system_mod.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "settings/program_context.h"
#include "settings/setting_names.h"
#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {
namespace {

// "3.05": the minor number in two digits.
std::string version(const ProgramContext& context) {
    const std::string minor = '0' + std::to_string(context.versionMinor);
    return std::to_string(context.versionMajor) + '.' + minor.substr(minor.size() - 2);
}

std::string settingsPath(const ProgramContext& context) {
    if (context.homeDirectory.empty()) return {};
    return withTrailingBackslash(context.homeDirectory) + "Coffrelune.ini";
}

}  // namespace

SystemMod::SystemMod(Platform& services, const ProgramContext& context)
    : platform(services),
      programTitle("Coffrelune Version " + version(context)),
      programVersion(version(context)),
      executablePath(context.executablePath),
      homeDirectory(context.homeDirectory),
      file_(services.files, services.ansi, settingsPath(context)),
      commandLine_(context.commandLine),
      systemLevel_(context.systemLevel) {
    resizeLines(maximumIndex);
}

std::string SystemMod::ReadSetting(const std::string& section, const std::string& key) {
    return file_.read(section, key);
}

Status SystemMod::WriteSetting(const std::string& section, const std::string& key,
                               const std::string& value) {
    if (section.empty()) return {};
    // The settings of every configuration go under this name: no list may offer them for deletion.
    if (key.empty() && isReserved(section)) {
        return Status::failure(error_number::accessDenied, file_.path());
    }
    return noted(store(section, key, value));
}

Status SystemMod::noted(Status status) {
    if (!status.ok() && writeFailure_.ok()) {
        writeFailure_ = status;
        tellOnce();
    }
    return status;
}

Status SystemMod::renameSection(const std::string& from, const std::string& to) {
    return noted(file_.renameSection(from, to));
}

// Results and their like begin so, and nothing else does.
Status SystemMod::copySection(const std::string& from, const std::string& to) {
    return noted(file_.copySection(from, to, [](const std::string& key) {
        return equalIgnoringCase(key.substr(0, 4), "Last");
    }));
}

void SystemMod::keep(const std::string& section, const std::string& key, const std::string& value) {
    (void)WriteSetting(section, key, value);
}

Status SystemMod::store(const std::string& section, const std::string& key,
                        const std::string& value) {
    if (key.empty()) return file_.deleteSection(section);
    if (value.empty()) return file_.deleteKey(section, key);
    return file_.write(section, key, value);
}

void SystemMod::tellWriteFailure(std::function<void(const std::string&)> tell) {
    tellWriteFailure_ = std::move(tell);
    tellOnce();
}

// One line is enough: who has lost one setting will lose the others, too. A run without settings
// stores none, which is no failure.
void SystemMod::tellOnce() {
    if (writeFailure_.ok() || writeFailureTold_ || !tellWriteFailure_ || file_.path().empty()) {
        return;
    }
    writeFailureTold_ = true;
    tellWriteFailure_("Le fichier de réglages " + visibleControls(file_.path()) +
                      " ne peut pas être écrit (erreur " + std::to_string(writeFailure_.code()) +
                      ") : les changements ne sont pas enregistrés.");
}

void SystemMod::ListConfigurations(std::vector<std::string>& list) {
    // A limit that keeps the lists of the windows short.
    std::size_t used = 0;
    for (const std::string& name : file_.sections()) {
        used += characterCount(name) + 1;
        if (name.empty() || used > SettingsFile::longestValue) return;
        if (name != globalSection) list.push_back(name);
    }
}

bool SystemMod::configurationExists(const std::string& name) {
    return !isReserved(name) && file_.hasSection(name);
}

void SystemMod::rememberConfiguration() {
    if (configurationName == askedConfiguration && !configurationExists(configurationName)) return;
    keep(globalSection, "Config", configurationName);
}

int SystemMod::LastUsedLine() const {
    for (int line = maximumIndex; line > 0; --line) {
        if (lineAt(line).used()) return line;
    }
    return 0;
}

void SystemMod::resizeLines(int newMaximum) {
    constexpr int largest = std::numeric_limits<std::int16_t>::max();
    maximumIndex = static_cast<std::int16_t>(std::clamp(newMaximum, 0, largest));
    lines.resize(static_cast<std::size_t>(maximumIndex) + 1);
}

bool SystemMod::asksForAuto() const {
    return coffrelune::readCommandLine(commandLine_).AutoMode;
}

void SystemMod::readCommandLine() {
    const CommandLine asked = coffrelune::readCommandLine(commandLine_);
    AutoMode = asked.AutoMode;
    if (asked.configurationName) configurationName = *asked.configurationName;
}

}  // namespace coffrelune
