#include "operation/error_list.h"

#include "settings/setting_names.h"

namespace coffrelune {

std::string errorListPath(const SystemMod& system, OperationKind kind) {
    return errorListPath(system, system.configurationName, kind);
}

Status EcritErreurs(SystemMod& system, const std::string& journal) {
    if (system.homeDirectory.empty()) return {};
    std::string bytes;
    // Characters outside the code page become "?": the list is for reading.
    (void)system.platform.ansi.encode(journal, bytes);
    return system.platform.files.writeWhole(errorListPath(system, system.operationKind), bytes,
                                            Durability::now);
}

std::string readErrorList(SystemMod& system, OperationKind kind) {
    constexpr std::uint64_t largest = std::uint64_t{1} << 30;
    std::string bytes;
    const Status read =
        system.platform.files.readWhole(errorListPath(system, kind), largest, bytes);
    return read.ok() ? system.platform.ansi.decode(bytes) : std::string();
}

}  // namespace coffrelune
