#include "system/sounds.h"

#include "system/paths.h"

namespace coffrelune {

std::string soundFile(const std::string& homeDirectory, const std::string& name) {
    return joinPath(homeDirectory, name + ".wav");
}

bool soundExists(FileService& files, const std::string& homeDirectory, const std::string& name) {
    FileEntry file;
    const Status found = files.lookUp(soundFile(homeDirectory, name), LinkRule::follow, file);
    return found.ok() && !file.isDirectory();
}

void playEndOfCopySound(SoundService& sounds, FileService& files, const std::string& homeDirectory,
                        const std::string& name) {
    if (sounds.deviceCount() < 1 || !soundExists(files, homeDirectory, name)) return;
    sounds.play(soundFile(homeDirectory, name));
}

void playSystemSound(SoundService& sounds, ShellService& shell, const std::string& name) {
    if (sounds.deviceCount() >= 1) shell.playSystemSound(name);
}

}  // namespace coffrelune
