// What stands in the way of a directory that is to be made.
#include "engine/copie_mod.h"
#include "engine/locked_entries.h"
#include "engine/objections.h"
#include "system/paths.h"

namespace coffrelune {

bool CopieMod::createMissingTarget(const Place& place, const Status& opened) {
    if (isBlocked(place)) return false;
    if (place.links == LinkRule::follow) return createRoot();
    if (!mayChange()) return false;
    const Status made = makeTarget(place);
    if (made.ok()) return true;
    const std::string path = withoutTrailingBackslash(place.destination);
    const std::string lock =
        made.code() == error_number::accessDenied ? lockOn(files_, path) : std::string();
    if (!lock.empty() && !errors_.hasFailedInLine(place.source)) display_.AjouteECTxt(lock);
    const bool taken = made.code() == error_number::alreadyExists;
    errors_.failedInLine(taken ? opened.code() : made.code(), place.source);
    return false;
}

Status CopieMod::makeTarget(const Place& place) {
    const std::string path = withoutTrailingBackslash(place.destination);
    Status made = files_.createDirectory(path, DirectoryAccess::ownerOnly);
    if (made.ok()) ++statistics_.directoriesCreated;
    return made;
}

// A file where a directory must be: the deletion of excess files takes it away, and the directory
// is made afterwards; without that pass the user learns what stands in the way.
bool CopieMod::isBlocked(const Place& place) {
    const std::string path = withoutTrailingBackslash(place.destination);
    FileEntry entry;
    if (!files_.lookUp(path, LinkRule::refuse, entry).ok() || entry.isDirectory()) return false;
    if (pass_ == Pass::tree && mayDeleteExcess(run_)) return true;
    display_.AjouteECTxt(path + (entry.isLink() ? " est un lien" : " est un fichier") +
                         " : le répertoire de ce nom ne peut pas être créé.");
    errors_.failedInLine(error_number::notADirectory, place.source);
    return true;
}

}  // namespace coffrelune
