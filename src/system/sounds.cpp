#include "system/sounds.h"

#include "system/paths.h"

namespace coffrelune {

std::string soundFile(const std::string& homeDirectory, const std::string& name) {
    return joinPath(homeDirectory, name + ".wav");
}

void playEndOfCopySound(SoundService& sounds, FileService& files, const std::string& homeDirectory,
                        const std::string& name) {
    const std::string path = soundFile(homeDirectory, name);
    FileEntry file;
    if (sounds.deviceCount() < 1) return;
    if (!files.lookUp(path, LinkRule::follow, file).ok() || file.isDirectory()) return;
    sounds.play(path);
}

void playSystemSound(SoundService& sounds, ShellService& shell, const std::string& name) {
    if (sounds.deviceCount() >= 1) shell.playSystemSound(name);
}

}  // namespace coffrelune
