// Which directory of the reference one of the cleaned tree stands for, where the volume of one of
// them takes names of any case for one.
#include "engine/excess_walk.h"
#include "engine/restored_names.h"
#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {

// False when the directory keeps what is in it, because nobody can say what the reference has
// there: a link leads elsewhere, and so does a mount point.
bool ExcessWalk::enterReference(Place& place, const std::string& name, Place& below) {
    const std::string path = place.reference + name;
    FileEntry counterpart;
    const Status found = files_.lookUp(path, LinkRule::refuse, counterpart);
    if (found.saysAbsent()) return referenceStands() && enterNamesake(place, name, below);
    if (!found.ok()) {
        errors_.unread(found.code(), path);
        return false;
    }
    if (counterpart.isLink() || counterpart.mountPoint) {
        tellKept(below.cleaned,
                 path + (counterpart.isLink() ? " est un lien." : " est un autre volume."));
        return false;
    }
    if (counterpart.isDirectory()) {
        below.reference = path + "\\";
        return true;
    }
    // It may be the copy of a directory that its volume lists in another case.
    std::string namesake;
    if (!gatherNames(place) || hides(place, Wanted::directories)) return false;
    if (place.names->all.contains(name) && findNamesake(place, name, below.cleaned, namesake)) {
        tellKept(below.cleaned, path + " est un fichier, et un autre nom y mène aussi.");
        return false;
    }
    below.makesRoom = madeRoom_ = true;
    return true;
}

// A directory that its volume lists in another case than its original's is no excess one.
bool ExcessWalk::enterNamesake(Place& place, const std::string& name, Place& below) {
    if (!gatherNames(place) || hides(place, Wanted::directories)) return false;
    std::string namesake;
    if (!place.names->all.contains(name) || !findNamesake(place, name, below.cleaned, namesake)) {
        return true;  // it has gone from the reference
    }
    const std::string path = place.reference + namesake;
    FileEntry counterpart;
    Status found;
    if (!namesake.empty()) found = files_.lookUp(path, LinkRule::refuse, counterpart);
    tellUnread(found, path);
    const bool isThere = !namesake.empty() && found.ok();
    if (!isThere || counterpart.isLink() || counterpart.mountPoint) {
        tellKept(below.cleaned, !isThere               ? "nul ne peut dire ce que l'original en a."
                                : counterpart.isLink() ? path + " est un lien."
                                                       : path + " est un autre volume.");
        return false;
    }
    if (counterpart.isDirectory()) {
        below.reference = path + "\\";
    } else {
        below.makesRoom = madeRoom_ = true;
    }
    return true;
}

// Listed once, where a name is missing or a file is about to be deleted. False when they cannot be.
bool ExcessWalk::gatherNames(Place& place) {
    if (place.names != nullptr) return true;
    std::unique_ptr<Directory> listing;
    if (!listReference(place, Wanted::everything, listing)) return false;
    auto names = std::make_unique<DirectoryNames>();
    for (FileEntry other; listing->next(other);) {
        if (!names->all.add(other.name)) (void)names->repeated.add(other.name);
    }
    if (!isListed(*listing, place)) return false;
    place.names = std::move(names);
    return true;
}

// An entry of the reference of the same name in another case that leads to the directory `cleaned`,
// or may. Empty, and true, when nobody can tell.
bool ExcessWalk::findNamesake(const Place& place, const std::string& name,
                              const std::string& cleaned, std::string& namesake) {
    namesake.clear();
    std::unique_ptr<Directory> listing;
    if (!listReference(place, Wanted::everything, listing)) return true;
    const std::string path = withoutTrailingBackslash(cleaned);
    for (FileEntry other; listing->next(other);) {
        if (other.name == name || !equalIgnoringCase(other.name, name)) continue;
        const std::optional<bool> one = areOne(place, other.name, path);
        if (one == false) continue;
        if (one) namesake = other.name;
        return true;
    }
    return !isListed(*listing, place);
}

// Whether `name` leads to the entry at `path` of the cleaned tree as well. Nothing when nobody can
// tell.
std::optional<bool> ExcessWalk::areOne(const Place& place, const std::string& name,
                                       const std::string& path) {
    Status failed;
    const std::optional<bool> one = areOneEntry(files_, place.cleaned + name, path, failed);
    tellUnread(failed, path);
    return one;
}

// Two directories of the reference that are one here, on any of the levels above: what one of them
// lacks may be the other's.
bool ExcessWalk::isShared(Place& place) {
    if (place.above == nullptr) return false;
    if (place.shared) return *place.shared;
    place.shared = isShared(*place.above);
    if (*place.shared || place.reference.empty()) return *place.shared;
    const std::string name = splitPath(withoutTrailingBackslash(place.reference)).last;
    std::string namesake;
    if (hides(*place.above, Wanted::directories)) return *(place.shared = true);
    place.shared =
        !gatherNames(*place.above) || (place.above->names->repeated.contains(name) &&
                                       findNamesake(*place.above, name, place.cleaned, namesake));
    if (*place.shared) {
        tellKept(place.cleaned,
                 "deux répertoires de " + place.above->reference +
                     ", dont les noms ne diffèrent que par la casse, n'y font qu'un.");
    }
    return *place.shared;
}

// A server makes up names for those that it does not show; some volumes compose or decompose
// accents, drop dots at the end, or know more letters in two cases than this program: what is
// listed under a name that the reference lacks may be the copy of one that is not listed.
bool ExcessWalk::hides(Place& place, Wanted kind) {
    std::optional<bool>& known = kind == Wanted::files ? place.hidesFiles : place.hidesDirectories;
    if (known) return *known;
    const std::optional<bool> hidden = hidesNames(place, kind);
    if (hidden != false) {
        tellKept(place.cleaned, hidden
                                    ? "ce volume y montre certains noms autrement que l'original."
                                    : "nul ne peut dire ce que l'original en a.");
    }
    known = hidden != false;
    return *known;
}

// True when the cleaned directory finds a name of the reference that it does not list. Nothing when
// nobody can tell: that is an error, since files are kept for it.
std::optional<bool> ExcessWalk::hidesNames(const Place& place, Wanted kind) {
    FoldedNames listed;
    std::unique_ptr<Directory> listing;
    if (!listCleaned(place, listed) || !listReference(place, kind, listing)) return {};
    for (FileEntry other; listing->next(other);) {
        if (listed.contains(other.name)) continue;
        FileEntry found;
        const std::string path = place.cleaned + other.name;
        const Status status = files_.lookUp(path, LinkRule::refuse, found);
        if (status.saysAbsent()) continue;
        if (cannotBeThere(status)) return true;
        tellUnread(status, path);
        FoldedNames now;
        if (!status.ok() || !listCleaned(place, now)) return {};
        if (!now.contains(other.name)) return true;
        // It came, or came back, while this directory was being listed: what else has?
        errors_.unread(error_number::sharingViolation, path);
        return {};
    }
    if (!isListed(*listing, place)) return {};
    return false;
}

// All of them: a directory may stand where the reference has a file of that very name.
bool ExcessWalk::listCleaned(const Place& place, FoldedNames& names) {
    std::unique_ptr<Directory> listing;
    Status status =
        files_.openDirectory(place.cleaned, LinkRule::follow, Wanted::everything, listing);
    if (status.ok()) {
        for (FileEntry entry; listing->next(entry);) (void)names.add(entry.name);
        status = listing->status();
    }
    tellUnread(status, place.cleaned);
    return status.ok();
}

}  // namespace coffrelune
