#pragma once

#include <sys/stat.h>

#include <cerrno>

#include "platform/posix/place.h"

namespace coffrelune {

/// Whose something is.
struct Owner {
    uid_t user = 0;
    gid_t group = 0;

    bool operator==(const Owner&) const = default;
};

/// Whose a directory is, and what may be done with it.
struct Rights {
    Owner owner;
    mode_t mode = 0;

    bool operator==(const Rights&) const = default;
};

inline Owner ownerOf(const struct stat& information) {
    return {information.st_uid, information.st_gid};
}

/// Gives an entry of `directory`, or with the name "" the directory or file itself, to `owner`
/// when the program may give files away. Where the volume knows no owners, or a server none of
/// this one, nothing is given and nothing has failed. 0 or an errno value.
int giveAway(int directory, const char* name, const Owner& owner);

/// The mode of an original, but for the bits that lend its owner's rights to whoever runs the file
/// (setuid, setgid) where `fd`, the copy, is somebody else's.
mode_t keepableMode(int fd, const struct stat& original);

/// Gives a file the mode of its original, as far as the volume knows modes: one that refuses most
/// of them may still hold the read-only mark. 0 or an errno value.
int keepMode(int fd, mode_t mode);

/// False for the volumes (FAT and its like, shares of Windows) that make up modes and owners for
/// everything in them: what they show is nobody's wish.
/// `directory` is open on `device`.
bool keepsRights(int directory, dev_t device);

/// Gives an open directory (O_PATH will do) the owner and the mode of another, where they differ
/// and the volume knows such rights. `now`: how it is. 0 or an errno value.
int matchRights(int directory, struct stat now, const struct stat& original);

/// Gives an open directory the mode that the system gives to new ones. 0 or an errno value.
int openToAll(int directory);

/// Gives the owner of an open directory the right to write into it that he had taken from himself.
/// False when it is not the program's own or lacks no right.
bool unlockDirectory(int directory);

/// Makes a change in the directory of a place. A copy's directory has the rights of its original,
/// which may bar even its owner: below a hold they are widened then, and whoever is done with the
/// directory gives it its rights again. `change` returns 0 or an errno value.
template <typename Change>
int changeIn(const Holder& holder, Change change) {
    const int error = change();
    const bool again = error == EACCES && holder.held && unlockDirectory(holder.directory);
    return again ? change() : error;
}

}  // namespace coffrelune
