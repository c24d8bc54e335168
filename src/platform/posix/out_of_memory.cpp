#include "platform/out_of_memory.h"

#include <unistd.h>

#include <cstddef>
#include <new>

namespace coffrelune {
namespace {

void sayAndEnd() {
    // The end is told by the status as well: nothing is left to do where the text is lost.
    std::size_t said = 0;
    while (said + 1 < sizeof outOfMemory) {
        const ssize_t count =
            ::write(STDERR_FILENO, outOfMemory + said, sizeof outOfMemory - 1 - said);
        if (count <= 0) break;
        said += static_cast<std::size_t>(count);
    }
    ::_exit(outOfMemoryStatus);
}

}  // namespace

void endWhenMemoryEnds() {
    std::set_new_handler(sayAndEnd);
}

}  // namespace coffrelune
