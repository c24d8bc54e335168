#include "engine/locked_entries.h"

#include "system/paths.h"

namespace coffrelune {
namespace {

std::string sentence(const std::string& path, const FileEntry& entry) {
    const bool immutable = entry.lock == Lock::immutable;
    const std::string what = entry.isDirectory() ? "Le répertoire " + path : path;
    const std::string kept = entry.isDirectory() ? "rien ne peut y être remplacé ni effacé"
                                                 : "il ne peut être ni remplacé ni effacé";
    return what + (immutable ? " est immuable" : " n'accepte que des ajouts") + " : " + kept +
           ". L'administrateur lève cette protection par « chattr " + (immutable ? "-i" : "-a") +
           " ».";
}

}  // namespace

std::string lockOn(FileService& files, const std::string& path) {
    for (const std::string& place : {path, withoutTrailingBackslash(splitPath(path).parent)}) {
        FileEntry entry;
        const Status found = files.lookUp(place, LinkRule::refuse, entry);
        if (found.ok() && entry.lock != Lock::none) return sentence(place, entry);
    }
    return {};
}

}  // namespace coffrelune
