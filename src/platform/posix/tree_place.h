#pragma once

#include <string>

#include "platform/held_tree.h"
#include "platform/posix/mount_table.h"

namespace coffrelune {

/// Where an open directory lies. `native`: the path by which it was opened. What the system does
/// not tell stays empty.
TreePlace treePlaceOf(int directory, const std::string& native, const MountSources& sources);

}  // namespace coffrelune
