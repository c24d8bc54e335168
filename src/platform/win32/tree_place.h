#pragma once

#include <string>

#include "platform/held_tree.h"
#include "platform/win32/native_path.h"

namespace coffrelune {

/// Where an open directory lies, in words that outlive this run and this computer.
///
/// A volume is named as other systems name it: "uuid:" and the serial number in the spelling of its
/// file system, else "volume:" and the number; a share "share://server/share".
TreePlace placeOf(void* directory);

/// True for what a computer, perhaps another one, gives out under "\\server\share".
bool isOnShare(const NativePath& path);

/// What a file system promises that the program relies on.
enum class VolumeKind {
    ntfs,   // the number of a file is given to no other, and what is safe on the disk was preceded
            // by all that came before it
    fat,    // the number of a file only says where its name lies
    other,  // the number of a file may be given again once the file is gone
};

/// Of the volume that holds an open file.
VolumeKind volumeKindOf(void* handle);

}  // namespace coffrelune
