#include "platform/posix/usable_cores.h"

#include <sched.h>

namespace coffrelune {

// The standard library counts what the machine has.
std::size_t usableCores() {
    cpu_set_t cores;
    CPU_ZERO(&cores);
    // Refused where there are more than the set holds.
    if (sched_getaffinity(0, sizeof cores, &cores) != 0) return CPU_SETSIZE;
    return static_cast<std::size_t>(CPU_COUNT(&cores));
}

}  // namespace coffrelune
