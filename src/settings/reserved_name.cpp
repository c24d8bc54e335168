#include "settings/reserved_name.h"

#include "system/text.h"

namespace coffrelune {

bool isReserved(std::string_view name) {
    return equalIgnoringCase(trimBlanks(name), "Position");
}

}  // namespace coffrelune
