#include "platform/walk_ahead.h"

#include "platform/file_service.h"

namespace coffrelune {

OpenedPair PlainWalk::open(const DirectoryPair& pair) {
    OpenedPair opened;
    opened.sourceStatus =
        files_.openDirectory(pair.source, pair.sourceLinks, Wanted::files, opened.source);
    opened.targetStatus =
        files_.openDirectory(pair.target, pair.targetLinks, Wanted::nothing, opened.target);
    return opened;
}

}  // namespace coffrelune
