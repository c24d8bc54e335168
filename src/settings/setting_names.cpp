#include "settings/setting_names.h"

#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {

bool isReserved(std::string_view name) {
    return equalIgnoringCase(trimBlanks(name), globalSection);
}

std::string errorListPath(const SystemMod& system, const std::string& configuration,
                          OperationKind kind) {
    return joinPath(system.homeDirectory, std::string(wordsOf(kind).letter) + "_" +
                                              cleanFileName(configuration, "_") + ".err");
}

}  // namespace coffrelune
