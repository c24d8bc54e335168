#include "operation/shared_host.h"

#include "operation/line_texts.h"

namespace coffrelune {

int SharedHost::lineCount() const {
    return system_.maximumIndex + 1;
}

bool SharedHost::lineSelected(int line) const {
    return system_.selected[static_cast<std::size_t>(line)] != 0;
}

std::string SharedHost::lineSource(int line) const {
    return lineTexts(system_, line).source;
}

std::string SharedHost::lineDestination(int line) const {
    return lineTexts(system_, line).destination;
}

}  // namespace coffrelune
