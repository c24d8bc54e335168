#include <memory>
#include <utility>

#include "dialogs/config_form.h"
#include "system/paths.h"
#include "system/sounds.h"
#include "system/text.h"

namespace coffrelune {
namespace {

constexpr int mostLines = 12;
constexpr std::string_view soundExtension = ".wav";

bool isSoundName(const std::string& name) {
    const std::size_t length = soundExtension.size();
    return name.size() >= length &&
           equalIgnoringCase(name.substr(name.size() - length), soundExtension);
}

}  // namespace

void ConfigForm::loadOptions() {
    const CopyOptions& options = system_.options;
    Opt[0].setChecked(options.RecentSeul != 0);
    Opt[1].setChecked(options.DelReadOnly != 0);
    Opt[2].setChecked(options.ArbreMode != 0);
    Opt[3].setChecked(options.SignalSonore != 0);
    Opt[4].setChecked(options.SynchroDate != 0);
    Opt[5].setChecked(options.ContinueOnError != 0);
    Opt[6].setChecked(options.AltCopie != 0);
    Opt[7].setChecked(options.CorrectEteOff != 0);
    Opt[8].setChecked(options.SynchroCopie != 0);

    const bool audible = system_.platform.sounds.deviceCount() > 0;
    Opt[3].setEnabled(audible);
    for (std::size_t i = 0; i < FichSonCb.size(); ++i) {
        Cmd.at(4 + i).setEnabled(audible);
        FichSonCb.at(i).setEnabled(audible);
        FichSonLbl.at(i).setEnabled(audible);
    }
}

void ConfigForm::loadConfigurations() {
    system_.ListConfigurations(names_);
    for (const std::string& name : names_) {
        const std::string description = system_.ReadSetting(name, "Description");
        std::string entry = name;
        if (!description.empty()) entry.append(" (").append(description).append(")");
        Liste.add(std::move(entry));
        if (name == system_.configurationName) {
            Liste.select(static_cast<int>(Liste.entries().size()) - 1);
        }
    }
}

// From what the last line in use of any configuration needs: no line anywhere is to drop out of
// sight, and so out of the backup. A larger number that was set by hand stays on offer.
void ConfigForm::loadLineCounts() {
    const int current = system_.maximumIndex + 1;
    for (int lines = system_.LastUsedLineAnywhere() + 1; lines <= mostLines; ++lines) {
        RepMaxCb.add(std::to_string(lines));
        if (lines == current) RepMaxCb.select(static_cast<int>(RepMaxCb.entries().size()) - 1);
    }
    if (current <= mostLines) return;
    RepMaxCb.add(std::to_string(current));
    RepMaxCb.select(static_cast<int>(RepMaxCb.entries().size()) - 1);
}

void ConfigForm::loadSounds() {
    const std::vector<std::string> sounds = soundFiles();
    for (std::size_t i = 0; i < FichSonCb.size(); ++i) {
        ListBox& list = FichSonCb.at(i);
        for (const std::string& sound : sounds) {
            list.add(sound);
            const bool stored = equalIgnoringCase(sound, system_.soundNames.at(i));
            if (stored && list.selection() < 0) {
                list.select(static_cast<int>(list.entries().size()) - 1);
            }
        }
        if (list.selection() < 0) list.select(0);
    }
}

// The names of those that can be played: where the file system tells cases apart, a sound called
// "Ok.WAV" would never be found.
std::vector<std::string> ConfigForm::soundFiles() {
    std::vector<std::string> sounds;
    if (system_.homeDirectory.empty()) return sounds;
    std::unique_ptr<Directory> directory;
    const Status opened = system_.platform.files.openDirectory(
        system_.homeDirectory, LinkRule::follow, Wanted::files, directory);
    if (!opened.ok()) return sounds;
    FileEntry entry;
    while (directory->next(entry)) {
        if (!isSoundName(entry.name)) continue;
        const std::string name = withoutExtension(entry.name);
        if (soundExists(system_.platform.files, system_.homeDirectory, name)) {
            sounds.push_back(name);
        }
    }
    return sounds;
}

void ConfigForm::play(std::size_t sound) {
    playEndOfCopySound(system_.platform.sounds, system_.platform.files, system_.homeDirectory,
                       FichSonCb.at(sound).selectedText());
}

}  // namespace coffrelune
