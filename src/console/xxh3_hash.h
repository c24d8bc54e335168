#pragma once

#include <memory>

#include "platform/content_hash.h"

namespace coffrelune::console {

/// XXH3 with 64 bits: as fast as a disk reads, and no bit changes unseen.
std::unique_ptr<ContentHash> makeContentHash();

}  // namespace coffrelune::console
