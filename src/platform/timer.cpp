#include "platform/timer.h"

namespace coffrelune {

void Timer::setInterval(int milliseconds) {
    if (milliseconds == interval_) return;
    interval_ = milliseconds;
    changed();
}

void Timer::tick() {
    if (enabled() && onTick) onTick();
}

}  // namespace coffrelune
